// What the host calls: Entry<Function>::Call finds the object's record, calls the function with it,
// and turns a native exception into a host exception and a neutral result.
#ifndef ZRK_REGEX_ENTRY_H
#define ZRK_REGEX_ENTRY_H

#include "host/exceptions.h"
#include "regex/class_data.h"

namespace zrk {

template <typename Result, typename Body>
Result KeepExceptionsIn(Body body) noexcept {
  try {
    return body();
  } catch (...) {
    TranslateNativeException();
  }
  return Result();
}

template <auto kFunction>
struct Entry;

template <typename Result, typename... Arguments,
          Result (*kFunction)(RegExClassData&, Arguments...)>
struct Entry<kFunction> {
  static Result Call(REALobjectStruct* object, Arguments... arguments) noexcept {
    return KeepExceptionsIn<Result>([&] { return kFunction(DataOf(object), arguments...); });
  }
};

// For functions that need the object itself.
template <typename Result, typename... Arguments,
          Result (*kFunction)(REALobjectStruct*, Arguments...)>
struct Entry<kFunction> {
  static Result Call(REALobjectStruct* object, Arguments... arguments) noexcept {
    return KeepExceptionsIn<Result>([&] { return kFunction(object, arguments...); });
  }
};

// The entry's address as a table stores it.
template <auto kFunction>
const HostFunction kEntry = reinterpret_cast<HostFunction>(&Entry<kFunction>::Call);

}  // namespace zrk

#endif  // ZRK_REGEX_ENTRY_H
