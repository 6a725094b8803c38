// Replacement text: literal bytes, \0 to \99 for groups, \t \r \n for control characters, and any
// other escaped byte for itself. A backslash at the very end stands for one NUL byte.
//
// "\2.\1\n" reads as: group 2, the byte ".", group 1, a line feed.
#ifndef ZRK_REGEX_REPLACEMENT_H
#define ZRK_REGEX_REPLACEMENT_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory_resource>
#include <span>
#include <string>
#include <string_view>
#include <vector>

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
  // Two digits name a group.
  static constexpr std::int32_t kNamableGroups = 100;

  // Groups from group_bound on read as empty. Throws std::bad_alloc.
  Replacement(std::string_view text, std::int32_t group_bound);
  Replacement(const Replacement&) = delete;
  Replacement& operator=(const Replacement&) = delete;

  // The groups above 0 that it names, each once.
  std::span<const std::int32_t> groups() const { return {groups_, group_count_}; }

  // The length in bytes of the text for a match, and the text itself, written at out; answers where
  // it ends.
  std::int64_t LengthFor(const MatchResult& match) const;
  char* WriteFor(const MatchResult& match, char* out) const;

 private:
  // A group's text goes here, behind so many literal bytes.
  struct Insertion {
    std::uint32_t literal_length;
    std::int32_t group;
  };

  void Split(std::string_view text, std::int32_t group_bound);
  void ListGroups();

  // A short text is taken apart here: two allocations less are 6 ns of a short call's 168.
  std::byte short_[256];
  std::pmr::monotonic_buffer_resource memory_{short_, sizeof short_};
  // All literal bytes, escapes resolved, and behind them what Append may read.
  std::pmr::string literals_{&memory_};
  std::size_t literal_length_ = 0;
  std::pmr::vector<Insertion> insertions_{&memory_};
  std::int32_t groups_[kNamableGroups];
  std::size_t group_count_ = 0;
};

}  // namespace zrk

#endif  // ZRK_REGEX_REPLACEMENT_H
