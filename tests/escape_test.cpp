// Text as a pattern that matches it literally, and back.
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "tests/session.h"

namespace {

using namespace std::string_view_literals;
using namespace tests;

struct Row {
  std::string_view text, result;
};

void Expect(const Object& regex, const char* method, const Row& row) {
  SCOPED_TRACE(std::string(method) + " " + testing::PrintToString(row.text));
  const Value result = regex.Call(method, {Value(row.text)});
  EXPECT_EQ(result.Bytes(), row.result);
  EXPECT_EQ(result.IsNil(), row.result.empty());
  if (!result.IsNil()) {
    EXPECT_EQ(result.Encoding(), zrk::kEncodingUTF8);
  }
}

TEST(Escape, PutsABackslashBeforeFourteenCharacters) {
  const Row rows[] = {
      {"", ""},
      {"a.b*c", "a\\.b\\*c"},
      {"1+1=2?", "1\\+1=2\\?"},
      {"C:\\dir", "C:\\\\dir"},
      {"x-y/z #1", "x-y/z #1"},
      {"$()*+.?[\\]^{|}", "\\$\\(\\)\\*\\+\\.\\?\\[\\\\\\]\\^\\{\\|\\}"},
      {" !\"#%&',-/:;<=>@_`~\t\n", " !\"#%&',-/:;<=>@_`~\t\n"},
      {"é.€", "é\\.€"},
      {"a\0.b"sv, "a\0\\.b"sv},
      {"\xFF.\x80", "\xFF\\.\x80"},
  };
  for (const auto& kind : tests::HostKinds()) {
    SCOPED_TRACE(tests::NameOf(kind));
    Session session(kind);
    const Object regex = session.New();
    for (const Row& row : rows) Expect(regex, "Escape", row);
  }
}

TEST(Unescape, DropsEveryBackslashAndKeepsTheByteBehindIt) {
  const Row rows[] = {
      {"", ""},           {"abc", "abc"},         {"a\\\\b", "a\\b"},
      {"\\q", "q"},       {"\\n", "n"},           {"\\x41\\101\\Q", "x41101Q"},
      {"\\\\\\.", "\\."}, {"abc\\", "abc\0"sv},   {"\\", "\0"sv},
      {"\\é\\", "é\0"sv}, {"a\0\\b"sv, "a\0b"sv}, {"\\\0b"sv, "\0b"sv},
  };
  for (const bool terminated : {true, false}) {
    Session session({.terminate_string_data = terminated});
    const Object regex = session.New();
    for (const Row& row : rows) Expect(regex, "Unescape", row);
  }
}

TEST(Escape, NeedsNoInitialisedObjectAndLeavesItsErrorsAlone) {
  Session session;
  const Object zero = session.host.NewUninitialised("RegExZRK");
  EXPECT_EQ(zero.Call("Escape", {"a.b"}).UTF8(), "a\\.b");
  EXPECT_EQ(zero.Call("Unescape", {"a\\.b"}).UTF8(), "a.b");
  const Object regex = session.Compiled("a");
  regex.Call("Execute", {"x"});
  regex.Call("Escape", {"a.b"});
  regex.Call("Unescape", {Value::Nil(Kind::kString)});
  EXPECT_EQ(regex.Get("Lasterror").Integer(), -1);
  EXPECT_EQ(regex.Get("Text").UTF8(), "x");
}

TEST(Escape, ReadsEveryEncodingOfTheHost) {
  Session session;
  const Object regex = session.New();
  const Value rows[] = {
      session.host.String("\xE9.", zrk::kEncodingISOLatin1),
      session.host.String("\x8E.", zrk::kEncodingMacRoman),
      session.host.String("\xE9\0.\0"sv, zrk::kEncodingUTF16),
  };
  for (const Value& text : rows) {
    EXPECT_EQ(regex.Call("Escape", {text}).Bytes(), "é\\.") << text.Describe();
  }
}

// Random text of every byte, of sizes around the block in which text is escaped.
TEST(Escape, IsUndoneByUnescapeAndMatchesTheTextItself) {
  Session session;
  const Object regex = session.New();
  regex.Set("CompileOptionUTF8", false);
  std::uint32_t random = 2463534242;
  for (const std::size_t size : {1U, 2U, 255U, 4095U, 4096U, 4097U, 8192U, 20000U}) {
    for (const bool special_only : {false, true}) {
      SCOPED_TRACE(size);
      std::string text;
      while (text.size() < size) {
        random ^= random << 13;
        random ^= random >> 17;
        random ^= random << 5;
        text += special_only ? "$()*+.?[\\]^{|}"[random % 14] : static_cast<char>(random >> 8);
      }
      const Value escaped = regex.Call("Escape", {text});
      EXPECT_EQ(regex.Call("Unescape", {escaped}).Bytes(), text);
      std::string pattern = escaped.Bytes();
      pattern = pattern.substr(0, pattern.find('\0'));
      if (pattern.empty()) continue;
      ASSERT_TRUE(regex.Call("Compile", {"\\A" + pattern}).Boolean());
      EXPECT_EQ(regex.Call("Execute", {text}).Integer(), 1);
    }
  }
}

}  // namespace
