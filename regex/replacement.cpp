#include "regex/replacement.h"

#include <algorithm>
#include <bitset>

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
  // Each group takes a backslash and a digit at least.
  const auto escapes = static_cast<std::size_t>(std::ranges::count(text, kEscape));
  insertions_.reserve(std::min(escapes, text.size() / 2));
  literals_.reserve(text.size() + kCopyWidth);
  Split(text, group_bound);
  ListGroups();
  literal_length_ = literals_.size();
  literals_.append(kCopyWidth, '\0');
}

void Replacement::Split(std::string_view text, std::int32_t group_bound) {
  std::size_t last_insertion = 0;  // in literals_
  for (std::size_t at = 0;;) {
    const std::size_t escape = std::min(text.find(kEscape, at), text.size());
    literals_.append(text, at, escape - at);
    if (escape == text.size()) return;
    if (escape + 1 == text.size()) return literals_.push_back('\0');
    const char escaped = text[escape + 1];
    at = escape + 2;
    if (!IsDigit(escaped)) {
      literals_.push_back(Unescaped(escaped));
      continue;
    }
    std::int32_t group = escaped - '0';
    if (at < text.size() && IsDigit(text[at])) group = 10 * group + (text[at++] - '0');
    if (group >= group_bound) continue;
    insertions_.push_back({static_cast<std::uint32_t>(literals_.size() - last_insertion), group});
    last_insertion = literals_.size();
  }
}

void Replacement::ListGroups() {
  std::bitset<kNamableGroups> named;
  for (const Insertion& insertion : insertions_) {
    const auto group = static_cast<std::size_t>(insertion.group);
    if (group == 0 || named[group]) continue;
    named.set(group);
    groups_[group_count_++] = insertion.group;
  }
}

std::int64_t Replacement::LengthFor(const MatchResult& match) const {
  // More than a size of 32 bits holds: many groups of a long text.
  std::uint64_t length = literal_length_;
  for (const Insertion& insertion : insertions_) length += match.Text(insertion.group).size();
  return static_cast<std::int64_t>(length);
}

char* Replacement::WriteFor(const MatchResult& match, char* out) const {
  const char* const subject_end = match.subject + match.length;
  const char* const readable_end = literals_.data() + literals_.size();
  std::string_view rest(literals_.data(), literal_length_);
  for (const Insertion& insertion : insertions_) {
    out = Append(rest.substr(0, insertion.literal_length), readable_end, out);
    out = Append(match.Text(insertion.group), subject_end, out);
    rest.remove_prefix(insertion.literal_length);
  }
  return Append(rest, readable_end, out);
}

}  // namespace zrk
