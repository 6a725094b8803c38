#include "regex/stack_depth.h"

#include <pcre.h>
#include <pthread.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstddef>

namespace zrk {

namespace {

constexpr std::size_t kDeepStackBytes = std::size_t{sizeof(void*) == 8 ? 1024U : 256U} << 20;
constexpr std::size_t kGuardBytes = 64 << 10;
// Where the thread's bounds are not known, this much below the present frame is taken for stack.
constexpr std::size_t kAssumedBytes = 64 << 10;
// For what the engine calls besides its recursion, and for a signal handler.
constexpr std::size_t kReservedBytes = 16 << 10;

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

struct StackBounds {
  std::uintptr_t low = 0;
  std::uintptr_t high = 0;
  bool looked_up = false;
};

StackBounds LookUpBounds() {
  StackBounds bounds{.looked_up = true};
  pthread_attr_t attributes;
  if (pthread_getattr_np(pthread_self(), &attributes) != 0) return bounds;
  void* low = nullptr;
  std::size_t size = 0;
  std::size_t guard = 0;
  if (pthread_attr_getstack(&attributes, &low, &size) == 0 &&
      pthread_attr_getguardsize(&attributes, &guard) == 0 && guard < size) {
    bounds.high = reinterpret_cast<std::uintptr_t>(low) + size;
    bounds.low = reinterpret_cast<std::uintptr_t>(low) + guard;
  }
  pthread_attr_destroy(&attributes);
  return bounds;
}

// Looking up reads the process map for the main thread, so each thread does it once.
thread_local constinit StackBounds bounds_of_thread;

// What the engine may have of so much stack.
std::size_t UsableOf(std::size_t bytes) {
  if (bytes <= kReservedBytes) return 0;
  return std::min<std::size_t>(bytes - kReservedBytes, UINT32_MAX);
}

void PublishMainStack(const StackBounds& bounds) {
  if (getpid() != gettid()) return;
  const std::size_t usable = UsableOf(bounds.high - bounds.low);
  main_stack.low.store(bounds.high - usable, std::memory_order_relaxed);
  main_stack.bytes.store(usable, std::memory_order_release);
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

 private:
  void* memory_;
};

struct DeepWork {
  void (*work)(void*, unsigned long);
  void* data;
};

void* RunDeepWork(void* record) {
  const auto* deep = static_cast<const DeepWork*>(record);
  deep->work(deep->data, LevelsIn(UsableOf(kDeepStackBytes - kGuardBytes)));
  return nullptr;
}

}  // namespace

const std::uint64_t kLevelsPerByte = (std::uint64_t{1} << 32) / FrameBytes();

MainStack main_stack;

unsigned long LevelsLeftOnThread(std::uintptr_t here) noexcept {
  StackBounds& bounds = bounds_of_thread;
  if (!bounds.looked_up) {
    bounds = LookUpBounds();
    PublishMainStack(bounds);
  }
  const bool known = here > bounds.low && here < bounds.high;
  return LevelsIn(UsableOf(known ? here - bounds.low : kAssumedBytes));
}

bool RunOnDeepStack(void (*work)(void*, unsigned long), void* data) noexcept {
  const DeepStack stack;
  if (!stack.IsUsable()) return false;
  pthread_attr_t attributes;
  if (pthread_attr_init(&attributes) != 0) return false;
  DeepWork deep{work, data};
  pthread_t thread{};
  const bool started = pthread_attr_setstack(&attributes, stack.memory(), kDeepStackBytes) == 0 &&
                       pthread_create(&thread, &attributes, RunDeepWork, &deep) == 0;
  pthread_attr_destroy(&attributes);
  if (started) pthread_join(thread, nullptr);
  return started;
}

}  // namespace zrk
