#include "regex/match_arrays.h"

#include "host/exceptions.h"
#include "host/services.h"
#include "host/state.h"
#include "regex/engine.h"
#include "regex/execute.h"

namespace zrk {

namespace {

// The host's code for an array of strings.
constexpr std::int32_t kStringElements = 3;

// The elements of an input array as strings. On hosts whose records may be read they come from the
// array's direct storage where it has one, otherwise through the getter the host hands out.
template <typename Array, typename Getter>
class Elements {
 public:
  Elements(Array* array, Getter getter) : array_(array), getter_(getter) {}

  auto* Fetch(std::int32_t index) const {
    using Handle = decltype(getter_(array_, index));
    if (!HostIsAtLeast(kHostHidesItsRecords) && array_->Elements != nullptr) {
      Lock(array_->Elements[index]);
      return array_->Elements[index];
    }
    return getter_ != nullptr ? getter_(array_, index) : Handle{};
  }

 private:
  Array* array_;
  Getter getter_;
};

class StringElements {
 public:
  explicit StringElements(_REALarrayString* array)
      : elements_(array, REALGetArrayValueString(array)) {}
  StringReference operator()(std::int32_t index) const {
    return StringReference::Adopt(elements_.Fetch(index));
  }

 private:
  Elements<_REALarrayString, StringArrayGetter> elements_;
};

class VariantElements {
 public:
  explicit VariantElements(_REALarrayObject* array)
      : elements_(array, REALGetArrayValueObject(array)) {}
  StringReference operator()(std::int32_t index) const {
    const auto variant = ObjectReference::Adopt(elements_.Fetch(index));
    return StringReference::Adopt(variant.get() != nullptr ? TextOf(variant.get()) : nullptr);
  }

 private:
  static REALstringStruct* TextOf(REALobjectStruct* variant) {
    if (GetVariantString.IsAvailable()) return GetVariantString(variant);
    REALstringStruct* text = nullptr;
    return REALGetPropValueString(variant, "StringValue", &text) != 0 ? text : nullptr;
  }

  Elements<_REALarrayObject, ObjectArrayGetter> elements_;
};

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

bool Matches(RegExClassData& data, REALstringStruct* string) {
  rbText text(string);
  EngineCall call = PrepareCall(data);
  SetSubject(call, text);
  return RunEngine(call) >= 1;
}

// The element, or an empty one, with the exception raised, where the array has shrunk meanwhile.
template <typename Source>
StringReference FetchWithin(REALobjectStruct* array, const Source& source, std::int32_t index) {
  const std::int32_t upper_bound = REALGetArrayUBound(array);
  if (!CheckIndex(index, std::int64_t{upper_bound} + 1, nullptr)) return {};
  return source(index);
}

template <typename Source, typename Array>
_REALarrayString* MatchArray(RegExClassData& data, Array* array, HostBoolean inverse) {
  ClearText(data);
  if (!RequireVector(data)) return nullptr;
  Release(data.ErrorMessage);
  // After the check: a method that raises answers null, and nobody would give this array back.
  ResultArray result;
  if (data.Handle == nullptr || array == nullptr) return result.Take();
  const std::int32_t upper_bound = REALGetArrayUBound(array);
  if (upper_bound < 0) return result.Take();
  const Source source(array);
  for (std::int32_t index = 0; index <= upper_bound; ++index) {
    const StringReference element = FetchWithin(array, source, index);
    if (Matches(data, element.get()) != (inverse != 0)) result.Append(element.get());
  }
  return result.Take();
}

}  // namespace

// Flattened for the same reason as Execute.
[[gnu::flatten]] HostBoolean Match(RegExClassData& data, REALstringStruct* text) {
  ClearText(data);
  if (!RequireVector(data)) return false;
  ResetMatch(data);
  if (data.Handle == nullptr) return false;
  rbText adapter(text);
  EngineCall call = PrepareCall(data);
  SetSubject(call, adapter);
  StoreResult(data, RunEngine(call));
  return data.Count > 0;
}

_REALarrayString* MatchStringArray(RegExClassData& data, _REALarrayString* array,
                                   HostBoolean inverse) {
  return MatchArray<StringElements>(data, array, inverse);
}

_REALarrayString* MatchVariantArray(RegExClassData& data, _REALarrayObject* array,
                                    HostBoolean inverse) {
  return MatchArray<VariantElements>(data, array, inverse);
}

}  // namespace zrk
