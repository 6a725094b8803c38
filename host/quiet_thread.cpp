#include "host/quiet_thread.h"

#include <csignal>

namespace zrk {

namespace {

void* threadfunction(void* work) {
  (*static_cast<const ThreadWork*>(work))();
  return nullptr;
}

}  // namespace

// A thread begins with its creator's signal mask.
bool CreateQuietThread(pthread_t& thread, const pthread_attr_t& attributes,
                       const ThreadWork& work) noexcept {
  sigset_t all;
  sigset_t before;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &before);
  const bool created =
      pthread_create(&thread, &attributes, threadfunction, const_cast<ThreadWork*>(&work)) == 0;
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  return created;
}

}  // namespace zrk
