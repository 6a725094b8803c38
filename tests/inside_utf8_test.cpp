// The byte scans against a slow one that says the same rules a byte at a time, on random bytes of
// lengths around every block size.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "text/subject_bytes.h"
#include "text/utf8.h"

namespace {

std::size_t AnnouncedBy(unsigned char lead) {
  if (lead < 0xC0 || lead > 0xF7) return 1;
  return lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
}

// What there is to know about some bytes.
struct Slow {
  explicit Slow(const std::string& bytes) : safe(bytes) {
    bool at_start = true;
    std::size_t next = 0;      // where the next character begins
    std::size_t expected = 0;  // continuation bytes still to come
    for (std::size_t i = 0; i < bytes.size(); ++i) {
      const auto byte = static_cast<unsigned char>(bytes[i]);
      const std::size_t announced = AnnouncedBy(byte);
      const bool continuation = byte >= 0x80 && byte <= 0xBF;
      ascii = ascii && byte < 0x80;
      at_start = at_start && continuation;
      const bool cut = i + announced > bytes.size();
      const bool past_last = byte == 0xF4 && !cut && (bytes[i + 1] & 0x3F) >= 0x10;
      if (at_start || byte >= 0xF5 || cut || past_last) safe[i] = 0x1A;
      broken = broken || continuation != (expected > 0);
      expected = continuation ? expected - 1 : announced - 1;
      characters.push_back(characters.back() + (next == i ? 1 : 0));
      if (next == i) next += announced;
    }
    broken = broken || expected > 0;
  }

  bool ascii = true;
  bool broken = false;                        // some character is not whole
  std::string safe;                           // without unsafe bytes
  std::vector<std::size_t> characters = {0};  // before each offset from 0 to the length
};

// Clean ASCII, or whole characters of all lengths, as far as they fit, with single bytes of the
// interesting values: long clean runs are what the scans take in blocks.
std::string RandomBytes(std::mt19937& random, std::size_t length, bool ascii, int odd_bytes) {
  constexpr std::string_view kCharacters[] = {"a", "ä", "€", "😀"};
  constexpr std::string_view kOdd =
      "\x80\xBF\xC3\xDF\xE2\xEF\xF0\xF3\xF4\xF5\xF7\xF8\xFD\xFF\x8F\x90";
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
  const Slow slow(bytes);
  EXPECT_EQ(zrk::IsASCII(bytes), slow.ascii);
  EXPECT_EQ(zrk::HasBrokenCharacters(bytes), slow.broken);

  zrk::SubjectBytes subject(bytes);
  EXPECT_EQ(subject.ForUncheckedEngine(), slow.safe);
  EXPECT_EQ(subject.AreKnownSafe(), slow.safe == bytes);
  const std::size_t size = bytes.size();
  const std::size_t middle = size / 3;
  for (const std::size_t offset : {size, middle, size - middle, std::size_t{0}, size}) {
    EXPECT_EQ(subject.CharactersBefore(offset), slow.characters[offset]);
  }
}

TEST(UTF8, ScansAgreeWithASlowOneAtEveryLength) {
  std::mt19937 random(2017);
  for (std::size_t length = 0; length <= 600; ++length) {
    for (const int odd_bytes : {0, 0, 1, 1, 1, 1, 2, 2, 5, 40, 1000}) {
      const std::string bytes = RandomBytes(random, length, random() % 2 == 0, odd_bytes);
      Check(bytes);
      if (HasFailure()) FAIL() << "with " << testing::PrintToString(bytes);
    }
  }
}

// One odd byte at each place of a text of several blocks, and at some of one that is long enough to
// be read at several places side by side.
TEST(UTF8, NoPlaceIsOverlooked) {
  for (const std::size_t length : {600U, 600'000U}) {
    for (const char* const odd : {"\x80", "\xC3", "\xE2", "\xF4\x90", "\xF5"}) {
      for (std::size_t at = 0; at<length; at += length> 600 ? 65'535 : 1) {
        std::string bytes(length, 'a');
        bytes.replace(at, std::string_view(odd).size(), odd);
        Check(bytes);
        if (HasFailure()) FAIL() << testing::PrintToString(odd) << " at " << at << " of " << length;
      }
    }
  }
}

}  // namespace
