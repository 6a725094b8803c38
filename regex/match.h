// A match as every method speaks of it: pairs of byte offsets in a vector, over a subject's bytes.
#ifndef ZRK_REGEX_MATCH_H
#define ZRK_REGEX_MATCH_H

#include <cstdint>

#include "host/records.h"
#include "regex/class_data.h"
#include "text/build_string.h"

namespace zrk {

// Some bytes of a text that somebody else owns. Length in bytes, never negative.
struct Bytes {
  const unsigned char* data;
  std::int64_t length;
};

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
  const unsigned char* subject;
  std::int32_t length;
  const std::int32_t* vector;
  std::int32_t pairs;

  Pair operator[](std::int32_t group) const { return {vector[2 * group], vector[2 * group + 1]}; }
  // The text of a group; empty for one that is not set, not there, or not within the subject.
  Bytes Text(std::int32_t group) const {
    if (group >= pairs || subject == nullptr) return {nullptr, 0};
    const Pair pair = (*this)[group];
    if (!pair.HoldsText(length)) return {nullptr, 0};
    return {subject + pair.start, std::int64_t{pair.end} - pair.start};
  }
};

// The engine fills pairs in the first two thirds of its vector only (pcreapi, pcre_exec).
constexpr std::int32_t PairsOf(std::int32_t vector_size) { return vector_size / 3; }

// The object's last match over its kept subject. The object must have its vector.
inline MatchResult LastMatch(const RegExClassData& data) {
  return {data.TextPointer, data.TextLength, data.Vector, PairsOf(data.VectorSize)};
}

// The bytes as a new UTF-8 host string that the caller owns; null when there are none.
inline REALstringStruct* BuildUTF8(Bytes bytes) {
  const auto* const text = reinterpret_cast<const char*>(bytes.data);
  return REALBuildUnicodeString({text, static_cast<std::size_t>(bytes.length)}, kEncodingUTF8);
}

}  // namespace zrk

#endif  // ZRK_REGEX_MATCH_H
