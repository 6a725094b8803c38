#include "regex/match_record.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace zrk {

namespace {

// Zigzag varints: seven bits to a byte, low ones first, the high bit set on all bytes but the last.
// The sign goes into the lowest bit, so that small negative numbers are short as well.
constexpr std::size_t kLongestNumber = 5;
constexpr std::uint32_t kMore = 0x80;

unsigned char* Put(std::int32_t number, unsigned char* at) {
  auto bits = static_cast<std::uint32_t>(number) << 1 ^ static_cast<std::uint32_t>(number >> 31);
  for (; bits >= kMore; bits >>= 7) *at++ = static_cast<unsigned char>(bits | kMore);
  *at++ = static_cast<unsigned char>(bits);
  return at;
}

std::int32_t Take(const unsigned char*& at) {
  std::uint32_t bits = *at++;
  if (bits >= kMore) {
    bits &= ~kMore;
    int shift = 7;
    for (; *at >= kMore; shift += 7) bits |= (*at++ & ~kMore) << shift;
    bits |= std::uint32_t{*at++} << shift;
  }
  return static_cast<std::int32_t>(bits >> 1 ^ -(bits & 1));
}

}  // namespace

bool MatchRecord::Add(const MatchResult& match) {
  if (!MakeRoom(2 * kLongestNumber * (groups_.size() + 1))) return false;
  const Pair whole = match[0];
  unsigned char* at = Put(whole.start - last_end_, bytes() + used_);
  at = Put(whole.end - whole.start, at);
  for (const std::int32_t group : groups_) {
    const Pair pair = match[group];
    const bool holds_text = pair.HoldsText(match.length);
    at = Put(holds_text ? pair.start - whole.start : 0, at);
    at = Put(holds_text ? pair.end - pair.start : 0, at);
  }
  used_ = static_cast<std::size_t>(at - bytes());
  last_end_ = whole.end;
  return true;
}

bool MatchRecord::MakeRoom(std::size_t more) {
  if (used_ + more <= capacity_) return true;
  const std::size_t capacity = std::min(2 * capacity_, bound_);
  if (used_ + more > capacity) return false;
  std::unique_ptr<unsigned char[]> larger(new (std::nothrow) unsigned char[capacity]);
  if (larger == nullptr) return false;
  std::memcpy(larger.get(), bytes(), used_);
  heap_ = std::move(larger);
  capacity_ = capacity;
  return true;
}

bool MatchRecord::Reader::Next() {
  if (at_ == record_.bytes() + record_.used_) return false;
  const unsigned char* at = at_;
  const std::int32_t start = vector_[1] + Take(at);
  vector_[0] = start;
  vector_[1] = start + Take(at);
  for (const std::int32_t group : record_.groups_) {
    std::int32_t* const pair = vector_ + 2 * group;
    pair[0] = start + Take(at);
    pair[1] = pair[0] + Take(at);
  }
  at_ = at;
  return true;
}

}  // namespace zrk
