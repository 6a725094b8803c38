// Arrays: making them, their bounds, and the procedures that read and extend them.
#include <memory>
#include <string>

#include "standin/host.h"
#include "standin/services.h"
#include "standin/switchboard.h"
#include "standin/things.h"

namespace standin {
namespace {

constexpr std::int32_t kStringElements = 3;

HostArray* FindArray(const void* handle) { return FindAs<HostArray>(handle, "an array"); }

HostArray* FindArray(const void* handle, Kind kind) {
  HostArray* array = FindArray(handle);
  return array && TheAccounts().Find(handle, kind) ? array : nullptr;
}

bool InRange(const HostArray& array, std::int32_t index, std::size_t end) {
  if (index >= 0 && static_cast<std::size_t>(index) < end) return true;
  TheAccounts().Report("was handed index " + std::to_string(index) + " of " + array.Describe());
  return false;
}

// One element, with a reference for the library.
template <typename Element>
Element* Read(void* handle, std::int32_t index, Kind kind) {
  const HostArray* array = FindArray(handle, kind);
  if (!array || !InRange(*array, index, array->size())) return nullptr;
  void* element = array->at(static_cast<std::size_t>(index));
  if (element) TheAccounts().Give(*Living(element), Side::kLibrary);
  return static_cast<Element*>(element);
}

REALstringStruct* ReadString(_REALarrayString* array, std::int32_t index) {
  return Read<REALstringStruct>(array, index, Kind::kStringArray);
}

REALobjectStruct* ReadObject(_REALarrayObject* array, std::int32_t index) {
  return Read<REALobjectStruct>(array, index, Kind::kVariantArray);
}

void InsertString(_REALarrayString* handle, std::int32_t index, REALstringStruct* string) {
  HostArray* array = FindArray(handle, Kind::kStringArray);
  const Thing* text = TheAccounts().Find(string, Kind::kString);
  if (!array || !InRange(*array, index, array->size() + 1)) return;
  array->Insert(static_cast<std::size_t>(index), text ? string : nullptr);
}

STANDIN_BARE_ADDRESS REALstringStruct* StringGetter(_REALarrayString* array, std::int32_t index) {
  return Answer(kNoRow, "string array getter", &ReadString, 0, array, index);
}

STANDIN_BARE_ADDRESS REALobjectStruct* ObjectGetter(_REALarrayObject* array, std::int32_t index) {
  return Answer(kNoRow, "variant array getter", &ReadObject, 0, array, index);
}

STANDIN_BARE_ADDRESS void StringInserter(_REALarrayString* array, std::int32_t index,
                                         REALstringStruct* string) {
  Answer(kNoRow, "string array inserter", &InsertString, 0, array, index, string);
}

}  // namespace

_REALarrayString* Services::REALCreateArray(std::int32_t type, std::int32_t upper_bound) {
  if (type != kStringElements || upper_bound < -1) {
    TheAccounts().Report("was asked for an array of type " + std::to_string(type) + " up to " +
                         std::to_string(upper_bound));
    return nullptr;
  }
  auto array =
      std::make_unique<HostArray>(Kind::kStringArray, Host::Current()->options().direct_storage);
  array->Resize(static_cast<std::size_t>(upper_bound) + 1);
  return static_cast<_REALarrayString*>(
      TheAccounts().Open(std::move(array), Side::kLibrary)->handle());
}

std::int32_t Services::REALGetArrayUBound(REALobjectStruct* array) {
  const HostArray* found = FindArray(array);
  return found ? static_cast<std::int32_t>(found->size()) - 1 : -1;
}

// One entry serves both names: under the second it gets arrays of either kind, and the caller
// takes the procedure for what its array holds.
StringArrayGetter Services::REALGetArrayValueString(_REALarrayString* array) {
  const HostArray* found = FindArray(array);
  if (!found) return nullptr;
  return found->kind() == Kind::kStringArray ? &StringGetter
                                             : reinterpret_cast<StringArrayGetter>(&ObjectGetter);
}

ObjectArrayGetter Services::REALGetArrayValueObject(_REALarrayObject* array) {
  return FindArray(array, Kind::kVariantArray) ? &ObjectGetter : nullptr;
}

StringArrayInserter Services::REALInsertArrayValueString(_REALarrayString* array) {
  return FindArray(array, Kind::kStringArray) ? &StringInserter : nullptr;
}

}  // namespace standin
