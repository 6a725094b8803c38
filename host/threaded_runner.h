// Runs one piece of work on another thread while the host stays alive.
#ifndef ZRK_HOST_THREADED_RUNNER_H
#define ZRK_HOST_THREADED_RUNNER_H

#include <functional>

#include "host/quiet_thread.h"

namespace zrk {

// Runs the work on another thread and returns when it has ended. [host thread]
//
// Meanwhile the host gets its turn through "REALYieldToRB", about once a millisecond and at least
// twice, and `idle` is called on this thread after each turn. Either may be empty. Where no thread
// can be had the work is not run, and nothing says so: the caller prepares what it reads
// afterwards. May throw std::bad_alloc before anything has started. What a yield or an idle call
// throws goes on to the caller once the work has ended.
void RunThreaded(const ThreadWork& work, const std::function<void()>& idle);

}  // namespace zrk

#endif  // ZRK_HOST_THREADED_RUNNER_H
