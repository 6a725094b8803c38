// Execution with the engine on another thread: the same results, while the host stays alive.
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>

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
      {"b(.)", "abcbd", 0},     {"b(.)", "abcbd", 2},           {"b(.)", "abcbd", 4},
      {"b(.)", "abcbd", 9},     {"b(.)", "abcbd", -1},          {"", "", 0},
      {"(x)|(?<y>.)", "zx", 0}, {"\\x{e9}", "\xF5\xC3\xA9", 0}, {"(?-U)(a+a+)+c", "aaaaaaaaab", 0},
  };
  OnEachHost([&](Session& session) {
    for (const auto& [pattern, subject, start] : rows) {
      SCOPED_TRACE(pattern + " in "s + subject);
      const Object one = session.Compiled(pattern);
      const Object other = session.Compiled(pattern);
      const Value block = session.host.MemoryBlock(subject);
      const std::pair<std::string, Values> calls[] = {
          {"Execute", {subject, start}}, {"ExecuteMemory", {block, start}}, {"Execute", {0}}};
      for (const auto& [method, arguments] : calls) {
        const auto yields = session.host.Calls("REALYieldToRB");
        one.Call(method, arguments);
        EXPECT_EQ(session.host.Calls("REALYieldToRB"), yields);
        const Value count = other.Call(method + "MT", arguments);
        EXPECT_GE(session.host.Calls("REALYieldToRB"), yields + 2);
        EXPECT_EQ(Describe(other, 0), Describe(one, 0)) << method;
        EXPECT_EQ(other.Get("Text").Bytes(), one.Get("Text").Bytes()) << method;
        EXPECT_EQ(other.Get("TextMemory").Bytes(), one.Get("TextMemory").Bytes()) << method;
        // The threaded methods answer Count; engine failures are in Lasterror only.
        EXPECT_EQ(count.Integer(), other.Get("Count").Integer()) << method;
      }
    }
  });
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
  EXPECT_EQ(Describe(slow, slow.Call("ExecuteMT", {kHopeless}).Integer()), "0 err=-8");
  EXPECT_GE(turns, 10);
}

// A run is decided when it starts: the worker does not see what the program changes meanwhile.
TEST(ThreadedExecute, ReadsTheOptionsOfItsStart) {
  Session session({.shared_objects = true});
  const Object regex = session.Compiled(kSlowPattern);
  session.host.AddTask([&] {
    regex.Set("ExecuteOptionNoUTF8Check", false);
    regex.Set("ExecuteOptionAnchored", true);
    regex.Set("MatchLimit", 1);
    return false;
  });
  // The first turn comes before the worker may have begun. Anchored there would be no match, and
  // the first byte is none that an engine that checks its text would take.
  EXPECT_EQ(regex.Call("ExecuteMT", {"\xFF" + kSlowSubject}).Integer(), 1);
  EXPECT_EQ(regex.Get("Lasterror").Integer(), 0);
}

// A native exception of the host's, thrown from a yield, waits for the worker, whatever it is.
TEST(ThreadedExecute, WaitsForItsWorkerWhenAYieldThrows) {
  Session session;
  const Object regex = session.Compiled(kSlowPattern);
  for (const int at_turn : {1, 2, 5}) {
    SCOPED_TRACE(at_turn);
    int turns = 0;
    session.host.SetFault("REALYieldToRB", {.before = [&] {
                            if (++turns == at_turn) throw standin::NativeException();
                          }});
    const auto start = std::chrono::steady_clock::now();
    const Outcome outcome = regex.TryCall("ExecuteMT", {kHopeless});
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(20));
    EXPECT_EQ(Show(regex, outcome),
              "0 err=-99 RuntimeException: Sorry, but there was an unnamed C++ Exception.");
    EXPECT_EQ(turns, at_turn);
    session.host.SetFault("REALYieldToRB", {});
    EXPECT_EQ(regex.Call("ExecuteMT", {kSlowSubject}).Integer(), 1);
  }
}

TEST(ThreadedExecute, KeepsTheObjectAliveUntilItsMatchIsOver) {
  Session session;
  const Value block = session.host.MemoryBlock(kSlowSubject);
  const std::pair<const char*, Values> calls[] = {
      {"ExecuteMT", {kSlowSubject}}, {"ExecuteMT", {0}}, {"ExecuteMemoryMT", {block}}};
  const auto before = session.host.accounts().Living();
  for (const auto& [method, arguments] : calls) {
    SCOPED_TRACE(method);
    auto regex = std::make_unique<Object>(session.Compiled(kSlowPattern));
    regex->Call("Execute", {kSlowSubject});
    session.host.AddTask([&] {
      regex.reset();
      return false;
    });
    EXPECT_EQ(regex.get()->Call(method, arguments).Integer(), 1);
    EXPECT_EQ(regex, nullptr);
    EXPECT_EQ(session.host.accounts().Living(), before);
  }
}

TEST(ThreadedExecute, RaisesBeforeAnythingRuns) {
  Session session;
  const Object zero = session.host.NewUninitialised("RegExZRK");
  const Object regex = session.Compiled("a");
  const Object uncompiled = session.New();
  const Value block = session.host.MemoryBlock("abc");
  const Value no_block = Value::Nil(Kind::kMemoryBlock);
  struct Row {
    const Object& object;
    const char* method;
    Values arguments;
    std::string outcome;
  };
  const std::string zero_raises = "0 err=0 NilObjectException: RegEx class not initialized.";
  const std::string nil_raises = "0 err=-99 NilObjectException: Memoryblock is nil";
  const Row rows[] = {
      {zero, "ExecuteMT", {"a"}, zero_raises},
      {zero, "ExecuteMT", {0}, zero_raises},
      {zero, "ExecuteMemoryMT", {no_block}, zero_raises},
      {regex, "ExecuteMemoryMT", {no_block}, nil_raises},
      {uncompiled, "ExecuteMemoryMT", {no_block}, nil_raises},
      {regex,
       "ExecuteMemoryMT",
       {block, 0, 4},
       "0 err=-99 " + OutOfBounds("ByteLength", "ExecuteMemoryMT", 4, 3)},
      {uncompiled, "ExecuteMT", {"a"}, "0 err=-99"},
      {uncompiled, "ExecuteMT", {0}, "0 err=-99"},
      {uncompiled, "ExecuteMemoryMT", {block}, "0 err=-99"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::Message() << "row " << &row - rows << ", " << row.method);
    EXPECT_EQ(Try(row.object, row.method, row.arguments), row.outcome);
    EXPECT_TRUE(row.object.Get("TextMemory").IsNil());
  }
  EXPECT_EQ(session.host.Calls("REALYieldToRB"), 0U);
}

}  // namespace
