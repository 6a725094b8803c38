// Host strings from bytes that already are in the encoding they are marked with. [host thread]
#ifndef ZRK_HOST_STRINGS_H
#define ZRK_HOST_STRINGS_H

#include <cstdint>
#include <string_view>

#include "host/records.h"

namespace zrk {

// The length as the host's services take it. The bytes must fit: at most 2^31 - 1.
inline std::int32_t LengthOf(std::string_view bytes) {
  return static_cast<std::int32_t>(bytes.size());
}

// A new host string whose one reference is the caller's. It is built without an encoding, as every
// host can, and marked afterwards. Null for no bytes, for more than 2^31 - 1, and where the host
// cannot build it.
REALstringStruct* BuildThenMark(std::string_view bytes, std::uint32_t encoding);

}  // namespace zrk

#endif  // ZRK_HOST_STRINGS_H
