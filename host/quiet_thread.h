// Threads of the library's own, on which no code of the program runs.
#ifndef ZRK_HOST_QUIET_THREAD_H
#define ZRK_HOST_QUIET_THREAD_H

#include <pthread.h>

#include <functional>

namespace zrk {

// What a thread does. It must not throw, and has to live until the thread has ended. Made from a
// std::ref it needs no memory.
using ThreadWork = std::function<void()>;

// Creates a thread with every signal blocked: the program's handlers would not expect to run there,
// on a stack that was measured for something else. False, with nothing created, where the system
// refuses. [any thread]
bool CreateQuietThread(pthread_t& thread, const pthread_attr_t& attributes,
                       const ThreadWork& work) noexcept;

}  // namespace zrk

#endif  // ZRK_HOST_QUIET_THREAD_H
