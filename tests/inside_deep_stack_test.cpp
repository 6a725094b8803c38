// What the deep stack comes to where the system cannot give it. The product is linked in, so that
// this program's own functions can stand in front of the system's.
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/mman.h>

#include <cerrno>
#include <string>
#include <thread>
#include <vector>

#include "host/state.h"
#include "standin/host.h"
#include "tests/session.h"

extern "C" void REALPluginMain(zrk::HostResolver resolver);

namespace {

// Which call of pthread_create fails, counted from 1; 0 for none, kEvery for all.
constexpr int kEvery = -1;
int failing_create = 0;
int creates = 0;
bool no_memory = false;
bool no_bounds = false;

}  // namespace

extern "C" {
int __real_pthread_create(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
int __real_pthread_getattr_np(pthread_t, pthread_attr_t*);
void* __real_mmap(void*, std::size_t, int, int, int, off_t);

int __wrap_pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                          void* (*start)(void*), void* argument) {
  ++creates;
  if (failing_create == kEvery || failing_create == creates) return EAGAIN;
  return __real_pthread_create(thread, attributes, start, argument);
}

int __wrap_pthread_getattr_np(pthread_t thread, pthread_attr_t* attributes) {
  return no_bounds ? ENOMEM : __real_pthread_getattr_np(thread, attributes);
}

void* __wrap_mmap(void* address, std::size_t length, int protection, int flags, int file,
                  off_t offset) {
  return no_memory ? MAP_FAILED : __real_mmap(address, length, protection, flags, file, offset);
}
}

namespace {

using namespace standin;

const std::string kDeep(60'000, 'a');

class DeepStack : public testing::Test {
 protected:
  ~DeepStack() override {
    failing_create = 0;
    no_memory = no_bounds = false;
  }
};

// Runs a test with a host of its own on a thread whose stack nobody has looked at yet.
template <typename Test>
void OnFreshThread(Test test) {
  std::thread([&] {
    standin::Host host;
    REALPluginMain(&standin::Host::Resolve);
    {
      const Object regex = host.New("RegExZRK");
      regex.Set("CompileOptionUngreedy", false);
      creates = 0;
      test(regex);
    }
    EXPECT_EQ(host.Problems(), std::vector<std::string>());
  }).join();
}

TEST_F(DeepStack, AnswersTheRecursionLimitWhereItCannotBeHad) {
  OnFreshThread([](const Object& regex) {
    regex.Call("Compile", {"(?:a|b)*$"});
    EXPECT_EQ(regex.Call("Execute", {kDeep}).Integer(), 1);
    for (const bool out_of_memory : {false, true}) {
      no_memory = out_of_memory;
      failing_create = out_of_memory ? 0 : kEvery;
      EXPECT_EQ(regex.Call("Execute", {kDeep}).Integer(), -21);
      EXPECT_EQ(regex.Get("Lasterror").Integer(), -21);
      EXPECT_FALSE(regex.Call("Match", {kDeep}).Boolean());
      EXPECT_EQ(regex.Call("ReplaceAll", {kDeep, "N"}).UTF8(), kDeep);
      EXPECT_EQ(regex.Call("Execute", {"ab"}).Integer(), 1);
    }
    failing_create = 0;
    no_memory = false;
    EXPECT_EQ(regex.Call("Execute", {kDeep}).Integer(), 1);
  });
}

// A host with stacks of its own: nothing is counted on, though the thread would have had room.
TEST_F(DeepStack, IsTakenAtOnceWhereTheThreadsBoundsAreNotKnown) {
  const std::string subject(1'000, 'a');
  for (const bool unknown : {false, true}) {
    no_bounds = unknown;
    OnFreshThread([&](const Object& regex) {
      regex.Call("Compile", {"(?:a|b)*$"});
      EXPECT_EQ(creates, unknown ? 1 : 0);
      EXPECT_EQ(regex.Call("Execute", {subject}).Integer(), 1);
      EXPECT_EQ(creates, unknown ? 2 : 0);
      EXPECT_EQ(regex.Call("Offset", {1}).Integer(), 1'000);
      EXPECT_TRUE(regex.Call("Study").Boolean());
      EXPECT_EQ(creates, unknown ? 3 : 0);
    });
  }
}

TEST_F(DeepStack, IsMissedByCompileAndStudyWithAnException) {
  no_bounds = true;
  OnFreshThread([](const Object& regex) {
    const auto raised = [&](const char* method, const Values& arguments) {
      no_memory = true;
      const Outcome outcome = regex.TryCall(method, arguments);
      no_memory = false;
      return tests::Raised(outcome);
    };
    const char* const kShort = "OutOfMemoryException: Failed to allocate memory.";
    regex.Call("Compile", {"a+b"});
    EXPECT_EQ(raised("Study", {}), kShort);
    EXPECT_EQ(regex.Call("Execute", {"ab"}).Integer(), 1);
    EXPECT_EQ(raised("Compile", {"a+c"}), kShort);
    EXPECT_EQ(regex.Call("Execute", {"ab"}).Integer(), 0);
    EXPECT_TRUE(regex.Call("Compile", {"a+c"}).Boolean());
    EXPECT_EQ(regex.Call("Execute", {"ac"}).Integer(), 1);
  });
}

TEST_F(DeepStack, DoesNotHelpPastAPatternsOwnLimit) {
  OnFreshThread([](const Object& regex) {
    for (const auto& [pattern, result] : {std::pair("(*LIMIT_RECURSION=100)(?:a|b)*$", -21),
                                          std::pair("(*LIMIT_RECURSION=900000)(?:a|b)*$", 1)}) {
      creates = 0;
      regex.Call("Compile", {pattern});
      EXPECT_EQ(regex.Call("Execute", {kDeep}).Integer(), result);
      EXPECT_EQ(creates, result > 0 ? 1 : 0);
    }
  });
}

// Sizing and building may ask the engine the same question twice, and a system that could not give
// a stack at first may give one later: what was not sized is not written.
TEST_F(DeepStack, ThatComesBackBetweenTwoPassesWritesNoMoreThanWasSized) {
  OnFreshThread([](const Object& regex) {
    const std::string deep(20'000, 'a');
    const std::string shallow(60'000, 'x');
    const std::string sized(480'000, 'x');
    regex.Call("Compile", {"x|(?:a|b)+$"});
    for (const auto& [failing, rest] : {std::pair(1, deep), std::pair(2, deep)}) {
      creates = 0;
      failing_create = failing;
      const Value result = regex.Call("ReplaceAll", {shallow + deep, "\\0\\0\\0\\0\\0\\0\\0\\0"});
      EXPECT_TRUE(result.UTF8() == sized + rest) << failing << ": " << result.UTF8().size();
    }
  });
}

}  // namespace
