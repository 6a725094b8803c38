// The engine called directly, and replacement by the letter of its rules: slow, obvious, and of no
// common descent with the library.
#ifndef ZRK_FUZZ_PLAIN_REGEX_H
#define ZRK_FUZZ_PLAIN_REGEX_H

#include <pcre.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace fuzz {

// A match: the engine's answer and its vector.
struct PlainMatch {
  int result = 0;
  std::vector<int> vector;

  // The texts of the first groups; empty where unset.
  std::vector<std::string> Groups(const std::string& subject, std::size_t count) const;
};

class PlainRegex {
 public:
  PlainRegex(const std::string& pattern, std::uint32_t compile_options,
             std::uint32_t execute_options);

  bool IsValid() const { return code_ != nullptr; }
  void Study();
  // The engine sees no byte that could lead it astray when it is told not to check.
  PlainMatch Match(const std::string& subject, std::size_t start, std::size_t vector_size) const;

 private:
  std::uint32_t execute_options_;
  std::unique_ptr<pcre, void (*)(void*)> code_{nullptr, nullptr};
  std::unique_ptr<pcre_extra, void (*)(pcre_extra*)> study_{nullptr, pcre_free_study};
};

// Replacement text with its escapes replaced; groups past the given ones read as empty.
std::string Expand(const std::string& text, const std::vector<std::string>& groups);

struct PlainReplaceAll {
  std::string text;
  std::int32_t engine_calls = 0;
};
PlainReplaceAll ReplaceAll(const PlainRegex& regex, const std::string& target,
                           const std::string& new_text);

}  // namespace fuzz

#endif  // ZRK_FUZZ_PLAIN_REGEX_H
