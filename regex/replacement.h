// Replacement text: literal bytes, \0 to \99 for groups, \t \r \n for control characters, and any
// other escaped byte for itself. A backslash at the very end stands for one NUL byte.
//
// "\2.\1\n" reads as: group 2, the byte ".", group 1, a line feed.
#ifndef ZRK_REGEX_REPLACEMENT_H
#define ZRK_REGEX_REPLACEMENT_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "regex/match.h"

namespace zrk {

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
    Bytes literal;
    std::int32_t group;

    Bytes TextFor(const MatchResult& match) const {
      return group == kLiteral ? literal : match.Text(group);
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

// Copies bytes, which may be none, and answers where the copy ends.
unsigned char* Append(Bytes bytes, unsigned char* out);

}  // namespace zrk

#endif  // ZRK_REGEX_REPLACEMENT_H
