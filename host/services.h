// The host's services as callables, each bound by name on first use. [host thread]
//
// REALLockString(text) looks up "REALLockString", remembers what the host answered and calls it. A
// service that the host lacks answers its neutral result, so no caller tests for one.
#ifndef ZRK_HOST_SERVICES_H
#define ZRK_HOST_SERVICES_H

#include <atomic>
#include <cstdint>

#include "host/records.h"
#include "host/service_list.h"

namespace zrk {

enum class Binding {
  Guarded,  // the host is asked once; a missing service stays missing
  Retried,  // the host is asked again, by both names, until it has an answer
};

template <typename Result>
struct NeutralResult {
  Result value{};
  Result operator()() const { return value; }
};

template <>
struct NeutralResult<void> {
  void operator()() const {}
};

// The host's entry of the first name it has; the second one may be null.
HostFunction AskHost(const char* name, const char* second_name);

template <Binding kBinding, typename Signature>
class Service;

template <Binding kBinding, typename Result, typename... Arguments>
class Service<kBinding, Result(Arguments...)> {
 public:
  constexpr Service(const char* name, const char* second_name, NeutralResult<Result> neutral)
      : name_(name), second_name_(second_name), neutral_(neutral) {}

  // Calls the service, or answers the neutral result where the host has none.
  Result operator()(Arguments... arguments) {
    const Function function = Find();
    return function != nullptr ? function(arguments...) : neutral_();
  }

  // Whether the host has the service; binds it if that has not been tried.
  bool IsAvailable() { return Find() != nullptr; }

 private:
  using Function = Result (*)(Arguments...);

  Function Find() {
    const Function bound = function_.load(std::memory_order_relaxed);
    return bound != nullptr ? bound : Bind();
  }

  // Several threads may ask at once and get the same answer: the function is there before it counts
  // as asked for.
  [[gnu::noinline, gnu::cold]] Function Bind() {
    if (kBinding == Binding::Guarded && asked_.load(std::memory_order_acquire)) {
      return function_.load(std::memory_order_relaxed);
    }
    const auto function = reinterpret_cast<Function>(AskHost(name_, second_name_));
    function_.store(function, std::memory_order_relaxed);
    asked_.store(true, std::memory_order_release);
    return function;
  }

  const char* name_;
  const char* second_name_;
  [[no_unique_address]] NeutralResult<Result> neutral_;
  std::atomic<Function> function_ = nullptr;
  std::atomic<bool> asked_ = false;
};

#define ZRK_DEFINE_SERVICE(wrapper, binding, result, arguments, name, second_name, neutral) \
  inline constinit Service<Binding::binding, result arguments> wrapper{                     \
      name, second_name, NeutralResult<result> neutral};
ZRK_HOST_SERVICES(ZRK_DEFINE_SERVICE)
#undef ZRK_DEFINE_SERVICE

}  // namespace zrk

#endif  // ZRK_HOST_SERVICES_H
