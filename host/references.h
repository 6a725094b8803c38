// Owners of host references: each gives its reference back once, when it ends. [host thread]
#ifndef ZRK_HOST_REFERENCES_H
#define ZRK_HOST_REFERENCES_H

#include <utility>

#include "host/services.h"

namespace zrk {

// Strings are counted by services of their own; memory blocks and arrays are objects. Null handles
// are never locked or unlocked.
inline void Lock(REALstringStruct* string) {
  if (string != nullptr) REALLockString(string);
}
inline void Lock(REALobjectStruct* object) {
  if (object != nullptr) REALLockObject(object);
}
inline void Unlock(REALstringStruct* string) {
  if (string != nullptr) REALUnlockString(string);
}
inline void Unlock(REALobjectStruct* object) {
  if (object != nullptr) REALUnlockObject(object);
}

// Gives back the reference that a field of a plain record holds, and clears the field.
template <typename Handle>
void Release(Handle*& field) {
  Unlock(std::exchange(field, nullptr));
}

// Holds one reference on a host string, object, memory block or array; may hold null.
template <typename Handle>
class Reference {
 public:
  Reference() = default;
  // Takes over a reference that the caller already has.
  static Reference Adopt(Handle* handle) { return Reference(handle); }
  // Adds a reference of its own.
  static Reference Share(Handle* handle) {
    Lock(handle);
    return Reference(handle);
  }

  Reference(Reference&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  Reference& operator=(Reference&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  ~Reference() { Reset(); }

  Handle* get() const { return handle_; }
  // Gives the reference back now instead of at the end. A last one may run the program, in a
  // destructor: what is thrown there ends here, since a call that cleans up has nobody to tell.
  void Reset() noexcept {
    try {
      Release(handle_);
    } catch (...) {
    }
  }
  // Hands the reference to the caller.
  Handle* Take() { return std::exchange(handle_, nullptr); }

 private:
  explicit Reference(Handle* handle) : handle_(handle) {}

  Handle* handle_ = nullptr;
};

using StringReference = Reference<REALstringStruct>;
using ObjectReference = Reference<REALobjectStruct>;
using BlockReference = Reference<REALmemoryBlockStruct>;
using StringArrayReference = Reference<_REALarrayString>;

// Bytes that the host hands out for a string, to be handed back once.
struct StringData {
  StringData() = default;
  StringData(StringData&& other) noexcept
      : record(other.record), filled(std::exchange(other.filled, false)) {}
  StringData& operator=(StringData&&) = delete;
  ~StringData() {
    try {
      if (filled) REALDisposeStringData(&record);
    } catch (...) {  // as for a reference
    }
  }

  REALstringData record{};
  bool filled = false;
};

}  // namespace zrk

#endif  // ZRK_HOST_REFERENCES_H
