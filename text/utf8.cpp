// The scans work on blocks of a fixed size, which the compiler turns into vector instructions, and
// look at single bytes only where a block holds something of interest.
#include "text/utf8.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace zrk {

namespace {

constexpr std::size_t kBlock = 256;
constexpr std::uint64_t kHighBits = 0x8080808080808080;
constexpr unsigned char kLastSafeLead = 0xF4;
constexpr unsigned char kSubstitute = 0x1A;

bool IsContinuation(unsigned char byte) { return (byte & 0xC0) == 0x80; }

unsigned char UnionOfBlock(const unsigned char* block) {
  unsigned char bits = 0;
  for (std::size_t i = 0; i < kBlock; ++i) bits |= block[i];
  return bits;
}

unsigned char LargestOfBlock(const unsigned char* block) {
  unsigned char largest = 0;
  for (std::size_t i = 0; i < kBlock; ++i) largest = std::max(largest, block[i]);
  return largest;
}

std::uint64_t LoadWord(const unsigned char* bytes) {
  std::uint64_t word;
  std::memcpy(&word, bytes, sizeof word);
  return word;
}

// Whether the byte at `at` is unsafe by its value and what follows it; runs at the start apart.
bool IsUnsafeAt(const unsigned char* bytes, std::size_t length, std::size_t at) {
  const unsigned char byte = bytes[at];
  if (byte > kLastSafeLead) return true;
  if (at + static_cast<std::size_t>(SequenceLength(byte)) > length) return true;
  return byte == kLastSafeLead && (bytes[at + 1] & 0x3F) >= 0x10;
}

// Calls found(index) for each unsafe byte, in order, until it answers false.
template <typename Found>
void ForEachUnsafeByte(const unsigned char* bytes, std::size_t length, Found found) {
  std::size_t at = 0;
  for (; at < length && IsContinuation(bytes[at]); ++at) {
    if (!found(at)) return;
  }
  constexpr std::size_t kLongestTail = 3;
  while (at < length) {
    if (at + kBlock + kLongestTail <= length && LargestOfBlock(bytes + at) < kLastSafeLead) {
      at += kBlock;
      continue;
    }
    for (const std::size_t end = std::min(at + kBlock, length); at < end; ++at) {
      if (IsUnsafeAt(bytes, length, at) && !found(at)) return;
    }
  }
}

}  // namespace

bool IsASCII(const unsigned char* bytes, std::size_t length) {
  constexpr std::size_t kWordBytes = sizeof(std::uint64_t);
  std::size_t at = 0;
  for (; at + kBlock <= length; at += kBlock) {
    if (UnionOfBlock(bytes + at) >= 0x80) return false;
  }
  std::uint64_t bits = 0;
  for (; at + kWordBytes <= length; at += kWordBytes) bits |= LoadWord(bytes + at);
  for (; at < length; ++at) bits |= bytes[at];
  return (bits & kHighBits) == 0;
}

CharacterPosition WalkCharacters(const unsigned char* bytes, CharacterPosition from,
                                 std::size_t offset) {
  auto [position, characters] = from;
  while (position < offset) {
    if (position + kBlock <= offset && UnionOfBlock(bytes + position) < 0x80) {
      position += kBlock;
      characters += kBlock;
      continue;
    }
    for (const std::size_t end = std::min(position + kBlock, offset); position < end;) {
      position += static_cast<std::size_t>(SequenceLength(bytes[position]));
      ++characters;
    }
  }
  return {position, characters};
}

bool HasUnsafeBytes(const unsigned char* bytes, std::size_t length) {
  bool found = false;
  ForEachUnsafeByte(bytes, length, [&](std::size_t) {
    found = true;
    return false;
  });
  return found;
}

std::vector<unsigned char> CopyWithoutUnsafeBytes(const unsigned char* bytes, std::size_t length) {
  std::vector<unsigned char> copy;
  copy.reserve(length + 1);
  copy.assign(bytes, bytes + length);
  copy.push_back(0);
  ForEachUnsafeByte(bytes, length, [&](std::size_t at) {
    copy[at] = kSubstitute;
    return true;
  });
  return copy;
}

}  // namespace zrk
