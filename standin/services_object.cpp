// Classes, objects, exceptions, variants, memory blocks, versions and yielding.
#include <algorithm>
#include <memory>
#include <string>
#include <string_view>

#include "standin/host.h"
#include "standin/services.h"
#include "standin/things.h"

namespace standin {
namespace {

constexpr std::string_view kExceptionClasses[] = {
    "NilObjectException", "OutOfMemoryException", "OutOfBoundsException",
    "RuntimeException",   "IllegalCastException",
};

// Objects, memory blocks and arrays are counted alike; strings have services of their own.
Thing* FindCounted(REALobjectStruct* object) {
  Thing* thing = FindAs<Thing>(object, "an object");
  if (!thing || (thing->kind() != Kind::kString && thing->kind() != Kind::kStringData)) {
    return thing;
  }
  TheAccounts().Report("was handed " + thing->Describe() + " where an object belongs");
  return nullptr;
}

// The library's own reference to the string behind a value.
REALstringStruct* GiveString(const Value& text) {
  auto* string = dynamic_cast<HostString*>(Living(text.handle()));
  if (!string) return nullptr;
  TheAccounts().Give(*string, Side::kLibrary);
  return &string->record;
}

void ReportProperty(const Thing& object, const char* name) {
  TheAccounts().Report(object.Describe() + " has no such property \"" + (name ? name : "") + "\"");
}

}  // namespace

void Services::REALRegisterClass(REALclassDefinition* definition) {
  Host& host = *Host::Current();
  if (!definition) return host.accounts_.Report("was handed no class definition");
  host.classes_.push_back(std::make_unique<ClassInfo>(
      definition, host.options_.instance_offset,
      [&host](const std::string& problem) { host.accounts_.Report(problem); }));
}

REALobjectStruct* Services::REALnewInstance(const char* name) {
  Host& host = *Host::Current();
  if (!name || host.options_.unknown_classes.contains(name)) return nullptr;
  std::unique_ptr<Thing> object;
  if (std::ranges::find(kExceptionClasses, std::string_view(name)) != std::end(kExceptionClasses)) {
    object = std::make_unique<HostExceptionObject>(name);
  } else if (const ClassInfo* info = host.FindClass(name)) {
    object = std::make_unique<HostInstance>(*info);
  }
  if (!object) return nullptr;
  void* handle = host.accounts_.Open(std::move(object), Side::kLibrary)->handle();
  return static_cast<REALobjectStruct*>(handle);
}

// The host keeps what the exception says; the object stays the library's to give back.
void Services::REALRaiseException(REALobjectStruct* object) {
  const auto* exception = FindAs<HostExceptionObject>(object, "an exception");
  if (exception) Host::Current()->pending_errors_.push_back(exception->error);
}

void Services::REALSetPropValueString(REALobjectStruct* object, const char* name,
                                      REALstringStruct* string) {
  auto* exception = FindAs<HostExceptionObject>(object, "an exception");
  const Thing* text = TheAccounts().Find(string, Kind::kString);
  if (!exception) return;
  if (!name || !SameName(name, "Message")) return ReportProperty(*exception, name);
  exception->error.message =
      text ? Value(Kind::kString, Reference::Share(string)).UTF8() : std::string();
}

void Services::REALSetPropValueInteger(REALobjectStruct* object, const char* name,
                                       std::int32_t value) {
  auto* exception = FindAs<HostExceptionObject>(object, "an exception");
  if (!exception) return;
  if (!name || !SameName(name, "ErrorNumber")) return ReportProperty(*exception, name);
  exception->error.number = value;
}

unsigned char Services::REALGetPropValueString(REALobjectStruct* object, const char* name,
                                               REALstringStruct** result) {
  const Thing* thing = FindAs<Thing>(object, "an object");
  if (!thing || !name || !result) return 0;
  const auto* variant = dynamic_cast<const HostVariant*>(thing);
  const auto* exception = dynamic_cast<const HostExceptionObject*>(thing);
  if (variant && SameName(name, "StringValue")) {
    *result = GiveString(variant->StringValue());
  } else if (exception && SameName(name, "Message")) {
    *result = GiveString(exception->error.message);
  } else {
    return 0;
  }
  return 1;
}

// A nil variant has the empty text.
REALstringStruct* Services::GetVariantString(REALobjectStruct* object) {
  const auto* variant = object ? FindAs<HostVariant>(object, "a variant") : nullptr;
  return variant ? GiveString(variant->StringValue()) : nullptr;
}

void Services::REALLockObject(REALobjectStruct* object) {
  if (Thing* thing = FindCounted(object)) TheAccounts().Give(*thing, Side::kLibrary);
}

void Services::REALUnlockObject(REALobjectStruct* object) {
  if (Thing* thing = FindCounted(object)) TheAccounts().TakeBack(*thing, Side::kLibrary);
}

unsigned char* Services::REALMemoryBlockGetPtr(REALmemoryBlockStruct* block) {
  const auto* found = FindAs<HostMemoryBlock>(block, "a memory block");
  return found ? found->record.Data : nullptr;
}

std::int32_t Services::REALMemoryBlockGetSize(REALmemoryBlockStruct* block) {
  const auto* found = FindAs<HostMemoryBlock>(block, "a memory block");
  return found ? found->record.Size : 0;
}

void Services::REALYieldToRB() { Host::Current()->RunTasks(); }

double Services::HostVersion() { return Host::Current()->options().version.value_or(0); }

void Services::RegisterPluginVersion(std::int32_t version) {
  Host::Current()->plugin_version_ = version;
}

}  // namespace standin
