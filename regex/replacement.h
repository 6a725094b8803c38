// Replacement text: literal bytes, \0 to \99 for groups, \t \r \n for control characters, and any
// other escaped byte for itself. A backslash at the very end stands for one NUL byte.
//
// "\2.\1\n" reads as: group 2, the byte ".", group 1, a line feed.
#ifndef ZRK_REGEX_REPLACEMENT_H
#define ZRK_REGEX_REPLACEMENT_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>

#include "regex/match.h"

namespace zrk {

// Pieces of a text are mostly a few bytes long, and finding out how few costs more than copying
// some that are not needed. Where a text is put together, that many bytes may be written past its
// end.
inline constexpr std::int64_t kAtOnce = 16;

// Copies bytes, which may be none, and answers where the copy ends. What stands behind them may be
// read up to readable_end.
inline unsigned char* Append(Bytes bytes, const unsigned char* readable_end, unsigned char* out) {
  if (bytes.length == 0) return out;
  if (bytes.length <= kAtOnce && readable_end - bytes.data >= kAtOnce) {
    std::memcpy(out, bytes.data, kAtOnce);
  } else {
    std::memcpy(out, bytes.data, static_cast<std::size_t>(bytes.length));
  }
  return out + bytes.length;
}

// Replacement text taken apart once, to be put together for any number of matches. The pieces point
// into the text, which must outlive them.
class Replacement {
 public:
  // Two digits name a group.
  static constexpr std::int32_t kNamableGroups = 100;

  // Groups from group_bound on read as empty. Check IsValid afterwards.
  Replacement(Bytes text, std::int32_t group_bound);

  // False where memory was short.
  bool IsValid() const { return pieces_ != nullptr; }
  // The groups above 0 that it names, each once.
  std::span<const std::int32_t> groups() const { return {groups_, group_count_}; }

  // The length in bytes of the text for a match, and the text itself, written at out; answers where
  // it ends.
  std::int64_t LengthFor(const MatchResult& match) const;
  unsigned char* WriteFor(const MatchResult& match, unsigned char* out) const;

 private:
  // A group's text, or literal bytes where group is kLiteral.
  static constexpr std::int32_t kLiteral = -1;
  struct Piece {
    std::int32_t group;
    Bytes literal;
    unsigned char few[kAtOnce];  // a short literal, with room to be read at once

    Bytes TextFor(const MatchResult& match) const {
      return group == kLiteral ? literal : match.Text(group);
    }
    // Where what may be read behind that text ends.
    const unsigned char* ReadableEnd(const MatchResult& match) const {
      if (group != kLiteral) return match.subject + match.length;
      return literal.data == few ? few + kAtOnce : literal.data + literal.length;
    }
  };

  void Split(Bytes text, std::int32_t group_bound);
  void AddLiteral(const unsigned char* from, const unsigned char* to);
  void AddGroup(std::int32_t group);
  std::span<const Piece> pieces() const { return {pieces_.get(), count_}; }

  std::unique_ptr<Piece[]> pieces_;
  std::size_t count_ = 0;
  std::int32_t groups_[kNamableGroups];
  std::size_t group_count_ = 0;
};

}  // namespace zrk

#endif  // ZRK_REGEX_REPLACEMENT_H
