// The byte scans against slow ones that say the same rules a byte at a time, on random bytes of
// lengths around every block size.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "tests/oracle/plain_text.h"
#include "text/subject_bytes.h"
#include "text/utf8.h"

namespace {

using namespace std::string_literals;

// Clean ASCII, or whole characters of all lengths, as far as they fit, with single bytes of the
// interesting values: long clean runs are what the scans take in blocks.
std::string RandomBytes(std::mt19937& random, std::size_t length, bool ascii, int odd_bytes) {
  constexpr std::string_view kCharacters[] = {"a", "ä", "€", "😀"};
  constexpr std::string_view kOdd =
      "\x80\xBF\xC0\xC3\xDF\xE2\xEF\xF0\xF3\xF4\xF5\xF7\xF8\xFD\xFF\x8F\x90";
  std::string bytes;
  while (bytes.size() < length) {
    const std::string_view character = kCharacters[ascii ? 0 : random() % 4];
    bytes += bytes.size() + character.size() <= length ? character : "a";
  }
  for (int i = 0; i < odd_bytes && length > 0; ++i) {
    const std::size_t at = i % 3 == 0 ? std::min(length - 1, random() % 4) : random() % length;
    bytes[at] = kOdd[random() % kOdd.size()];
  }
  return bytes;
}

void Check(const std::string& bytes) {
  const std::size_t size = bytes.size();
  const std::vector<char> exact(bytes.begin(), bytes.end());  // no zero byte after them
  const std::string_view text(exact.data(), size);
  EXPECT_EQ(zrk::IsASCII(text), std::ranges::all_of(text, [](char c) { return !(c & 0x80); }));
  EXPECT_EQ(zrk::HasBrokenCharacters(text), oracle::HasBrokenCharacters(bytes));

  const std::string safe = oracle::WithoutUnsafeBytes(bytes);
  zrk::SubjectBytes subject(text);
  EXPECT_EQ(subject.ForUncheckedEngine(), safe);
  EXPECT_EQ(subject.ArePlainlySafe(), safe == bytes);
  for (const std::size_t offset : {size, size / 3, size - size / 3, std::size_t{0}}) {
    const std::size_t characters = oracle::CharactersBefore(bytes, offset);
    EXPECT_EQ(zrk::WalkCharacters(text, {}, offset).characters, characters);
    EXPECT_EQ(subject.CharactersBefore(offset), characters);
  }
}

TEST(UTF8, ScansAgreeWithSlowOnesAtEveryLength) {
  std::mt19937 random(2017);
  for (std::size_t length = 0; length <= 600; ++length) {
    for (const int odd_bytes : {0, 0, 1, 1, 1, 1, 2, 2, 5, 40, 1000}) {
      const std::string bytes = RandomBytes(random, length, random() % 2 == 0, odd_bytes);
      Check(bytes);
      if (HasFailure()) FAIL() << "with " << testing::PrintToString(bytes);
    }
  }
}

// One odd byte at each place of short texts and of one of several blocks, and at some of one that
// is long enough to be read at several places side by side.
TEST(UTF8, NoPlaceIsOverlooked) {
  for (const std::size_t length : {3U, 6U, 11U, 603U, 600'003U}) {
    const std::size_t step = length < 1000 ? 1 : 65'535;
    for (const char* const odd : {"\x80", "\xC0", "\xE0", "\xF0", "\xF4\x90", "\xF5"}) {
      for (std::size_t at = 0; at < length; at += step) {
        std::string bytes(length, 'a');
        bytes.replace(at, std::string_view(odd).size(), odd);
        Check(bytes);
        if (HasFailure()) FAIL() << testing::PrintToString(odd) << " at " << at << " of " << length;
      }
    }
  }
}

// Whole stretches of ASCII, with and without bytes behind them, characters that lie across the
// places to count from, stray bytes that would be in order behind other leads, or many behind one
// byte, and bits of which none stands for more than 0x80.
TEST(UTF8, TheSameBytesOverAndOverAreReadLikeOthers) {
  constexpr std::size_t kStretch = 1 << 18;  // what the scans take at once at most
  const std::string strays(200, '\x80');
  for (const std::string& bytes : {"a"s, "€"s, "a\x80"s, "\0\x80"s, 'a' + strays}) {
    SCOPED_TRACE(testing::PrintToString(bytes));
    std::string text;
    while (text.size() < kStretch) text += bytes;
    Check(text);
    Check(text + std::string(1000, 'a'));
  }
}

}  // namespace
