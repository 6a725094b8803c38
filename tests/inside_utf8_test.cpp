// The byte scans against slow ones that say the same rule a byte at a time, on random bytes of
// lengths around every block size.
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "text/subject_bytes.h"
#include "text/utf8.h"

namespace {

using ByteString = std::vector<unsigned char>;

std::string_view View(const ByteString& bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::size_t SlowSequenceLength(unsigned char lead) {
  if (lead >= 0xC0 && lead <= 0xDF) return 2;
  if (lead >= 0xE0 && lead <= 0xEF) return 3;
  if (lead >= 0xF0 && lead <= 0xF7) return 4;
  return 1;
}

ByteString SlowWithoutUnsafeBytes(const ByteString& bytes) {
  ByteString copy = bytes;
  bool at_start = true;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const unsigned char byte = bytes[i];
    at_start = at_start && byte >= 0x80 && byte <= 0xBF;
    const bool cut = i + SlowSequenceLength(byte) > bytes.size();
    const bool past_last = byte == 0xF4 && !cut && (bytes[i + 1] & 0x3F) >= 0x10;
    if (at_start || byte >= 0xF5 || cut || past_last) copy[i] = 0x1A;
  }
  return copy;
}

// Characters before each offset from 0 to the length.
std::vector<std::size_t> SlowCharacters(const ByteString& bytes) {
  std::vector<std::size_t> counts{0};
  std::size_t next = 0;
  for (std::size_t offset = 1; offset <= bytes.size(); ++offset) {
    const bool begins = next == offset - 1;
    if (begins) next += SlowSequenceLength(bytes[offset - 1]);
    counts.push_back(counts.back() + (begins ? 1 : 0));
  }
  return counts;
}

bool SlowHasBrokenCharacters(const ByteString& bytes) {
  std::size_t expected = 0;  // continuation bytes still to come
  for (const unsigned char byte : bytes) {
    const bool continuation = byte >= 0x80 && byte <= 0xBF;
    if (continuation != (expected > 0)) return true;
    expected = continuation ? expected - 1 : SlowSequenceLength(byte) - 1;
  }
  return expected > 0;
}

// Clean ASCII, or whole characters of all lengths, as far as they fit, with single bytes of the
// interesting values: long clean runs are what the scans take in blocks.
ByteString RandomBytes(std::mt19937& random, std::size_t length, bool ascii, int odd_bytes) {
  constexpr const char* kCharacters[] = {"a", "ä", "€", "😀"};
  constexpr unsigned char kOdd[] = {0x80, 0xBF, 0xC3, 0xDF, 0xE2, 0xEF, 0xF0, 0xF3,
                                    0xF4, 0xF5, 0xF7, 0xF8, 0xFD, 0xFF, 0x8F, 0x90};
  ByteString bytes;
  while (bytes.size() < length) {
    const std::string_view character = kCharacters[ascii ? 0 : random() % 4];
    const bool fits = bytes.size() + character.size() <= length;
    bytes.insert(bytes.end(), character.begin(), fits ? character.end() : character.begin());
    if (!fits) bytes.push_back('a');
  }
  for (int i = 0; i < odd_bytes && length > 0; ++i) {
    const std::size_t at = i % 3 == 0 ? std::min(length - 1, random() % 4) : random() % length;
    bytes[at] = kOdd[random() % std::size(kOdd)];
  }
  return bytes;
}

void Check(const ByteString& bytes) {
  const std::size_t size = bytes.size();
  const bool ascii = std::ranges::all_of(bytes, [](unsigned char byte) { return byte < 0x80; });
  EXPECT_EQ(zrk::IsASCII(View(bytes)), ascii);
  EXPECT_EQ(zrk::HasBrokenCharacters(View(bytes)), SlowHasBrokenCharacters(bytes));

  const ByteString safe = SlowWithoutUnsafeBytes(bytes);
  EXPECT_EQ(zrk::HasUnsafeBytes(View(bytes)), safe != bytes);
  const std::vector<char> copy = zrk::CopyWithoutUnsafeBytes(View(bytes));
  EXPECT_EQ(std::string_view(copy.data(), copy.size()), View(safe));

  const std::vector<std::size_t> counts = SlowCharacters(bytes);
  const std::size_t middle = size / 3;
  const auto half_way = zrk::WalkCharacters(View(bytes), {}, middle);
  EXPECT_EQ(half_way.characters, counts[middle]);
  EXPECT_EQ(zrk::WalkCharacters(View(bytes), half_way, size).characters, counts[size]);
  zrk::SubjectBytes subject(View(bytes));
  for (const std::size_t offset : {size, middle, size - middle, std::size_t{0}, size}) {
    EXPECT_EQ(subject.CharactersBefore(offset), counts[offset]);
  }
}

TEST(UTF8, ScansAgreeWithSlowOnesAtEveryLength) {
  std::mt19937 random(2017);
  for (std::size_t length = 0; length <= 600; ++length) {
    for (const int odd_bytes : {0, 0, 1, 1, 1, 1, 2, 2, 5, 40, 1000}) {
      const ByteString bytes = RandomBytes(random, length, random() % 2 == 0, odd_bytes);
      Check(bytes);
      if (HasFailure()) FAIL() << "with " << testing::PrintToString(bytes);
    }
  }
}

// One odd byte at each place of a text of several blocks, and at some of one that is long enough to
// be read at several places side by side.
TEST(UTF8, NoPlaceIsOverlooked) {
  constexpr struct {
    std::size_t length;
    std::size_t step;
  } kTexts[] = {{600, 1}, {600'000, 65'535}};
  for (const auto& [length, step] : kTexts) {
    for (const int odd : {0x80, 0xC3, 0xE2, 0xF4, 0xF5}) {
      for (std::size_t at = 0; at < length; at += step) {
        ByteString bytes(length, 'a');
        bytes[at] = static_cast<unsigned char>(odd);
        if (odd == 0xF4 && at + 1 < length) bytes[at + 1] = 0x90;
        Check(bytes);
        if (HasFailure()) FAIL() << odd << " at " << at << " of " << length;
      }
    }
  }
}

}  // namespace
