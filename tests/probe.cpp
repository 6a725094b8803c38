#include "tests/probe.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace probe {

using zrk::HostBoolean;
using zrk::REALobjectStruct;

std::function<String(String)> run;
std::function<void()> destructor;

void Lock(String text) { Service<void>("REALLockString", text); }
void Unlock(String text) { Service<void>("REALUnlockString", text); }
String Build(const char* text) {
  return Service<String>("REALBuildString", text, std::int32_t(std::strlen(text)));
}
void Fill(String text, zrk::REALstringData* data) {
  Service<unsigned char>("PluginGetStringData", text, std::uint32_t(zrk::kEncodingUTF8), data);
}
void Dispose(zrk::REALstringData* data) { Service<void>("PluginDisposeStringData", data); }
void Raise(const char* class_name) {
  auto* object = Service<REALobjectStruct*>("PluginNewInstance", class_name);
  Service<void>("RuntimeRaiseException", object);
  Service<void>("REALUnlockObject", object);
}

namespace {

String RunText(REALobjectStruct*, String text) { return run(text); }
std::int32_t FindFrom(REALobjectStruct*, std::int32_t start) { return start; }
std::int32_t FindText(REALobjectStruct*, String text, std::int32_t start, HostBoolean deep) {
  return start + (deep ? 1000 : 0) + (text ? 100 * text->Length : 0);
}
void* Keep(REALobjectStruct*, zrk::_REALarrayObject*, HostBoolean) { return nullptr; }
HostBoolean GetOdd(REALobjectStruct*, std::intptr_t parameter) { return parameter % 2 ? -1 : 0; }
void Destroy(REALobjectStruct*) {
  if (destructor) destructor();
}

template <typename F>
zrk::HostFunction Function(F function) {
  return reinterpret_cast<zrk::HostFunction>(function);
}
const zrk::HostFunction kField = Function(zrk::HostWord(-1));

// Rows of the old layout are the first words of the current ones.
template <std::size_t kWords, typename Row, std::size_t kCount>
Row* OldRows(Row (&rows)[kCount]) {
  static zrk::HostWord old[kCount][kWords];
  for (std::size_t i = 0; i < kCount; ++i) std::memcpy(old[i], &rows[i], sizeof old[i]);
  return reinterpret_cast<Row*>(old);
}
}  // namespace

void Register(zrk::HostWord version) {
  static zrk::REALproperty properties[] = {
      {nullptr, "Size", "Integer", 6, kField, kField, 8, {}},
      {nullptr, "Odd", "Boolean", 6, Function(GetOdd), nullptr, 7, {}},
  };
  static zrk::REALmethodDefinition methods[] = {
      {Function(RunText), 0, "Run(text as string) as string", 4, {}},
      {Function(FindFrom), 0, "Find(start as integer = 3) as integer", 4, {}},
      {Function(FindText),
       0,
       "Find(text as string, start as integer = -1, deep as boolean = TRUE) as Integer",
       4,
       {}},
      {Function(Keep), 0, "Keep(text() as variant, inverse as boolean = false) as string()", 4, {}},
  };
  static zrk::REALconstant constants[] = {{"ErrorPlugin = -99", {}}, {"Last=7", {}}};
  static zrk::REALclassDefinition definition;
  const bool old = version < 10;
  definition = {};
  definition.Version = version;
  definition.Name = "Probe";
  definition.DataSize = 16;
  definition.Destructor = Function(Destroy);
  definition.Properties = old ? OldRows<10>(properties) : properties;
  definition.PropertyCount = std::ssize(properties);
  definition.Methods = old ? OldRows<4>(methods) : methods;
  definition.MethodCount = std::ssize(methods);
  definition.Constants = old ? OldRows<3>(constants) : constants;
  definition.ConstantCount = std::ssize(constants);
  Service<void>("PluginRegisterClass", &definition);
}

std::string Joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + "\n";
  return text;
}

}  // namespace probe
