// What the last match found: offsets, substrings, group numbers and names. The engine's matcher is
// never run here.
#ifndef ZRK_REGEX_RESULTS_H
#define ZRK_REGEX_RESULTS_H

#include "regex/class_data.h"

namespace zrk {

// Offset(index): an entry of the vector, in bytes: entry 2n is where group n starts, 2n + 1 where
// it ends, -1 if unset. Raises "OutOfBoundsException" for an index outside the vector and
// "NilObjectException" for an object without one; 0 then.
HostInteger GetOffset(RegExClassData& data, HostInteger index);

// OffsetCharacters(index): the same in characters of the kept subject; 0 for an unset entry and
// where no subject is kept.
HostInteger GetOffsetChar(RegExClassData& data, HostInteger index);

// Substring(index) and Substring(name): the text of a group, up to its first NUL byte; null when
// empty. Lasterror is 0, ErrorNoSubstring for a group that cannot be, or ErrorPlugin without a
// pattern.
REALstringStruct* rb_pcre_get_substringI(RegExClassData& data, HostInteger index);
REALstringStruct* rb_pcre_get_substringN(RegExClassData& data, REALstringStruct* name);

// StringNumber(name): the number of a named group; 0, with Lasterror set, for an unknown name.
HostInteger rbpcre_get_stringnumber(RegExClassData& data, REALstringStruct* name);

// InfoNameEntry(Index): the name of a group by its number, null for a group without one. Raises
// "OutOfBoundsException" past the pattern's last group.
REALstringStruct* InfoNameEntry(RegExClassData& data, HostInteger Index);

}  // namespace zrk

#endif  // ZRK_REGEX_RESULTS_H
