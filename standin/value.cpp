#include "standin/value.h"

#include <stdexcept>
#include <utility>

#include "host/records.h"
#include "standin/encoding.h"
#include "standin/host.h"
#include "standin/things.h"

namespace standin {
namespace {

// The thing behind a value where it is of the wanted sort, otherwise null.
template <typename T>
T* As(const Value& value) {
  return dynamic_cast<T*>(Living(value.handle()));
}

}  // namespace

const char* KindName(Kind kind) {
  static constexpr const char* kNames[] = {
      "nil",          "integer",      "boolean",       "double", "string",
      "memory block", "string array", "variant array", "object", "string data"};
  return kNames[static_cast<std::size_t>(kind)];
}

Reference Reference::Share(void* handle) {
  Thing* thing = Living(handle);
  if (!thing) return {};
  Host::Current()->accounts().Give(*thing, Side::kHost);
  return Adopt(handle);
}

Reference Reference::Adopt(void* handle) {
  Reference reference;
  if (!handle || !Host::Current()) return reference;
  const auto take_back = [serial = Host::Current()->accounts().serial()](void* held) {
    Thing* thing = Living(held);
    if (!thing || Host::Current()->accounts().serial() != serial) return;
    Host::Current()->accounts().TakeBack(*thing, Side::kHost);
  };
  reference.handle_ = {handle, take_back};
  return reference;
}

Value::Value(std::string_view utf8) {
  Host* host = Host::Current();
  if (!host) throw std::logic_error("a text was made without a host");
  *this = host->String(utf8);
}

Value::Value(Kind kind, Reference reference) : kind_(kind), reference_(std::move(reference)) {}

bool Value::IsPlain() const {
  return kind_ == Kind::kInteger || kind_ == Kind::kBoolean || kind_ == Kind::kDouble;
}

std::int32_t Value::Integer() const {
  return kind_ == Kind::kInteger ? static_cast<std::int32_t>(number_) : 0;
}

std::string Value::Bytes() const {
  if (const auto* string = As<HostString>(*this)) return std::string(string->bytes());
  if (const auto* block = As<HostMemoryBlock>(*this)) return std::string(block->bytes());
  return {};
}

std::string Value::UTF8() const {
  std::string bytes = Bytes();
  if (Encoding() == zrk::kEncodingUnknown) return bytes;
  return ConvertText(bytes, Encoding(), zrk::kEncodingUTF8).value_or(bytes);
}

std::uint32_t Value::Encoding() const {
  const auto* string = As<HostString>(*this);
  return string ? string->record.Encoding : zrk::kEncodingUnknown;
}

std::size_t Value::Count() const {
  const auto* array = As<HostArray>(*this);
  return array ? array->size() : 0;
}

Value Value::At(std::size_t index) const {
  const auto* array = As<HostArray>(*this);
  if (!array || index >= array->size() || !array->at(index)) return {};
  void* element = array->at(index);
  if (kind_ == Kind::kStringArray) return Value(Kind::kString, Reference::Share(element));
  const auto* variant = dynamic_cast<HostVariant*>(Living(element));
  return variant ? variant->content() : Value(Kind::kObject, Reference::Share(element));
}

Values Value::Elements() const {
  Values elements;
  for (std::size_t i = 0; i < Count(); ++i) elements.push_back(At(i));
  return elements;
}

void Value::Resize(std::size_t size) {
  if (auto* array = As<HostArray>(*this)) array->Resize(size);
  if (auto* block = As<HostMemoryBlock>(*this)) block->Resize(size);
}

void Value::Claim(std::int32_t size) {
  if (auto* block = As<HostMemoryBlock>(*this)) block->record.Size = size;
  if (auto* string = As<HostString>(*this)) string->record.Length = size;
}

std::string Value::Describe() const {
  if (kind_ == Kind::kInteger) return std::to_string(Integer());
  if (kind_ == Kind::kBoolean) return Boolean() ? "True" : "False";
  if (kind_ == Kind::kDouble) return std::to_string(number_);
  const Thing* thing = Living(handle());
  return thing ? thing->Describe() : "nil";
}

}  // namespace standin
