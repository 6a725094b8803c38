// Runs one piece of work on another thread while the host stays alive.
#ifndef ZRK_HOST_THREADED_RUNNER_H
#define ZRK_HOST_THREADED_RUNNER_H

namespace zrk {

// Runs work(data) on another thread and returns when it has ended. [host thread]
//
// Meanwhile the host gets its turn through "REALYieldToRB", about once a millisecond and at least
// twice, and idle(data), where given, is called on this thread after each turn. Work may be null
// and must not throw. Where no thread can be had the work is not run, and nothing says so: the
// caller prepares what it reads afterwards. May throw std::bad_alloc before anything has started.
// What a yield or an idle call throws goes on to the caller once the work has ended.
void RunThreaded(void* data, void (*work)(void*), void (*idle)(void*));

}  // namespace zrk

#endif  // ZRK_HOST_THREADED_RUNNER_H
