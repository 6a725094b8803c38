// Every way to a match gives the same match, and it is the engine's own.
#include <gtest/gtest.h>
#include <pcre.h>

#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "tests/calls.h"
#include "tests/reference.h"
#include "tests/session.h"

namespace {

using namespace std::string_literals;
using namespace tests;

const std::vector<std::string>& Patterns() {
  static const std::vector<std::string> patterns = {
      "",
      "b",
      "b(.)(x)?",
      "(?-U)x*",
      "(?-U)(\\w+) (\\w+)",
      "(?<first>a)|(?<second>\\x{20ac})|(?<third>\\d)",
      "(?J)(?<n>a)|(?<n>b)",
      "^",
      "(?m)^.*$",
      "(?-U)\\R",
      "\\r\\n|\\n",
      "(*CRLF)^.+$",
      "(*ANY)(?m)^(.)",
      "(?i)\\xC9|STRA\\x{DF}E"s,
      "(?i)É",
      "(?<=é)(.)",
      "\\x00(.)?",
      "[^\\x00]+",
      "\\bx|y\\b",
      "(?=(b))",
      "a\\Kb",
      "(a)(?:(b)|(c))*",
      "\\p{Lu}",
      "\\X",
      "(.)\\1",
      "(*ACCEPT)a|b",
      "(?!)",
      "$",
      "\\z",
      "\\G.",
  };
  return patterns;
}

const std::vector<std::string>& Texts() {
  static const std::vector<std::string> texts = {
      "",
      "b",
      "abcbdb",
      "xxaxx",
      "one two three",
      "é€😀",
      "Éé straße STRASSE",
      "a\0b\0\0x"s,
      "line\r\nline two\r\n\r\nlast\n",
      "a€7aabbc",
      "e\xCC\x81x\xCC\x81y",
  };
  return texts;
}

// All matches of a text by `step`, which runs one search from a start and describes it; each search
// begins at the last match's end, or one byte further where that would not move on.
template <typename Step>
std::string Walk(std::size_t length, Step step) {
  std::ostringstream all;
  for (int start = 0; start >= 0 && static_cast<std::size_t>(start) <= length;) {
    const auto [line, end] = step(start);
    all << line << '\n';
    start = end < 0 ? -1 : std::max(end, start + 1);
  }
  return all.str();
}

// The end of the match that a description tells of, -1 where it tells of none.
int EndOf(const std::string& description) {
  const std::size_t dash = description.find('-', description.find("err=0"));
  return description.find("err=0") == std::string::npos ? -1
                                                        : std::stoi(description.substr(dash + 1));
}

struct Way {
  const char* first;
  const char* next;
  bool of_bytes;
};
constexpr Way kWays[] = {
    {"Execute", "Execute", false},        {"ExecuteMT", "ExecuteMT", false},
    {"ExecuteMemory", "Execute", true},   {"ExecuteMemoryMT", "ExecuteMT", true},
    {"ExecuteMemory", "ExecuteMT", true}, {"Execute", "ExecuteMT", false},
};

// The methods differ in what they answer for a failure, so the result that is described is Count
// or Lasterror.
std::string WalkBy(const Way& way, const Object& regex, const Value& subject, std::size_t length) {
  return Walk(length, [&](int start) {
    if (start == 0) {
      regex.Call(way.first, {subject, 0});
    } else {
      regex.Call(way.next, {start});
    }
    const int count = regex.Get("Count").Integer();
    const std::string line =
        tests::Describe(regex, count > 0 ? count : regex.Get("Lasterror").Integer());
    return std::pair(line, EndOf(line));
  });
}

TEST(Agreement, OfEveryExecuteMethodWithTheEngineCalledDirectly) {
  Session session;
  for (const std::string& pattern : Patterns()) {
    const Object regex = session.Compiled(pattern);
    for (const std::string& text : Texts()) {
      const std::string expected = Walk(text.size(), [&](int start) {
        const std::string line = tests::DescribeDirectly(pattern, text, start);
        return std::pair(line, EndOf(line));
      });
      const Value string = text;
      const Value block = session.host.MemoryBlock(text);
      for (const Way& way : kWays) {
        // Threaded steps take a millisecond each.
        const bool threaded = std::string_view(way.first) != way.next || &way == &kWays[1];
        if (threaded && text.size() > 6) continue;
        EXPECT_EQ(WalkBy(way, regex, way.of_bytes ? block : string, text.size()), expected)
            << way.first << ' ' << pattern << " in " << testing::PrintToString(text);
      }
    }
  }
}

TEST(Agreement, OfEveryHostKindAndOfStudiedPatterns) {
  for (const auto& kind : tests::HostKinds()) {
    SCOPED_TRACE(tests::NameOf(kind));
    Session session(kind);
    for (const std::string& pattern : Patterns()) {
      const Object regex = session.Compiled(pattern);
      ASSERT_TRUE(regex.Call("Study").Boolean());
      for (const std::string& text : Texts()) {
        const std::string expected = tests::DescribeDirectly(pattern, text);
        EXPECT_EQ(tests::Describe(regex, regex.Call("Execute", {text, 0}).Integer()), expected)
            << pattern << " in " << testing::PrintToString(text);
      }
    }
  }
}

TEST(Agreement, OfMatchAndReplaceAllWithExecute) {
  Session session;
  for (const std::string& pattern : Patterns()) {
    const Object regex = session.Compiled(pattern);
    for (const std::string& text : Texts()) {
      SCOPED_TRACE(pattern + " in " + testing::PrintToString(text));
      const int count = regex.Call("Execute", {text, 0}).Integer();
      std::vector<int> offsets;
      for (int i = 0; i < 17; ++i) offsets.push_back(regex.Call("Offset", {i}).Integer());
      EXPECT_EQ(regex.Call("Match", {text}).Boolean(), count > 0);
      EXPECT_EQ(regex.Get("Count").Integer(), std::max(count, 0));
      EXPECT_EQ(regex.Get("Lasterror").Integer(), std::min(count, 0));
      for (int i = 0; i < 17; ++i) {
        EXPECT_EQ(regex.Call("Offset", {i}).Integer(), offsets[static_cast<std::size_t>(i)]);
      }
      for (const Value& array :
           {session.host.StringArray({text}), session.host.VariantArray({text})}) {
        EXPECT_EQ(regex.Call("Match", {array}).Count(), count > 0 ? 1U : 0U);
        EXPECT_EQ(regex.Call("Match", {array, true}).Count(), count > 0 ? 0U : 1U);
      }
      for (const char* new_text : {"", "-", "<\\2\\1\\0>"}) {
        const auto expected = tests::ReplaceAllDirectly(pattern, text, new_text);
        EXPECT_EQ(regex.Call("ReplaceAll", {text, new_text}).Bytes(), expected.text);
        EXPECT_EQ(regex.Get("Count").Integer(), expected.calls);
      }
    }
  }
}

// Replacing the matches one by one from the last to the first comes to ReplaceAll as well, for
// patterns whose matches do not touch.
TEST(Agreement, OfReplaceWithReplaceAll) {
  Session session;
  const Object regex = session.Compiled("(?-U)(\\d+)-(\\d+)");
  const std::string text = "1-22, 333-4 € 5-6.";
  std::vector<int> starts;
  for (int count = regex.Call("Execute", {text}).Integer(); count > 0;
       count = regex.Call("Execute", {regex.Call("Offset", {1})}).Integer()) {
    starts.push_back(regex.Call("Offset", {0}).Integer());
  }
  ASSERT_EQ(starts.size(), 3U);
  std::string replaced = text;
  for (; !starts.empty(); starts.pop_back()) {
    ASSERT_EQ(regex.Call("Execute", {replaced, starts.back()}).Integer(), 3);
    EXPECT_EQ(regex.Call("ReplaceSelection", {"\\2"}).Bytes(),
              regex.Call("Substring", {2}).Bytes());
    replaced = regex.Call("Replace", {"\\2/\\1"}).Bytes();
  }
  EXPECT_EQ(replaced, regex.Call("ReplaceAll", {text, "\\2/\\1"}).Bytes());
}

}  // namespace
