// The host's thread starts the work and polls a flag, since waiting on a condition would stop the
// host. Where the process has a dispatch queue the work goes there, otherwise to a POSIX thread.
#include "host/threaded_runner.h"

#include <pthread.h>

#include <cstddef>
#include <cstdlib>
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

struct DestroyMutex {
  void operator()(pthread_mutex_t* mutex) const {
    pthread_mutex_destroy(mutex);
    std::free(mutex);
  }
};
using OwnedMutex = std::unique_ptr<pthread_mutex_t, DestroyMutex>;

// Null when memory is short: the run then goes on without a lock.
OwnedMutex MakeMutex() {
  OwnedMutex mutex(static_cast<pthread_mutex_t*>(std::calloc(1, sizeof(pthread_mutex_t))));
  if (mutex != nullptr) pthread_mutex_init(mutex.get(), nullptr);
  return mutex;
}

class MutexLock {
 public:
  explicit MutexLock(pthread_mutex_t* mutex) : mutex_(mutex) {
    if (mutex_ != nullptr) pthread_mutex_lock(mutex_);
  }
  ~MutexLock() {
    if (mutex_ != nullptr) pthread_mutex_unlock(mutex_);
  }
  MutexLock(const MutexLock&) = delete;
  MutexLock& operator=(const MutexLock&) = delete;

 private:
  pthread_mutex_t* mutex_;
};

// What the waiting thread and the worker share.
struct ThreadState {
  // Set before the worker starts, only read afterwards.
  OwnedMutex mutex = MakeMutex();
  void* data;
  void (*work)(void*);
  void (*idle)(void*);

  // The waiting thread's own; unused where the work went to a queue.
  pthread_t thread{};

  // Guarded by the mutex: written once by the worker, which also orders all that the work wrote.
  bool done = false;
};

// [worker]
void Run(ThreadState& state) {
  if (state.work != nullptr) state.work(state.data);
  const MutexLock lock(state.mutex.get());
  state.done = true;
}

void* threadfunction(void* record) {
  Run(*static_cast<ThreadState*>(record));
  return nullptr;
}

// The worker's share of the record ends with its last use of the lock.
void RunThreadedBlocks(void* record) {
  const std::unique_ptr<std::shared_ptr<ThreadState>> state(
      static_cast<std::shared_ptr<ThreadState>*>(record));
  Run(**state);
}

bool IsDone(const ThreadState& state) {
  const MutexLock lock(state.mutex.get());
  return state.done;
}

void Idle(const ThreadState& state) {
  if (state.idle != nullptr) state.idle(state.data);
}

void WaitUntilDone(const ThreadState& state) {
  constexpr std::timespec kOneMillisecond{0, 1'000'000};
  REALYieldToRB();
  while (!IsDone(state)) {
    REALYieldToRB();
    nanosleep(&kOneMillisecond, nullptr);
    Idle(state);
  }
  REALYieldToRB();
  Idle(state);
}

void RunOnQueue(void* data, void (*work)(void*), void (*idle)(void*)) {
  const auto state =
      std::make_shared<ThreadState>(ThreadState{.data = data, .work = work, .idle = idle});
  auto worker_share = std::make_unique<std::shared_ptr<ThreadState>>(state);
  dispatch_async_f(dispatch_get_global_queue(0, 0), worker_share.release(), RunThreadedBlocks);
  WaitUntilDone(*state);
}

bool StartThread(ThreadState& state) {
  pthread_attr_t attributes;
  if (pthread_attr_init(&attributes) != 0) return false;
  pthread_attr_setstacksize(&attributes, kWorkerStackBytes);
  const bool started = CreateQuietThread(state.thread, attributes, threadfunction, &state);
  pthread_attr_destroy(&attributes);
  return started;
}

// The worker may still be inside its unlock when the flag is seen, so the join comes before the
// mutex and the record end.
void RunOnThread(void* data, void (*work)(void*), void (*idle)(void*)) {
  ThreadState state{.data = data, .work = work, .idle = idle};
  if (!StartThread(state)) return;
  WaitUntilDone(state);
  pthread_join(state.thread, nullptr);
}

}  // namespace

void RunThreaded(void* data, void (*work)(void*), void (*idle)(void*)) {
  const bool has_queue = dispatch_async_f != nullptr && dispatch_get_global_queue != nullptr;
  (has_queue ? RunOnQueue : RunOnThread)(data, work, idle);
}

}  // namespace zrk
