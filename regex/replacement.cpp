#include "regex/replacement.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace zrk {

namespace {

constexpr unsigned char kEscape = '\\';

bool IsDigit(unsigned char byte) { return byte >= '0' && byte <= '9'; }

const unsigned char* FindEscape(const unsigned char* from, const unsigned char* end) {
  if (from == end) return end;
  const void* const found = std::memchr(from, kEscape, static_cast<std::size_t>(end - from));
  return found != nullptr ? static_cast<const unsigned char*>(found) : end;
}

// What an escaped byte stands for: itself, but for three letters.
struct ControlEscape {
  unsigned char escaped;
  unsigned char character;
};
constexpr ControlEscape kControlEscapes[] = {{'t', '\t'}, {'r', '\r'}, {'n', '\n'}};
constexpr unsigned char kNul = 0;

}  // namespace

Replacement::Replacement(Bytes text, std::int32_t group_bound) {
  const auto escapes =
      static_cast<std::size_t>(std::count(text.data, text.data + text.length, kEscape));
  pieces_.reset(new (std::nothrow) Piece[2 * escapes + 1]);
  if (pieces_ != nullptr) Split(text, group_bound);
}

void Replacement::Split(Bytes text, std::int32_t group_bound) {
  const unsigned char* const end = text.data + text.length;
  const unsigned char* at = FindEscape(text.data, end);
  AddLiteral(text.data, at);
  while (at != end) {
    const unsigned char* const escaped = at + 1;
    if (escaped == end) return AddLiteral(&kNul, &kNul + 1);
    const unsigned char* rest = escaped + 1;
    const auto* const control =
        std::find_if(std::begin(kControlEscapes), std::end(kControlEscapes),
                     [=](ControlEscape escape) { return escape.escaped == *escaped; });
    if (IsDigit(*escaped)) {
      std::int32_t group = *escaped - '0';
      if (rest != end && IsDigit(*rest)) group = 10 * group + (*rest++ - '0');
      if (group < group_bound) AddGroup(group);
    } else if (control != std::end(kControlEscapes)) {
      AddLiteral(&control->character, &control->character + 1);
    } else {
      AddLiteral(escaped, rest);
    }
    at = FindEscape(rest, end);
    AddLiteral(rest, at);
  }
}

void Replacement::AddLiteral(const unsigned char* from, const unsigned char* to) {
  if (from == to) return;
  Piece& piece = pieces_[count_++];
  piece = {.group = kLiteral, .literal = {from, to - from}, .few = {}};
  if (piece.literal.length > kAtOnce) return;
  std::copy(from, to, piece.few);
  piece.literal.data = piece.few;
}

void Replacement::AddGroup(std::int32_t group) {
  pieces_[count_++].group = group;
  if (group == 0 || std::ranges::count(groups(), group) > 0) return;
  groups_[group_count_++] = group;
}

std::int64_t Replacement::LengthFor(const MatchResult& match) const {
  std::int64_t length = 0;
  for (const Piece& piece : pieces()) length += piece.TextFor(match).length;
  return length;
}

unsigned char* Replacement::WriteFor(const MatchResult& match, unsigned char* out) const {
  for (const Piece& piece : pieces()) {
    out = Append(piece.TextFor(match), piece.ReadableEnd(match), out);
  }
  return out;
}

}  // namespace zrk
