// The host's services as callables, each bound by name on first use. [host thread]
//
// REALLockString(text) looks up "REALLockString", remembers what the host answered and calls it. A
// service that the host lacks answers its neutral result, so no caller tests for one.
#ifndef ZRK_HOST_SERVICES_H
#define ZRK_HOST_SERVICES_H

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
    return IsAvailable() ? function_(arguments...) : neutral_();
  }

  // Whether the host has the service; binds it if that has not been tried.
  bool IsAvailable() {
    return function_ != nullptr || ((kBinding == Binding::Retried || !asked_) && Bind());
  }

 private:
  using Function = Result (*)(Arguments...);

  [[gnu::noinline, gnu::cold]] bool Bind() {
    asked_ = true;
    function_ = reinterpret_cast<Function>(AskHost(name_, second_name_));
    return function_ != nullptr;
  }

  const char* name_;
  const char* second_name_;
  [[no_unique_address]] NeutralResult<Result> neutral_;
  Function function_ = nullptr;
  bool asked_ = false;
};

#define ZRK_DEFINE_SERVICE(wrapper, binding, result, arguments, name, second_name, neutral) \
  inline constinit Service<Binding::binding, result arguments> wrapper{                     \
      name, second_name, NeutralResult<result> neutral};
ZRK_HOST_SERVICES(ZRK_DEFINE_SERVICE)
#undef ZRK_DEFINE_SERVICE

}  // namespace zrk

#endif  // ZRK_HOST_SERVICES_H
