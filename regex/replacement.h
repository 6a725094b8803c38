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
#include <string_view>

#include "regex/match_result.h"

namespace zrk {

// Pieces of a text are mostly a few bytes long, and finding out how few costs more than copying
// some that are not needed: 10 ns a match where each word is replaced, a tenth of the whole. So
// many bytes may be written past the end of a text that is put together.
inline constexpr std::ptrdiff_t kCopyWidth = 16;

// Copies bytes, which may be none, and answers where the copy ends. What stands behind them may be
// read up to readable_end.
inline char* Append(std::string_view bytes, const char* readable_end, char* out) {
  if (bytes.empty()) return out;
  if (bytes.size() <= kCopyWidth && readable_end - bytes.data() >= kCopyWidth) {
    std::memcpy(out, bytes.data(), kCopyWidth);
  } else {
    std::memcpy(out, bytes.data(), bytes.size());
  }
  return out + bytes.size();
}

// Replacement text taken apart once, to be put together for any number of matches. Takes at most
// five times the text's length in memory.
class Replacement {
 public:
  // Groups from group_bound on read as empty. Throws std::bad_alloc.
  Replacement(std::string_view text, std::int32_t group_bound);
  Replacement(const Replacement&) = delete;
  Replacement& operator=(const Replacement&) = delete;

  // The length in bytes of the text for a match.
  std::int64_t LengthFor(const MatchResult& match) const;
  // Writes that text at out and answers where it ends; null where it is longer than `room`, of
  // which any part may have been written then.
  char* WriteFor(const MatchResult& match, char* out, std::int64_t room) const;

 private:
  // A group's text goes here, behind so many literal bytes.
  struct Insertion {
    std::uint32_t literal_length;
    std::int32_t group;
  };

  void Split(std::string_view text, std::int32_t group_bound);
  std::span<const Insertion> insertions() const { return {insertions_, insertion_count_}; }

  // A short text needs no allocation. Each group takes a backslash and a digit at least.
  static constexpr std::size_t kShortText = 128;
  char short_literals_[kShortText + kCopyWidth];
  Insertion short_insertions_[kShortText / 2];
  std::unique_ptr<char[]> long_literals_;
  std::unique_ptr<Insertion[]> long_insertions_;

  // All literal bytes, escapes resolved, and behind them what Append may read.
  char* literals_ = short_literals_;
  std::size_t literal_length_ = 0;
  Insertion* insertions_ = short_insertions_;
  std::size_t insertion_count_ = 0;
};

}  // namespace zrk

#endif  // ZRK_REGEX_REPLACEMENT_H
