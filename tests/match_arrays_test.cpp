// Testing texts against the pattern: one text, or the elements of an array.
#include <gtest/gtest.h>

#include <string>

#include "tests/calls.h"
#include "tests/session.h"

namespace {

using namespace tests;

constexpr const char* kMoreGroupsThanPairs = "((((((((((((((((((a))))))))))))))))))";

// An object with that pattern, a match limit, and what a search has to drop: a text that was
// searched in vain, or the message of a pattern that was refused.
Object WithTextOrMessage(Session& session, const char* pattern) {
  Object regex = session.New();
  regex.Set("MatchLimit", 100);
  if (regex.Call("Compile", {pattern}).Boolean()) regex.Call("Execute", {"---"});
  return regex;
}

TEST(Match, AnswersForOneTextAndKeepsNone) {
  struct Row {
    const char *pattern, *text, *expected;
    int count;
  };
  constexpr Row kRows[] = {
      {"b(.)", "abc", "true err=0", 2}, {"b", "xyz", "false err=-1", 0},
      {"^$", "", "true err=0", 1},      {"(x+x+)+[yz]", "xxxxxxxxxxxxxxxx", "false err=-8", 0},
      {"(", "abc", "false err=-99", 0}, {kMoreGroupsThanPairs, "a", "false err=0", 0},
  };
  OnEachHost([&](Session& session) {
    for (const Row& row : kRows) {
      SCOPED_TRACE(row.pattern);
      const Object regex = WithTextOrMessage(session, row.pattern);
      EXPECT_EQ(Try(regex, "Match", {row.text}), row.expected);
      EXPECT_EQ(regex.Get("Count").Integer(), row.count);
      EXPECT_TRUE(regex.Get("Text").IsNil());
      EXPECT_TRUE(regex.Call("Substring", {0}).IsNil());
      EXPECT_TRUE(regex.Get("ErrorMessage").IsNil());
    }
  });
}

TEST(MatchArray, FiltersTheElementsInTheirOrder) {
  struct Row {
    const char* pattern;
    Values elements;
    std::string matching, others;
  };
  const std::string slow = std::string(150, 'x') + "y";  // reaches the limit
  OnEachHost([&](Session& session) {
    const Row rows[] = {
        {"^a", {"apple", "banana", "avocado"}, R"(["apple", "avocado"])", R"(["banana"])"},
        {"^$", {"", Value(), "x", Value()}, R"(["", "", ""])", R"(["x"])"},
        {"x", {Value(), Value()}, "[]", R"(["", ""])"},
        {"x", {}, "[]", "[]"},
        {"\\x{e9}", {"é", "e"}, R"(["é"])", R"(["e"])"},
        {"(x|z)+y", {slow, "xxy"}, R"(["xxy"])", "[\"" + slow + "\"]"},
        {"(", {"apple"}, "[]", "[]"},
        {kMoreGroupsThanPairs, {"a"}, "[]", R"(["a"])"},
    };
    for (const Row& row : rows) {
      SCOPED_TRACE(row.pattern);
      for (const Value& array :
           {session.host.StringArray(row.elements), session.host.VariantArray(row.elements)}) {
        const Object regex = WithTextOrMessage(session, row.pattern);
        const std::string error = " err=" + std::to_string(regex.Get("Lasterror").Integer());
        EXPECT_EQ(Try(regex, "Match", {array}), row.matching + error);
        EXPECT_TRUE(regex.Get("Text").IsNil());
        EXPECT_TRUE(regex.Get("ErrorMessage").IsNil());
        EXPECT_EQ(Try(regex, "Match", {array, true}), row.others + error);
        EXPECT_EQ(Try(regex, "Match", {Value::Nil(array.kind()), true}), "[]" + error);
      }
    }
  });
}

// Older hosts show their elements; others are asked for a procedure that reads them, once for an
// array. Variants are read by a service, or by their property where the host has no such service.
TEST(MatchArray, ReadsElementsAsTheHostHasThem) {
  for (auto options : HostKinds()) {
    SCOPED_TRACE(NameOf(options));
    const bool direct = options.direct_storage && options.version < 2017;
    const bool by_property = options.version < 2013;
    if (by_property) options.faults["VariantToString"] = standin::Fault::Missing();
    Session session(options);
    const Object regex = session.Compiled("5|True|^$");
    const Value strings = session.host.StringArray({"5", "y"});
    const Value variants = session.host.VariantArray({5, -7, true, false, 2.5, "x5", Value(), "y"});
    EXPECT_EQ(Show(regex.Call("Match", {strings})), R"(["5"])");
    EXPECT_EQ(Show(regex.Call("Match", {variants})), R"(["5", "True", "2.5", "x5", ""])");
    EXPECT_EQ(session.host.Calls("REALGetPropValueString"), by_property ? 7U : 0U);
    for (const char* service : {"PluginStringArrayGetProc", "PluginObjectArrayGetProc"}) {
      EXPECT_EQ(session.host.Calls(service), direct ? 0U : 1U) << service;
    }
  }
}

TEST(MatchArray, ReturnsTheHostsOwnStrings) {
  Session session;
  const Object regex = session.Compiled("\\x{e9}");
  const Value latin = session.host.String("\xE9", zrk::kEncodingISOLatin1);
  const Value mac = session.host.String("\x8E!", zrk::kEncodingMacRoman);
  const Value strings = session.host.StringArray({latin, "e", mac});
  const auto built = session.host.accounts().Opened(Kind::kString);
  const Value result = regex.Call("Match", {strings});
  ASSERT_EQ(result.Count(), 2U);
  EXPECT_EQ(result.At(0).handle(), latin.handle());
  EXPECT_EQ(result.At(1).handle(), mac.handle());
  EXPECT_EQ(session.host.accounts().Opened(Kind::kString), built) << "nothing is encoded anew";
}

// Other tasks of the host may shorten the array while it is read: here, before a given time that
// its bound is asked for. The bound of the result is asked for once for each string appended.
TEST(MatchArray, RaisesForEachElementThatIsGoneAndTakesItAsEmpty) {
  struct Row {
    int at_call;
    std::size_t count;
    std::string result, raised;
  };
  const std::string kGone = "OutOfBoundsException: Parameter index  is too big. Range is 0 to ";
  const Row rows[] = {
      {1, 2, "[]", ""},
      {2, 2, R"(["", ""])", kGone + "1, but value is 2.\n" + kGone + "1, but value is 3."},
      {5, 0, R"([""])", kGone + "-1, but value is 3."},
  };
  OnEachHost([&](Session& session) {
    const Object regex = session.Compiled("^$");
    for (const Row& row : rows) {
      const Values elements = {"a", "b", "c", "d"};
      for (Value array :
           {session.host.StringArray(elements), session.host.VariantArray(elements)}) {
        SCOPED_TRACE(array.Describe() + ", " + std::to_string(row.at_call));
        int calls = 0;
        session.host.SetFault("RuntimeUBound", {.before = [&] {
                                if (++calls == row.at_call) array.Resize(row.count);
                              }});
        const Outcome outcome = regex.TryCall("Match", {array});
        EXPECT_EQ(Raised(outcome), row.raised);
        EXPECT_EQ(Show(outcome.value), row.result);
        session.host.SetFault("RuntimeUBound", {});
      }
    }
  });
}

}  // namespace
