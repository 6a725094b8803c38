// A match as every method speaks of it: pairs of byte offsets in a vector, over a subject's bytes.
#ifndef ZRK_REGEX_MATCH_RESULT_H
#define ZRK_REGEX_MATCH_RESULT_H

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace zrk {

// One pair of the vector: where a group, or with group 0 the whole match, begins and ends. An unset
// group is -1 to -1. With \K in an assertion a match can start past its end.
struct Pair {
  std::int32_t start;
  std::int32_t end;

  bool IsEmpty() const { return start == end; }
  // Whether both ends lie within a subject of that length; says nothing about their order.
  bool LiesWithin(std::int32_t length) const {
    return start >= 0 && start <= length && end >= 0 && end <= length;
  }
  // Whether the pair holds at least one byte of a subject of that length.
  bool HoldsText(std::int32_t length) const { return start >= 0 && start < end && end <= length; }
};

// A match over a subject: `pairs` pairs may be read. Does not own anything.
struct MatchResult {
  const char* subject;  // null where none is kept
  std::int32_t length;  // in bytes
  const std::int32_t* vector;
  std::int32_t pairs;

  Pair operator[](std::int32_t group) const { return {vector[2 * group], vector[2 * group + 1]}; }

  // The text of a group; empty for one that is not set, not there, or not within the subject.
  std::string_view Text(std::int32_t group) const {
    if (group >= pairs || subject == nullptr) return {};
    const Pair pair = (*this)[group];
    return pair.HoldsText(length) ? Between(pair.start, pair.end) : std::string_view();
  }

  // The subject's bytes between two offsets that lie within it.
  std::string_view Between(std::int32_t from, std::int32_t to) const {
    return {subject + from, static_cast<std::size_t>(to - from)};
  }
};

// The engine fills pairs in the first two thirds of its vector only (pcreapi, pcre_exec).
constexpr std::int32_t PairsOf(std::int32_t vector_size) { return vector_size / 3; }

}  // namespace zrk

#endif  // ZRK_REGEX_MATCH_RESULT_H
