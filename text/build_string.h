// The one way results become host strings. [host thread]
#ifndef ZRK_TEXT_BUILD_STRING_H
#define ZRK_TEXT_BUILD_STRING_H

#include <cstdint>
#include <string_view>

#include "host/records.h"

namespace zrk {

// A new host string from bytes in one of the host's encodings; the caller owns its one reference.
// Null for no bytes, for more than 2^31 - 1, and where the host cannot build it.
//
// UTF-16 and UTF-32, in the machine's byte order, become UTF-8. Single-byte text that is pure ASCII
// is marked so. Everything else is taken as it is.
REALstringStruct* REALBuildUnicodeString(std::string_view bytes, std::uint32_t encoding);

// The same for bytes in UTF-8, as results are.
inline REALstringStruct* BuildUTF8(std::string_view bytes) {
  return REALBuildUnicodeString(bytes, kEncodingUTF8);
}

}  // namespace zrk

#endif  // ZRK_TEXT_BUILD_STRING_H
