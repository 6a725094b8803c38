// The one way results become host strings. [host thread]
#ifndef ZRK_TEXT_BUILD_STRING_H
#define ZRK_TEXT_BUILD_STRING_H

#include <cstdint>

#include "host/records.h"

namespace zrk {

// A new host string from `length` bytes in one of the host's encodings; the caller owns its one
// reference. Null for a null pointer, a length below 1 or above 0x7FFFFFFF, and where the host
// cannot build it.
//
// UTF-16 and UTF-32, in the machine's byte order, become UTF-8. Single-byte text that is pure ASCII
// is marked so. Everything else is taken as it is.
REALstringStruct* REALBuildUnicodeString(const void* bytes, std::int64_t length,
                                         std::uint32_t encoding);

// A new UTF-8 host string from UTF-16 units in the machine's byte order; the length, in bytes, must
// be positive. Null where the host cannot build or convert it.
REALstringStruct* REALBuildUnicodeStringUTF16(const std::uint16_t* units, std::int64_t length);

}  // namespace zrk

#endif  // ZRK_TEXT_BUILD_STRING_H
