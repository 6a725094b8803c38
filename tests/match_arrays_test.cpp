// Testing texts against the pattern: one text, or the elements of an array.
#include <gtest/gtest.h>

#include <string>

#include "tests/calls.h"
#include "tests/session.h"

namespace {

using namespace tests;

TEST(Match, AnswersForOneTextAndKeepsNone) {
  struct Row {
    const char *pattern, *text;
    int match_limit;
    bool matches;
    int count, error;
  };
  const Row rows[] = {
      {"b(.)", "abc", 0, true, 2, 0},
      {"b", "xyz", 0, false, 0, -1},
      {"^$", "", 0, true, 1, 0},
      {"(x+x+)+[yz]", "xxxxxxxxxxxxxxxx", 20, false, 0, -8},
      {"(", "abc", 0, false, 0, -99},
      {"((((((((((((((((((a))))))))))))))))))", "a", 0, false, 0, 0},  // more groups than pairs
  };
  OnEachHost([&](Session& session) {
    for (const Row& row : rows) {
      SCOPED_TRACE(row.pattern);
      const Object regex = session.New();
      regex.Call("Compile", {row.pattern});
      regex.Set("MatchLimit", row.match_limit);
      regex.Call("Execute", {"a kept text"});
      EXPECT_EQ(regex.Call("Match", {row.text}).Boolean(), row.matches);
      EXPECT_EQ(regex.Get("Count").Integer(), row.count);
      EXPECT_EQ(regex.Get("Lasterror").Integer(), row.error);
      EXPECT_TRUE(regex.Get("Text").IsNil());
      EXPECT_TRUE(regex.Get("ErrorMessage").IsNil());
    }
  });
}

TEST(Match, LeavesTheOffsetsOfATextThatIsGone) {
  Session session;
  const Object regex = session.Compiled("b(.)");
  ASSERT_TRUE(regex.Call("Match", {"aabé"}).Boolean());
  EXPECT_EQ(regex.Call("Offset", {3}).Integer(), 5);
  EXPECT_EQ(regex.Call("OffsetCharacters", {3}).Integer(), 0);
  EXPECT_TRUE(regex.Call("Substring", {0}).IsNil());
  EXPECT_EQ(regex.Get("Lasterror").Integer(), -7);
  EXPECT_EQ(regex.Call("Execute", {0}).Integer(), -2);
}

TEST(MatchArray, FiltersTheElementsInTheirOrder) {
  struct Row {
    const char* pattern;
    Values elements;
    const char *matching, *others;
  };
  OnEachHost([&](Session& session) {
    const Row rows[] = {
        {"^a", {"apple", "banana", "avocado"}, R"(["apple", "avocado"])", R"(["banana"])"},
        {"^$", {"", Value(), "x", Value()}, R"(["", "", ""])", R"(["x"])"},
        {"x", {Value(), Value()}, "[]", R"(["", ""])"},
        {"x", {}, "[]", "[]"},
        {"\\x{e9}", {"é", "e"}, "[\"é\"]", R"(["e"])"},
        {"(", {"apple"}, "[]", "[]"},
    };
    for (const Row& row : rows) {
      SCOPED_TRACE(row.pattern);
      const Object regex = session.New();
      regex.Call("Compile", {row.pattern});
      const Value strings = session.host.StringArray(row.elements);
      const Value variants = session.host.VariantArray(row.elements);
      for (const Value& array : {strings, variants}) {
        EXPECT_EQ(Show(regex.Call("Match", {array})), row.matching);
        EXPECT_EQ(Show(regex.Call("Match", {array, true})), row.others);
      }
    }
  });
}

TEST(MatchArray, AnswersAnEmptyArrayForANilOne) {
  Session session;
  const Object regex = session.Compiled("x");
  for (const Kind kind : {Kind::kStringArray, Kind::kVariantArray}) {
    for (const bool inverse : {false, true}) {
      EXPECT_EQ(Show(regex.Call("Match", {Value::Nil(kind), inverse})), "[]");
    }
  }
}

TEST(MatchArray, ReadsVariantsAsTheHostWritesThem) {
  for (const char* without : {"", "VariantToString"}) {
    for (const auto& kind : tests::HostKinds()) {
      SCOPED_TRACE(tests::NameOf(kind) + " without " + without);
      auto options = kind;
      if (*without != '\0') options.faults[without] = standin::Fault::Missing();
      Session session(options);
      const Object regex = session.Compiled("5|True|^$");
      const Value array = session.host.VariantArray({5, -7, true, false, 2.5, "x5", Value(), "y"});
      EXPECT_EQ(Show(regex.Call("Match", {array})), R"(["5", "True", "2.5", "x5", ""])");
      EXPECT_EQ(session.host.Calls("REALGetPropValueString"), *without == '\0' ? 0U : 7U);
    }
  }
}

TEST(MatchArray, FindsTheArrayServicesUnderEitherName) {
  struct Row {
    std::vector<const char*> missing;
    const char *strings, *variants;
  };
  const Row rows[] = {
      {{"PluginStringArrayGetProc", "PluginObjectArrayGetProc", "PluginStringArrayInsertProc"},
       R"(["ab"])",
       R"(["ab"])"},
      {{"RuntimeArrayDirectGetGetProc", "RuntimeArrayDirectGetInsertProc"},
       R"(["ab"])",
       R"(["ab"])"},
      // Without any getter the elements are empty, without an inserter nothing is appended.
      {{"PluginStringArrayGetProc", "RuntimeArrayDirectGetGetProc"}, "[]", R"(["ab"])"},
      {{"PluginObjectArrayGetProc", "RuntimeArrayDirectGetGetProc"}, R"(["ab"])", "[]"},
      {{"PluginStringArrayInsertProc", "RuntimeArrayDirectGetInsertProc"}, "[]", "[]"},
      {{"RuntimeUBound"}, "[]", "[]"},
      {{"RuntimeArrayCreateSingleDimBoundedArray"}, "nil", "nil"},
  };
  for (const Row& row : rows) {
    standin::HostOptions options{.version = 2017.0};
    for (const char* name : row.missing) options.faults[name] = standin::Fault::Missing();
    SCOPED_TRACE(row.missing.front());
    Session session(options);
    const Object regex = session.Compiled("a");
    EXPECT_EQ(Show(regex.Call("Match", {session.host.StringArray({"ab", "x"})})), row.strings);
    EXPECT_EQ(Show(regex.Call("Match", {session.host.VariantArray({"ab", "x"})})), row.variants);
  }
}

TEST(MatchArray, ReadsDirectStorageOnOlderHostsOnly) {
  for (const auto& kind : tests::HostKinds()) {
    SCOPED_TRACE(tests::NameOf(kind));
    auto options = kind;
    for (const char* name :
         {"PluginStringArrayGetProc", "PluginObjectArrayGetProc", "RuntimeArrayDirectGetGetProc"}) {
      options.faults[name] = standin::Fault::Missing();
    }
    Session session(options);
    const Object regex = session.Compiled("a");
    const bool reads = kind.direct_storage && *kind.version < 2017;
    const char* const expected = reads ? R"(["ab"])" : "[]";
    EXPECT_EQ(Show(regex.Call("Match", {session.host.StringArray({"ab", Value()})})), expected);
    EXPECT_EQ(Show(regex.Call("Match", {session.host.VariantArray({"ab", Value()})})), expected);
  }
}

TEST(MatchArray, ReturnsTheHostsOwnStrings) {
  Session session;
  const Object regex = session.Compiled("\\x{e9}");
  const Value latin = session.host.String("\xE9", zrk::kEncodingISOLatin1);
  const Value mac = session.host.String("\x8E!", zrk::kEncodingMacRoman);
  const auto built = session.host.accounts().Opened(Kind::kString);
  const Value result = regex.Call("Match", {session.host.StringArray({latin, "e", mac})});
  ASSERT_EQ(result.Count(), 2U);
  EXPECT_EQ(result.At(0).handle(), latin.handle());
  EXPECT_EQ(result.At(1).handle(), mac.handle());
  EXPECT_EQ(result.At(1).Encoding(), zrk::kEncodingMacRoman);
  EXPECT_EQ(session.host.accounts().Opened(Kind::kString), built + 1);  // the "e" above
  const Value variants = regex.Call("Match", {session.host.VariantArray({latin, mac})});
  EXPECT_EQ(variants.At(0).Encoding(), zrk::kEncodingISOLatin1);
  EXPECT_EQ(variants.At(1).Bytes(), "\x8E!");
}

TEST(MatchArray, LeavesErrorAndCountAndDropsTheSubject) {
  Session session;
  const Object regex = session.Compiled("b(.)");
  for (const char* subject : {"abc", "xyz"}) {
    const int count = regex.Call("Execute", {subject}).Integer();
    const int error = regex.Get("Lasterror").Integer();
    regex.Call("Match", {session.host.StringArray({"zzb1", "none"})});
    EXPECT_EQ(regex.Get("Count").Integer(), std::max(count, 0));
    EXPECT_EQ(regex.Get("Lasterror").Integer(), error);
    EXPECT_TRUE(regex.Get("Text").IsNil());
  }
}

TEST(MatchArray, CountsAFailedMatchAsNone) {
  Session session;
  const Object regex = session.Compiled("(x+x+)+y");
  const Value array = session.host.StringArray({"xxxxxxxxxxxxxxy", "xxy"});
  EXPECT_EQ(regex.Call("Match", {array}).Count(), 2U);
  regex.Set("MatchLimit", 20);
  EXPECT_EQ(Show(regex.Call("Match", {array})), R"(["xxy"])");
  EXPECT_EQ(Show(regex.Call("Match", {array, true})), R"(["xxxxxxxxxxxxxxy"])");
}

TEST(MatchArray, RaisesForAnUninitialisedObject) {
  Session session;
  const Object zero = session.host.NewUninitialised("RegExZRK");
  for (const Value& array : {session.host.StringArray({"a"}), session.host.VariantArray({"a"})}) {
    const Outcome outcome = zero.TryCall("Match", {array});
    EXPECT_EQ(Raised(outcome), "NilObjectException: RegEx class not initialized.");
    EXPECT_TRUE(outcome.value.IsNil());
  }
  EXPECT_EQ(Raised(zero.TryCall("Match", {"a"})),
            "NilObjectException: RegEx class not initialized.");
}

// Other tasks of the host may shorten the array while it is read: here, before a given time that
// its bound is asked for. The bound of the result is asked for once for each string appended.
TEST(MatchArray, RaisesForEachElementThatIsGoneAndTakesItAsEmpty) {
  struct Row {
    int at_call;
    std::size_t count;
    const char *raised, *result;
  };
  const char* const kTwoGone =
      "OutOfBoundsException: Parameter index  is too big. Range is 0 to 1, but value is 2.\n"
      "OutOfBoundsException: Parameter index  is too big. Range is 0 to 1, but value is 3.";
  const Row rows[] = {
      {1, 2, "", "[]"},
      {2, 2, kTwoGone, R"(["", ""])"},
      {4, 2, kTwoGone, R"(["", ""])"},
      {5, 0, "OutOfBoundsException: Parameter index  is too big. Range is 0 to -1, but value is 3.",
       R"([""])"},
  };
  OnEachHost([&](Session& session) {
    const Object regex = session.Compiled("^$");
    for (const Row& row : rows) {
      SCOPED_TRACE(std::to_string(row.at_call));
      for (Value array : {session.host.StringArray({"a", "b", "c", "d"}),
                          session.host.VariantArray({"a", "b", "c", "d"})}) {
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

// Hosts are asked for the procedure that reads elements only where an element has to come from it.
TEST(MatchArray, AsksForAGetterOnlyWhereItIsUsed) {
  OnEachHost([](Session& session) {
    const Object regex = session.Compiled("a");
    const auto& options = session.host.options();
    const bool direct = options.direct_storage && options.version < 2017;
    regex.Call("Match", {session.host.StringArray({"a", "b"})});
    regex.Call("Match", {session.host.VariantArray({"a", "b"})});
    for (const char* service : {"PluginStringArrayGetProc", "PluginObjectArrayGetProc"}) {
      EXPECT_EQ(session.host.Calls(service), direct ? 0U : 1U) << service;
    }
  });
}

}  // namespace
