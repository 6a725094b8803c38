// The scans work on blocks of a fixed size, which the compiler turns into vector instructions, and
// look at single bytes only where a block holds something of interest.
#include "text/utf8.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <optional>

namespace zrk {

namespace {

constexpr std::size_t kBlock = 256;
// Long texts are read at four places side by side: the processor fetches ahead of each, and hands
// out half as many bytes again in the same time.
constexpr std::size_t kLane = 64 << 10;
constexpr std::size_t kStretch = 4 * kLane;
// A block of characters: as many bytes as a lead byte reaches ahead, and then so few that a count
// of them fits a byte.
constexpr std::size_t kReach = 3;
constexpr std::size_t kSequenceBlock = 128 + kReach;
constexpr std::size_t kWordBytes = sizeof(std::uint64_t);
constexpr std::uint64_t kHighBits = 0x8080808080808080;
constexpr unsigned char kLastSafeLead = 0xF4;
constexpr char kSubstitute = 0x1A;

const unsigned char* BytesOf(std::string_view text) {
  return reinterpret_cast<const unsigned char*>(text.data());
}

bool IsContinuation(unsigned char byte) { return (byte & 0xC0) == 0x80; }

unsigned char UnionOfBlock(const unsigned char* block) {
  unsigned char bits = 0;
  for (std::size_t i = 0; i < kBlock; ++i) bits |= block[i];
  return bits;
}

bool IsASCIIStretch(const unsigned char* stretch) {
  for (std::size_t at = 0; at < kLane; at += kBlock) {
    unsigned char bits = 0;
    for (std::size_t i = at; i < at + kBlock; ++i) {
      bits |= stretch[i] | stretch[kLane + i] | stretch[2 * kLane + i] | stretch[3 * kLane + i];
    }
    if (bits >= 0x80) return false;
  }
  return true;
}

unsigned char LargestOfBlock(const unsigned char* block) {
  unsigned char largest = 0;
  for (std::size_t i = 0; i < kBlock; ++i) largest = std::max(largest, block[i]);
  return largest;
}

template <typename Word = std::uint64_t>
Word WordAt(const unsigned char* bytes) {
  Word word;
  std::memcpy(&word, bytes, sizeof word);
  return word;
}

// Tests of so many words: objects and not functions, since they are handed on and must be inlined.

constexpr auto kAreASCII = [](const unsigned char* bytes, std::size_t words) {
  std::uint64_t bits = 0;
  for (std::size_t i = 0; i < words; ++i) bits |= WordAt(bytes + i * kWordBytes);
  return (bits & kHighBits) == 0;
};

// All bytes are below kLastSafeLead: what is added to the low seven bits of each carries into the
// eighth from there on.
constexpr auto kAreBelowLastLead = [](const unsigned char* bytes, std::size_t words) {
  constexpr std::uint64_t kCarry = kHighBits / 0x80 * (0x100 - kLastSafeLead);
  std::uint64_t bits = 0;
  for (std::size_t i = 0; i < words; ++i) {
    const std::uint64_t word = WordAt(bytes + i * kWordBytes);
    bits |= ((word & ~kHighBits) + kCarry) & word;
  }
  return (bits & kHighBits) == 0;
};

// Whether a test of so many words holds for all bytes of a text that has at least one word. Most
// subjects are short: they take a few long steps, the last of which reaches back over bytes that
// were looked at, since the processor seldom foresees how often a loop over single words runs.
template <typename Test>
bool HoldsThroughout(const unsigned char* bytes, std::size_t length, Test holds) {
  const auto at_both_ends = [&](std::size_t words) {
    return holds(bytes, words) && holds(bytes + length - words * kWordBytes, words);
  };
  if (length < 2 * kWordBytes) return at_both_ends(1);
  if (length < 4 * kWordBytes) return at_both_ends(2);
  for (std::size_t left = length; left > 4 * kWordBytes; left -= 4 * kWordBytes) {
    if (!holds(bytes + length - left, 4)) return false;
  }
  return holds(bytes + length - 4 * kWordBytes, 4);
}

// How far a character that begins in the block's last bytes reaches past its end.
std::size_t Overhang(const unsigned char* block_end) {
  for (int back = kReach; back >= 1; --back) {
    const int length = SequenceLength(block_end[-back]);
    if (length > back) return static_cast<std::size_t>(length - back);
  }
  return 0;
}

// 1 for a byte that announces at least one, two or three more, 0 for any other: numbers and not
// booleans, so that the compiler makes vector instructions of a loop over them.
template <unsigned char kSmallestLead>
unsigned char Announces(unsigned char byte) {
  constexpr unsigned char kPastLeads = 0xF8;
  return static_cast<unsigned char>(byte - kSmallestLead) < kPastLeads - kSmallestLead;
}
unsigned char AnnouncesOne(unsigned char byte) { return Announces<0xC0>(byte); }
unsigned char AnnouncesTwo(unsigned char byte) { return Announces<0xE0>(byte); }
unsigned char AnnouncesThree(unsigned char byte) { return Announces<0xF0>(byte); }

// Counts a block that begins with a character and in which continuation bytes stand exactly where
// lead bytes announce them: there the walk steps on every other byte. Nothing for any other block.
std::optional<CharacterPosition> CountRegularBlock(const unsigned char* block) {
  const unsigned char second = IsContinuation(block[1]);
  const unsigned char third = IsContinuation(block[2]);
  unsigned char irregular = IsContinuation(block[0]) || second != AnnouncesOne(block[0]) ||
                            third != (AnnouncesOne(block[1]) | AnnouncesTwo(block[0]));
  auto stepped_over = static_cast<unsigned char>(second + third);
  for (std::size_t at = kReach; at < kSequenceBlock; ++at) {
    const unsigned char announced =
        AnnouncesOne(block[at - 1]) | AnnouncesTwo(block[at - 2]) | AnnouncesThree(block[at - 3]);
    const unsigned char continuation = IsContinuation(block[at]);
    irregular |= announced ^ continuation;
    stepped_over += continuation;
  }
  if (irregular != 0) return std::nullopt;
  return CharacterPosition{kSequenceBlock + Overhang(block + kSequenceBlock),
                           kSequenceBlock - stepped_over};
}

// Whether the byte at `at` is unsafe by its value and what follows it; runs at the start apart.
bool IsUnsafeAt(const unsigned char* bytes, std::size_t length, std::size_t at) {
  const unsigned char byte = bytes[at];
  if (byte > kLastSafeLead) return true;
  if (at + static_cast<std::size_t>(SequenceLength(byte)) > length) return true;
  return byte == kLastSafeLead && (bytes[at + 1] & 0x3F) >= 0x10;
}

// How many continuation bytes the text begins with; they are unsafe.
std::size_t LeadingRun(const unsigned char* bytes, std::size_t length) {
  return static_cast<std::size_t>(std::find_if_not(bytes, bytes + length, IsContinuation) - bytes);
}

// Whether a short text is safe at first sight, as most are: no byte is one of the last leads or
// above, the first one begins a character, and none of the last three announces more than there is.
bool IsPlainlySafe(const unsigned char* bytes, std::size_t length) {
  if (length < kWordBytes || length >= kBlock) return false;
  const unsigned char* const end = bytes + length;
  return !IsContinuation(bytes[0]) && end[-1] < 0xC0 && end[-2] < 0xE0 && end[-3] < 0xF0 &&
         HoldsThroughout(bytes, length, kAreBelowLastLead);
}

// The first unsafe byte at or after `at`, which lies behind the leading run; `length` if none is.
std::size_t FindUnsafe(const unsigned char* bytes, std::size_t length, std::size_t at) {
  // What a byte before the last three announces is not cut off.
  const std::size_t tail = length - std::min(length, kReach);
  while (at < length) {
    if (at + kBlock <= tail && LargestOfBlock(bytes + at) < kLastSafeLead) {
      at += kBlock;
      continue;
    }
    if (at < tail && tail >= kWordBytes) {
      // The last one reaches back over bytes that were looked at.
      const std::size_t word = std::min(at, tail - kWordBytes);
      if (kAreBelowLastLead(bytes + word, 1)) {
        at = word + kWordBytes;
        continue;
      }
    }
    for (const std::size_t end = std::min(at + kWordBytes, length); at < end; ++at) {
      if (IsUnsafeAt(bytes, length, at)) return at;
    }
  }
  return length;
}

}  // namespace

bool IsASCII(std::string_view text) {
  const unsigned char* const bytes = BytesOf(text);
  const std::size_t length = text.size();
  std::size_t at = 0;
  for (; at + kStretch <= length; at += kStretch) {
    if (!IsASCIIStretch(bytes + at)) return false;
  }
  for (; at + kBlock <= length; at += kBlock) {
    if (UnionOfBlock(bytes + at) >= 0x80) return false;
  }
  if (length >= kWordBytes) {
    at = std::min(at, length - kWordBytes);
    return HoldsThroughout(bytes + at, length - at, kAreASCII);
  }
  constexpr std::size_t kHalf = kWordBytes / 2;
  if (length >= kHalf) {
    const auto word = WordAt<std::uint32_t>(bytes) | WordAt<std::uint32_t>(bytes + length - kHalf);
    return (word & kHighBits) == 0;
  }
  return std::all_of(bytes, bytes + length, [](unsigned char byte) { return byte < 0x80; });
}

CharacterPosition WalkCharacters(std::string_view text, CharacterPosition from,
                                 std::size_t offset) {
  const unsigned char* const bytes = BytesOf(text);
  auto [position, characters] = from;
  std::size_t looked_ahead = position;
  while (position < offset) {
    if (position >= looked_ahead && position + kStretch <= offset) {
      looked_ahead = position + kStretch;
      if (IsASCIIStretch(bytes + position)) {
        position += kStretch;
        characters += kStretch;
        continue;
      }
    }
    if (position + kBlock <= offset && UnionOfBlock(bytes + position) < 0x80) {
      position += kBlock;
      characters += kBlock;
      continue;
    }
    if (position + kSequenceBlock <= offset) {
      if (const auto block = CountRegularBlock(bytes + position)) {
        position += block->position;
        characters += block->characters;
        continue;
      }
    }
    for (const std::size_t end = std::min(position + kSequenceBlock, offset); position < end;) {
      position += static_cast<std::size_t>(SequenceLength(bytes[position]));
      ++characters;
    }
  }
  return {position, characters};
}

bool HasUnsafeBytes(std::string_view text) {
  const unsigned char* const bytes = BytesOf(text);
  if (IsPlainlySafe(bytes, text.size())) return false;
  return LeadingRun(bytes, text.size()) > 0 || FindUnsafe(bytes, text.size(), 0) < text.size();
}

bool HasBrokenCharacters(std::string_view text) {
  const unsigned char* const bytes = BytesOf(text);
  const std::size_t length = text.size();
  for (std::size_t at = 0; at < length;) {
    if (IsContinuation(bytes[at])) return true;
    const auto end = at + static_cast<std::size_t>(SequenceLength(bytes[at]));
    if (end > length || !std::all_of(bytes + at + 1, bytes + end, IsContinuation)) return true;
    at = end;
  }
  return false;
}

std::vector<char> CopyWithoutUnsafeBytes(std::string_view text) {
  const unsigned char* const bytes = BytesOf(text);
  std::vector<char> copy(text.begin(), text.end());
  std::size_t at = LeadingRun(bytes, text.size());
  std::fill_n(copy.begin(), at, kSubstitute);
  while ((at = FindUnsafe(bytes, text.size(), at)) < text.size()) copy[at++] = kSubstitute;
  return copy;
}

}  // namespace zrk
