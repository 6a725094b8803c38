#include "standin/object.h"

#include <cstring>
#include <utility>

#include "standin/call.h"
#include "standin/host.h"
#include "standin/things.h"

namespace standin {
namespace {

Host& CurrentHost() {
  if (Host* host = Host::Current()) return *host;
  throw CallError("there is no host");
}

HostInstance& Instance(const Value& value) {
  if (auto* instance = dynamic_cast<HostInstance*>(Living(value.handle()))) return *instance;
  throw CallError(value.Describe() + " is no living object of a registered class");
}

Value FromLiteral(const Literal& literal) {
  return std::visit([](const auto& content) { return Value(content); }, literal);
}

Value FirstErrorOr(Outcome outcome) {
  if (!outcome.errors.empty()) throw HostException(outcome.errors.front());
  return std::move(outcome.value);
}

// The instance, to use this member of it. While a threaded call of an object waits, the tasks of
// the host get their turns, and one of them may use the same object: the library would read and
// free what its worker is working on.
HostInstance& InstanceFor(const std::string& member, const Value& value) {
  HostInstance& instance = Instance(value);
  const Host& host = CurrentHost();
  const CallUnderWay& call = instance.under_way;
  const bool shared = *call.method != '\0' && host.task_depth() > call.task_depth;
  if (!shared || host.options().shared_objects) return instance;
  throw CallError(instance.class_info().name() + "." + member + " while another task waits for " +
                  call.method + " of the same object: an object belongs to one task at a time");
}

// The bytes of a field, after a check that the instance record holds them.
unsigned char* Field(HostInstance& instance, const Property& property, std::size_t size) {
  const auto start = static_cast<std::size_t>(property.parameter);
  const std::size_t room = instance.class_info().data_size();
  if (start <= room && size <= room - start) return instance.data() + start;
  throw CallError(property.name + " is a field outside the instance record");
}

Value ReadField(HostInstance& instance, const Property& property) {
  const Kind kind = property.type.kind;
  if (kind == Kind::kInteger) {
    zrk::HostInteger number;
    std::memcpy(&number, Field(instance, property, sizeof number), sizeof number);
    return number;
  }
  if (kind == Kind::kBoolean) return *Field(instance, property, 1) != 0;
  void* handle = nullptr;
  std::memcpy(&handle, Field(instance, property, sizeof handle), sizeof handle);
  return Value(
      kind, CurrentHost().accounts().Find(handle, kind) ? Reference::Share(handle) : Reference());
}

void WriteField(HostInstance& instance, const Property& property, const Value& value) {
  if (property.type.kind == Kind::kBoolean) {
    *Field(instance, property, 1) = value.Boolean() ? 1 : 0;
    return;
  }
  if (property.type.kind != Kind::kInteger) {
    throw CallError(property.name + " is a field that this host does not write");
  }
  const zrk::HostInteger number = value.Integer();
  std::memcpy(Field(instance, property, sizeof number), &number, sizeof number);
}

}  // namespace

Object::Object(Value value) : value_(std::move(value)), class_(&Instance(value_).class_info()) {}

Outcome Object::TryCall(std::string_view name, const Values& arguments) const {
  const Method& method = class_->Choose(name, arguments);
  HostInstance& instance = InstanceFor(method.name, value_);
  const auto& parameters = method.declaration.parameters;
  Values complete = arguments;
  for (std::size_t i = complete.size(); i < parameters.size(); ++i) {
    complete.push_back(FromLiteral(*parameters[i].fallback));
  }
  MethodCall call(CurrentHost(), instance, method.name);
  for (std::size_t i = 0; i < complete.size(); ++i) call.Add(parameters[i].type, complete[i]);
  Outcome outcome = call.Run(method.function, method.declaration.result);
  outcome.method = &method;
  return outcome;
}

Value Object::Call(std::string_view method, const Values& arguments) const {
  return FirstErrorOr(TryCall(method, arguments));
}

const Property& Object::FindProperty(std::string_view name) const {
  if (const Property* property = class_->FindProperty(name)) return *property;
  throw CallError(class_->name() + " has no property \"" + std::string(name) + "\"");
}

Value Object::Get(std::string_view name) const {
  const Property& property = FindProperty(name);
  HostInstance& instance = InstanceFor(property.name, value_);
  if (property.ReadsField()) return ReadField(instance, property);
  if (!property.getter) throw CallError(property.name + " cannot be read");
  MethodCall call(CurrentHost(), instance, property.name);
  call.AddWord(property.parameter);
  return FirstErrorOr(call.Run(property.getter, property.type));
}

void Object::Set(std::string_view name, const Value& value) const {
  const Property& property = FindProperty(name);
  HostInstance& instance = InstanceFor(property.name, value_);
  if (!property.setter) throw CallError(property.text + " is read-only");
  if (!Fits(property.type, value)) {
    throw CallError(property.text + " takes no " + KindName(value.kind()));
  }
  if (property.WritesField()) return WriteField(instance, property, value);
  MethodCall call(CurrentHost(), instance, property.name);
  call.AddWord(property.parameter);
  call.Add(property.type, value);
  FirstErrorOr(call.Run(property.setter, {}));
}

void* Object::InstanceData() const { return Instance(value_).data(); }

void DestroyInstance(HostInstance& instance) {
  static const std::string name = "Destructor";
  Host* host = Host::Current();
  const zrk::HostFunction destructor = instance.class_info().definition().Destructor;
  if (!host || !destructor) return;
  const Outcome outcome = MethodCall(*host, instance, name).Run(destructor, {});
  for (const HostError& error : outcome.errors) {
    host->accounts().Report("a destructor raised " + error.class_name + ": " + error.message);
  }
}

void ConstructInstance(HostInstance& instance) {
  static const std::string name = "Constructor";
  const zrk::HostFunction constructor = instance.class_info().definition().Constructor;
  if (constructor) FirstErrorOr(MethodCall(CurrentHost(), instance, name).Run(constructor, {}));
}

}  // namespace standin
