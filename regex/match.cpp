// A text is searched where it is and forgotten: Count, Lasterror and the vector are all that Match
// leaves, and the array forms leave only the vector of the last element.
#include "regex/match.h"

#include <cstdint>

#include "host/exceptions.h"
#include "host/services.h"
#include "host/state.h"
#include "regex/engine.h"
#include "regex/execute.h"
#include "regex/subject.h"

namespace zrk {

namespace {

// The host's code for an array of strings.
constexpr std::int32_t kStringElements = 3;

// Whether the elements may be read without asking the host.
template <typename Array>
bool HasDirectStorage(const Array* array) {
  return !HostIsAtLeast(kHostHidesItsRecords) && array->Elements != nullptr;
}

// One element of an array as a string. The getter that the host hands out for the array is asked
// for when the first element has to come from it; null where the host has none.
StringReference FetchElement(_REALarrayString* array, StringArrayGetter& getter,
                             std::int32_t index) {
  if (HasDirectStorage(array)) return StringReference::Share(array->Elements[index]);
  if (getter == nullptr) getter = REALGetArrayValueString(array);
  return StringReference::Adopt(getter != nullptr ? getter(array, index) : nullptr);
}

// A variant's text, with one reference; null where the host cannot tell it.
REALstringStruct* TextOf(REALobjectStruct* variant) {
  if (variant == nullptr) return nullptr;
  if (GetVariantString.IsAvailable()) return GetVariantString(variant);
  REALstringStruct* text = nullptr;
  return REALGetPropValueString(variant, "StringValue", &text) != 0 ? text : nullptr;
}

StringReference FetchElement(_REALarrayObject* array, ObjectArrayGetter& getter,
                             std::int32_t index) {
  ObjectReference variant;
  if (HasDirectStorage(array)) {
    variant = ObjectReference::Share(array->Elements[index]);
  } else {
    if (getter == nullptr) getter = REALGetArrayValueObject(array);
    if (getter != nullptr) variant = ObjectReference::Adopt(getter(array, index));
  }
  return StringReference::Adopt(TextOf(variant.get()));
}

// The strings that were found, as the host gave them: the inserter takes a reference of its own. A
// host without arrays has none to fill.
class ResultArray {
 public:
  ResultArray() : array_(StringArrayReference::Adopt(REALCreateArray(kStringElements, -1))) {}

  void Append(REALstringStruct* string) {
    _REALarrayString* const array = array_.get();
    if (array == nullptr) return;
    if (insert_ == nullptr) insert_ = REALInsertArrayValueString(array);
    if (insert_ != nullptr) insert_(array, REALGetArrayUBound(array) + 1, string);
  }

  // Hands the array to the host; one that is not handed over is given back.
  _REALarrayString* Take() { return array_.Take(); }

 private:
  StringArrayReference array_;
  StringArrayInserter insert_ = nullptr;
};

// Runs the engine over a text that is not kept and answers its result.
int Search(RegExClassData& data, REALstringStruct* string) {
  rbText text(string);
  SubjectBytes& subject = text.UTF8Subject();
  EngineCall call = PrepareCall(data);
  SetSubject(call, &subject, 0);
  return RunEngine(call);
}

// The upper bound is read once; an array that has shrunk meanwhile raises for each element that it
// lost, which then counts as empty.
template <typename Getter, typename Array>
_REALarrayString* MatchArray(RegExClassData& data, Array* array, HostBoolean inverse) {
  const Released earlier = ClearText(data);
  if (!RequireVector(data)) return nullptr;
  const StringReference message = ClearErrorMessage(data);
  ResultArray result;
  if (data.Handle == nullptr || array == nullptr) return result.Take();
  const std::int64_t upper_bound = REALGetArrayUBound(array);
  Getter getter = nullptr;
  for (std::int64_t index = 0; index <= upper_bound; ++index) {
    StringReference element;
    if (CheckIndex(index, std::int64_t{REALGetArrayUBound(array)} + 1, nullptr)) {
      element = FetchElement(array, getter, static_cast<std::int32_t>(index));
    }
    const bool matches = Search(data, element.get()) >= 1;
    if (matches != (inverse != 0)) result.Append(element.get());
  }
  return result.Take();
}

}  // namespace

[[gnu::flatten]] HostBoolean Match(RegExClassData& data, REALstringStruct* text) {
  const Released earlier = ClearText(data);
  StringReference message;
  if (!BeginMatch(data, message) || data.Handle == nullptr) return false;
  StoreResult(data, Search(data, text));
  return data.Count > 0;
}

_REALarrayString* MatchStringArray(RegExClassData& data, _REALarrayString* array,
                                   HostBoolean inverse) {
  return MatchArray<StringArrayGetter>(data, array, inverse);
}

_REALarrayString* MatchVariantArray(RegExClassData& data, _REALarrayObject* array,
                                    HostBoolean inverse) {
  return MatchArray<ObjectArrayGetter>(data, array, inverse);
}

}  // namespace zrk
