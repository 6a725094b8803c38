// What can be read after a match: offsets, characters, substrings, group names.
#include <gtest/gtest.h>
#include <pcre.h>

#include <cstdint>
#include <string>

#include "tests/calls.h"
#include "tests/session.h"
#include "tests/texts.h"

namespace {

using namespace std::string_literals;
using namespace tests;

// Counting goes on from places that were asked for before, and from marks on the way through a
// subject as long as this one; that must never show.
TEST(Offset, CharactersAreTheSameInAnyOrder) {
  Session session;
  const Object regex = session.Compiled("x(.*)y(.*)z(.*)$");
  const std::string part = Repeated("ä€b", 20'000);
  const std::string text = part + "x" + part + "y" + part + "z" + part;
  const int expected[] = {60'000, 240'003, 60'001, 120'001, 120'002, 180'002, 180'003, 240'003};
  for (const std::string order : {"0325164475", "7032516403"}) {
    ASSERT_EQ(regex.Call("ExecuteMemory", {session.host.MemoryBlock(text)}).Integer(), 4);
    for (const char digit : order) {
      const int index = digit - '0';
      EXPECT_EQ(regex.Call("OffsetCharacters", {index}).Integer(), expected[index]) << index;
    }
  }
}

// What the engine leaves in its vector after a search without a match is for nobody's eyes, and
// nothing stays of an earlier match; where a partial match is, can be read.
TEST(Offset, IsZeroEverywhereAfterNoMatch) {
  Session session;
  struct Row {
    const char* method;
    Value argument;
    int error;
  };
  const Row rows[] = {
      {"Execute", "aab", PCRE_ERROR_NOMATCH},
      {"Execute", 99, PCRE_ERROR_BADOFFSET},
      {"ExecuteMemory", session.host.MemoryBlock("aab"), PCRE_ERROR_NOMATCH},
      {"ExecuteMT", "aab", PCRE_ERROR_NOMATCH},
      {"Match", "aab", PCRE_ERROR_NOMATCH},
      {"Execute", "aac", PCRE_ERROR_PARTIAL},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::Message() << row.method << ' ' << row.error);
    const Object regex = session.Compiled("(a)(\\w)(c)\\1");
    ASSERT_EQ(regex.Call("Execute", {"aaca"}).Integer(), 4);
    regex.Set("ExecuteOptionPartial", row.error == PCRE_ERROR_PARTIAL);
    regex.Call(row.method, {row.argument});
    EXPECT_EQ(regex.Get("Lasterror").Integer(), row.error);
    int set = 0;
    for (int i = 0; i < 51; ++i) set += regex.Call("Offset", {i}).Integer() != 0 ? 1 : 0;
    EXPECT_EQ(set > 0, row.error == PCRE_ERROR_PARTIAL);
    EXPECT_EQ(regex.Call("Offset", {3}).Integer(), 0) << "the end of the earlier match's group";
  }
}

TEST(Offset, IndexesAreOfTheVector) {
  OnEachHost([](Session& session) {
    const Object regex = session.Compiled("(a)|b");
    EXPECT_EQ(Try(regex, "ExecuteMemory", {session.host.MemoryBlock("b")}), "1 err=0");
    const auto looks = session.host.Calls("memoryBlockGetPtr");
    for (const char* method : {"Offset", "OffsetCharacters"}) {
      for (const int index : {-1, 51}) {
        EXPECT_EQ(Try(regex, method, {index}),
                  "0 err=0 " + OutOfBounds("index", method, index, 50));
      }
      EXPECT_EQ(Raised(regex.TryCall(method, {50})), "") << method;
    }
    EXPECT_EQ(Try(regex, "Offset", {2}), "-1 err=0") << "an unset group";
    EXPECT_EQ(Try(regex, "OffsetCharacters", {2}), "0 err=0");
    EXPECT_EQ(session.host.Calls("memoryBlockGetPtr"), looks) << "none of these needs the subject";
    EXPECT_EQ(Try(regex, "OffsetCharacters", {1}), "1 err=0");
  });
}

TEST(Groups, AreReadByNumberAndByName) {
  struct Row {
    std::string pattern, subject;
    const char* method;
    Value group;
    std::string expected;
  };
  const std::string letters = "abcdefghijklmnopqrst";
  const std::string sixteen = Repeated("(.)", 16);
  const std::string named = "(?<first>a)(b)?(?<third>c)";
  const std::string alike = "(?J)(?<n>a)|(?<n>b)|(?<n>c)";
  const std::string alike_behind = "(?J)" + Repeated("()", 30) + "(?<n>.)(?<n>.)";
  const std::string high = Repeated("()", 299) + "(?<n>a)";  // a number of two bytes
  OnEachHost([&](Session& session) {
    EXPECT_EQ(Try(session.Compiled("b"), "Substring", {0}), "nil err=0") << "no match yet";
    const Row rows[] = {
        {"b(c)(d)?", "abc", "Substring", 0, "\"bc\" err=0"},
        {"b(c)(d)?", "abc", "Substring", 1, "\"c\" err=0"},
        {"b(c)(d)?", "abc", "Substring", 2, "nil err=0"},  // not set
        {"b(c)(d)?", "abc", "Substring", 3, "nil err=0"},  // not in the pattern
        {"x", "abc", "Substring", 0, "nil err=0"},
        {"(?=ab\\K)", "ab", "Substring", 0, "nil err=-7"},  // starts past its end
        {"a.+$", "a\0b"s, "Substring", 0, "\"a\" err=0"},
        {"\\0(.)", "\0b"s, "Substring", 0, "nil err=0"},
        {"(", "abc", "Substring", 0, "nil err=-99"},
        // The last pair; behind it and up to the end of the vector are the engine's own numbers.
        {sixteen, letters, "Substring", 16, "\"p\" err=0"},
        {sixteen, letters, "Substring", 17, "nil err=0"},
        {sixteen, letters, "Substring", 24, "nil err=0"},
        {sixteen, letters, "Substring", 50, "nil err=0"},
        {sixteen, letters, "Substring", 51, "nil err=-7"},
        {sixteen, letters, "Substring", INT32_MIN, "nil err=-7"},
        {named, "ac", "Substring", "third", "\"c\" err=0"},
        {named, "ac", "Substring", "fourth", "nil err=-7"},
        {named, "ac", "Substring", Value::Nil(Kind::kString), "nil err=-7"},
        {"x(?<n>a)?", "x", "Substring", "n", "nil err=0"},
        {"(", "ac", "Substring", "first", "nil err=-99"},
        // Of several groups with one name the one that took part in the match answers.
        {alike, "a", "Substring", "n", "\"a\" err=0"},
        {alike, "c", "Substring", "n", "\"c\" err=0"},
        {alike, "x", "Substring", "n", "nil err=0"},
        {"(?J)x(?:(?<n>a)|(?<n>b))?", "x", "Substring", "n", "nil err=-7"},
        {alike_behind, letters, "Substring", "n", "nil err=-7"},
        {"(?J)(?<m>x)(?:(?<n>a)|(?<n>b))?(?<o>y)", "xy", "Substring", "n", "nil err=-7"},
        {"(?J)(?<m>x)(?<n>a)?(?<o>y)", "xy", "Substring", "n", "nil err=0"},
        // Lasterror stays.
        {named, "x", "InfoNameEntry", 0, "nil err=-1"},
        {named, "x", "InfoNameEntry", 1, "\"first\" err=-1"},
        {named, "x", "InfoNameEntry", 3, "\"third\" err=-1"},
        {named, "ac", "InfoNameEntry", 4,
         "nil err=0 " + OutOfBounds("index", "InfoNameEntry", 4, 3)},
        {named, "ac", "InfoNameEntry", -1,
         "nil err=0 " + OutOfBounds("index", "InfoNameEntry", -1, 3)},
        {high, "x", "InfoNameEntry", 300, "\"n\" err=-1"},
        {"(", "x", "InfoNameEntry", 99, "nil err=0"},
        {named, "x", "StringNumber", "third", "3 err=0"},
        {named, "x", "StringNumber", "fourth", "0 err=-7"},
        {"(", "x", "StringNumber", "first", "0 err=-99"},
    };
    for (const Row& row : rows) {
      const Object regex = session.New();
      if (regex.Call("Compile", {row.pattern}).Boolean()) regex.Call("Execute", {row.subject});
      EXPECT_EQ(Try(regex, row.method, {row.group}), row.expected)
          << row.pattern << ' ' << row.method << ' ' << row.group.Describe();
    }
  });
}

// A kept subject remembers the pattern's names; the next subject or pattern has its own.
TEST(Groups, HaveTheNamesOfThePatternAtHand) {
  OnEachHost([](Session& session) {
    const Object regex = session.New();
    const std::pair<const char*, Value> subjects[] = {
        {"Execute", "ab"}, {"ExecuteMemory", session.host.MemoryBlock("ab")}};
    for (const auto& [method, subject] : subjects) {
      SCOPED_TRACE(method);
      regex.Call("Compile", {"(?<n>a)(?<m>b)"});
      regex.Call(method, {subject});
      EXPECT_EQ(Try(regex, "Substring", {"n"}), "\"a\" err=0");
      EXPECT_EQ(Try(regex, "Substring", {"m"}), "\"b\" err=0");
      regex.Call("Compile", {"(?<m>a)(?<k>b)"});
      EXPECT_EQ(Try(regex, "Substring", {"m"}), "nil err=-7") << "no subject";
      regex.Call(method, {subject});
      EXPECT_EQ(Try(regex, "Substring", {"m"}), "\"a\" err=0");
      EXPECT_EQ(Try(regex, "Substring", {"n"}), "nil err=-7");
      regex.Set("CompileOptionDuplicateNames", true);
      regex.Call("Compile", {"(?<n>a)(?<n>x)?(?<o>b)"});
      regex.Call(method, {subject});
      EXPECT_EQ(Try(regex, "Substring", {"n"}), "\"a\" err=0");
      regex.Set("CompileOptionDuplicateNames", false);
    }
  });
}

}  // namespace
