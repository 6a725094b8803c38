// Subjects that take the engine deeper than a thread's stack: they get their answer all the same,
// whatever method runs it.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>

#include "tests/session.h"
#include "tests/texts.h"

namespace {

using namespace tests;

// What the deep stack is promised to hold; lazy quantifiers take half of it for each character.
constexpr std::size_t kGreedy = sizeof(void*) == 4 ? 250'000 : 500'000;
constexpr std::size_t kLazy = 2 * kGreedy;

std::string Letters(std::size_t length) { return Filled("ab", length); }
std::string Lines(std::size_t length) { return Filled("a\n", length - 1) + 'z'; }
std::string Shallow(std::size_t length) { return '(' + Filled("ab", length - 2) + ')'; }
std::string Nested(std::size_t length) { return Filled("(", length / 2) + Filled(")", length / 2); }

struct Row {
  const char* pattern;
  std::string (*subject)(std::size_t length);
  std::size_t length;
};

const Row kRows[] = {
    {"(?-U)(?:a|b)*$", Letters, kGreedy},
    {"(?:a|b)*$", Letters, kLazy},
    {"(?-U)(?:.|\\n)*z", Lines, kGreedy},
    {"(?:.|\\n)*z", Lines, kLazy},
    {"(?-U)(a|b)+", Letters, kGreedy},
    {"(?-U)(?:(?:a|c)|(?:b))*$", Letters, kGreedy / 2},
    {"(?-U)\\((?:[^()]|(?R))*\\)", Shallow, kGreedy},
    // The engine looks through all open recursions at each, so time grows with the square here.
    {"(?-U)\\((?:[^()]|(?R))*\\)", Nested, 6'000},
};

void ExpectWhole(const Object& regex, const Value& subject) {
  EXPECT_EQ(regex.Get("Lasterror").Integer(), 0);
  EXPECT_EQ(regex.Call("Offset", {0}).Integer(), 0);
  EXPECT_EQ(regex.Call("Offset", {1}).Integer(), static_cast<int>(subject.Bytes().size()));
}

// By everything that runs the engine.
void ExpectWholeMatches(Session& session, const Object& regex, const Value& subject) {
  const Value block = session.host.MemoryBlock(subject.Bytes());
  const std::pair<const char*, Values> calls[] = {
      {"Execute", {subject}}, {"Execute", {0}},           {"ExecuteMT", {subject}},
      {"ExecuteMT", {0}},     {"ExecuteMemory", {block}}, {"ExecuteMemoryMT", {block}},
      {"Match", {subject}}};
  for (const auto& [method, arguments] : calls) {
    SCOPED_TRACE(method);
    regex.Call(method, arguments);
    ExpectWhole(regex, subject);
  }
  EXPECT_EQ(regex.Call("Match", {session.host.StringArray({subject})}).Count(), 1U);
  EXPECT_EQ(regex.Call("Match", {session.host.VariantArray({subject})}).Count(), 1U);
  EXPECT_EQ(regex.Call("ReplaceAll", {subject, "N"}).UTF8(), "N");
}

// At the lengths around which stacks of 2 MiB and 8 MiB are full, and, which is costly, by one
// method at the full length.
TEST(DeepSubjects, MatchByEveryMethod) {
  Session session;
  for (const Row& row : kRows) {
    const Object regex = session.Compiled(row.pattern);
    for (const std::size_t length : {2'100U, 8'400U, 17'000U}) {
      SCOPED_TRACE(row.pattern + (" over " + std::to_string(length)));
      ExpectWholeMatches(session, regex, row.subject(std::min(length, row.length)));
    }
    SCOPED_TRACE(row.pattern);
    const Value whole = row.subject(row.length);
    regex.Call("Execute", {whole});
    ExpectWhole(regex, whole);
  }
}

TEST(DeepSubjects, GiveGroupsAndErrorsOfTheirOwnMatchOnly) {
  Session session;
  const Object regex = session.Compiled("(?-U)\\A(x)?(?:(a)|b|(c))*(z)");
  const std::string letters = Letters(60'001);
  EXPECT_EQ(Describe(regex, regex.Call("Execute", {letters + "z"}).Integer()),
            "5 err=0 0-60002 \"" + letters +
                "z\" 1:unset 2:60000-60001 \"a\" 3:unset 4:60001-60002 \"z\"");
  EXPECT_EQ(Describe(regex, regex.Call("Execute", {letters}).Integer()), "-1 err=-1");
  EXPECT_EQ(Describe(regex, regex.Call("Execute", {"az"}).Integer()),
            "5 err=0 0-2 \"az\" 1:unset 2:0-1 \"a\" 3:unset 4:1-2 \"z\"");
}

TEST(DeepSubjects, AreRefusedPastTheDeepStackToo) {
  Session session;
  const Object regex = session.Compiled("(?-U)(?:a|b)*$");
  const Value subject = Letters(6 * kGreedy);
  for (const char* method : {"Execute", "ExecuteMT"}) {
    regex.Call(method, {subject});
    EXPECT_EQ(regex.Get("Lasterror").Integer(), -21) << method;
  }
  EXPECT_EQ(regex.Call("Execute", {"ab"}).Integer(), 1);
}

// The limit that protects the stack is nobody else's: neither the script nor the study block sees
// it, also right after a deep match. The threaded methods obey only what a synchronous match has
// written into the study block.
TEST(DeepSubjects, LeaveTheLimitsToTheScript) {
  Session session;
  const Value deep = Letters(30'000);
  for (const bool studied : {false, true}) {
    const Object regex = session.Compiled("(?-U)\\A(?:(?:a|b)+z|(?:a|b)+$)");
    if (studied) {
      ASSERT_TRUE(regex.Call("Study").Boolean());
      ASSERT_GT(regex.Get("InfoStudySize").Integer(), 0);
    }
    struct Step {
      const char* limit;
      int value;
      const char* method;
      Value subject;
      int result;
    };
    const Step steps[] = {
        {"MatchLimitRecursion", 60, "ExecuteMT", deep, 1},
        {"MatchLimitRecursion", 60, "Execute", deep, -21},
        {"MatchLimitRecursion", 60, "Execute", "abab", 1},
        {"MatchLimitRecursion", 40'000, "Execute", deep, -21},
        {"MatchLimitRecursion", 0, "ExecuteMT", deep, studied ? -21 : 1},
        {"MatchLimitRecursion", 200'000, "Execute", deep, 1},
        {"MatchLimitRecursion", 0, "Execute", deep, 1},
        {"MatchLimitRecursion", 0, "ExecuteMT", deep, 1},
        {"MatchLimitRecursion", 0, "Execute", "abab", 1},
        {"MatchLimit", 50'000, "ExecuteMT", deep, 1},
        {"MatchLimit", 50'000, "Execute", deep, -8},
        {"MatchLimit", 0, "ExecuteMT", deep, studied ? -8 : 1},
        {"MatchLimit", 0, "Match", deep, 1},
    };
    for (int round = 0; round < 2; ++round) {
      for (const auto& [limit, value, method, subject, result] : steps) {
        SCOPED_TRACE(testing::Message() << limit << ' ' << value << ", " << method
                                        << (studied ? ", studied" : ", not studied"));
        regex.Set(limit, value);
        regex.Call(method, {subject});
        const int count = regex.Get("Count").Integer();
        EXPECT_EQ(count > 0 ? count : regex.Get("Lasterror").Integer(), result);
        EXPECT_EQ(regex.Get(limit).Integer(), value);
      }
    }
  }
}

}  // namespace
