// Stacks on which little is left, or less than they promise: the main thread's where the kernel
// does not extend it, small threads, and stacks of a program's own making.
#include <gtest/gtest.h>
#include <malloc.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/personality.h>
#include <sys/resource.h>
#include <ucontext.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <string>
#include <thread>
#include <tuple>

#include "tests/calls.h"
#include "tests/session.h"

namespace {

using namespace tests;

constexpr const char* kPattern = "(?-U)^(?:a|b)*c";

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

struct Row {
  const char* name;
  bool used_before;
  void (*limit)();
  std::size_t length;
  const char* answers;  // to a short text, to one of that length, and to the short one again
};

const Row kRows[] = {
    {"1 MiB of address space", false, [] { LeaveAddressSpace(1 << 20); }, 7'000, "1 -21 1"},
    {"1 MiB after a search", true, [] { LeaveAddressSpace(1 << 20); }, 7'000, "1 -1 1"},
    {"no address space", false, [] { LeaveAddressSpace(0); }, 2'000, "1 -21 1"},
    {"limit lowered", true, [] { SetLimit(RLIMIT_STACK, 200 << 10); }, 7'000, "1 -1 1"},
    {"limit lifted", false, [] { SetLimit(RLIMIT_STACK, RLIM_INFINITY); }, 1'000'000,
     sizeof(void*) == 4 ? "1 -21 1" : "1 -1 1"},
};

[[noreturn]] void Answer(const Row& row) {
  Session session;
  const Object regex = session.New();
  const Value subject = std::string(row.length, 'a');
  const Values shallow = {"aac", 0};
  const auto search_shallow = [&] {
    regex.Call("Compile", {kPattern});
    return regex.Call("Execute", shallow).Integer();
  };
  if (row.used_before) search_shallow();
  row.limit();
  const int before = search_shallow();
  const int deep = regex.Call("Execute", {subject, 0}).Integer();
  std::fprintf(stderr, "%d %d %d", before, deep, search_shallow());
  std::_Exit(0);
}

void RunRows() {
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.name);
    EXPECT_EXIT(Answer(row), testing::ExitedWithCode(0), row.answers);
  }
}

TEST(ScarceStacks, OfTheMainThreadAreUsedAsFarAsTheKernelGivesThem) { RunRows(); }

// The children start anew, with nothing moving their stack from where the kernel would have it: for
// 32-bit code at the end of the address space. Chance comes near that in one of 70 processes.
TEST(ScarceStacks, AtTheEndOfTheAddressSpaceAreLikeOthers) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto before = static_cast<unsigned long>(personality(0xFFFFFFFF));
  if (personality(before | ADDR_NO_RANDOMIZE) == -1) GTEST_SKIP() << "not allowed here";
  RunRows();
  personality(before);
}

// ---- Small stacks.

// A process may have much of this, and the C library takes it from the stack of every thread.
thread_local volatile char thread_data[256 << 10];

// A thread's, of so many bytes beside that. Threads are made like this from then on.
void OnThread(std::size_t bytes, std::function<void()> test) {
  pthread_attr_t small;
  ASSERT_EQ(pthread_attr_init(&small), 0);
  ASSERT_EQ(pthread_attr_setstacksize(&small, bytes + sizeof thread_data), 0);
  ASSERT_EQ(pthread_setattr_default_np(&small), 0);
  thread_data[0] = 1;
  std::thread(test).join();
}

constexpr unsigned kLargeStack = 4U << 20;

// One that the system knows nothing of, above memory that nobody may touch.
void OnOwnStack(std::size_t bytes, std::function<void()> test) {
  static const std::function<void()>* work;
  work = &test;
  constexpr std::size_t kGuard = 64 << 10;
  alignas(4096) static char memory[kGuard + kLargeStack];
  ASSERT_EQ(mprotect(memory, kGuard, PROT_NONE), 0);
  ucontext_t back;
  ucontext_t context;
  getcontext(&context);
  context.uc_stack.ss_sp = memory + kGuard;
  context.uc_stack.ss_size = bytes;
  context.uc_link = &back;
  makecontext(
      &context, [] { (*work)(); }, 0);
  swapcontext(&back, &context);
}

void CompileStudyAndSearch() {
  Session session;
  const std::string nested = std::string(249, '(') + 'a' + std::string(249, ')');
  const Object groups = session.Compiled(nested);
  EXPECT_TRUE(groups.Call("Study").Boolean());
  EXPECT_EQ(groups.Call("Execute", {"a"}).Integer(), 0) << "more groups than the vector holds";
  const Object regex = session.Compiled(kPattern);
  for (const std::size_t length : {20U, 60U, 100U, 230U, 480U, 7'000U}) {
    const std::string letters(length, 'a');
    EXPECT_EQ(regex.Call("Execute", {letters + "c"}).Integer(), 1) << length;
    EXPECT_EQ(regex.Call("Execute", {letters}).Integer(), -1) << length;
  }
  for (const CallRow& row : CallRows()) {
    Prepared(session).TryCall(row.method, row.arguments(session.host));
  }
}

TEST(ScarceStacks, AreEnoughForEveryMethod) {
  for (const auto& [name, run_on, bytes] : {std::tuple("thread", &OnThread, 128U << 10),
                                            {"own stack", &OnOwnStack, 48U << 10},
                                            {"large own stack", &OnOwnStack, kLargeStack}}) {
    SCOPED_TRACE(name);
    run_on(bytes, CompileStudyAndSearch);
  }
}

}  // namespace
