#include "standin/call.h"

#include <utility>

#include "standin/things.h"

namespace standin {
namespace {

ffi_type* FfiType(Kind kind) {
  if (kind == Kind::kNil) return &ffi_type_void;
  if (kind == Kind::kInteger) return &ffi_type_sint32;
  if (kind == Kind::kBoolean) return &ffi_type_sint8;
  return kind == Kind::kDouble ? &ffi_type_double : &ffi_type_pointer;
}

}  // namespace

MethodCall::MethodCall(Host& host, HostInstance& object, const std::string& name)
    : host_(host), object_(object), name_(name) {
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
  Slot slot{.handle = value.handle()};
  if (type.kind == Kind::kInteger) slot.integer = value.Integer();
  if (type.kind == Kind::kBoolean) slot.boolean = static_cast<signed char>(value.Boolean());
  if (type.kind == Kind::kDouble) slot.number = value.Double();
  Push(FfiType(type.kind), slot);
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
  Accounts& accounts = host_.accounts();
  const auto& trace = host_.options().trace;
  if (!function) throw CallError(QualifiedName() + " is registered without a function");
  if (!accounts.OnHostThread()) throw CallError(name_ + " called on a foreign thread");
  if (trace) trace("> " + QualifiedName() + "(" + shown_ + ")");
  const char* const outer_method = accounts.SetMethod(name_.c_str());
  std::vector<HostError> outer_errors = std::exchange(host_.pending_errors_, {});
  const CallUnderWay outer_call =
      std::exchange(object_.under_way, {name_.c_str(), host_.task_depth()});
  const Slot slot = Invoke(function, FfiType(result.kind));
  object_.under_way = outer_call;
  Outcome outcome;
  outcome.value = Result(slot, result.kind);
  outcome.errors = std::exchange(host_.pending_errors_, std::move(outer_errors));
  accounts.SetMethod(outer_method);
  if (!trace) return outcome;
  const bool nothing = outcome.value.kind() == Kind::kNil;
  trace("< " + QualifiedName() + (nothing ? "" : " -> " + outcome.value.Describe()));
  return outcome;
}

Value MethodCall::Result(const Slot& slot, Kind kind) const {
  if (kind == Kind::kNil) return {};
  if (kind == Kind::kInteger) return static_cast<std::int32_t>(slot.word);
  if (kind == Kind::kBoolean) return static_cast<signed char>(slot.word) != 0;
  if (kind == Kind::kDouble) return slot.number;
  Thing* thing = host_.accounts().Find(slot.handle, kind);
  if (!thing) return Value::Nil(kind);
  host_.accounts().HandOver(*thing);
  return Value(kind, Reference::Adopt(slot.handle));
}

std::string MethodCall::QualifiedName() const { return object_.class_info().name() + "." + name_; }

}  // namespace standin
