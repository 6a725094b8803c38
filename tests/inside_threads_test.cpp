// The threaded runner itself, in the forms and failures that no method of the class reaches, and
// what objects on several threads share.
#include <gtest/gtest.h>
#include <pthread.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <string>
#include <thread>
#include <vector>

#include "host/state.h"
#include "host/threaded_runner.h"
#include "regex/compile.h"
#include "regex/engine.h"
#include "regex/execute.h"
#include "regex/match.h"
#include "regex/replace.h"
#include "regex/stack_depth.h"
#include "standin/host.h"

extern "C" void REALPluginMain(zrk::HostResolver resolver);

namespace {

bool no_thread = false;
bool no_attributes = false;

}  // namespace

// What the product calls instead of the two functions, and the functions themselves.
extern "C" {
int __real_pthread_create(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
int __real_pthread_attr_init(pthread_attr_t*);

int __wrap_pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                          void* (*start)(void*), void* argument) {
  return no_thread ? EAGAIN : __real_pthread_create(thread, attributes, start, argument);
}

int __wrap_pthread_attr_init(pthread_attr_t* attributes) {
  return no_attributes ? ENOMEM : __real_pthread_attr_init(attributes);
}
}

namespace {

struct Seen {
  int works = 0;
  int idles = 0;
  bool on_caller = true;
  std::thread::id caller = std::this_thread::get_id();
};

void Work(Seen& seen) {
  ++seen.works;
  seen.on_caller = std::this_thread::get_id() == seen.caller;
}

void SlowWork(Seen& seen) {
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  Work(seen);
}

// On the caller's thread only, and so beside the worker's fields.
void Idle(Seen& seen) {
  ++seen.idles;
  EXPECT_EQ(std::this_thread::get_id(), seen.caller);
}

// How many of six signals are blocked on the calling thread.
int CountBlocked() {
  sigset_t mask;
  pthread_sigmask(SIG_BLOCK, nullptr, &mask);
  int blocked = 0;
  for (const int signal : {SIGINT, SIGALRM, SIGCHLD, SIGUSR1, SIGPROF, SIGRTMAX}) {
    blocked += sigismember(&mask, signal);
  }
  return blocked;
}

class ThreadedRunner : public testing::Test {
 protected:
  ThreadedRunner() { REALPluginMain(&standin::Host::Resolve); }
  ~ThreadedRunner() override {
    no_thread = no_attributes = false;
    EXPECT_EQ(host_.Problems(), std::vector<std::string>());
  }
  unsigned Yields() const { return static_cast<unsigned>(host_.Calls("REALYieldToRB")); }

  standin::Host host_;
  Seen seen_;
};

TEST_F(ThreadedRunner, RunsTheWorkOnAnotherThreadAndIdlesOnThisOne) {
  zrk::RunThreaded([&] { SlowWork(seen_); }, [&] { Idle(seen_); });
  EXPECT_EQ(seen_.works, 1);
  EXPECT_FALSE(seen_.on_caller);
  EXPECT_GE(seen_.idles, 2);
  // A turn before the first look, one in each cycle and one at the end; an idle call in each cycle
  // and one at the end.
  EXPECT_EQ(Yields(), static_cast<unsigned>(seen_.idles) + 1);
}

TEST_F(ThreadedRunner, NeedsNeitherWorkNorIdle) {
  zrk::RunThreaded(nullptr, [&] { Idle(seen_); });
  EXPECT_EQ(seen_.works, 0);
  EXPECT_GE(seen_.idles, 1);
  EXPECT_GE(Yields(), 2U);
  zrk::RunThreaded([&] { Work(seen_); }, nullptr);
  EXPECT_EQ(seen_.works, 1);
  zrk::RunThreaded(nullptr, nullptr);
}

TEST_F(ThreadedRunner, DoesNothingWhereNoThreadCanBeHad) {
  for (bool* const missing : {&no_thread, &no_attributes}) {
    *missing = true;
    zrk::RunThreaded([&] { Work(seen_); }, [&] { Idle(seen_); });
    EXPECT_EQ(seen_.works, 0);
    EXPECT_EQ(seen_.idles, 0);
    EXPECT_EQ(Yields(), 0U);
    *missing = false;
  }
  zrk::RunThreaded([&] { Work(seen_); }, [&] { Idle(seen_); });
  EXPECT_EQ(seen_.works, 1);
}

// A handler of the program would run on a stack that was measured for something else.
TEST_F(ThreadedRunner, AndTheDeepStackTakeNoSignals) {
  int blocked = 0;
  zrk::RunThreaded([&] { blocked = CountBlocked(); }, nullptr);
  EXPECT_EQ(blocked, 6);
  blocked = 0;
  EXPECT_TRUE(zrk::RunOnDeepStack([&](std::size_t) { blocked = CountBlocked(); }));
  EXPECT_EQ(blocked, 6);
  EXPECT_EQ(CountBlocked(), 0);
}

// What the engine's calls share is right for several threads at once, each with a pattern of its
// own.
TEST(Engine, RunsOnSeveralThreadsAtOnce) {
  const std::string shallow(20, 'a');
  const std::string deep(20'000, 'a');
  const auto search = [&] {
    const char* error = nullptr;
    int offset = 0;
    pcre* const code = pcre_compile("(?:a|b)*$", 0, &error, &offset, nullptr);
    std::vector<std::int32_t> vector(30);
    zrk::RegExClassData data{};
    data.Handle = code;
    data.Vector = vector.data();
    data.VectorSize = 30;
    for (int round = 0; round < 50; ++round) {
      const std::string& text = round % 10 == 0 ? deep : shallow;
      zrk::EngineCall call = zrk::PrepareCall(data);
      zrk::SubjectBytes subject{text};
      zrk::SetSubject(call, &subject, 0);
      EXPECT_EQ(zrk::RunEngine(call), 1);
      EXPECT_EQ(vector[1], call.length);
    }
    pcre_free(code);
  };
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) threads.emplace_back(search);
  for (std::thread& thread : threads) thread.join();
}

TEST_F(ThreadedRunner, WaitsForTheWorkWhenAnIdleCallThrows) {
  const auto throwing_idle = [] { throw standin::NativeException(); };
  EXPECT_THROW(zrk::RunThreaded([&] { SlowWork(seen_); }, throwing_idle), standin::NativeException);
  EXPECT_EQ(seen_.works, 1);
}

// A program may give each of its threads an object. This host lacks every service, so what the
// threads share is the library's own.
TEST(Objects, MayEachHaveAThread) {
  static std::atomic<int> asked;
  asked = 0;
  zrk::ConnectHost([](const char*) -> zrk::HostFunction {
    ++asked;
    return nullptr;
  });
  static unsigned char pattern_bytes[] = "\0(?:a|b)+c";
  static unsigned char text_bytes[] = "\0abababababc, and another abc";
  const auto search = [] {
    zrk::REALstringStruct pattern{pattern_bytes, sizeof pattern_bytes - 2, zrk::kEncodingUTF8};
    zrk::REALstringStruct text{text_bytes, sizeof text_bytes - 2, zrk::kEncodingUTF8};
    for (int i = 0; i < 200; ++i) {
      zrk::RegExClassData data{};
      zrk::RegExConstructor(data, 0);
      ASSERT_TRUE(zrk::rb_pcre_compile2(data, &pattern));
      ASSERT_EQ(zrk::rb_pcre_exec(data, &text, 0), 1);
      ASSERT_EQ(zrk::rb_pcre_execAgain(data, 11), 1);
      ASSERT_TRUE(zrk::Match(data, &text));
      EXPECT_EQ(zrk::ReplaceAll(data, &text, nullptr), nullptr) << "this host builds no strings";
      zrk::RegExDestructor(data);
    }
  };
  std::thread others[] = {std::thread(search), std::thread(search), std::thread(search)};
  for (std::thread& other : others) other.join();
  EXPECT_GT(asked, 0);
}

}  // namespace
