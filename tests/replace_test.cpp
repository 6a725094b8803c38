// New text from matches: what replacement text means, and what the three methods make of it.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <string>
#include <string_view>

#include "tests/calls.h"
#include "tests/session.h"
#include "tests/texts.h"

namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;
using namespace tests;

// An empty result leaves Lasterror at ErrorPlugin, any other at 0.
void ExpectText(const Object& regex, const Value& result, std::string_view expected) {
  EXPECT_EQ(result.Bytes(), expected);
  EXPECT_EQ(result.IsNil(), expected.empty());
  EXPECT_EQ(regex.Get("Lasterror").Integer(), expected.empty() ? -99 : 0);
  if (!expected.empty()) {
    EXPECT_EQ(result.Encoding(), zrk::kEncodingUTF8);
  }
}

// What ReplaceAll makes of a text, and in how many searches. Of the two others, which go by the
// same replacement text, the oracle says what they make.
TEST(Replace, ExpandsTheTextForEachMatch) {
  constexpr const char* kTwelve = "(a)(b)(c)(d)(e)(f)(g)(h)(i)(j)(k)(l)";
  struct Row {
    std::string_view pattern, subject, new_text, all;
    int count;
  };
  const Row rows[] = {
      {"b", "abcbdbe", "N", "aNcNdNe", 4},
      {"b", "abc", "[\\0]", "a[b]c", 2},
      {"b", "xyz", "N", "xyz", 1},
      {"b", "bbb", "", "", 3},
      {"^", "", "N", "N", 1},
      // Escapes: two digits are one group, and what is not escaped stands for itself.
      {"(b)(c)", "abcd", "\\02\\01", "acbd", 2},
      {"(x)?(b)", "abc", "<\\1\\2\\3\\99>", "a<b>c", 2},
      {kTwelve, "_abcdefghijkl", "\\123\\1", "_l3a", 1},
      {"b", "abc", "\\t\\r\\n", "a\t\r\nc", 2},
      {"b", "abc", "\\\\1\\q\\$$0$&{}\\T\\R\\é", "a\\1q$$0$&{}TRéc", 2},
      {"ß", "xßy", "€\\0", "x€ßy", 2},
      // Zero bytes count in full in ReplaceAll, and end the results of the two others.
      {"b", "abc", "x\\", "ax\0c"sv, 2},
      {"b", "abc", "\\", "a\0c"sv, 2},
      {"b", "abc", "x\0y"sv, "ax\0yc"sv, 2},
      {"b", "a\0b\0b"sv, "N", "a\0N\0N"sv, 2},
      {"b", "a\0b\0b"sv, "", "a\0\0"sv, 2},
      {"b.", "ab\0c"sv, "<\\0>", "a<b\0>c"sv, 2},
      // Empty matches: also right behind another match, and never inside a character.
      {"(?-U)x*", "abc", "N", "NaNbNcN", 4},
      {"(?-U)x*", "axb", "N", "NaNNbN", 4},
      {"(?-U)x*", "é€😀", "N", "NéN€N😀N", 4},
      // Bytes that are no text move on as their lead bytes say; a search past the end finds none.
      {"(?-U)x*", "\200\277a", "N", "N\x80N\xBFNaN", 4},
      {"(?-U)x*", "a\xE2\x82", "N", "NaN\xE2\x82", 3},
      {"(?-U)x*", "\xF9\x80", "N", "N\xF9N\x80N", 3},
      // With \K in an assertion a match starts where it likes. Each search begins further on, and
      // no byte comes twice; a match that does not reach past its own beginning is found from there
      // once more.
      {"a(?=b\\K)", "abab", "<\\0>", "ab<>ab<>", 3},
      {"(?=ab\\K)", "abab", "N", "abNabNN", 4},
      {"(?=b\\K)", "abb", "", "abb", 4},
      {"(?<=(\\Ka))b", "abab", "<\\0\\1>", "<aba><aba>", 2},
      {"(?<=\\Kaa)", "aaaa", "\\0,", "aa,aa,aa,aa,", 4},
      {"(?<=\\Ké)", "ééz", "N", "NNNz", 4},
  };
  OnEachHost([&](Session& session) {
    for (const Row& row : rows) {
      SCOPED_TRACE(std::string(row.pattern) + " in " + testing::PrintToString(row.subject) +
                   " -> " + testing::PrintToString(row.new_text));
      const std::string pattern(row.pattern);
      const std::string subject(row.subject);
      const Object regex = session.Compiled(pattern);
      const Value new_text(row.new_text);
      ExpectText(regex, regex.Call("ReplaceAll", {subject, new_text}), row.all);
      EXPECT_EQ(regex.Get("Count").Integer(), row.count);
      const oracle::PlainRegex plain(pattern);
      const oracle::PlainMatch match = plain.Match(plain.Shown(subject), 0);
      if (regex.Call("Execute", {subject}).Integer() < 1) continue;
      const auto one = oracle::ReplaceMatch(match, subject, new_text.Bytes());
      ExpectText(regex, regex.Call("Replace", {new_text}), one.whole);
      ExpectText(regex, regex.Call("ReplaceSelection", {new_text}), one.selection);
    }
  });
}

// The replacement alone needs no subject: only groups read as empty.
TEST(Replace, NeedsAMatchOfAKeptText) {
  struct Row {
    const char* what;
    void (*prepare)(const Object&);
    const char *replaced, *selection;
  };
  const Row rows[] = {
      {"nothing executed", [](const Object&) {}, "nil err=0", "nil err=0"},
      {"no match", [](const Object& regex) { regex.Call("Execute", {"xyz"}); }, "nil err=0",
       "nil err=0"},
      {"not compiled", [](const Object& regex) { regex.Call("Compile", {"("}); }, "nil err=-99",
       "nil err=-99"},
      {"the text of Match is not kept", [](const Object& regex) { regex.Call("Match", {"abc"}); },
       "nil err=-99", "\"<>\" err=0"},
      {"nor for an empty match, which would fit an empty text",
       [](const Object& regex) {
         regex.Call("Compile", {"^"});
         regex.Call("Match", {"abc"});
       },
       "nil err=-99", "\"<>\" err=0"},
      {"a filter drops the subject",
       [](const Object& regex) {
         regex.Call("Execute", {"abc"});
         regex.Call("Match", {Value::Nil(Kind::kStringArray)});
       },
       "nil err=-99", "\"<>\" err=0"},
      {"Count is of ReplaceAll, the vector of a search that failed",
       [](const Object& regex) {
         regex.Call("Compile", {"(?:a|b)(?:b|c)d"});
         regex.Set("MatchLimit", 1);
         regex.Call("Execute", {"abd"});
         regex.Set("MatchLimit", 0);
         regex.Call("ReplaceAll", {"abd", "N"});
       },
       "nil err=-99", "\"<>\" err=0"},
      {"Count is of ReplaceAll, the vector of a search without a match: an empty pair",
       [](const Object& regex) {
         regex.Call("Execute", {"xyz"});
         regex.Call("ReplaceAll", {"abc", "N"});
       },
       "\"<>xyz\" err=0", "\"<>\" err=0"},
  };
  Session session;
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    const Object regex = session.Compiled("b");
    row.prepare(regex);
    EXPECT_EQ(Show(regex, regex.TryCall("Replace", {"<\\0\\1>"})), row.replaced);
    EXPECT_EQ(Show(regex, regex.TryCall("ReplaceSelection", {"<\\0\\1>"})), row.selection);
  }
}

// ReplaceAll has a vector of its own.
TEST(Replace, HonoursAsManyGroupsAsTheVectorHoldsLessOne) {
  struct Row {
    int vector_size;
    std::size_t groups;
    const char *new_text, *replaced, *replaced_all;
  };
  const Row rows[] = {
      {51, 16, "\\15\\16.", "o.", "op."},
      {51, 19, "\\15\\16\\17", "", "opq"},  // Execute answers no pairs, and that is no match
      {57, 19, "\\16\\17\\18", "", "pqr"},
      {60, 19, "\\18\\19", "r", "rs"},
      {600, 19, "\\19\\20\\99", "s", "s"},
  };
  const std::string letters = "abcdefghijklmnopqrs";
  Session session;
  for (const Row& row : rows) {
    SCOPED_TRACE(std::to_string(row.vector_size) + row.new_text);
    const std::string subject = letters.substr(0, row.groups);
    std::string pattern;
    for (const char letter : subject) pattern += std::string("(") + letter + ")";
    const Object regex = session.New({row.vector_size});
    regex.Call("Compile", {pattern});
    regex.Call("Execute", {subject});
    EXPECT_EQ(regex.Call("Replace", {row.new_text}).UTF8(), row.replaced);
    EXPECT_EQ(regex.Call("ReplaceAll", {subject, row.new_text}).UTF8(), row.replaced_all);
  }
}

TEST(ReplaceAll, LeavesSubjectAndVectorAlone) {
  Session session;
  const Object regex = session.Compiled("b(.)");
  regex.Call("Execute", {"abc"});
  const std::string before = Describe(regex, 2);
  regex.Call("ReplaceAll", {"xxbxxby", "<\\1>"});
  EXPECT_EQ(Describe(regex, 2), before);
  EXPECT_EQ(regex.Get("Text").UTF8(), "abc");
  // Count is that of ReplaceAll now, but the match of the subject is still there to replace.
  EXPECT_EQ(regex.Call("Replace", {"<\\1>"}).UTF8(), "a<c>");
}

TEST(ReplaceAll, ReportsNoEngineErrorOnTheWay) {
  Session session;
  const Object regex = session.Compiled("b|(x+x+)+y");
  regex.Set("MatchLimit", 200);
  const std::string hard(30, 'x');
  EXPECT_EQ(regex.Call("ReplaceAll", {"abc" + hard + "b", "N"}).UTF8(), "aNc" + hard + "b");
  EXPECT_EQ(regex.Get("Lasterror").Integer(), 0);
  EXPECT_EQ(regex.Get("Count").Integer(), 2);
  ASSERT_EQ(regex.Call("Execute", {hard + "b"}).Integer(), -8);
}

TEST(ReplaceAll, NeedsAPatternAndAVector) {
  Session session;
  const Object regex = session.New();
  EXPECT_EQ(Show(regex, regex.TryCall("ReplaceAll", {"abc", "N"})), "nil err=-99");
  const Object zero = session.host.NewUninitialised("RegExZRK");
  const std::string raised = "nil err=0 NilObjectException: RegEx class not initialized.";
  EXPECT_EQ(Show(zero, zero.TryCall("Replace", {"N"})), raised);
  EXPECT_EQ(Show(zero, zero.TryCall("ReplaceSelection", {"N"})), raised);
  EXPECT_EQ(Show(zero, zero.TryCall("ReplaceAll", {"abc", "N"})), raised);
}

// A result is built at once where it fits in a multiple of the target; dense matches and long
// replacements pass that at every size.
TEST(ReplaceAll, AgreesWithTheEngineCalledDirectlyWhateverTheNumberOfMatches) {
  const char* const patterns[] = {
      "x",         "(?-U)x*", "(.)",   "(.)(.)?(.)?",     "(?<=\\K.)",      "(?=.\\K)",
      "((x)|(y))", "\\b",     "(?s).", "(y)|x(?=(.)\\K)", "(?<=(.)\\K)(.)", ""};
  const std::string_view units[] = {"x", "xy", "xéy ", "xyyyyyyy\0"sv, "\r\n", "€"};
  const std::string new_texts[] = {"\\0\\0", "\\1",          "<\\3\\2\\1>",          "012345678",
                                   "",       "\\1\\0\\99\\", Repeated("\\1-\\0", 40)};
  Session session;
  for (const char* pattern : patterns) {
    const Object regex = session.Compiled(pattern);
    const oracle::PlainRegex plain(pattern);
    for (const std::string_view unit : units) {
      for (const std::size_t count : {1U, 85U, 128U, 129U, 700U}) {
        const std::string target = Repeated(unit, count);
        const Value text = target;
        for (const std::string& new_text : new_texts) {
          if (new_text.size() > 100 && count > 100) continue;
          const oracle::Replaced expected = oracle::ReplaceAll(plain, target, new_text);
          ASSERT_EQ(regex.Call("ReplaceAll", {text, new_text}).Bytes(), expected.text)
              << pattern << " in " << count << " * " << unit << " -> " << new_text;
          ASSERT_EQ(regex.Get("Count").Integer(), expected.engine_calls)
              << pattern << " in " << unit;
        }
      }
    }
  }
}

long PeakKilobytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

TEST(ReplaceAll, RefusesWhatNoHostStringHolds) {
  Session session;
  const Object regex = session.Compiled("x");
  const Value target = std::string(1 << 20, 'x');
  for (const Value& new_text :
       {Value(std::string(4096, 'y')), Value("\\0" + std::string(4096, 'y'))}) {
    SCOPED_TRACE(new_text.Bytes().substr(0, 3));
    regex.Call("ReplaceAll", {target, "z"});
    const long before = PeakKilobytes();
    EXPECT_EQ(Show(regex, regex.TryCall("ReplaceAll", {target, new_text})), "nil err=-99");
    EXPECT_LT(PeakKilobytes() - before, 64 << 10);
  }
  EXPECT_EQ(regex.Call("ReplaceAll", {"axb", "N"}).UTF8(), "aNb");
  const Object whole = session.Compiled("(?s)^.*$(?-U)");
  whole.Call("Execute", {target});
  // Just past 2 GiB, and just past what 32 bits count.
  for (const std::size_t groups : {2050U, 4097U}) {
    SCOPED_TRACE(groups);
    const Value new_text = Repeated("\\0", groups);
    EXPECT_EQ(Show(whole, whole.TryCall("Replace", {new_text})), "nil err=-99");
    EXPECT_EQ(Show(whole, whole.TryCall("ReplaceAll", {target, new_text})), "nil err=-99");
  }
}

}  // namespace
