#include "host/quiet_thread.h"

#include <csignal>

namespace zrk {

// A thread begins with its creator's signal mask.
bool CreateQuietThread(pthread_t& thread, const pthread_attr_t& attributes, void* (*run)(void*),
                       void* argument) noexcept {
  sigset_t all;
  sigset_t before;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &before);
  const bool created = pthread_create(&thread, &attributes, run, argument) == 0;
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  return created;
}

}  // namespace zrk
