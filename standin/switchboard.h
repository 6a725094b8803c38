// The roster of services, and what happens to every call on its way to one: the thread is checked,
// the call counted and traced, faults applied, and no C++ exception but the one that a fault asks
// for goes back into the library.
#ifndef ZRK_STANDIN_SWITCHBOARD_H
#define ZRK_STANDIN_SWITCHBOARD_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <new>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "host/records.h"
#include "standin/host.h"

// A function that the library gets as a bare address. Both sides may see its parameters as other
// handle types, as entries with a shared name do: that is no fault, so clang's check of function
// types is off for it.
#ifdef __clang__
#define STANDIN_BARE_ADDRESS [[clang::no_sanitize("function")]]
#else
#define STANDIN_BARE_ADDRESS
#endif

namespace standin {

// For procedures that an array service hands out: they are in no row.
inline constexpr std::size_t kNoRow = static_cast<std::size_t>(-1);

class Switchboard {
 public:
  struct Row {
    const char* first;
    const char* second;  // null where there is one name only
    zrk::HostFunction entry;
    bool Has(std::string_view name) const { return name == first || (second && name == second); }
  };

  // Throws std::invalid_argument for a fault whose name is no service.
  explicit Switchboard(Host& host);

  static const std::vector<Row>& Rows();
  // The entry for a name that has been asked for `asked` times; null where the host has none.
  zrk::HostFunction Resolve(std::string_view name, int asked) const;
  // Looks up the faults of the host's options anew; those of `service` count calls from now on.
  void Refresh(std::string_view service);
  // Counts a call of a row and says whether it is let through.
  bool Admit(std::size_t row);
  std::uint64_t Calls(std::string_view service) const;

 private:
  struct Line {
    std::uint64_t calls = 0;
    std::uint64_t calls_before_faults = 0;
    std::array<const Fault*, 2> faults{};  // by first and second name
  };

  const Fault* FindFault(const char* name) const;

  Host& host_;
  std::vector<Line> lines_;
};

// One call under way, from a row of the roster or a procedure; must be made on the stack.
class ServiceCall {
 public:
  explicit ServiceCall(const char* name);
  ~ServiceCall();
  ServiceCall(const ServiceCall&) = delete;
  ServiceCall& operator=(const ServiceCall&) = delete;

  // Whether the service is to answer; otherwise its neutral result goes back.
  bool Admit(std::size_t row);
  void Failed(const char* reason) noexcept;

  template <typename... A>
  void ShowArguments(A... arguments) {
    if (Tracing()) ShowAll(arguments...);
  }
  // Ends the line with the result, if there is one.
  template <typename... R>
  void ShowResult(const R&... result) {
    if (Tracing()) Trace((std::string() + ... + (" -> " + Show(result))));
  }

 private:
  bool Tracing() const { return !!host_->options().trace; }
  void Trace(const std::string& ending);
  void Append(const std::string& argument) { shown_ += (shown_.empty() ? "" : ", ") + argument; }

  template <typename... A>
  void ShowAll(A... arguments) {
    (Append(Show(arguments)), ...);
  }
  // Bytes that begin an argument list come with their length and need no zero byte.
  template <typename... A>
  void ShowAll(const char* bytes, std::int32_t length, A... rest) {
    Append(ShowBytes(bytes, length));
    (Append(Show(rest)), ...);
  }

  static std::string ShowBytes(const char* bytes, std::int32_t length);
  static std::string Show(const char* name);
  static std::string Show(std::uint32_t encoding);
  static std::string Show(double number) { return std::to_string(number); }
  static std::string Show(std::int32_t number) { return std::to_string(number); }
  static std::string Show(unsigned char truth) { return truth ? "True" : "False"; }
  static std::string Show(zrk::REALclassDefinition* definition);
  static std::string Show(zrk::REALstringData*) { return "record"; }
  static std::string Show(zrk::REALstringStruct**) { return "out"; }
  template <typename R, typename... A>
  static std::string Show(R (*)(A...)) {
    return "procedure";
  }
  static std::string Show(const void* handle);

  Host* host_;
  const char* name_;
  const char* outer_call_ = nullptr;  // null where the call counts for nothing
  bool admitted_ = false;
  std::string shown_;
};

// Answers a call with `implementation`, or with the neutral result where it is not let through or
// fails. Running out of memory answers the neutral result and is no fault of the library.
template <typename R, typename... A>
R Answer(std::size_t row, const char* name, R (*implementation)(A...), int neutral,
         A... arguments) {
  ServiceCall call(name);
  try {
    if (call.Admit(row)) {
      call.ShowArguments(arguments...);
      if constexpr (std::is_void_v<R>) {
        implementation(arguments...);
        call.ShowResult();
      } else {
        const R result = implementation(arguments...);
        call.ShowResult(result);
        return result;
      }
    }
  } catch (const NativeException&) {
    throw;
  } catch (const std::bad_alloc&) {
  } catch (const std::exception& error) {
    call.Failed(error.what());
  } catch (...) {
    call.Failed("an unknown exception");
  }
  if constexpr (std::is_pointer_v<R>) return nullptr;
  if constexpr (std::is_arithmetic_v<R>) return static_cast<R>(neutral);
}

}  // namespace standin

#endif  // ZRK_STANDIN_SWITCHBOARD_H
