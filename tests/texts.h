// Long texts, and texts in UTF-16 and UTF-32.
#ifndef ZRK_TESTS_TEXTS_H
#define ZRK_TESTS_TEXTS_H

#include <cstddef>
#include <string>
#include <string_view>

namespace tests {

// The text again and again, up to this length in bytes.
inline std::string Filled(std::string_view text, std::size_t length) {
  std::string filled;
  while (filled.size() < length) filled += text.substr(0, length - filled.size());
  return filled;
}

// The text so many times.
inline std::string Repeated(std::string_view text, std::size_t times) {
  return Filled(text, times * text.size());
}

// The bytes of a text in wider units.
template <typename Unit>
std::string Bytes(std::basic_string_view<Unit> text) {
  return {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(Unit)};
}

}  // namespace tests

#endif  // ZRK_TESTS_TEXTS_H
