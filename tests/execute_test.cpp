// Execute: the engine's own answer on the same bytes, the subject that is kept, and the limits.
#include <gtest/gtest.h>
#include <pcre.h>

#include <algorithm>
#include <cstdint>
#include <string>

#include "tests/session.h"

namespace {

using namespace std::string_literals;
using namespace tests;

// From every start, those that the engine refuses and those inside a character as well.
TEST(Execute, AnswersWhatTheEngineDoes) {
  struct Row {
    std::string pattern, subject;
  };
  const Row rows[] = {
      {"b+", "abbb"},
      {"b+?", "abbb"},
      {"x", "abbb"},
      {"", ""},
      {"^$", ""},
      {"(a)|(b)|(c)", "xc"},
      {"(a)(?<n>b)?(c)", "acabc"},
      {"()(a)", "a"},
      {"(?<=ä)ö", "äö"},
      {"\\p{Lu}", "äÄ"},
      {"(a\\0b)", "xa\0by"s},
      {"a\\Kb", "ab"},
      {"(\\w+)(?!\\w)", "one, twö, three"},
  };
  OnEachHost([&](Session& session) {
    for (const Row& row : rows) {
      const Object regex = session.Compiled(row.pattern);
      int result = regex.Call("Execute", {row.subject, -1}).Integer();
      const auto size = static_cast<int>(row.subject.size());
      for (int start = -1; start <= size + 1; ++start) {
        SCOPED_TRACE(row.pattern + " on " + row.subject + " from " + std::to_string(start));
        if (start >= 0) result = regex.Call("Execute", {start}).Integer();
        EXPECT_EQ(Describe(regex, result), DescribeDirectly(row.pattern, row.subject, start));
        EXPECT_EQ(regex.Get("Text").Bytes(), row.subject) << "kept, also without a match";
      }
    }
  });
}

TEST(Execute, ACodeTellsWhatIsWrong) {
  struct Row {
    const char* subject;
    int start, options, expected;
  };
  constexpr Row kRows[] = {
      {"b\xFF", 0, 0, PCRE_ERROR_BADUTF8},       {"b\xC3", 0, 0, PCRE_ERROR_BADUTF8},
      {"ä", 1, 0, PCRE_ERROR_BADUTF8_OFFSET},    {"b", 2, 0, PCRE_ERROR_BADOFFSET},
      {"b", INT32_MIN, 0, PCRE_ERROR_BADOFFSET}, {"b", 0, PCRE_CASELESS, PCRE_ERROR_BADOPTION},
  };
  OnEachHost([&](Session& session) {
    const Object regex = session.Compiled("(a)");
    EXPECT_EQ(regex.Call("Execute").Integer(), PCRE_ERROR_NULL) << "no subject was ever kept";
    EXPECT_EQ(regex.Get("Lasterror").Integer(), PCRE_ERROR_NULL);
    for (const Row& row : kRows) {
      regex.Set("ExecuteOptions", 0);
      EXPECT_EQ(regex.Call("Execute", {"xa"}).Integer(), 2);
      regex.Set("ExecuteOptions", row.options);
      EXPECT_EQ(regex.Call("Execute", {row.subject, row.start}).Integer(), row.expected);
      EXPECT_EQ(regex.Get("Lasterror").Integer(), row.expected);
      EXPECT_EQ(regex.Get("Count").Integer(), 0);
      EXPECT_LE(regex.Call("Offset", {3}).Integer(), 0) << "nothing is left of the last match";
    }
  });
}

// Told not to check, the engine would read past the subject or outside its tables; it is shown 0x1A
// for each such byte, and everything that is reported is of the real subject.
TEST(Execute, UnsafeBytesAreHiddenFromAnUncheckedEngine) {
  struct Row {
    std::string pattern, subject, shown;
    int start = 0;
  };
  const Row rows[] = {
      {"a\\x1Ab", "a\375b", "a\032b"},
      {"(?i)\\p{L}+\\x1A\\w", "x\xFFy", "x\x1Ay"},
      {"..", "a\xC3", "a\x1A"},
      {".{3}$", "ab\xF0", "ab\x1A"},
      {".+?\\z", "\xE2\x82", "\x1A\x82"},
      {"\\x1A\\x1A(.)", "\x80\xBFz", "\x1A\x1Az"},
      {".\\x1A?", "a\xF4\x90\x80\x80", "a\x1A\x90\x80\x80"},
      {"(?<=b)c", "\376bc", "\032bc", 1},
      {"\xF4\x8F\xBF\xBF", "\xF4\x8F\xBF\xBF", "\xF4\x8F\xBF\xBF"},
  };
  OnEachHost([&](Session& session) {
    for (const Row& row : rows) {
      SCOPED_TRACE(row.pattern + " on " + testing::PrintToString(row.subject));
      const Object regex = session.Compiled(row.pattern);
      const Value text = session.host.MemoryBlock(row.subject);
      EXPECT_EQ(regex.Call("ExecuteMemory", {text, row.start}).Integer(),
                regex.Call("Execute", {row.subject, row.start}).Integer());
      const std::string shown = Describe(regex, regex.Call("Execute", {row.start}).Integer());
      const int start = regex.Call("Offset", {0}).Integer();
      const int end = regex.Call("Offset", {1}).Integer();
      const std::string direct = DescribeDirectly(row.pattern, row.shown, row.start);
      EXPECT_EQ(shown.substr(0, shown.find('"')), direct.substr(0, direct.find('"')));
      ASSERT_TRUE(0 <= start && start <= end && end <= static_cast<int>(row.subject.size()));
      EXPECT_EQ(regex.Call("Substring", {0}).Bytes(),
                row.subject.substr(static_cast<std::size_t>(start),
                                   static_cast<std::size_t>(end - start)));
    }
    // A pattern of plain bytes sees them as they are.
    const Object bytes = session.New();
    bytes.Set("CompileOptionUTF8", false);
    EXPECT_TRUE(bytes.Call("Compile", {"\\xFD(.)"}).Boolean());
    EXPECT_EQ(Describe(bytes, bytes.Call("Execute", {"a\xFD\xC3"}).Integer()),
              DescribeDirectly("\\xFD(.)", "a\xFD\xC3", 0, PCRE_UNGREEDY));
  });
}

TEST(Execute, ASmallVectorHoldsWhatFits) {
  OnEachHost([](Session& session) {
    std::string pattern;
    for (int group = 0; group < 20; ++group) pattern += "(.)";
    const Object regex = session.Compiled(pattern);
    EXPECT_EQ(regex.Call("Execute", {"abcdefghijklmnopqrstuvwxyz"}).Integer(), 0);
    EXPECT_EQ(regex.Get("Lasterror").Integer(), 0);
    EXPECT_EQ(regex.Get("Count").Integer(), 0);
    EXPECT_EQ(regex.Call("Offset", {33}).Integer(), 16) << "group 16 is the last of 17 pairs";
    EXPECT_EQ(regex.Call("Substring", {16}).UTF8(), "p");
    EXPECT_EQ(regex.Call("Substring", {17}).UTF8(), "");
  });
}

// A limit binds the very next match and no longer, studied or not, and on its own object only.
TEST(Execute, LimitsComeAndGo) {
  const std::string subject(2000, 'a');
  OnEachHost([&](Session& session) {
    const Object other = session.Compiled("a+$");
    for (const bool studied : {false, true}) {
      const Object regex = session.Compiled("(?:a|b)+$");
      if (studied) regex.Call("Study");
      struct Row {
        const char* property;
        int limit, expected;
      };
      const Row rows[] = {
          {"MatchLimit", 1, PCRE_ERROR_MATCHLIMIT},
          {"MatchLimit", 0, 1},
          {"MatchLimitRecursion", 10, PCRE_ERROR_RECURSIONLIMIT},
          {"MatchLimitRecursion", -1, 1},
          {"MatchLimit", 10, PCRE_ERROR_MATCHLIMIT},
          {"MatchLimit", INT32_MAX, 1},
          {"MatchLimit", INT32_MIN, 1},
      };
      for (const Row& row : rows) {
        SCOPED_TRACE(row.property + " "s + std::to_string(row.limit));
        regex.Set(row.property, row.limit);
        EXPECT_EQ(regex.Call("Execute", {subject}).Integer(), row.expected);
        EXPECT_EQ(regex.Get("Lasterror").Integer(), std::min(row.expected, 0));
        EXPECT_EQ(other.Call("Execute", {subject}).Integer(), 1);
      }
    }
  });
}

}  // namespace
