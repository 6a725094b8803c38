// The host's text encodings: names and conversion.
#ifndef ZRK_STANDIN_ENCODING_H
#define ZRK_STANDIN_ENCODING_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace standin {

// The name of an encoding, such as "Windows Latin-1"; an unknown code answers its hexadecimal.
std::string EncodingName(std::uint32_t encoding);
// The code of a name in any case; throws std::invalid_argument, naming all, for any other.
std::uint32_t EncodingByName(std::string_view name);

// Converts text; UTF-16 and UTF-32 are in the machine's byte order. The same encoding leaves the
// bytes as they are, valid or not. Otherwise bytes that are no text, and characters that the
// target lacks, become U+FFFD, or "?" where the target has none. Empty where either encoding is
// unknown or not one of the host's.
std::optional<std::string> ConvertText(std::string_view bytes, std::uint32_t from,
                                       std::uint32_t to);

}  // namespace standin

#endif  // ZRK_STANDIN_ENCODING_H
