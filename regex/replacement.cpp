#include "regex/replacement.h"

#include <algorithm>

namespace zrk {

namespace {

constexpr char kEscape = '\\';

bool IsDigit(char byte) { return byte >= '0' && byte <= '9'; }

// What an escaped byte that is no digit stands for.
char Unescaped(char byte) {
  switch (byte) {
    case 't':
      return '\t';
    case 'r':
      return '\r';
    case 'n':
      return '\n';
    default:
      return byte;
  }
}

}  // namespace

Replacement::Replacement(std::string_view text, std::int32_t group_bound) {
  if (text.size() > kShortText) {
    const auto escapes = static_cast<std::size_t>(std::ranges::count(text, kEscape));
    long_insertions_ =
        std::make_unique_for_overwrite<Insertion[]>(std::min(escapes, text.size() / 2));
    long_literals_ = std::make_unique_for_overwrite<char[]>(text.size() + kCopyWidth);
    insertions_ = long_insertions_.get();
    literals_ = long_literals_.get();
  }
  Split(text, group_bound);
}

void Replacement::Split(std::string_view text, std::int32_t group_bound) {
  char* out = literals_;
  const char* after_insertion = out;
  for (std::size_t at = 0; at < text.size();) {
    const char byte = text[at++];
    if (byte != kEscape) {
      *out++ = byte;
      continue;
    }
    const char escaped = at < text.size() ? text[at++] : '\0';
    if (!IsDigit(escaped)) {
      *out++ = Unescaped(escaped);
      continue;
    }
    std::int32_t group = escaped - '0';
    if (at < text.size() && IsDigit(text[at])) group = 10 * group + (text[at++] - '0');
    if (group >= group_bound) continue;
    insertions_[insertion_count_++] = {static_cast<std::uint32_t>(out - after_insertion), group};
    after_insertion = out;
  }
  literal_length_ = static_cast<std::size_t>(out - literals_);
  std::memset(out, 0, kCopyWidth);
}

std::int64_t Replacement::LengthFor(const MatchResult& match) const {
  // More than a size of 32 bits holds: many groups of a long text.
  std::uint64_t length = literal_length_;
  for (const Insertion& insertion : insertions()) length += match.Text(insertion.group).size();
  return static_cast<std::int64_t>(length);
}

// The literal bytes find room first, so that only groups are asked about on the way.
char* Replacement::WriteFor(const MatchResult& match, char* out, std::int64_t room) const {
  const char* const subject_end = match.subject + match.length;
  const char* const readable_end = literals_ + literal_length_ + kCopyWidth;
  std::string_view rest(literals_, literal_length_);
  room -= static_cast<std::int64_t>(literal_length_);
  if (room < 0) return nullptr;
  for (const Insertion& insertion : insertions()) {
    out = Append(rest.substr(0, insertion.literal_length), readable_end, out);
    rest.remove_prefix(insertion.literal_length);
    const std::string_view group = match.Text(insertion.group);
    room -= static_cast<std::int64_t>(group.size());
    if (room < 0) return nullptr;
    out = Append(group, subject_end, out);
  }
  return Append(rest, readable_end, out);
}

}  // namespace zrk
