// Host exceptions: misuse and internal failures as the script sees them. [host thread]
//
// The host raises the exception when the method returns, so a caller returns at once with its
// neutral result. Raising is kept out of line, where its code does not stand in the way of calls
// that go well.
#ifndef ZRK_HOST_EXCEPTIONS_H
#define ZRK_HOST_EXCEPTIONS_H

#include <cstdint>

namespace zrk {

// Raises an exception of the named host class, or a "RuntimeException" where the host does not know
// that class. Both texts are zero-terminated; a null message leaves the exception's empty.
[[gnu::noinline]] void RaiseException(const char* class_name, const char* message,
                                      std::uint32_t error_number = 0);

// Raises "OutOfBoundsException" with a message that names the parameter, the method, the allowed
// range and the value. A null parameter name reads "?", a null method name is left out.
[[gnu::noinline]] void RaiseOutOfBoundsException(std::int64_t value, std::int64_t minimum,
                                                 std::int64_t maximum, const char* parameter_name,
                                                 const char* method_name);

// Whether 0 <= index < count; raises the exception above for a parameter called "index" otherwise.
inline bool CheckIndex(std::int64_t index, std::int64_t count, const char* method_name) {
  if (index >= 0 && index < count) return true;
  RaiseOutOfBoundsException(index, 0, count - 1, "index", method_name);
  return false;
}

// Call inside catch (...): raises the host exception that stands for the native one being handled.
void TranslateNativeException() noexcept;

}  // namespace zrk

#endif  // ZRK_HOST_EXCEPTIONS_H
