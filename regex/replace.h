// Building new text from matches. A null result is the empty string; a result that is empty leaves
// Lasterror at ErrorPlugin, as memory that cannot be had does. Nothing here raises an exception but
// "NilObjectException" for an object that is not initialised.
#ifndef ZRK_REGEX_REPLACE_H
#define ZRK_REGEX_REPLACE_H

#include "regex/class_data.h"

namespace zrk {

// Replace(NewText): the kept subject with its current match replaced; ReplaceSelection(NewText):
// the replacement alone, which needs no kept subject. Both results end at their first NUL byte.
// Groups that the object's vector has no room for read as empty.
REALstringStruct* Replace(RegExClassData& data, REALstringStruct* NewText);
REALstringStruct* ReplaceSelection(RegExClassData& data, REALstringStruct* NewText);

// ReplaceAll(Target, NewText): Target with every match replaced, NUL bytes kept; the object's
// subject and vector stay as they are. Count becomes the number of engine calls made: one more than
// there were matches, unless the last match ended at Target's end. An engine failure ends the
// matches, as no further match does.
REALstringStruct* ReplaceAll(RegExClassData& data, REALstringStruct* Target,
                             REALstringStruct* NewText);

}  // namespace zrk

#endif  // ZRK_REGEX_REPLACE_H
