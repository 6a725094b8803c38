// A host exception is an object of a class that the host knows by name. It is made, filled and
// handed over here; the host raises it when the method returns.
#include "host/exceptions.h"

#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <exception>
#include <memory>
#include <new>
#include <stdexcept>
#include <typeinfo>

#include "host/references.h"
#include "host/services.h"
#include "host/strings.h"

namespace zrk {

void RaiseException(const char* class_name, const char* message, std::uint32_t error_number) {
  const auto text =
      StringReference::Adopt(BuildThenMark(message != nullptr ? message : "", kEncodingUTF8));
  auto exception = ObjectReference::Adopt(REALnewInstance(class_name));
  if (exception.get() == nullptr) {
    exception = ObjectReference::Adopt(REALnewInstance("RuntimeException"));
  }
  if (exception.get() == nullptr) return;
  REALSetPropValueString(exception.get(), "Message", text.get());
  REALSetPropValueInteger(exception.get(), "ErrorNumber", static_cast<std::int32_t>(error_number));
  REALRaiseException(exception.get());
}

// Memory may be what is short, so the message can be left out and never throws.
void RaiseOutOfBoundsException(std::int64_t value, std::int64_t minimum, std::int64_t maximum,
                               const char* parameter_name, const char* method_name) {
  constexpr std::size_t kRoomForTheRest = 200;
  constexpr const char* kClass = "OutOfBoundsException";
  if (parameter_name == nullptr) parameter_name = "?";
  if (method_name == nullptr) method_name = "";
  const std::size_t size = std::strlen(parameter_name) + std::strlen(method_name) + kRoomForTheRest;
  const std::unique_ptr<char[]> message(size <= INT32_MAX ? new (std::nothrow) char[size]
                                                          : nullptr);
  if (message == nullptr) return RaiseException(kClass, "Out of Bounds");
  // Without a method name both blanks around the gap stay: the text is the same for every caller.
  std::snprintf(message.get(), size,
                "Parameter %s %s%s is too %s. Range is %" PRId64 " to %" PRId64
                ", but value is %" PRId64 ".",
                parameter_name, *method_name != '\0' ? "to method " : "", method_name,
                value < minimum ? "small" : "big", minimum, maximum, value);
  RaiseException(kClass, message.get());
}

namespace {

// The special kinds stand before their bases, since the first clause that fits applies.
void Translate() {
  constexpr const char* kOutOfBounds = "OutOfBoundsException";
  try {
    throw;
  } catch (const std::bad_alloc&) {
    RaiseException("OutOfMemoryException", "Failed to allocate memory.");
  } catch (const std::range_error& error) {
    RaiseException(kOutOfBounds, error.what());
  } catch (const std::out_of_range& error) {
    RaiseException(kOutOfBounds, error.what());
  } catch (const std::overflow_error& error) {
    RaiseException(kOutOfBounds, error.what());
  } catch (const std::underflow_error& error) {
    RaiseException(kOutOfBounds, error.what());
  } catch (const std::bad_cast& error) {
    RaiseException("IllegalCastException", error.what());
  } catch (const std::exception& error) {
    RaiseException("RuntimeException", error.what());
  } catch (...) {
    RaiseException("RuntimeException", "Sorry, but there was an unnamed C++ Exception.");
  }
}

}  // namespace

// A host that throws even while it is told has nothing raised.
void TranslateNativeException() noexcept {
  try {
    Translate();
  } catch (...) {
  }
}

}  // namespace zrk
