// The host's thread starts the work and polls a flag, since waiting on a condition would stop the
// host. Where the process has a dispatch queue the work goes there, otherwise to a POSIX thread.
#include "host/threaded_runner.h"

#include <pthread.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <memory>

#include "host/quiet_thread.h"
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

// What the waiting thread and the worker share. The flag is set once, by the worker, and orders all
// that the work wrote before what its caller reads afterwards.
struct ThreadState {
  void* data;
  void (*work)(void*);
  void (*idle)(void*);
  std::atomic<bool> done = false;
};

// [worker]
void Run(ThreadState& state) {
  if (state.work != nullptr) state.work(state.data);
  state.done.store(true, std::memory_order_release);
}

void* threadfunction(void* record) {
  Run(*static_cast<ThreadState*>(record));
  return nullptr;
}

// The worker's share of the record ends with its last use of the flag.
void RunThreadedBlocks(void* record) {
  const std::unique_ptr<std::shared_ptr<ThreadState>> state(
      static_cast<std::shared_ptr<ThreadState>*>(record));
  Run(**state);
}

bool IsDone(const ThreadState& state) { return state.done.load(std::memory_order_acquire); }

void Idle(const ThreadState& state) {
  if (state.idle != nullptr) state.idle(state.data);
}

// A yield or an idle call may leave by a native exception.
void KeepHostAliveUntilDone(const ThreadState& state) {
  REALYieldToRB();
  while (!IsDone(state)) {
    REALYieldToRB();
    nanosleep(&kOneMillisecond, nullptr);
    Idle(state);
  }
  REALYieldToRB();
  Idle(state);
}

// The worker uses what its callers own, so nothing leaves before it has ended.
struct WaitForWorker {
  const ThreadState& state;
  ~WaitForWorker() {
    while (!IsDone(state)) nanosleep(&kOneMillisecond, nullptr);
  }
};
struct JoinWorker {
  pthread_t thread;
  ~JoinWorker() { pthread_join(thread, nullptr); }
};

void RunOnQueue(void* data, void (*work)(void*), void (*idle)(void*)) {
  const auto state = std::make_shared<ThreadState>(data, work, idle);
  auto worker_share = std::make_unique<std::shared_ptr<ThreadState>>(state);
  dispatch_async_f(dispatch_get_global_queue(0, 0), worker_share.release(), RunThreadedBlocks);
  const WaitForWorker wait{*state};
  KeepHostAliveUntilDone(*state);
}

bool StartThread(pthread_t& thread, ThreadState& state) {
  pthread_attr_t attributes;
  if (pthread_attr_init(&attributes) != 0) return false;
  pthread_attr_setstacksize(&attributes, kWorkerStackBytes);
  const bool started = CreateQuietThread(thread, attributes, threadfunction, &state);
  pthread_attr_destroy(&attributes);
  return started;
}

void RunOnThread(void* data, void (*work)(void*), void (*idle)(void*)) {
  ThreadState state{data, work, idle};
  pthread_t thread{};
  if (!StartThread(thread, state)) return;
  const JoinWorker join{thread};
  KeepHostAliveUntilDone(state);
}

}  // namespace

void RunThreaded(void* data, void (*work)(void*), void (*idle)(void*)) {
  const bool has_queue = dispatch_async_f != nullptr && dispatch_get_global_queue != nullptr;
  (has_queue ? RunOnQueue : RunOnThread)(data, work, idle);
}

}  // namespace zrk
