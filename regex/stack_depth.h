// How deep the engine may recurse on the stack at hand, and a deep stack for what needs more.
#ifndef ZRK_REGEX_STACK_DEPTH_H
#define ZRK_REGEX_STACK_DEPTH_H

namespace zrk {

// How many levels of the engine's recursion the calling thread's stack holds from here on; 0 where
// not even one fits. [any thread]
unsigned long LevelsLeftOnStack() noexcept;

// Runs work(data, levels) on a thread with a deep stack and returns when it has ended; levels is
// what that stack holds. False where no such thread can be had: the work was not run. [any thread]
bool RunOnDeepStack(void (*work)(void* data, unsigned long levels), void* data) noexcept;

}  // namespace zrk

#endif  // ZRK_REGEX_STACK_DEPTH_H
