// How much stack the engine may use where it is called, and a deep stack for what needs more.
//
// The engine recurses on the machine's stack. What a thread has left is measured at the call, from
// the address at hand to the end of what may be used: the C library keeps records and thread data
// on the same stack, so the size that a thread was made with says little.
#ifndef ZRK_REGEX_STACK_DEPTH_H
#define ZRK_REGEX_STACK_DEPTH_H

#include <cstddef>
#include <functional>

namespace zrk {

// Bytes of stack that the engine may use from here on, with room kept for what it calls besides its
// recursion: at most 8 MiB, and 0 where nothing is known about the stack at hand. [any thread]
std::size_t StackLeft() noexcept;

// How many levels of the matcher's recursion so many bytes of stack hold.
unsigned long LevelsIn(std::size_t stack_bytes) noexcept;

// Runs work(stack_bytes) on a thread with a deep stack and returns when it has ended; stack_bytes
// is what StackLeft would answer there, without its limit. False where no such thread can be had:
// the work, which must not throw, was not run. [any thread]
bool RunOnDeepStack(const std::function<void(std::size_t stack_bytes)>& work) noexcept;

}  // namespace zrk

#endif  // ZRK_REGEX_STACK_DEPTH_H
