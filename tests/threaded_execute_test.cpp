// Execution with the engine on another thread: the same results, while the host stays alive.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>

#include "tests/calls.h"
#include "tests/session.h"

namespace {

using namespace std::string_literals;
using namespace tests;

// A match after many milliseconds of work, and none in the ten million steps that the engine
// allows.
constexpr const char* kSlowPattern = "(?:a+a+)+c|(?:a+a+)+b";
const std::string kSlowSubject = std::string(20, 'a') + "b";
const std::string kHopeless(40, 'a');

TEST(ThreadedExecute, LeavesWhatTheSynchronousMethodsLeave) {
  struct Row {
    const char *pattern, *subject;
    int start;
  };
  const Row rows[] = {
      {"b(.)", "abcbd", 0},
      {"b(.)", "abcbd", 2},
      {"b(.)", "abcbd", 4},
      {"b(.)", "abcbd", 9},
      {"b(.)", "abcbd", -1},
      {"(?<n>é)+", "xéé", 1},
      {"", "", 0},
      {"(x)|(?<y>.)", "zx", 0},
      {"\\x{e9}", "\xF5\xC3\xA9", 0},
      {"(?-U)(a+a+)+c", "aaaaaaaaab", 0},
  };
  OnEachHost([&](Session& session) {
    for (const Row& row : rows) {
      SCOPED_TRACE(row.pattern + " in "s + row.subject);
      const Object one = session.Compiled(row.pattern);
      const Object other = session.Compiled(row.pattern);
      const Value block = session.host.MemoryBlock(row.subject);
      const Values calls[][2] = {{{"Execute"}, {"ExecuteMT", row.subject, row.start}},
                                 {{"ExecuteMemory"}, {"ExecuteMemoryMT", block, row.start}},
                                 {{"Execute"}, {"ExecuteMT", 0}}};
      for (const auto& [synchronous, threaded] : calls) {
        const Values arguments(threaded.begin() + 1, threaded.end());
        one.Call(synchronous.front().UTF8(), arguments);
        const Value count = other.Call(threaded.front().UTF8(), arguments);
        EXPECT_EQ(Describe(other, 0), Describe(one, 0));
        // The threaded methods answer Count; engine failures are in Lasterror only.
        EXPECT_EQ(count.Integer(), other.Get("Count").Integer());
        EXPECT_EQ(other.Get("Text").Bytes(), one.Get("Text").Bytes());
        EXPECT_EQ(other.Get("TextMemory").Bytes(), one.Get("TextMemory").Bytes());
        EXPECT_EQ(other.Call("Replace", {"<\\1>"}).Bytes(), one.Call("Replace", {"<\\1>"}).Bytes());
        EXPECT_EQ(other.Call("OffsetCharacters", {1}).Integer(),
                  one.Call("OffsetCharacters", {1}).Integer());
      }
    }
  });
}

TEST(ThreadedExecute, WalksTheMatchesOfOneSubject) {
  Session session;
  const Object regex = session.Compiled("\\w+?\\b");
  std::string words;
  for (int count = regex.Call("ExecuteMT", {"one two été"}).Integer(); count > 0;
       count = regex.Call("ExecuteMT", {regex.Call("Offset", {1})}).Integer()) {
    words += regex.Call("Substring", {0}).UTF8() + ',';
  }
  EXPECT_EQ(words, "one,two,t,");
  EXPECT_EQ(regex.Get("Lasterror").Integer(), -1);
}

TEST(ThreadedExecute, YieldsAtLeastTwiceAndWithoutAnyYieldingServiceNever) {
  Session session;
  const Object regex = session.Compiled("a");
  for (const Values& arguments : {Values{"a"}, Values{0}}) {
    const auto before = session.host.Calls("REALYieldToRB");
    EXPECT_EQ(regex.Call("ExecuteMT", arguments).Integer(), 1);
    EXPECT_GE(session.host.Calls("REALYieldToRB"), before + 2);
  }
  const auto before = session.host.Calls("REALYieldToRB");
  regex.Call("Execute", {"a"});
  EXPECT_EQ(session.host.Calls("REALYieldToRB"), before);
}

TEST(ThreadedExecute, NeedsNoHostThatYields) {
  Session session({.faults = {{"REALYieldToRB", standin::Fault::Missing()}}});
  EXPECT_EQ(session.Compiled("a").Call("ExecuteMT", {"a"}).Integer(), 1);
}

TEST(ThreadedExecute, GivesTheHostItsTurnsDuringALongMatch) {
  Session session;
  const Object slow = session.Compiled(kSlowPattern);
  const Object other = session.Compiled("(\\d)");
  int turns = 0;
  session.host.AddTask([&] {
    // Other objects work meanwhile, also on threads of their own.
    EXPECT_EQ(other.Call(turns % 2 == 0 ? "Execute" : "ExecuteMT", {"abc1"}).Integer(), 2);
    ++turns;
    return true;
  });
  EXPECT_EQ(slow.Call("ExecuteMT", {kHopeless + "x", 0}).Integer(), 0);
  EXPECT_EQ(slow.Get("Lasterror").Integer(), -8);
  EXPECT_GE(turns, 10);
  EXPECT_EQ(other.Call("Substring", {1}).UTF8(), "1");
}

// A run is decided when it starts: the worker does not see what the program changes meanwhile.
TEST(ThreadedExecute, ReadsTheOptionsOfItsStart) {
  Session session({.shared_objects = true});
  const Object regex = session.Compiled(kSlowPattern);
  session.host.AddTask([&] {
    regex.Set("ExecuteOptionNoUTF8Check", false);
    regex.Set("ExecuteOptionNotEmpty", true);
    regex.Set("MatchLimit", 1);
    return false;
  });
  // The first turn comes before the worker may have begun; the byte is none that an engine that
  // checks its text would take.
  EXPECT_EQ(regex.Call("ExecuteMT", {"\xFF" + kSlowSubject}).Integer(), 1);
  EXPECT_EQ(regex.Get("Lasterror").Integer(), 0);
}

// A native exception of the host's, thrown from a yield, waits for the worker, whatever it is.
TEST(ThreadedExecute, WaitsForItsWorkerWhenAYieldThrows) {
  for (const int at_turn : {1, 2, 5}) {
    Session session;
    int turns = 0;
    session.host.SetFault("REALYieldToRB", {.before = [&] {
                            if (++turns == at_turn) throw standin::NativeException();
                          }});
    auto regex = std::make_unique<Object>(session.Compiled(kSlowPattern));
    const Outcome outcome = regex->TryCall("ExecuteMT", {kHopeless});
    EXPECT_EQ(Raised(outcome), "RuntimeException: Sorry, but there was an unnamed C++ Exception.");
    EXPECT_EQ(outcome.value.Integer(), 0);
    EXPECT_EQ(turns, at_turn);
    session.host.SetFault("REALYieldToRB", {});
    EXPECT_EQ(regex->Call("ExecuteMT", {kSlowSubject}).Integer(), 1);
    regex.reset();
    EXPECT_EQ(session.host.accounts().Living(), 0U);
  }
}

TEST(ThreadedExecute, KeepsTheObjectAliveUntilItsMatchIsOver) {
  for (const char* method : {"ExecuteMT", "ExecuteMemoryMT"}) {
    SCOPED_TRACE(method);
    Session session;
    auto regex = std::make_unique<Object>(session.Compiled(kSlowPattern));
    Value subject = session.host.String(kSlowSubject);
    if (method != "ExecuteMT"s) subject = session.host.MemoryBlock(kSlowSubject);
    Values arguments = {std::move(subject)};
    bool dropped = false;
    session.host.AddTask([&] {
      regex.reset();
      dropped = true;
      return false;
    });
    const Object* const used = regex.get();
    EXPECT_EQ(used->Call(method, arguments).Integer(), 1);
    EXPECT_TRUE(dropped);
    arguments.clear();
    EXPECT_EQ(session.host.accounts().Living(), 0U);
  }
}

TEST(ThreadedExecute, AppliesNoLimitsOfTheScript) {
  Session session;
  const Object regex = session.Compiled("(a|b)+c");
  const std::string subject = "abababababc";
  for (const char* limit : {"MatchLimit", "MatchLimitRecursion"}) {
    SCOPED_TRACE(limit);
    const int error = limit == "MatchLimit"s ? -8 : -21;
    regex.Set(limit, 1);
    EXPECT_EQ(regex.Call("Execute", {subject}).Integer(), error);
    EXPECT_EQ(regex.Call("ExecuteMT", {subject}).Integer(), 2);
    // A study block carries the limits that a synchronous match has written into it.
    ASSERT_TRUE(regex.Call("Study").Boolean());
    ASSERT_GT(regex.Get("InfoStudySize").Integer(), 0);
    EXPECT_EQ(regex.Call("ExecuteMT", {subject}).Integer(), 2);
    EXPECT_EQ(regex.Call("Execute", {subject}).Integer(), error);
    EXPECT_EQ(regex.Call("ExecuteMT", {subject}).Integer(), 0);
    EXPECT_EQ(regex.Get("Lasterror").Integer(), error);
    regex.Set(limit, 0);
    EXPECT_EQ(regex.Call("ExecuteMT", {subject}).Integer(), 0);
    EXPECT_EQ(regex.Call("Execute", {subject}).Integer(), 2);
    EXPECT_EQ(regex.Call("ExecuteMT", {subject}).Integer(), 2);
    regex.Call("Compile", {"(a|b)+c"});
  }
}

TEST(ThreadedExecute, RaisesBeforeAnythingRuns) {
  Session session;
  const Object zero = session.host.NewUninitialised("RegExZRK");
  const Object regex = session.Compiled("a");
  const Object uncompiled = session.New();
  const Value block = session.host.MemoryBlock("abc");
  struct Row {
    const Object& object;
    const char* method;
    Values arguments;
    const char* raised;
  };
  const char* const kZero = "NilObjectException: RegEx class not initialized.";
  const char* const kNil = "NilObjectException: Memoryblock is nil";
  const Value no_block = Value::Nil(Kind::kMemoryBlock);
  const Row rows[] = {
      {zero, "ExecuteMT", {"a"}, kZero},
      {zero, "ExecuteMT", {0}, kZero},
      {zero, "ExecuteMemoryMT", {block}, kZero},
      {zero, "ExecuteMemoryMT", {no_block}, kZero},
      {regex, "ExecuteMemoryMT", {no_block}, kNil},
      {uncompiled, "ExecuteMemoryMT", {no_block}, kNil},
      {regex,
       "ExecuteMemoryMT",
       {block, 0, 4},
       "OutOfBoundsException: Parameter ByteLength to method ExecuteMemoryMT is too big. Range is "
       "0 to 3, but value is 4."},
      {uncompiled, "ExecuteMT", {"a"}, ""},
      {uncompiled, "ExecuteMT", {0}, ""},
      {uncompiled, "ExecuteMemoryMT", {block}, ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.method);
    regex.Call("Execute", {"a"});
    const Outcome outcome = row.object.TryCall(row.method, row.arguments);
    EXPECT_EQ(Raised(outcome), row.raised);
    EXPECT_EQ(outcome.value.Integer(), 0);
    EXPECT_TRUE(row.object.Get("TextMemory").IsNil());
    const int error = &row.object == &zero ? 0 : -99;
    EXPECT_EQ(row.object.Get("Lasterror").Integer(), error);
  }
  EXPECT_EQ(session.host.Calls("REALYieldToRB"), 0U);
}

}  // namespace
