// The host's thread starts the work and polls a flag, since waiting on a condition would stop the
// host. Where the process has a dispatch queue the work goes there, otherwise to a POSIX thread.
#include "host/threaded_runner.h"

#include <pthread.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <memory>

#include "host/services.h"

// The dispatch library's own declarations in short; both are null where the process has none.
extern "C" {
[[gnu::weak]] void* dispatch_get_global_queue(std::intptr_t priority, std::uintptr_t flags);
[[gnu::weak]] void dispatch_async_f(void* queue, void* context, void (*function)(void*));
}

namespace zrk {

namespace {

constexpr std::size_t kWorkerStackBytes = 0x200000;

constexpr std::timespec kOneMillisecond{0, 1'000'000};

// Set once, by the worker; orders all that the work wrote before what its caller reads afterwards.
using DoneFlag = std::atomic<bool>;

// [worker]
void Run(const ThreadWork& work, DoneFlag& done) {
  if (work) work();
  done.store(true, std::memory_order_release);
}

bool IsDone(const DoneFlag& done) { return done.load(std::memory_order_acquire); }

// A yield or an idle call may leave by a native exception.
void KeepHostAliveUntilDone(const DoneFlag& done, const std::function<void()>& idle) {
  REALYieldToRB();
  while (!IsDone(done)) {
    REALYieldToRB();
    nanosleep(&kOneMillisecond, nullptr);
    if (idle) idle();
  }
  REALYieldToRB();
  if (idle) idle();
}

// The worker uses what its callers own, so nothing leaves before it has ended.
struct WaitForWorker {
  const DoneFlag& done;
  ~WaitForWorker() {
    while (!IsDone(done)) nanosleep(&kOneMillisecond, nullptr);
  }
};
struct JoinWorker {
  pthread_t thread;
  ~JoinWorker() { pthread_join(thread, nullptr); }
};

// What goes to the queue. The flag is shared, since the queue's thread may still be inside its last
// use of it when the waiting side has gone on.
struct QueuedRun {
  const ThreadWork& work;
  std::shared_ptr<DoneFlag> done;
};

void RunThreadedBlocks(void* record) {
  const std::unique_ptr<QueuedRun> run(static_cast<QueuedRun*>(record));
  Run(run->work, *run->done);
}

void RunOnQueue(const ThreadWork& work, const std::function<void()>& idle) {
  const auto done = std::make_shared<DoneFlag>(false);
  auto run = std::make_unique<QueuedRun>(QueuedRun{work, done});
  dispatch_async_f(dispatch_get_global_queue(0, 0), run.release(), RunThreadedBlocks);
  const WaitForWorker wait{*done};
  KeepHostAliveUntilDone(*done, idle);
}

bool StartThread(pthread_t& thread, const ThreadWork& run) {
  pthread_attr_t attributes;
  if (pthread_attr_init(&attributes) != 0) return false;
  pthread_attr_setstacksize(&attributes, kWorkerStackBytes);
  const bool started = CreateQuietThread(thread, attributes, run);
  pthread_attr_destroy(&attributes);
  return started;
}

void RunOnThread(const ThreadWork& work, const std::function<void()>& idle) {
  DoneFlag done = false;
  const auto run_and_tell = [&] { Run(work, done); };
  const ThreadWork run = std::ref(run_and_tell);
  pthread_t thread{};
  if (!StartThread(thread, run)) return;
  const JoinWorker join{thread};
  KeepHostAliveUntilDone(done, idle);
}

}  // namespace

void RunThreaded(const ThreadWork& work, const std::function<void()>& idle) {
  const bool has_queue = dispatch_async_f != nullptr && dispatch_get_global_queue != nullptr;
  (has_queue ? RunOnQueue : RunOnThread)(work, idle);
}

}  // namespace zrk
