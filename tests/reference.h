// What replacing has to come to, worked out in the plainest way from the engine called directly.
#ifndef ZRK_TESTS_REFERENCE_H
#define ZRK_TESTS_REFERENCE_H

#include <string>
#include <string_view>

namespace tests {

struct Replaced {
  std::string text;
  int calls = 0;  // of the engine
};

// All matches of a pattern in the target replaced, with a new object's options and no group bound.
Replaced ReplaceAllDirectly(const std::string& pattern, std::string_view target,
                            std::string_view new_text);

}  // namespace tests

#endif  // ZRK_TESTS_REFERENCE_H
