// The engine called directly, and replacement by the letter of its rules: slow, obvious, and with
// no code of the library's. Offsets are in bytes.
#ifndef ZRK_TESTS_ORACLE_PLAIN_REGEX_H
#define ZRK_TESTS_ORACLE_PLAIN_REGEX_H

#include <pcre.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace oracle {

// As a new object has them.
inline constexpr std::uint32_t kCompileOptions = 0x2A00;
inline constexpr std::uint32_t kExecuteOptions = 0x2000;

// A match: the engine's answer and its vector.
struct PlainMatch {
  int result = 0;
  std::vector<int> vector;

  // A group's text; empty where it is unset, not there, or ends before it starts.
  std::string Group(const std::string& subject, std::size_t group) const;
};

class PlainRegex {
 public:
  explicit PlainRegex(const std::string& pattern, std::uint32_t compile_options = kCompileOptions,
                      std::uint32_t execute_options = kExecuteOptions);

  // What is wrong with the pattern; null for nothing. The rest is for patterns that compiled.
  const char* error() const { return error_; }
  void Study();
  // What the engine is given of a subject: no byte that could lead it astray when it is told not to
  // check.
  std::string Shown(const std::string& subject) const;
  PlainMatch Match(const std::string& shown, int start, std::size_t vector_size = 51) const;
  // A match as one line: `1 err=0 0-3 "abc" 1:unset 2:1-2 "b"`, with all groups of the pattern,
  // each up to its first NUL byte.
  std::string Describe(const std::string& subject, int start = 0) const;

 private:
  std::uint32_t execute_options_;
  const char* error_ = nullptr;
  std::unique_ptr<pcre, void (*)(void*)> code_{nullptr, nullptr};
  std::unique_ptr<pcre_extra, void (*)(pcre_extra*)> study_{nullptr, pcre_free_study};
};

// One group of such a line, with a space before it.
std::string DescribeGroup(int group, int start, int end, const std::string& text);

// The line for a match of the pattern, or what is wrong with the pattern.
std::string DescribeDirectly(const std::string& pattern, const std::string& subject, int start = 0,
                             std::uint32_t compile_options = kCompileOptions,
                             std::uint32_t execute_options = kExecuteOptions);

// The subject with its match replaced, and the replacement alone, each up to its first NUL byte.
struct ReplacedMatch {
  std::string whole;
  std::string selection;
};
ReplacedMatch ReplaceMatch(const PlainMatch& match, const std::string& subject,
                           const std::string& new_text);

// The subject with all matches replaced, whole.
struct Replaced {
  std::string text;
  std::int32_t engine_calls = 0;
};
Replaced ReplaceAll(const PlainRegex& regex, const std::string& subject,
                    const std::string& new_text);

}  // namespace oracle

#endif  // ZRK_TESTS_ORACLE_PLAIN_REGEX_H
