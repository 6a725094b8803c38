// Stacks on which little is left, or less than they promise: the main thread's where the kernel
// does not extend it, small threads, and stacks of a program's own making.
#include <gtest/gtest.h>
#include <malloc.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <ucontext.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <string>
#include <utility>

#include "tests/session.h"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define ZRK_SANITIZED 1
#elif defined(__has_feature)
#define ZRK_SANITIZED (__has_feature(address_sanitizer) || __has_feature(thread_sanitizer))
#else
#define ZRK_SANITIZED 0
#endif

namespace {

using namespace tests;

constexpr const char* kPattern = "^(?:a|b)*c";
const std::string kNested = std::string(249, '(') + 'a' + std::string(249, ')');

// Frames and address space are not what they are otherwise under a sanitizer.
class ScarceStacks : public testing::Test {
 protected:
  void SetUp() override {
    if (ZRK_SANITIZED) GTEST_SKIP();
  }
};

int Search(const Object& regex, const Value& subject) {
  return regex.Call("Execute", {subject, 0}).Integer();
}

// ---- The main thread's stack, in child processes that limit themselves.

void SetLimit(int which, rlim_t value) {
  rlimit limit;
  getrlimit(which, &limit);
  limit.rlim_cur = value;
  if (setrlimit(which, &limit) != 0) std::perror("setrlimit");
}

// Leaves so much address space, beside what the allocator keeps ready for the test itself.
void LeaveAddressSpace(rlim_t bytes) {
  mallopt(M_TRIM_THRESHOLD, 64 << 20);
  mallopt(M_MMAP_THRESHOLD, 64 << 20);
  std::free(std::malloc(8 << 20));
  rlim_t pages = 0;
  std::ifstream("/proc/self/statm") >> pages;
  SetLimit(RLIMIT_AS, pages * 4096 + bytes);
}

struct MainThreadRow {
  const char* name;
  bool used_before;
  void (*limit)();
  int length;
  int result;
};

const MainThreadRow kMainThreadRows[] = {
    {"1 MiB of address space", false, [] { LeaveAddressSpace(1 << 20); }, 7'000, -21},
    {"1 MiB after a search", true, [] { LeaveAddressSpace(1 << 20); }, 7'000, -1},
    {"no address space", false, [] { LeaveAddressSpace(0); }, 2'000, -21},
    {"limit lowered", true, [] { SetLimit(RLIMIT_STACK, 200 << 10); }, 7'000, -1},
    {"limit lifted", false, [] { SetLimit(RLIMIT_STACK, RLIM_INFINITY); }, 1'000'000,
     sizeof(void*) == 4 ? -21 : -1},
};

[[noreturn]] void RunRow(const MainThreadRow& row) {
  Session session;
  const Object regex = session.New();
  const Value subject = std::string(static_cast<std::size_t>(row.length), 'a');
  const Values shallow = {"aac", 0};
  regex.Set("CompileOptionUngreedy", false);
  const auto works = [&] {
    return regex.Call("Compile", {kPattern}).Boolean() &&
           regex.Call("Execute", shallow).Integer() == 1;
  };
  if (row.used_before && !works()) std::_Exit(2);
  row.limit();
  if (!works()) std::_Exit(3);
  const int result = Search(regex, subject);
  std::fprintf(stderr, "answers %d\n", result);
  std::_Exit(result == row.result && works() ? 0 : 1);
}

TEST_F(ScarceStacks, OfTheMainThreadAreUsedAsFarAsTheKernelGivesThem) {
  for (const MainThreadRow& row : kMainThreadRows) {
    SCOPED_TRACE(row.name);
    EXPECT_EXIT(RunRow(row), testing::ExitedWithCode(0), "");
  }
}

// ---- Small stacks.

// A thread's, of so many bytes.
void OnThread(std::size_t bytes, std::function<void()> test) {
  pthread_attr_t attributes;
  ASSERT_EQ(pthread_attr_init(&attributes), 0);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, bytes), 0);
  pthread_t thread;
  const auto run = [](void* work) -> void* {
    (*static_cast<std::function<void()>*>(work))();
    return nullptr;
  };
  ASSERT_EQ(pthread_create(&thread, &attributes, run, &test), 0);
  pthread_attr_destroy(&attributes);
  pthread_join(thread, nullptr);
}

// One that the system knows nothing of, above memory that nobody may touch.
void OnOwnStack(std::size_t bytes, std::function<void()> test) {
  static const std::function<void()>* work;
  work = &test;
  constexpr std::size_t kGuard = 64 << 10;
  void* const memory = mmap(nullptr, kGuard + bytes, PROT_READ | PROT_WRITE,
                            MAP_PRIVATE | MAP_ANONYMOUS | MAP_STACK, -1, 0);
  ASSERT_NE(memory, MAP_FAILED);
  ASSERT_EQ(mprotect(memory, kGuard, PROT_NONE), 0);
  ucontext_t back;
  ucontext_t context;
  getcontext(&context);
  context.uc_stack.ss_sp = static_cast<char*>(memory) + kGuard;
  context.uc_stack.ss_size = bytes;
  context.uc_link = &back;
  makecontext(
      &context, [] { (*work)(); }, 0);
  swapcontext(&back, &context);
  munmap(memory, kGuard + bytes);
}

struct SmallStackRow {
  const char* name;
  void (*run_on)(std::size_t bytes, std::function<void()> test);
  std::size_t bytes;
};

const SmallStackRow kSmallStackRows[] = {
    {"thread", OnThread, 128 << 10},
    {"own stack", OnOwnStack, 48 << 10},
    {"large own stack", OnOwnStack, 4 << 20},
};

TEST_F(ScarceStacks, CompileStudyAndSearch) {
  for (const SmallStackRow& row : kSmallStackRows) {
    SCOPED_TRACE(row.name);
    row.run_on(row.bytes, [] {
      Session session;
      const Object regex = session.New();
      regex.Set("CompileOptionUngreedy", false);
      EXPECT_TRUE(regex.Call("Compile", {kNested}).Boolean());
      EXPECT_TRUE(regex.Call("Study").Boolean());
      EXPECT_EQ(Search(regex, "a"), 0);  // more groups than the vector has room for
      EXPECT_TRUE(regex.Call("Compile", {kPattern}).Boolean());
      for (const int length : {20, 60, 100, 7'000}) {
        const std::string letters(static_cast<std::size_t>(length), 'a');
        EXPECT_EQ(Search(regex, letters + "c"), 1) << length;
        EXPECT_EQ(Search(regex, letters), -1) << length;
      }
    });
  }
}

}  // namespace
