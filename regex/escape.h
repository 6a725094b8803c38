// Text as a pattern that matches it literally, and back. Neither needs a pattern or changes the
// object; empty text gives null.
#ifndef ZRK_REGEX_ESCAPE_H
#define ZRK_REGEX_ESCAPE_H

#include "regex/class_data.h"

namespace zrk {

// Escape(text): a backslash before each of $ ( ) * + . ? [ \ ] ^ { | }; every other byte as it is.
REALstringStruct* EscapeString(RegExClassData& data, REALstringStruct* text);

// Unescape(text): every backslash dropped and the byte behind it kept, whatever it is: "\n" gives
// "n". A backslash at the very end gives one NUL byte.
REALstringStruct* UnescapeString(RegExClassData& data, REALstringStruct* text);

}  // namespace zrk

#endif  // ZRK_REGEX_ESCAPE_H
