// Threads and deep stacks where the system refuses them, the runner in the forms that no method of
// the class reaches, and what objects on several threads share. The product is linked in, so that
// this program's own functions can stand in front of the system's.
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/mman.h>

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
#include "regex/execute.h"
#include "regex/match.h"
#include "regex/replace.h"
#include "standin/host.h"
#include "tests/calls.h"

extern "C" void REALPluginMain(zrk::HostResolver resolver);

namespace {

// What the system refuses.
struct Refused {
  int create = 0;  // the call of pthread_create, counted from 1; kEvery for all
  bool attributes = false;
  bool bounds = false;
  bool memory = false;
};
constexpr int kEvery = -1;
Refused refused;

std::atomic<int> creates = 0;
std::atomic<bool> created_quiet = false;  // the last thread, by one whose signals are blocked

bool AreSignalsBlocked() {
  sigset_t mask;
  pthread_sigmask(SIG_BLOCK, nullptr, &mask);
  return sigismember(&mask, SIGINT) == 1 && sigismember(&mask, SIGRTMAX) == 1;
}

}  // namespace

// What the product calls instead of the functions, and the functions themselves.
extern "C" {
int __real_pthread_create(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
int __real_pthread_attr_init(pthread_attr_t*);
int __real_pthread_getattr_np(pthread_t, pthread_attr_t*);
void* __real_mmap(void*, std::size_t, int, int, int, off_t);

int __wrap_pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                          void* (*start)(void*), void* argument) {
  created_quiet = AreSignalsBlocked();
  const int call = ++creates;
  if (refused.create == kEvery || refused.create == call) return EAGAIN;
  return __real_pthread_create(thread, attributes, start, argument);
}

int __wrap_pthread_attr_init(pthread_attr_t* attributes) {
  return refused.attributes ? ENOMEM : __real_pthread_attr_init(attributes);
}

int __wrap_pthread_getattr_np(pthread_t thread, pthread_attr_t* attributes) {
  return refused.bounds ? ENOMEM : __real_pthread_getattr_np(thread, attributes);
}

void* __wrap_mmap(void* address, std::size_t length, int protection, int flags, int file,
                  off_t offset) {
  if (refused.memory) return MAP_FAILED;
  return __real_mmap(address, length, protection, flags, file, offset);
}
}

namespace {

using namespace tests;

const std::string kDeep(60'000, 'a');

// Runs a test with a host of its own on a thread whose stack nobody has looked at yet. What names a
// row has to be said there.
template <typename Test>
void OnFreshThread(Test test) {
  std::thread([&] {
    standin::Host host;
    REALPluginMain(&standin::Host::Resolve);
    refused = {};
    creates = 0;
    test(host);
    refused = {};
    EXPECT_EQ(host.Problems(), std::vector<std::string>());
  }).join();
}

Object Compiled(standin::Host& host, const char* pattern) {
  Object regex = host.New("RegExZRK");
  EXPECT_TRUE(regex.Call("Compile", {pattern}).Boolean());
  return regex;
}

TEST(Runner, IdlesOnItsOwnThreadWhileAnotherWorks) {
  OnFreshThread([](standin::Host& host) {
    const auto caller = std::this_thread::get_id();
    int works = 0;
    unsigned idles = 0;
    const auto work = [&] {
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
      ++works;
      EXPECT_NE(std::this_thread::get_id(), caller);
    };
    const auto idle = [&] {
      ++idles;
      EXPECT_EQ(std::this_thread::get_id(), caller);
    };
    zrk::RunThreaded(work, idle);
    EXPECT_GE(idles, 2U);
    // A turn before the first look, one in each cycle and one at the end; an idle call in each
    // cycle and one at the end.
    EXPECT_EQ(host.Calls("REALYieldToRB"), idles + 1);
    zrk::RunThreaded(nullptr, idle);
    zrk::RunThreaded(work, nullptr);
    EXPECT_EQ(works, 2);
    const auto throwing_idle = [] { throw standin::NativeException(); };
    EXPECT_THROW(zrk::RunThreaded(work, throwing_idle), standin::NativeException);
    EXPECT_EQ(works, 3) << "waits for the work";
  });
}

// A handler of the program would run on a stack that was measured for something else. A thread
// begins with its creator's mask.
TEST(Threads, TakeNoSignals) {
  OnFreshThread([](standin::Host& host) {
    const Object regex = Compiled(host, "(?-U)(?:a|b)*$");
    for (const auto& [method, subject] :
         {std::pair("ExecuteMT", "ab"), {"Execute", kDeep.c_str()}}) {
      created_quiet = false;
      EXPECT_EQ(Try(regex, method, {subject}), "1 err=0");
      EXPECT_TRUE(created_quiet) << method;
      EXPECT_FALSE(AreSignalsBlocked()) << method;
    }
  });
}

TEST(Threads, AreDoneWithoutWhereTheyCannotBeHad) {
  struct Row {
    const char* name;
    Refused refused;
    const char* threaded;
  };
  const Row rows[] = {
      {"threads", {.create = kEvery}, "0 err=-99"},
      {"attributes", {.attributes = true}, "0 err=-99"},
      {"memory", {.memory = true}, "2 err=0"},
  };
  for (const Row& row : rows) {
    OnFreshThread([&](standin::Host& host) {
      SCOPED_TRACE(row.name);
      const Object regex = Compiled(host, "(?-U)(?:(a)|b)*$");
      EXPECT_EQ(Try(regex, "Execute", {kDeep}), "2 err=0");
      refused = row.refused;
      EXPECT_EQ(Try(regex, "Execute", {kDeep}), "-21 err=-21");
      EXPECT_EQ(regex.Call("Offset", {2}).Integer(), 0) << "of a match that was not finished";
      EXPECT_FALSE(regex.Call("Match", {kDeep}).Boolean());
      EXPECT_EQ(regex.Call("ReplaceAll", {kDeep, "N"}).UTF8(), kDeep);
      EXPECT_EQ(Try(regex, "ExecuteMT", {"ab"}), row.threaded);
      EXPECT_EQ(host.Calls("REALYieldToRB") > 0, *row.threaded == '2');
      EXPECT_EQ(Try(regex, "Execute", {"ab"}), "2 err=0");
      refused = {};
      EXPECT_EQ(Try(regex, "ExecuteMT", {kDeep}), "2 err=0");
    });
  }
}

// A host with stacks of its own: nothing is counted on, though the thread would have had room.
TEST(DeepStack, IsTakenAtOnceWhereTheThreadsBoundsAreNotKnown) {
  for (const bool unknown : {false, true}) {
    OnFreshThread([&](standin::Host& host) {
      SCOPED_TRACE(unknown);
      refused.bounds = unknown;
      const Object regex = Compiled(host, "a+b");
      EXPECT_EQ(Try(regex, "Execute", {std::string(1'000, 'a') + 'b'}), "1 err=0");
      EXPECT_TRUE(regex.Call("Study").Boolean());
      EXPECT_EQ(creates, unknown ? 3 : 0);
      refused.memory = true;
      const std::string raised = unknown ? "OutOfMemoryException: Failed to allocate memory." : "";
      EXPECT_EQ(Raised(regex.TryCall("Study")), raised);
      EXPECT_EQ(Raised(regex.TryCall("Compile", {"a+c"})), raised);
      refused.memory = false;
      EXPECT_EQ(Try(regex, "Execute", {"ac"}), unknown ? "0 err=-99" : "1 err=0");
      EXPECT_TRUE(regex.Call("Compile", {"a+c"}).Boolean());
      EXPECT_EQ(Try(regex, "Execute", {"ac"}), "1 err=0");
    });
  }
}

// What it may need is a number that 32 bits do not hold.
TEST(DeepStack, IsTakenForAPatternOfManyMegabytes) {
  OnFreshThread([](standin::Host& host) {
    const std::string pattern = "(?x)" + std::string((64 << 20) - 5, ' ') + 'a';
    EXPECT_EQ(Try(Compiled(host, pattern.c_str()), "Execute", {"a"}), "1 err=0");
    EXPECT_EQ(creates, 1);
  });
}

TEST(DeepStack, DoesNotHelpPastAPatternsOwnLimit) {
  OnFreshThread([](standin::Host& host) {
    const Object low = Compiled(host, "(*LIMIT_RECURSION=100)(?-U)(?:a|b)*$");
    const Object high = Compiled(host, "(*LIMIT_RECURSION=900000)(?-U)(?:a|b)*$");
    EXPECT_EQ(Try(low, "Execute", {kDeep}), "-21 err=-21");
    EXPECT_EQ(creates, 0);
    EXPECT_EQ(Try(high, "Execute", {kDeep}), "1 err=0");
    EXPECT_EQ(creates, 1);
  });
}

// Where a result outgrows its room, the rest is searched once for its size and once more to be
// replaced. A system that could not give a stack at first may give one later, or the other way
// round: what was not sized finds room all the same.
TEST(DeepStack, ThatIsMissedOnceLeavesRoomForWhatIsFound) {
  struct Row {
    int failing;
    std::size_t deep_size;
  };
  for (const Row& row : {Row{1, 20'019}, Row{2, 20'000}}) {
    OnFreshThread([&](standin::Host& host) {
      SCOPED_TRACE(row.failing);
      const Object regex = Compiled(host, "(?-U)x|(?:a|b)+$");
      const std::string target = std::string(60'000, 'x') + std::string(20'000, 'a');
      refused.create = row.failing;
      const Value result = regex.Call("ReplaceAll", {target, "\\0" + std::string(19, '-')});
      EXPECT_EQ(result.Bytes().size(), 60'000 * 20 + row.deep_size);
      EXPECT_EQ(creates, 2);
    });
  }
}

// The first byte of a host's text is not part of it.
zrk::REALstringStruct TextOf(std::string& bytes) {
  return {reinterpret_cast<unsigned char*>(bytes.data()),
          static_cast<std::int32_t>(bytes.size()) - 1, zrk::kEncodingUTF8};
}

// A program may give each of its threads an object. This host lacks every service, so what the
// threads share is the library's own.
TEST(Objects, MayEachHaveAThread) {
  zrk::ConnectHost([](const char*) -> zrk::HostFunction { return nullptr; });
  std::string pattern_bytes = ".(?-U)(?:a|b)+c";
  std::string shallow_bytes = ".abababababc, and another abc";
  std::string deep_bytes = '.' + std::string(20'000, 'a') + "c, and another abc";
  const auto search = [&] {
    zrk::REALstringStruct pattern = TextOf(pattern_bytes);
    zrk::REALstringStruct texts[] = {TextOf(shallow_bytes), TextOf(deep_bytes)};
    for (int round = 0; round < 200; ++round) {
      zrk::REALstringStruct* const text = &texts[round % 50 == 0 ? 1 : 0];
      zrk::RegExClassData data{};
      zrk::RegExConstructor(data, 0);
      ASSERT_TRUE(zrk::rb_pcre_compile2(data, &pattern));
      ASSERT_EQ(zrk::rb_pcre_exec(data, text, 0), 1);
      ASSERT_EQ(zrk::rb_pcre_execAgain(data, data.Vector[1]), 1);
      ASSERT_TRUE(zrk::Match(data, text));
      EXPECT_EQ(zrk::ReplaceAll(data, text, nullptr), nullptr) << "this host builds no strings";
      zrk::RegExDestructor(data);
    }
  };
  std::thread threads[] = {std::thread(search), std::thread(search), std::thread(search)};
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
