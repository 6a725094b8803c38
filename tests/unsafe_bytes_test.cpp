// Bytes that are no text: under the default options the engine is told not to check them, and yet
// it neither leaves the subject nor its own tables, and answers as if each of them were 0x1A.
//
// Every array of this program ends where readable memory ends, and with it subjects, patterns and
// results, so that one byte too far is a crash.
#include <gtest/gtest.h>
#include <sys/mman.h>

#include <cstring>
#include <new>
#include <random>
#include <string>

#include "tests/agreement.h"
#include "tests/session.h"

namespace {

constexpr std::size_t kPage = 4096;

// In front of each array, to be given back with it.
struct Pages {
  void* begin;
  std::size_t size;
};

}  // namespace

[[gnu::noinline]] void* operator new[](std::size_t size) {
  Pages pages{nullptr, (size + sizeof(Pages) + kPage - 1) / kPage * kPage + kPage};
  pages.begin =
      mmap(nullptr, pages.size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (pages.begin == MAP_FAILED) throw std::bad_alloc();
  auto* const edge = static_cast<unsigned char*>(pages.begin) + pages.size - kPage;
  mprotect(edge, kPage, PROT_NONE);
  std::memcpy(edge - size - sizeof pages, &pages, sizeof pages);
  return edge - size;
}

void* operator new[](std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  return operator new[](size);
}

[[gnu::noinline]] void operator delete[](void* memory) noexcept {
  if (memory == nullptr) return;
  Pages pages;
  std::memcpy(&pages, static_cast<unsigned char*>(memory) - sizeof pages, sizeof pages);
  munmap(pages.begin, pages.size);
}

void operator delete[](void* memory, std::size_t) noexcept { operator delete[](memory); }

namespace {

using namespace tests;

const char* const kPieces[] = {
    "a", "b", "S", "k", " ", "\n", "\r", "1", "_", "é", "É", "ſ", "K", "€", "\xCC\x81", "α", "😀",
    "\xF4\x8F\xBF\xBF",
    // From here on: no text.
    "\x80", "\xBF\x80", "\xC3", "\xE2", "\xE2\x82", "\xF0\x9F", "\xF0\x9F\x98", "\xF4\x90\x80\x80",
    "\xF4\xBF\xBF\xBF", "\xF5", "\xF8\x88\x80\x80\x80", "\xFC\x84\x80\x80\x80\x80", "\xFD", "\xFE",
    "\xFF", "\xC0\x80", "\xE0\x80\x80", "\xED\xA0\x80", "\xF7\xBF\xBF\xBF"};

class RandomBytes {
 public:
  explicit RandomBytes(unsigned seed) : engine_(seed) {}

  std::size_t Below(std::size_t bound) { return engine_() % bound; }
  // Up to that many pieces of text and of no text, and now and then any byte.
  std::string Text(std::size_t pieces) {
    std::string text;
    for (std::size_t count = Below(pieces + 1); count > 0; --count) {
      const std::size_t piece = Below(std::size(kPieces) + 3);
      text += piece < std::size(kPieces) ? std::string(kPieces[piece])
                                         : std::string(1, static_cast<char>(Below(256)));
    }
    return text;
  }

 private:
  std::mt19937 engine_;
};

const char* const kPatterns[] = {
    // Kinds of characters.
    "\\p{L}+", "\\P{Lu}", "[\\p{Greek}x]+", "[^\\p{L}]", "[^a]+", "\\p{Xwd}+", "[[:alpha:]]+",
    "(?-U)[\\x{80}-\\x{10ffff}]+", "\\x{10ffff}?.", "(*UTF8)\\p{Any}\\z", "\\R|\\h|\\v",
    "\\N\\S\\s?", "\\X", "\\X+\\z", "(?-U)\\X*",
    // Regardless of case.
    "(?i)é", "(?i)ſ|K", "(?i)[\\x{c0}-\\x{17f}]+", "(?i)(.)\\1", "(?i)(.+)\\1\\z",
    "(?i)(?<n>[\\w\\x{e9}])\\k<n>",
    // What lies before and behind.
    "\\w+\\W", "\\b\\w", "\\B.", "(?<=é).", "(?<=..)", "(?<!\\p{L}).", "(?m)^.", ".$", ".*.$",
    // Many characters, and parts of one.
    "(?-U).*", "(?s).{3}", "(.)(.)\\2\\1", "(a|.)*b|", "\\C", "\\C\\C.", "(?-U)\\C*é"};

TEST(UnsafeBytes, InSubjectsOfEveryKindAreHidden) {
  for (const double version : {2011.0, 2016.0, 2017.0}) {
    Session session({.version = version});
    RandomBytes random(static_cast<unsigned>(version));
    for (const char* pattern : kPatterns) {
      for (const std::uint32_t options : {0x2A00U, 0x2801U, 0x20002800U, 0x20002A01U}) {
        SCOPED_TRACE(std::string(pattern) + " with options " + std::to_string(options));
        const Object regex = session.New();
        regex.Set("CompileOptions", static_cast<std::int32_t>(options));
        ASSERT_TRUE(regex.Call("Compile", {pattern}).Boolean()) << regex.Get("ErrorMessage").UTF8();
        const oracle::PlainRegex plain(pattern, options);
        for (int round = 0; round < 10 && !HasFailure(); ++round) {
          const std::string subject = random.Text(10);
          ExpectAgreement(session, regex, plain, subject,
                          static_cast<int>(random.Below(subject.size() + 1)));
        }
      }
    }
  }
}

// Longer than the blocks in which bytes are looked at, with the unsafe ones around their borders
// and cut off at the end.
TEST(UnsafeBytes, AreFoundAtEveryPlace) {
  constexpr const char* kPattern = "(?i)[^\\w\\x{e9}]";
  Session session;
  const Object regex = session.New();
  regex.Set("CompileOptionUnicodeCodePoints", true);
  ASSERT_TRUE(regex.Call("Compile", {kPattern}).Boolean());
  const oracle::PlainRegex plain(kPattern, oracle::kCompileOptions | PCRE_UCP);
  for (const char* unsafe : {"\xFC\x84\x80\x80\x80\x80", "\xF4\x90\x80\x80", "\xFF", "\xE2\x82"}) {
    for (const std::size_t size : {250U, 256U, 260U, 512U, 1000U}) {
      for (std::size_t place = 0; place <= size; place += place > 230 && place < 270 ? 1 : 25) {
        std::string subject = std::string(place, 'a') + unsafe + std::string(size, 'b');
        subject.resize(size);
        ExpectAgreement(session, regex, plain, subject, 0);
        if (HasFailure()) return;
      }
    }
  }
}

// Unsafe patterns, as texts and in blocks, are the engine's to refuse.
TEST(UnsafeBytes, InRandomPatternsAndSubjectsCrashNothing) {
  const char* const syntax[] = {
      "(",   ")",   "[",    "]",    "*",   "+",    "?",       "|",    ".", "\\p{L}",
      "\\w", "\\X", "(?i)", "(?<=", "(?:", "{2}",  "\\1",     "^",    "$", "\\b",
      "(?=", "[^",  "-",    "\\K",  "\\C", "(?R)", "\\x{e9}", "(?<n>"};
  Session session({.version = 2016.0});
  RandomBytes random(7);
  int compiled = 0;
  for (int round = 0; round < 4'000 && !HasFailure(); ++round) {
    std::string pattern = "(*LIMIT_MATCH=2000)";
    for (std::size_t count = random.Below(8); count > 0; --count) {
      pattern += random.Below(2) == 0 ? syntax[random.Below(std::size(syntax))] : random.Text(2);
    }
    SCOPED_TRACE(testing::PrintToString(pattern));
    const std::uint32_t options = oracle::kCompileOptions | (random.Below(2) == 0 ? PCRE_UCP : 0);
    const oracle::PlainRegex plain(pattern, options);
    const Object regex = session.New();
    regex.Set("CompileOptions", static_cast<std::int32_t>(options));
    const bool valid =
        random.Below(2) == 0
            ? regex.Call("CompileMemory", {session.host.MemoryBlock(pattern), 0}).Boolean()
            : regex.Call("Compile", {pattern}).Boolean();
    EXPECT_EQ(regex.Get("ErrorMessage").UTF8(), plain.error() != nullptr ? plain.error() : "");
    if (!valid) continue;
    ++compiled;
    for (int subjects = 0; subjects < 3; ++subjects) {
      ExpectAgreement(session, regex, plain, random.Text(8), 0);
    }
  }
  EXPECT_GT(compiled, 1'000);
}

}  // namespace
