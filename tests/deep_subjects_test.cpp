// Subjects that take the engine deeper than a thread's stack: they get their answer all the same,
// whatever thread the script runs on.
#include <gtest/gtest.h>
#include <pthread.h>

#include <algorithm>
#include <functional>
#include <string>

#include "tests/calls.h"
#include "tests/session.h"

namespace {

using namespace tests;

// What the deep stack is promised to hold; lazy quantifiers take half of it for each character.
constexpr int kGreedy = sizeof(void*) == 4 ? 250'000 : 500'000;
constexpr int kLazy = 2 * kGreedy;

std::string Repeated(const std::string& unit, int length) {
  std::string text;
  while (static_cast<int>(text.size()) < length) text += unit;
  text.resize(static_cast<std::size_t>(length));
  return text;
}

std::string Nested(int length) {
  const auto half = static_cast<std::size_t>(length) / 2;
  return std::string(half, '(') + std::string(half, ')');
}

std::string Shallow(int length) { return '(' + Repeated("ab", length - 2) + ')'; }
std::string Letters(int length) { return Repeated("ab", length); }
std::string Lines(int length) { return Repeated("a\n", length - 1) + 'z'; }

struct Row {
  const char* pattern;
  std::string (*subject)(int length);
  int length;
  bool ungreedy = false;
};

const Row kRows[] = {
    {"(?:a|b)*$", Letters, kGreedy},
    {"(?:a|b)*$", Letters, kLazy, true},
    {"(?:.|\\n)*z", Lines, kGreedy},
    {"(?:.|\\n)*z", Lines, kLazy, true},
    {"(a|b)+", Letters, kGreedy},
    {"(?:(?:a|c)|(?:b))*$", Letters, kGreedy / 2},
    {"\\((?:[^()]|(?R))*\\)", Shallow, kGreedy},
    // The engine looks through all open recursions at each, so time grows with the square here.
    {"\\((?:[^()]|(?R))*\\)", Nested, 6'000},
};

Object CompiledFor(Session& session, const Row& row) {
  Object regex = session.New();
  regex.Set("CompileOptionUngreedy", row.ungreedy);
  EXPECT_TRUE(regex.Call("Compile", {row.pattern}).Boolean());
  return regex;
}

// Everything that runs the engine, and whether it found the whole subject.
struct Method {
  const char* name;
  bool (*matches_whole)(Session&, const Object&, const Value& subject);
};

bool IsWhole(const Object& regex, const Value& subject) {
  return regex.Get("Lasterror").Integer() == 0 && regex.Call("Offset", {0}).Integer() == 0 &&
         regex.Call("Offset", {1}).Integer() == static_cast<int>(subject.Bytes().size());
}

bool ExecuteBytes(Session& session, const Object& regex, const Value& subject, const char* method) {
  const Value block = session.host.MemoryBlock(subject.Bytes());
  return regex.Call(method, {block}).Integer() > 0 && IsWhole(regex, subject);
}

bool ExecuteText(const Object& regex, const Value& subject, const char* method) {
  return regex.Call(method, {subject}).Integer() > 0 && IsWhole(regex, subject) &&
         regex.Call("ExecuteMT", {0}).Integer() > 0 && IsWhole(regex, subject);
}

const Method kMethods[] = {
    {"Execute",
     [](Session&, const Object& regex, const Value& subject) {
       return regex.Call("Execute", {subject, 0}).Integer() > 0 && IsWhole(regex, subject);
     }},
    {"ExecuteMT", [](Session&, const Object& regex,
                     const Value& subject) { return ExecuteText(regex, subject, "ExecuteMT"); }},
    {"ExecuteMemory",
     [](Session& session, const Object& regex, const Value& subject) {
       return ExecuteBytes(session, regex, subject, "ExecuteMemory");
     }},
    {"ExecuteMemoryMT",
     [](Session& session, const Object& regex, const Value& subject) {
       return ExecuteBytes(session, regex, subject, "ExecuteMemoryMT");
     }},
    {"Match",
     [](Session&, const Object& regex, const Value& subject) {
       return regex.Call("Match", {subject}).Boolean() && IsWhole(regex, subject);
     }},
    {"Match of an array",
     [](Session& session, const Object& regex, const Value& subject) {
       return regex.Call("Match", {session.host.StringArray({subject, "--"})}).Count() >= 1;
     }},
    {"Match of variants",
     [](Session& session, const Object& regex, const Value& subject) {
       return regex.Call("Match", {session.host.VariantArray({subject, "--"})}).Count() >= 1;
     }},
    {"ReplaceAll",
     [](Session&, const Object& regex, const Value& subject) {
       return regex.Call("ReplaceAll", {subject, "N"}).UTF8() == "N";
     }},
};

void TryRow(Session& session, const Row& row, int length) {
  length = std::min(length, row.length);
  SCOPED_TRACE(std::string(row.pattern) + (row.ungreedy ? " lazily" : "") + " over " +
               std::to_string(length));
  const Value subject = row.subject(length);
  const Object regex = CompiledFor(session, row);
  for (const Method& method : kMethods) {
    EXPECT_TRUE(method.matches_whole(session, regex, subject)) << method.name;
  }
}

// A process may have much of this, and the C library takes it from the stack of every thread.
thread_local volatile char thread_data[256 << 10];

// Runs a test on a thread with a small stack.
void OnSmallStack(std::function<void()> test) {
  pthread_attr_t attributes;
  ASSERT_EQ(pthread_attr_init(&attributes), 0);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, (256 << 10) + sizeof thread_data), 0);
  pthread_t thread;
  const auto run = [](void* work) -> void* {
    thread_data[0] = 1;
    (*static_cast<std::function<void()>*>(work))();
    return nullptr;
  };
  ASSERT_EQ(pthread_create(&thread, &attributes, run, &test), 0);
  pthread_attr_destroy(&attributes);
  pthread_join(thread, nullptr);
}

// Each row at its full length by one method, which is costly, and by all at the lengths around
// which stacks of 256 KiB, 2 MiB and 8 MiB are full.
TEST(DeepSubjects, MatchAtTheirFullLength) {
  Session session;
  std::size_t next = 0;
  for (const Row& row : kRows) {
    SCOPED_TRACE(std::string(row.pattern) + (row.ungreedy ? " lazily" : ""));
    const Method& method = kMethods[next++ % std::size(kMethods)];
    const Value subject = row.subject(row.length);
    EXPECT_TRUE(method.matches_whole(session, CompiledFor(session, row), subject)) << method.name;
  }
}

TEST(DeepSubjects, MatchByEveryMethod) {
  Session session;
  for (const Row& row : kRows) {
    for (const int length : {2'100, 8'400, 17'000}) TryRow(session, row, length);
  }
}

TEST(DeepSubjects, MatchOnASmallStack) {
  OnSmallStack([] {
    Session session;
    for (const Row& row : kRows) {
      for (const int length : {100, 230, 480, 5'000}) TryRow(session, row, length);
    }
  });
}

TEST(DeepSubjects, GiveGroupsAndErrorsOfTheirOwnMatchOnly) {
  Session session;
  const Object regex = session.New();
  regex.Set("CompileOptionUngreedy", false);
  regex.Call("Compile", {"\\A(x)?(?:(a)|b|(c))*(z)"});
  const std::string letters = Letters(60'001);
  EXPECT_EQ(tests::Describe(regex, regex.Call("Execute", {letters + "z"}).Integer()).substr(0, 17),
            "5 err=0 0-60002 \"");
  EXPECT_EQ(regex.Call("Offset", {2}).Integer(), -1);
  EXPECT_EQ(regex.Call("Offset", {4}).Integer(), 60'000);
  EXPECT_EQ(regex.Call("Offset", {6}).Integer(), -1);
  EXPECT_EQ(regex.Call("Execute", {letters}).Integer(), -1);
  EXPECT_EQ(tests::Describe(regex, regex.Call("Execute", {"az"}).Integer()),
            "5 err=0 0-2 \"az\" 1:unset 2:0-1 \"a\" 3:unset 4:1-2 \"z\"");
}

void TryPastTheDeepStack() {
  Session session;
  const Row row = {"(?:a|b)*$", Letters, 6 * kGreedy};
  const Object regex = CompiledFor(session, row);
  const Value subject = row.subject(row.length);
  for (const char* method : {"Execute", "ExecuteMT"}) {
    regex.Call(method, {subject, 0});
    EXPECT_EQ(regex.Get("Lasterror").Integer(), -21) << method;
  }
  EXPECT_EQ(regex.Call("Execute", {"ab"}).Integer(), 1);
}

TEST(DeepSubjects, AreRefusedPastTheDeepStackToo) {
  TryPastTheDeepStack();
  OnSmallStack(TryPastTheDeepStack);
}

// The limit that protects the stack is nobody else's: neither the script nor the study block sees
// it, also right after a deep match.
TEST(DeepSubjects, LeaveTheLimitsToTheScript) {
  Session session;
  const Value deep = Letters(30'000);
  for (const bool studied : {false, true}) {
    SCOPED_TRACE(studied ? "studied" : "not studied");
    const Object regex = session.New();
    regex.Set("CompileOptionUngreedy", false);
    regex.Call("Compile", {"\\A(?:(?:a|b)+z|(?:a|b)+$)"});
    if (studied) {
      ASSERT_TRUE(regex.Call("Study").Boolean());
      ASSERT_GT(regex.Get("InfoStudySize").Integer(), 0);
    }
    const auto execute = [&](const char* limit, int value, const Value& subject) {
      regex.Set(limit, value);
      const int result = regex.Call("Execute", {subject, 0}).Integer();
      EXPECT_EQ(regex.Get(limit).Integer(), value);
      return result;
    };
    for (int round = 0; round < 2; ++round) {
      EXPECT_EQ(execute("MatchLimitRecursion", 0, deep), 1);
      EXPECT_EQ(execute("MatchLimitRecursion", 60, deep), -21);
      EXPECT_EQ(execute("MatchLimitRecursion", 60, "abab"), 1);
      EXPECT_EQ(execute("MatchLimitRecursion", 40'000, deep), -21);
      EXPECT_EQ(regex.Call("ExecuteMT", {deep}).Integer(), studied ? 0 : 1);
      EXPECT_EQ(execute("MatchLimitRecursion", 200'000, deep), 1);
      EXPECT_EQ(execute("MatchLimitRecursion", 0, deep), 1);
      EXPECT_EQ(regex.Call("ExecuteMT", {deep}).Integer(), 1);
      EXPECT_EQ(execute("MatchLimit", 50'000, deep), -8);
      EXPECT_EQ(execute("MatchLimit", 0, deep), 1);
      EXPECT_EQ(regex.Call("Match", {deep}).Boolean(), true);
    }
  }
}

}  // namespace
