// Execute: the engine's own answer on the same bytes, the subject that is kept, and the limits.
#include <gtest/gtest.h>
#include <pcre.h>

#include <cstdint>
#include <string>

#include "tests/calls.h"
#include "tests/session.h"

namespace {

using namespace std::string_literals;
using namespace tests;

// From every start, those that the engine refuses and those inside a character as well.
TEST(Execute, AnswersWhatTheEngineDoes) {
  struct Row {
    std::string pattern, subject;
    unsigned options = PCRE_NO_UTF8_CHECK;
    unsigned compile_options = oracle::kCompileOptions;
  };
  const Row rows[] = {
      {"", ""},
      {"(a)(?<n>b)?(c)", "acabc"},
      {"(?<=ä)ö", "äö"},
      {"(a\\0b)", "xa\0by"s},
      {"((((((((((((((((((b))))))))))))))))))", "abb"},  // more groups than pairs
      // Codes tell what is wrong.
      {"(a)", "b\xFF", 0},
      {"(a)", "ä", 0},
      {"(a)", "ab", PCRE_CASELESS},
      // Told not to check, the engine would read past these or outside its tables: it is shown 0x1A
      // for each such byte, and what is reported is of the real subject.
      {"a\\x1Ab", "a\375b"},
      {"..", "a\xC3"},
      {"\\x1A\\x1A(.)", "\x80\xBFz"},
      {".\\x1A?", "a\xF4\x90\x80\x80"},
      {"\xF4\x8F\xBF\xBF", "\xF4\x8F\xBF\xBF"},
      // A pattern of plain bytes sees them as they are.
      {"\\xFD(.)", "a\xFD\xC3", PCRE_NO_UTF8_CHECK, PCRE_UNGREEDY},
  };
  OnEachHost([&](Session& session) {
    for (const Row& row : rows) {
      const Object regex = session.New();
      regex.Set("CompileOptions", static_cast<std::int32_t>(row.compile_options));
      ASSERT_TRUE(regex.Call("Compile", {row.pattern}).Boolean()) << row.pattern;
      EXPECT_EQ(Try(regex, "Execute"), "-2 err=-2") << "no subject was ever kept";
      regex.Set("ExecuteOptions", static_cast<std::int32_t>(row.options));
      int result = regex.Call("Execute", {row.subject, -1}).Integer();
      const auto size = static_cast<int>(row.subject.size());
      for (int start = -1; start <= size + 1; ++start) {
        SCOPED_TRACE(row.pattern + " on " + row.subject + " from " + std::to_string(start));
        if (start >= 0) result = regex.Call("Execute", {start}).Integer();
        EXPECT_EQ(Describe(regex, result), DescribeDirectly(row.pattern, row.subject, start,
                                                            row.compile_options, row.options));
        EXPECT_EQ(regex.Get("Text").Bytes(), row.subject) << "kept, also without a match";
      }
    }
  });
}

// A text that is searched again is not converted again, unless another encoding was declared for
// the very same string.
TEST(Execute, ReadsAStringOnce) {
  Session session;
  const Object regex = session.Compiled("b.");
  const Value text = session.host.String("b\xE9", zrk::kEncodingISOLatin1);
  const auto read_as = [&](std::uint32_t encoding) {
    static_cast<zrk::REALstringStruct*>(text.handle())->Encoding = encoding;
    regex.Call("Execute", {text});
    EXPECT_EQ(regex.Get("Text").handle(), text.handle());
    return regex.Call("Substring", {0}).UTF8();
  };
  EXPECT_EQ(read_as(zrk::kEncodingISOLatin1), "bé");
  EXPECT_EQ(read_as(zrk::kEncodingISOLatin1), "bé");
  EXPECT_EQ(session.host.Calls("PluginGetStringData"), 1U);
  EXPECT_EQ(read_as(zrk::kEncodingMacRoman), "bÈ");
}

// A limit binds from 1 on, the very next match and no longer. The threaded methods have none but
// those that a study block carries, which are the last synchronous match's.
TEST(Execute, LimitsComeAndGo) {
  struct Row {
    const char* property;
    int limit;
    const char *expected, *threaded_and_studied;
  };
  constexpr Row kRows[] = {
      {"MatchLimit", 1, "-8 err=-8", "0 err=-8"},
      {"MatchLimit", 0, "2 err=0", "2 err=0"},
      {"MatchLimitRecursion", 1, "-21 err=-21", "0 err=-21"},
      {"MatchLimitRecursion", -1, "2 err=0", "2 err=0"},
  };
  Session session;
  const Object regex = session.Compiled("(a|b)+c");
  for (const bool studied : {false, true}) {
    if (studied) regex.Call("Study");
    for (const Row& row : kRows) {
      SCOPED_TRACE(testing::Message() << row.property << ' ' << row.limit << ' ' << studied);
      regex.Set(row.property, row.limit);
      EXPECT_EQ(Try(regex, "Execute", {"ababc"}), row.expected);
      EXPECT_EQ(Try(regex, "ExecuteMT", {0}), studied ? row.threaded_and_studied : "2 err=0");
    }
  }
}

}  // namespace
