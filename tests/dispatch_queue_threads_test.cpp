// Where the process has a dispatch queue, the work goes there. This program has one: the two
// functions below are found by the library when it is loaded. All tests of the threaded methods run
// here once more.
#include <gtest/gtest.h>

#include <chrono>
#include <list>
#include <thread>

#include "tests/session.h"

namespace {

using namespace tests;

struct Queue {
  bool at_once = false;  // the work is done when it is handed over
  int works = 0;
  std::list<std::jthread> threads;
} queue;

}  // namespace

extern "C" {

void* dispatch_get_global_queue(std::intptr_t priority, std::uintptr_t flags) {
  return priority == 0 && flags == 0 ? &queue : nullptr;
}

void dispatch_async_f(void* target, void* context, void (*function)(void*)) {
  EXPECT_EQ(target, &queue);
  ++queue.works;
  if (queue.at_once) return function(context);
  // Each thread holds address space until it is joined.
  if (queue.threads.size() == 8) queue.threads.pop_front();
  queue.threads.emplace_back([=] {
    std::this_thread::sleep_for(std::chrono::milliseconds(2));  // a queue may be busy
    function(context);
  });
}
}

namespace {

// Many times, since the worker may still hold its share of the record when the waiting side has
// gone on.
TEST(DispatchQueue, IsGivenTheWork) {
  Session session;
  const Object regex = session.Compiled("b(.)(x)?");
  for (const bool at_once : {true, false}) {
    SCOPED_TRACE(at_once ? "at once" : "on a thread");
    queue.at_once = at_once;
    queue.works = 0;
    for (int i = 0; i < 200; ++i) {
      ASSERT_EQ(Describe(regex, regex.Call("ExecuteMT", {"abcbd"}).Integer()),
                "2 err=0 1-3 \"bc\" 1:2-3 \"c\" 2:unset");
    }
    EXPECT_EQ(queue.works, 200);
  }
}

}  // namespace
