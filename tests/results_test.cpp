// What can be read after a match: offsets, characters, substrings, group names.
#include <gtest/gtest.h>
#include <pcre.h>

#include <cstdint>
#include <string>

#include "tests/session.h"

namespace {

using namespace std::string_literals;
using namespace tests;

// `"text" err=0` for a Substring call.
std::string Substring(const Object& regex, const Value& which) {
  const Value text = regex.Call("Substring", {which});
  return '"' + text.Bytes() + "\" err=" + std::to_string(regex.Get("Lasterror").Integer());
}

TEST(Offset, CountsBytesAndCharacters) {
  struct Row {
    std::string pattern, subject;
    int start, end, start_characters, end_characters;
    unsigned options = PCRE_UTF8 | PCRE_NO_UTF8_CHECK;
  };
  const Row rows[] = {
      {"ä", "abäcd", 2, 4, 2, 3},
      {"c", "abc", 2, 3, 2, 3},
      {"^", "ä", 0, 0, 0, 0},
      {"z", "€😀äz", 9, 10, 3, 4},
      // A character whose first byte lies before the offset counts whole.
      {"\\xA4", "ä", 1, 2, 1, 1, 0},
      // What is no UTF-8: stray and five-byte leads stand for themselves, a cut end counts once.
      {"z", "\x80\xFF\xF8z", 3, 4, 3, 4, 0},
      {"\\xE2", "z\xE2", 1, 2, 1, 2, 0},
  };
  OnEachHost([&](Session& session) {
    for (const Row& row : rows) {
      SCOPED_TRACE(row.pattern + " in " + testing::PrintToString(row.subject));
      const Object regex = session.New();
      regex.Set("CompileOptions", static_cast<std::int32_t>(row.options));
      ASSERT_TRUE(regex.Call("Compile", {row.pattern}).Boolean());
      const Value block = session.host.MemoryBlock(row.subject);
      ASSERT_EQ(regex.Call("ExecuteMemory", {block}).Integer(), 1);
      EXPECT_EQ(regex.Call("OffsetCharacters", {1}).Integer(), row.end_characters);
      EXPECT_EQ(regex.Call("OffsetCharacters", {0}).Integer(), row.start_characters);
      EXPECT_EQ(regex.Call("Offset", {0}).Integer(), row.start);
      EXPECT_EQ(regex.Call("Offset", {1}).Integer(), row.end);
    }
  });
}

// Counting goes on from the places asked for before; that must never show.
TEST(Offset, CharactersAreTheSameInAnyOrder) {
  Session session;
  const Object regex = session.Compiled("(?U)x(.*)y(.*)z(.*)$");
  std::string subject;
  for (int i = 0; i < 300; ++i) subject += "ä€b";
  const std::string text = subject + "x" + subject + "y" + subject + "z" + subject;
  ASSERT_EQ(regex.Call("Execute", {text}).Integer(), 4);
  const int expected[] = {900, 3603, 901, 1801, 1802, 2702, 2703, 3603};
  for (const int index : {7, 0, 3, 2, 5, 1, 6, 4, 4, 0, 7, 2}) {
    EXPECT_EQ(regex.Call("OffsetCharacters", {index}).Integer(), expected[index]) << index;
  }
}

// What the engine leaves in its vector after a search without a match is for nobody's eyes; where a
// partial match is, is.
TEST(Offset, IsZeroEverywhereAfterNoMatch) {
  OnEachHost([](Session& session) {
    const Value block = session.host.MemoryBlock("aab");
    struct Row {
      const char* method;
      Values arguments;
    };
    const Row rows[] = {
        {"Execute", {"aab"}},      {"Execute", {1}},   {"ExecuteMemory", {block}},
        {"ExecuteMT", {"aab"}},    {"ExecuteMT", {1}}, {"ExecuteMemoryMT", {block}},
        {"Match", {Value("aab")}},
    };
    for (const Row& row : rows) {
      SCOPED_TRACE(row.method);
      const Object regex = session.Compiled("(a)(\\w)(c)\\1");
      regex.Call("Execute", {"aac"});
      for (const bool partial : {false, true}) {
        regex.Set("ExecuteOptionPartial", partial);
        regex.Call(row.method, row.arguments);
        EXPECT_EQ(regex.Get("Lasterror").Integer(),
                  partial ? PCRE_ERROR_PARTIAL : PCRE_ERROR_NOMATCH);
        int set = 0;
        for (int i = 0; i < 51; ++i) set += regex.Call("Offset", {i}).Integer() != 0;
        EXPECT_EQ(set > 0, partial);
      }
    }
  });
}

TEST(Offset, AsksNothingMoreOfAHostThatHasAnExceptionToRaise) {
  Session session;
  const Object regex = session.Compiled("a");
  regex.Call("ExecuteMemory", {session.host.MemoryBlock("a")});
  const auto before = session.host.Calls("memoryBlockGetPtr");
  EXPECT_NE(Raised(regex.TryCall("OffsetCharacters", {99})), "");
  EXPECT_EQ(session.host.Calls("memoryBlockGetPtr"), before);
}

TEST(Offset, IndexesAreOfTheVector) {
  OnEachHost([](Session& session) {
    const Object regex = session.Compiled("(a)|b");
    EXPECT_EQ(regex.Call("Execute", {"b"}).Integer(), 1);
    for (const char* method : {"Offset", "OffsetCharacters"}) {
      for (const int index : {-1, 51, INT32_MAX, INT32_MIN}) {
        const auto outcome = regex.TryCall(method, {index});
        EXPECT_EQ(Raised(outcome), OutOfBounds("index", method, index, 50));
        EXPECT_EQ(outcome.value.Integer(), 0);
      }
      EXPECT_EQ(Raised(regex.TryCall(method, {50})), "");
    }
    EXPECT_EQ(regex.Call("Offset", {2}).Integer(), -1) << "an unset group";
    EXPECT_EQ(regex.Call("OffsetCharacters", {2}).Integer(), 0);
    EXPECT_EQ(Substring(regex, 1), "\"\" err=0");
  });
}

TEST(Offset, WithoutASubjectThereAreNoCharacters) {
  OnEachHost([](Session& session) {
    const Object regex = session.Compiled("b");
    EXPECT_TRUE(regex.Call("Match", {"aab"}).Boolean());
    EXPECT_EQ(regex.Call("Offset", {1}).Integer(), 3);
    EXPECT_EQ(regex.Call("OffsetCharacters", {1}).Integer(), 0);
    EXPECT_EQ(Substring(regex, 0), "\"\" err=-7");
  });
}

TEST(Substring, AnswersOnlyPairsThatCanBe) {
  struct Row {
    const char* what;
    std::string pattern, subject;
    int index;
    const char* expected;
  };
  const Row rows[] = {
      {"the whole match", "b(c)(d)?", "abc", 0, "\"bc\" err=0"},
      {"a group", "b(c)(d)?", "abc", 1, "\"c\" err=0"},
      {"an unset group", "b(c)(d)?", "abc", 2, "\"\" err=0"},
      {"a group that the pattern lacks", "b", "abc", 3, "\"\" err=0"},
      {"an empty capture", "b()", "abc", 1, "\"\" err=0"},
      {"the last pair", "b", "abc", 16, "\"\" err=0"},
      {"the engine's work area", "(b)", "abc", 17, "\"\" err=0"},
      {"the end of the vector", "b", "abc", 50, "\"\" err=0"},
      {"past the vector", "b", "abc", 51, "\"\" err=-7"},
      {"far past the vector", "b", "abc", INT32_MAX, "\"\" err=-7"},
      {"before the vector", "b", "abc", -1, "\"\" err=-7"},
      {"far before the vector", "b", "abc", INT32_MIN, "\"\" err=-7"},
      {"no match", "x", "abc", 0, "\"\" err=0"},
      {"a start past its end", "(?=ab\\K)", "ab", 0, "\"\" err=-7"},
      {"up to a zero byte", "a.+$", "a\0b"s, 0, "\"a\" err=0"},
      {"a zero byte at once", "\\0(.)", "\0b"s, 0, "\"\" err=0"},
  };
  OnEachHost([&](Session& session) {
    for (const Row& row : rows) {
      SCOPED_TRACE(row.what);
      const Object regex = session.Compiled(row.pattern);
      EXPECT_EQ(Substring(regex, 0), "\"\" err=0") << "no match yet";
      regex.Call("Execute", {row.subject});
      EXPECT_EQ(Substring(regex, row.index), row.expected);
    }
    const Object released = session.Compiled("b");
    released.Call("Execute", {"abc"});
    released.Call("Compile", {"b"});  // the pair stays, the subject does not
    EXPECT_EQ(Substring(released, 0), "\"\" err=-7");
    const Object uncompiled = session.New();
    EXPECT_EQ(Substring(uncompiled, 0), "\"\" err=-99");
    EXPECT_EQ(Substring(uncompiled, "n"), "\"\" err=-99");
  });
}

// In a large vector the engine's work area is full of numbers that are no pairs.
TEST(Substring, NeverShowsTheWorkArea) {
  Session session;
  const Object regex = session.New({300});
  regex.Call("Compile", {"(?:(a)(b)(c)|x)+\\3"});
  regex.Call("Execute", {"abcabcabcc"});
  EXPECT_EQ(Substring(regex, 3), "\"c\" err=0");
  for (int index = 100; index < 300; ++index) EXPECT_EQ(Substring(regex, index), "\"\" err=0");
}

TEST(Groups, HaveNamesAndNumbers) {
  OnEachHost([](Session& session) {
    const Object regex = session.Compiled("(?<first>a)(b)?(?<third>c)");
    ASSERT_EQ(regex.Call("Execute", {"ac"}).Integer(), 4);
    const char* const names[] = {"", "first", "", "third"};
    for (int group = 0; group < 4; ++group) {
      EXPECT_EQ(regex.Call("InfoNameEntry", {group}).UTF8(), names[group]);
    }
    for (const int group : {-1, 4, INT32_MAX}) {
      const auto outcome = regex.TryCall("InfoNameEntry", {group});
      EXPECT_EQ(Raised(outcome), OutOfBounds("index", "InfoNameEntry", group, 3));
      EXPECT_TRUE(outcome.value.IsNil());
    }
    EXPECT_EQ(Substring(regex, "third"), "\"c\" err=0");
    EXPECT_EQ(Substring(regex, "fourth"), "\"\" err=-7");
    EXPECT_EQ(Substring(regex, Value::Nil(tests::Kind::kString)), "\"\" err=-7");
    EXPECT_EQ(regex.Call("StringNumber", {"third"}).Integer(), 3);
    EXPECT_EQ(regex.Get("Lasterror").Integer(), 0);
    EXPECT_EQ(regex.Call("StringNumber", {"fourth"}).Integer(), 0);
    EXPECT_EQ(regex.Get("Lasterror").Integer(), PCRE_ERROR_NOSUBSTRING);
    EXPECT_TRUE(regex.Call("InfoNameEntry", {0}).IsNil());
    EXPECT_EQ(regex.Get("Lasterror").Integer(), PCRE_ERROR_NOSUBSTRING) << "left alone";

    const Object uncompiled = session.New();
    EXPECT_TRUE(uncompiled.Call("InfoNameEntry", {99}).IsNil());
    EXPECT_EQ(uncompiled.Get("Lasterror").Integer(), 0);
    EXPECT_EQ(uncompiled.Call("StringNumber", {"first"}).Integer(), 0);
    EXPECT_EQ(uncompiled.Get("Lasterror").Integer(), -99);
  });
}

// Of several groups with one name the one that took part in the match answers.
TEST(Groups, MayShareAName) {
  OnEachHost([](Session& session) {
    const Object regex = session.New();
    regex.Set("CompileOptionDuplicateNames", true);
    regex.Call("Compile", {"(?:(?<n>a)|(?<n>b)|(?<n>c))"});
    for (const char* text : {"a", "b", "c"}) {
      regex.Call("Execute", {text});
      EXPECT_EQ(Substring(regex, "n"), '"' + std::string(text) + "\" err=0");
    }
    regex.Call("Execute", {"x"});
    EXPECT_EQ(Substring(regex, "n"), "\"\" err=0") << "no match";
    regex.Call("Compile", {"x(?:(?<n>a)|(?<n>b))?"});
    regex.Call("Execute", {"x"});
    EXPECT_EQ(Substring(regex, "n"), "\"\" err=-7") << "neither is set";
    regex.Call("Compile", {"x(?<n>a)?"});
    regex.Call("Execute", {"x"});
    EXPECT_EQ(Substring(regex, "n"), "\"\" err=0") << "a name of one group only";
  });
}

}  // namespace
