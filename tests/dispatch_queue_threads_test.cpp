// Where the process has a dispatch queue, the work goes there. This program has one: the two
// functions below are found by the library when it is loaded.
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <list>
#include <string>
#include <thread>
#include <utility>

#include "tests/session.h"

namespace {

using namespace tests;

int queue_of_the_process;

// What the queue does with a piece of work; threads are joined at the end of each test.
enum class Mood { kPrompt, kSlow, kAtOnce };

struct Queue {
  Mood mood = Mood::kPrompt;
  int works = 0;
  std::list<std::thread> threads;

  void Join() {
    for (std::thread& thread : threads) thread.join();
    threads.clear();
  }
};

Queue queue;

}  // namespace

extern "C" {

[[gnu::visibility("default")]] void* dispatch_get_global_queue(std::intptr_t priority,
                                                               std::uintptr_t flags) {
  return priority == 0 && flags == 0 ? &queue_of_the_process : nullptr;
}

[[gnu::visibility("default")]] void dispatch_async_f(void* target, void* context,
                                                     void (*function)(void*)) {
  if (target != &queue_of_the_process) return;
  ++queue.works;
  if (queue.mood == Mood::kAtOnce) return function(context);
  const bool slow = queue.mood == Mood::kSlow;
  queue.threads.emplace_back([=] {
    if (slow) std::this_thread::sleep_for(std::chrono::milliseconds(50));
    function(context);
  });
}
}

namespace {

TEST(DispatchQueue, RunsWhatTheThreadedMethodsRun) {
  struct Row {
    Mood mood;
    int turns;
  };
  for (const Row& row : {Row{Mood::kPrompt, 2}, Row{Mood::kAtOnce, 2}, Row{Mood::kSlow, 5}}) {
    queue.mood = row.mood;
    queue.works = 0;
    {
      Session session;
      const Object regex = session.Compiled("b(.)(x)?");
      const tests::Value block = session.host.MemoryBlock("abcbd");
      EXPECT_EQ(regex.Call("ExecuteMT", {"abcbd"}).Integer(), 2);
      EXPECT_EQ(tests::Describe(regex, 2), "2 err=0 1-3 \"bc\" 1:2-3 \"c\" 2:unset");
      EXPECT_GE(session.host.Calls("REALYieldToRB"), static_cast<unsigned>(row.turns));
      EXPECT_EQ(regex.Call("ExecuteMT", {3}).Integer(), 2);
      EXPECT_EQ(regex.Call("ExecuteMemoryMT", {block, 1}).Integer(), 2);
      EXPECT_EQ(regex.Call("ExecuteMT", {"xyz"}).Integer(), 0);
      EXPECT_EQ(regex.Get("Lasterror").Integer(), -1);
      EXPECT_EQ(queue.works, 4);
    }
    queue.Join();
  }
}

// The worker may still hold its share of the record when the waiting side has gone on.
TEST(DispatchQueue, SharesTheRecordUntilBothSidesHaveLetGo) {
  queue.mood = Mood::kPrompt;
  {
    Session session;
    const Object regex = session.Compiled("b");
    for (int i = 0; i < 200; ++i) ASSERT_EQ(regex.Call("ExecuteMT", {"abc"}).Integer(), 1);
  }
  queue.Join();
}

// The work uses what the waiting side owns: also an exception waits for it.
TEST(DispatchQueue, IsWaitedForWhenAYieldThrows) {
  queue.mood = Mood::kSlow;
  {
    Session session;
    bool thrown = false;
    session.host.SetFault("REALYieldToRB", {.before = [&] {
                            if (!std::exchange(thrown, true)) throw standin::NativeException();
                          }});
    const Object regex = session.Compiled("b");
    const auto start = std::chrono::steady_clock::now();
    const auto outcome = regex.TryCall("ExecuteMT", {"abc"});
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(50));
    EXPECT_EQ(tests::Raised(outcome),
              "RuntimeException: Sorry, but there was an unnamed C++ Exception.");
    EXPECT_EQ(regex.Call("ExecuteMT", {"abc"}).Integer(), 1);
  }
  queue.Join();
}

}  // namespace
