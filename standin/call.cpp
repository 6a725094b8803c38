#include "standin/call.h"

#include <utility>

#include "standin/things.h"

namespace standin {
namespace {

ffi_type* FfiType(Kind kind) {
  switch (kind) {
    case Kind::kNil:
      return &ffi_type_void;
    case Kind::kInteger:
      return &ffi_type_sint32;
    case Kind::kBoolean:
      return &ffi_type_sint8;
    case Kind::kDouble:
      return &ffi_type_double;
    default:
      return &ffi_type_pointer;
  }
}

}  // namespace

MethodCall::MethodCall(Host& host, HostInstance& object, const std::string& name)
    : host_(host), object_(object), class_name_(object.class_name()), name_(name) {
  types_.reserve(4);
  slots_.reserve(4);
  Push(&ffi_type_pointer, {.handle = object.handle()});
}

void MethodCall::Push(ffi_type* type, Slot slot) {
  types_.push_back(type);
  slots_.push_back(slot);
}

void MethodCall::AddWord(zrk::HostWord word) {
  Push(&ffi_type_pointer, {.handle = reinterpret_cast<void*>(word)});
}

void MethodCall::Add(const Type& type, const Value& value) {
  if (host_.options().trace) shown_ += (shown_.empty() ? "" : ", ") + value.Describe();
  ffi_type* const ffi = FfiType(type.kind);
  switch (type.kind) {
    case Kind::kInteger:
      return Push(ffi, {.integer = value.Integer()});
    case Kind::kBoolean:
      return Push(ffi, {.boolean = static_cast<signed char>(value.Boolean())});
    case Kind::kDouble:
      return Push(ffi, {.number = value.Double()});
    default:
      return Push(ffi, {.handle = value.handle()});
  }
}

// libffi widens integer results that are smaller than a word to a whole one.
MethodCall::Slot MethodCall::Invoke(zrk::HostFunction function, ffi_type* result) {
  Slot slot{};
  std::vector<void*> addresses;
  for (Slot& argument : slots_) addresses.push_back(&argument);
  ffi_cif cif;
  const auto count = static_cast<unsigned>(types_.size());
  if (ffi_prep_cif(&cif, FFI_DEFAULT_ABI, count, result, types_.data()) != FFI_OK) {
    throw CallError("libffi cannot prepare a call of " + name_);
  }
  ffi_call(&cif, function, &slot, addresses.data());
  return slot;
}

Outcome MethodCall::Run(zrk::HostFunction function, const Type& result) {
  if (!function) throw CallError(class_name_ + "." + name_ + " is registered without a function");
  if (!host_.accounts().OnHostThread()) throw CallError(name_ + " called on a foreign thread");
  if (host_.options().trace) TraceStart();
  const char* const outer_method = host_.accounts().EnterMethod(name_.c_str());
  std::vector<HostError> outer_errors = std::exchange(host_.pending_errors_, {});
  const CallUnderWay outer_call =
      std::exchange(object_.under_way, {name_.c_str(), host_.task_depth()});
  const Slot slot = Invoke(function, FfiType(result.kind));
  object_.under_way = outer_call;
  Outcome outcome;
  outcome.value = Result(slot, result.kind);
  outcome.errors = std::exchange(host_.pending_errors_, std::move(outer_errors));
  host_.accounts().ResumeMethod(outer_method);
  if (host_.options().trace) TraceEnd(outcome.value);
  return outcome;
}

Value MethodCall::Result(const Slot& slot, Kind kind) const {
  switch (kind) {
    case Kind::kNil:
      return {};
    case Kind::kInteger:
      return static_cast<std::int32_t>(slot.word);
    case Kind::kBoolean:
      return static_cast<signed char>(slot.word) != 0;
    case Kind::kDouble:
      return slot.number;
    default:
      break;
  }
  Thing* thing = host_.accounts().Find(slot.handle, kind);
  if (!thing) return Value::Nil(kind);
  host_.accounts().HandOver(*thing);
  return Value(kind, Reference::Adopt(slot.handle));
}

void MethodCall::TraceStart() const {
  host_.options().trace("> " + class_name_ + "." + name_ + "(" + shown_ + ")");
}

void MethodCall::TraceEnd(const Value& result) const {
  const std::string shown = result.kind() == Kind::kNil ? "" : " -> " + result.Describe();
  host_.options().trace("< " + class_name_ + "." + name_ + shown);
}

}  // namespace standin
