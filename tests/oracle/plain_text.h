// What the library should make of texts, worked out the slow and obvious way.
#ifndef ZRK_TESTS_ORACLE_PLAIN_TEXT_H
#define ZRK_TESTS_ORACLE_PLAIN_TEXT_H

#include <cstddef>
#include <string>
#include <string_view>

#include "standin/host.h"

namespace oracle {

// The UTF-8 bytes that the library reads a host string as, on a host where nothing is wrong.
std::string ReadAs(const standin::HostOptions& host, const standin::Value& string);

// The bytes that an unchecking engine is shown: 0x1A for each byte that could lead it astray.
std::string WithoutUnsafeBytes(const std::string& bytes);

// Whether some character is not whole: continuation bytes stand elsewhere than lead bytes announce.
bool HasBrokenCharacters(const std::string& bytes);

// How many bytes the lead byte at `at` announces.
std::size_t SequenceLength(const std::string& bytes, std::size_t at);

// Characters that begin before the offset.
std::size_t CharactersBefore(const std::string& bytes, std::size_t offset);

// The text with each of the engine's special characters behind a backslash.
std::string Escaped(const std::string& text);

}  // namespace oracle

#endif  // ZRK_TESTS_ORACLE_PLAIN_TEXT_H
