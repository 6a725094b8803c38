#include "regex/match_record.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace zrk {

namespace {

// Numbers are stored low bits first, seven to a byte, the high bit set on all bytes but the last;
// the sign goes into the lowest bit, so that small negative numbers are short as well.
constexpr std::size_t kLongestNumber = 5;

std::int64_t Take(const unsigned char*& at) {
  std::uint64_t bits = 0;
  int shift = 0;
  while (*at >= 0x80) {
    bits |= std::uint64_t{*at++ & 0x7FU} << shift;
    shift += 7;
  }
  bits |= std::uint64_t{*at++} << shift;
  return static_cast<std::int64_t>(bits >> 1) ^ -static_cast<std::int64_t>(bits & 1);
}

}  // namespace

bool MatchRecord::Add(const MatchResult& match) {
  if (!MakeRoom(2 * kLongestNumber * (groups_.size() + 1))) return false;
  const Pair whole = match[0];
  Put(std::int64_t{whole.start} - last_end_);
  Put(std::int64_t{whole.end} - whole.start);
  for (const std::int32_t group : groups_) {
    const Pair pair = match[group];
    const bool holds_text = pair.HoldsText(match.length);
    Put(holds_text ? std::int64_t{pair.start} - whole.start : 0);
    Put(holds_text ? std::int64_t{pair.end} - pair.start : 0);
  }
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

void MatchRecord::Put(std::int64_t number) {
  auto bits = static_cast<std::uint64_t>(number < 0 ? ~number : number) << 1;
  bits |= number < 0 ? 1U : 0U;
  unsigned char* at = bytes() + used_;
  for (; bits >= 0x80; bits >>= 7) *at++ = static_cast<unsigned char>(bits | 0x80);
  *at++ = static_cast<unsigned char>(bits);
  used_ = static_cast<std::size_t>(at - bytes());
}

MatchRecord::Reader::Reader(const MatchRecord& record) : record_(record), at_(record.bytes()) {
  std::fill(std::begin(vector_), std::end(vector_), -1);
  vector_[1] = 0;
}

bool MatchRecord::Reader::Next() {
  if (at_ == record_.bytes() + record_.used_) return false;
  const auto take = [this] { return static_cast<std::int32_t>(Take(at_)); };
  const std::int32_t start = vector_[1] + take();
  vector_[0] = start;
  vector_[1] = start + take();
  for (const std::int32_t group : record_.groups_) {
    std::int32_t* const pair = vector_ + 2 * group;
    pair[0] = start + take();
    pair[1] = pair[0] + take();
  }
  return true;
}

}  // namespace zrk
