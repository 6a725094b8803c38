// How deep the engine may recurse on the stack at hand, and a deep stack for what needs more.
#ifndef ZRK_REGEX_STACK_DEPTH_H
#define ZRK_REGEX_STACK_DEPTH_H

#include <atomic>
#include <cstdint>

namespace zrk {

// Levels of the engine's recursion to a byte of stack, in units of 2^-32 and rounded down: a
// division at every match would cost as much as all else that is done about its depth.
extern const std::uint64_t kLevelsPerByte;

// How many levels so many bytes of usable stack hold; the bytes are a number of 32 bits.
inline unsigned long LevelsIn(std::uintptr_t bytes) {
  return static_cast<unsigned long>(bytes * kLevelsPerByte >> 32);
}

// The usable part of the main thread's stack, empty until it is known. That stack lives as long as
// the process, so an address in it tells whose it is without a look at the thread.
struct MainStack {
  std::atomic<std::uintptr_t> low;
  std::atomic<std::uintptr_t> bytes;  // written last
};
extern MainStack main_stack;

// The levels below an address on the calling thread's stack, whichever that is.
[[gnu::noinline]] unsigned long LevelsLeftOnThread(std::uintptr_t here) noexcept;

// How many levels of the engine's recursion the calling thread's stack holds from here on; 0 where
// not even one fits. [any thread]
inline unsigned long LevelsLeftOnStack() noexcept {
  const volatile char here_byte = 0;
  const auto here = reinterpret_cast<std::uintptr_t>(&here_byte);
  const std::uintptr_t bytes = main_stack.bytes.load(std::memory_order_acquire);
  const std::uintptr_t left = here - main_stack.low.load(std::memory_order_relaxed);
  return left < bytes ? LevelsIn(left) : LevelsLeftOnThread(here);
}

// Runs work(data, levels) on a thread with a deep stack and returns when it has ended; levels is
// what that stack holds. False where no such thread can be had: the work was not run. [any thread]
bool RunOnDeepStack(void (*work)(void* data, unsigned long levels), void* data) noexcept;

}  // namespace zrk

#endif  // ZRK_REGEX_STACK_DEPTH_H
