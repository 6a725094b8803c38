// Bytes that are no text: under the default options the engine is told not to check them, and yet
// it neither leaves the subject nor its own tables, and no match lies outside.
//
// Subjects and patterns end where readable memory ends, so that one byte too far is a crash.
#include <gtest/gtest.h>
#include <sys/mman.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <new>
#include <random>
#include <string>
#include <string_view>

#include "tests/session.h"

namespace {

// While this is set, arrays are allocated in front of a page that nobody may touch.
bool at_edge = false;

constexpr std::size_t kPage = 4096;

std::map<void*, std::pair<void*, std::size_t>>& EdgeBlocks() {
  static std::map<void*, std::pair<void*, std::size_t>> blocks;
  return blocks;
}

void* AllocateAtEdge(std::size_t size) {
  const std::size_t room = (size + kPage - 1) / kPage * kPage;
  void* const pages =
      mmap(nullptr, room + kPage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (pages == MAP_FAILED) throw std::bad_alloc();
  auto* const end = static_cast<unsigned char*>(pages) + room;
  mprotect(end, kPage, PROT_NONE);
  EdgeBlocks()[end - size] = {pages, room + kPage};
  return end - size;
}

}  // namespace

[[gnu::noinline]] void* operator new[](std::size_t size) {
  if (at_edge) return AllocateAtEdge(size);
  void* const memory = std::malloc(std::max<std::size_t>(size, 1));
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

void* operator new[](std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  return std::malloc(std::max<std::size_t>(size, 1));
}

[[gnu::noinline]] void operator delete[](void* memory) noexcept {
  const auto block = EdgeBlocks().find(memory);
  if (block == EdgeBlocks().end()) return std::free(memory);
  munmap(block->second.first, block->second.second);
  EdgeBlocks().erase(block);
}

void operator delete[](void* memory, std::size_t) noexcept { operator delete[](memory); }

namespace {

using namespace tests;

Value BlockAtEdge(Session& session, const std::string& bytes) {
  at_edge = true;
  Value block = session.host.MemoryBlock(bytes);
  at_edge = false;
  return block;
}

Value StringAtEdge(Session& session, const std::string& bytes) {
  at_edge = true;
  Value string = session.host.String(bytes);
  at_edge = false;
  return string;
}

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

std::string UpToNul(const std::string& text) { return text.substr(0, text.find('\0')); }

// What holds after every match, whatever the bytes. With \K a match may start past its end.
void ExpectPairsWithin(const Object& regex, const std::string& subject) {
  const int length = static_cast<int>(subject.size());
  const int count = regex.Get("Count").Integer();
  for (int group = 0; group < count; ++group) {
    const int start = regex.Call("Offset", {2 * group}).Integer();
    const int end = regex.Call("Offset", {2 * group + 1}).Integer();
    if (start == -1 && end == -1) continue;
    ASSERT_TRUE(0 <= start && start <= length && 0 <= end && end <= length) << start << '-' << end;
    ASSERT_LE(regex.Call("OffsetCharacters", {2 * group + 1}).Integer(), end);
    if (start > end) continue;
    const auto from = static_cast<std::size_t>(start);
    ASSERT_EQ(regex.Call("Substring", {group}).Bytes(),
              UpToNul(subject.substr(from, static_cast<std::size_t>(end) - from)));
  }
}

void RunEverything(Session& session, const Object& regex, const std::string& subject, int start) {
  SCOPED_TRACE(testing::PrintToString(subject) + " from " + std::to_string(start));
  const Value block = BlockAtEdge(session, subject);
  const Value string = StringAtEdge(session, subject);
  const int count = regex.Call("ExecuteMemory", {block, start}).Integer();
  const int error = regex.Get("Lasterror").Integer();
  ExpectPairsWithin(regex, subject);
  EXPECT_EQ(regex.Get("TextMemory").Bytes(), subject);
  EXPECT_EQ(regex.Call("Execute", {string, start}).Integer(), count > 0 ? count : error);
  ExpectPairsWithin(regex, subject);
  EXPECT_EQ(regex.Get("Text").Bytes(), subject);
  EXPECT_EQ(regex.Call("Match", {session.host.StringArray({string})}).Count(),
            regex.Call("Match", {string}).Boolean() ? 1U : 0U);
  EXPECT_LE(regex.Call("ReplaceAll", {string, ""}).Bytes().size(), subject.size());
  // Each match replaced by itself leaves the text as it was.
  EXPECT_EQ(regex.Call("ReplaceAll", {string, "\\0"}).Bytes(), subject);
}

const char* const kPatterns[] = {
    "\\p{L}+",
    "\\P{Lu}",
    "[\\p{Greek}x]+",
    "[^\\p{L}]",
    "\\w+\\W",
    "\\b\\w",
    "\\B.",
    "(?i)(.)\\1",
    "(?i)(.+)\\1\\z",
    "(?i)é",
    "(?i)[\\x{c0}-\\x{17f}]+",
    "(?i)ſ|K",
    "(?<=é).",
    "(?<=..)",
    "(?<!\\p{L}).",
    "\\X",
    "\\X+\\z",
    "(?-U)\\X*",
    ".*.$",
    "[^a]+",
    "\\C",
    "\\C\\C.",
    "(?-U)\\C*é",
    "\\R|\\h|\\v",
    "(?m)^.",
    ".$",
    "\\x{10ffff}?.",
    "(.)(.)\\2\\1",
    "(?s).{3}",
    "\\p{Xwd}+",
    "[[:alpha:]]+",
    "(?-U)[\\x{80}-\\x{10ffff}]+",
    "(a|.)*b|",
    "(?i)(?<n>[\\w\\x{e9}])\\k<n>",
    "(*UTF8)\\p{Any}\\z",
    "(?-U).*",
    "\\N\\S\\s?",
};

TEST(UnsafeBytes, InSubjectsOfEveryKindMatchWithinThem) {
  for (const double version : {2011.0, 2016.0, 2017.0}) {
    Session session({.version = version});
    RandomBytes random(static_cast<unsigned>(version));
    for (const char* pattern : kPatterns) {
      for (const int options : {0x2A00, 0x2801, 0x20002800, 0x20002A01}) {
        SCOPED_TRACE(std::string(pattern) + " with options " + std::to_string(options));
        const Object regex = session.New();
        regex.Set("CompileOptions", options);
        ASSERT_TRUE(regex.Call("Compile", {pattern}).Boolean()) << regex.Get("ErrorMessage").UTF8();
        for (int round = 0; round < 25; ++round) {
          const std::string subject = random.Text(10);
          RunEverything(session, regex, subject,
                        static_cast<int>(random.Below(subject.size() + 1)));
          if (HasFailure()) return;
        }
      }
    }
  }
}

// Longer than the blocks in which bytes are looked at, with the unsafe ones around their borders.
TEST(UnsafeBytes, AreFoundAtEveryPlace) {
  Session session;
  const Object regex = session.New();
  regex.Set("CompileOptionUnicodeCodePoints", true);
  ASSERT_TRUE(regex.Call("Compile", {"(?-U)(?i)[\\w\\x{e9}]*\\z"}).Boolean());
  for (const char* unsafe : {"\xFC\x84\x80\x80\x80\x80", "\xF4\x90\x80\x80", "\xFF", "\xE2\x82"}) {
    for (const std::size_t size : {250U, 256U, 260U, 512U, 1000U}) {
      for (std::size_t place = 0; place <= size; place += place > 230 && place < 270 ? 1 : 25) {
        const std::string subject =
            std::string(place, 'a') + unsafe + std::string(size - place, 'b');
        const Value block = BlockAtEdge(session, subject);
        ASSERT_GE(regex.Call("ExecuteMemory", {block}).Integer(), 1) << size << ' ' << place;
        ExpectPairsWithin(regex, subject);
        if (HasFailure()) return;
      }
    }
  }
}

TEST(UnsafeBytes, InPatternsAreTheEnginesToRefuse) {
  struct Row {
    const char* pattern;
    bool compiles;
    int offset;
  };
  const Row rows[] = {
      {"ab\xF5", false, 2},
      {"\x80", false, 0},
      {"a\xE2\x82", false, 1},
      {"\xF4\x90\x80\x80", false, 0},
      {"[\xFC\x84\x80\x80\x80\x80]", false, 1},
      {"é", true, 0},
      {"\xF4\x8F\xBF\xBF", true, 0},
  };
  for (const double version : {2011.0, 2017.0}) {
    Session session({.version = version});
    for (const Row& row : rows) {
      SCOPED_TRACE(testing::PrintToString(row.pattern));
      const Object regex = session.New();
      for (const bool of_bytes : {false, true}) {
        const Value block = BlockAtEdge(session, row.pattern);
        const Value string = StringAtEdge(session, row.pattern);
        const bool compiled = of_bytes ? regex.Call("CompileMemory", {block, 0}).Boolean()
                                       : regex.Call("Compile", {string}).Boolean();
        EXPECT_EQ(compiled, row.compiles);
        EXPECT_EQ(regex.Get("ErrorMessage").UTF8(), row.compiles ? "" : "invalid UTF-8 string");
        EXPECT_EQ(regex.Get("ErrorOffset").Integer(), row.offset);
      }
      // Without UTF-8 every byte is a character, and any of them may stand in a pattern.
      regex.Set("CompileOptionUTF8", false);
      EXPECT_TRUE(regex.Call("Compile", {StringAtEdge(session, row.pattern)}).Boolean());
    }
  }
}

TEST(UnsafeBytes, InRandomPatternsAndSubjectsCrashNothing) {
  const char* const syntax[] = {
      "(",   ")",   "[",    "]",    "*",   "+",    "?",       "|",    ".", "\\p{L}",
      "\\w", "\\X", "(?i)", "(?<=", "(?:", "{2}",  "\\1",     "^",    "$", "\\b",
      "(?=", "[^",  "-",    "\\K",  "\\C", "(?R)", "\\x{e9}", "(?<n>"};
  Session session({.version = 2016.0});
  RandomBytes random(7);
  int compiled = 0;
  for (int round = 0; round < 20'000; ++round) {
    std::string pattern;
    for (std::size_t count = random.Below(8); count > 0; --count) {
      pattern += random.Below(2) == 0 ? syntax[random.Below(std::size(syntax))] : random.Text(2);
    }
    SCOPED_TRACE(testing::PrintToString(pattern));
    const Object regex = session.New();
    regex.Set("CompileOptionUnicodeCodePoints", random.Below(2) == 0);
    regex.Set("MatchLimit", 5000);
    const Value block = BlockAtEdge(session, pattern);
    if (pattern.empty() || !regex.Call("CompileMemory", {block, 0}).Boolean()) continue;
    ++compiled;
    for (int subjects = 0; subjects < 3; ++subjects) {
      const std::string subject = random.Text(8);
      regex.Call("ExecuteMemory", {BlockAtEdge(session, subject)});
      ExpectPairsWithin(regex, subject);
      regex.Call("ReplaceAll", {StringAtEdge(session, subject), "<\\1\\0>"});
    }
    if (HasFailure()) return;
  }
  EXPECT_GT(compiled, 2'000);
}

}  // namespace
