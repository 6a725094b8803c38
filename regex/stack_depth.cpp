#include "regex/stack_depth.h"

#include <pcre.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdint>

#include "host/quiet_thread.h"

namespace zrk {

namespace {

constexpr std::size_t kDeepStackBytes = std::size_t{sizeof(void*) == 8 ? 1024U : 256U} << 20;
constexpr std::size_t kGuardBytes = 64 << 10;
// As much as the main thread usually may have. A search that goes deeper than the stack at hand
// costs 1.5 ms for the fresh memory of another, against 70 us in place (3,000 characters).
constexpr std::size_t kMostBytes = 8 << 20;
// For what the engine calls besides its recursion, for a signal handler, and for the frame that
// StackLeft is inlined into: it measures from that frame's upper end, and ReplaceAll's is 4 KiB.
constexpr std::size_t kReservedBytes = 24 << 10;
// The kernel may give the main thread more later; with less than this it is asked again.
constexpr std::size_t kScarceBytes = 128 << 10;

// The engine tells the size of one level when it is called like this; an engine that keeps its
// frames on the heap needs no limit (pcre_config, PCRE_CONFIG_STACKRECURSE).
std::uint32_t FrameBytes() {
  int recurses_on_stack = 1;
  pcre_config(PCRE_CONFIG_STACKRECURSE, &recurses_on_stack);
  if (recurses_on_stack == 0) return 1;
  constexpr int kAskForFrameSize = -999;
  const int answer =
      pcre_exec(nullptr, nullptr, nullptr, kAskForFrameSize, kAskForFrameSize, 0, nullptr, 0);
  constexpr int kCautiousGuess = 1024;
  return static_cast<std::uint32_t>(answer < 0 ? -answer : kCautiousGuess);
}

const std::uint32_t kFrameBytes = FrameBytes();

std::uintptr_t Here() { return reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0)); }

// Differences, not sums: 32-bit code may have its main stack at the very end of the address space.
std::size_t BytesBetween(std::uintptr_t low, std::uintptr_t high) {
  return high > low ? high - low : 0;
}

std::size_t WithoutReserve(std::size_t bytes) {
  return bytes > kReservedBytes ? bytes - kReservedBytes : 0;
}

// Whether a byte of the calling thread's own stack, below all that is in use, can be written. A
// store there would make the kernel extend the main thread's stack or, where memory, an address
// space limit or the stack's limit does not allow it, end the process. A system call that stores
// there extends the stack as well, and is refused with an error code.
bool IsGiven(std::uintptr_t address) {
  constexpr std::size_t kSignalSetBytes = 8;
  return syscall(SYS_rt_sigprocmask, SIG_BLOCK, nullptr, reinterpret_cast<void*>(address),
                 kSignalSetBytes) == 0;
}

struct Stack {
  std::uintptr_t high = 0;   // 0 until it is known
  std::uintptr_t low = 0;    // where it ends at the latest
  std::uintptr_t given = 0;  // how far down it may be used: what was given once stays
};

// Left as it is where the system does not tell.
void LookUp(Stack& stack) {
  pthread_attr_t attributes;
  if (pthread_getattr_np(pthread_self(), &attributes) != 0) return;
  void* low = nullptr;
  std::size_t size = 0;
  std::size_t guard = 0;
  if (pthread_attr_getstack(&attributes, &low, &size) == 0 &&
      pthread_attr_getguardsize(&attributes, &guard) == 0 && guard < size) {
    stack.low = reinterpret_cast<std::uintptr_t>(low) + guard;
    stack.high = stack.given = reinterpret_cast<std::uintptr_t>(low) + size;
  }
  pthread_attr_destroy(&attributes);
}

// Asks for all that may be used from here on, or the half of it, and so on.
void Extend(Stack& stack, std::uintptr_t here) {
  std::size_t bytes = std::min<std::size_t>(here - stack.low, kMostBytes);
  while (bytes > kReservedBytes && !IsGiven(here - bytes)) bytes /= 2;
  if (bytes > kReservedBytes) stack.given = std::min(stack.given, here - bytes);
}

// Looking up reads the process map for the main thread, so each thread does it once.
thread_local constinit Stack stack_of_thread;

// The same of the main thread, whose stack lives as long as the process: an address in it tells
// whose it is. That saves a search 3 ns, the price of a look at the thread's data.
constinit std::atomic<std::uintptr_t> main_given = 0;
constinit std::atomic<std::uintptr_t> main_high = 0;  // written last, read first

[[gnu::cold, gnu::noinline]] std::size_t LeftOnThread(std::uintptr_t here) {
  Stack& stack = stack_of_thread;
  if (stack.high == 0) LookUp(stack);
  // Outside what the system calls this thread's stack: one of the program's own making.
  if (here <= stack.low || here >= stack.high) return 0;
  if (BytesBetween(stack.given, here) < kScarceBytes && stack.given > stack.low) {
    Extend(stack, here);
  }
  if (getpid() == gettid()) {
    main_given.store(stack.given, std::memory_order_relaxed);
    main_high.store(stack.high, std::memory_order_release);
  }
  return WithoutReserve(BytesBetween(stack.given, here));
}

class DeepStack {
 public:
  DeepStack()
      : memory_(mmap(nullptr, kDeepStackBytes, PROT_READ | PROT_WRITE,
                     MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE | MAP_STACK, -1, 0)) {
    if (IsUsable()) mprotect(memory_, kGuardBytes, PROT_NONE);
  }
  ~DeepStack() {
    if (IsUsable()) munmap(memory_, kDeepStackBytes);
  }
  DeepStack(const DeepStack&) = delete;
  DeepStack& operator=(const DeepStack&) = delete;

  bool IsUsable() const { return memory_ != MAP_FAILED; }
  void* memory() const { return memory_; }
  std::uintptr_t low() const { return reinterpret_cast<std::uintptr_t>(memory_) + kGuardBytes; }

 private:
  void* memory_;
};

}  // namespace

std::size_t StackLeft() noexcept {
  const std::uintptr_t here = Here();
  const std::uintptr_t high = main_high.load(std::memory_order_acquire);
  const std::size_t left = BytesBetween(main_given.load(std::memory_order_relaxed), here);
  return here < high && left > kScarceBytes ? WithoutReserve(left) : LeftOnThread(here);
}

unsigned long LevelsIn(std::size_t stack_bytes) noexcept { return stack_bytes / kFrameBytes; }

bool RunOnDeepStack(const std::function<void(std::size_t)>& work) noexcept {
  const DeepStack stack;
  if (!stack.IsUsable()) return false;
  pthread_attr_t attributes;
  if (pthread_attr_init(&attributes) != 0) return false;
  const auto measure_and_run = [&] { work(WithoutReserve(Here() - stack.low())); };
  const ThreadWork run = std::ref(measure_and_run);
  pthread_t thread{};
  const bool started = pthread_attr_setstack(&attributes, stack.memory(), kDeepStackBytes) == 0 &&
                       CreateQuietThread(thread, attributes, run);
  pthread_attr_destroy(&attributes);
  if (started) pthread_join(thread, nullptr);
  return started;
}

}  // namespace zrk
