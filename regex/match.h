// Match: testing a text, or each text of an array, against the pattern without keeping it. The kept
// subject is released.
#ifndef ZRK_REGEX_MATCH_H
#define ZRK_REGEX_MATCH_H

#include "regex/class_data.h"

namespace zrk {

// Match(text): whether it matches. Count, Lasterror and the vector tell more, as after an execute.
HostBoolean Match(RegExClassData& data, REALstringStruct* text);

// Match(text(), inverse): a new string array, the caller's, of the elements that match in their
// order, or with inverse of those that do not. Empty for a nil array and without a pattern. Leaves
// Lasterror and Count alone.
_REALarrayString* MatchStringArray(RegExClassData& data, _REALarrayString* array,
                                   HostBoolean inverse);
_REALarrayString* MatchVariantArray(RegExClassData& data, _REALarrayObject* array,
                                    HostBoolean inverse);

}  // namespace zrk

#endif  // ZRK_REGEX_MATCH_H
