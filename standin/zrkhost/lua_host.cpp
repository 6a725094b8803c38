#include "standin/zrkhost/lua_host.h"

#include <unistd.h>

#include <chrono>
#include <string>

#include "host/records.h"
#include "standin/encoding.h"
#include "standin/object.h"
#include "standin/zrkhost/lua_boundary.h"
#include "standin/zrkhost/lua_class.h"
#include "standin/zrkhost/lua_tasks.h"
#include "standin/zrkhost/lua_values.h"

namespace standin::zrkhost {
namespace {

int MakeString(lua_State* L) {
  const std::uint32_t encoding = EncodingByName(luaL_optstring(L, 2, "UTF-8"));
  PushHandle(L, Host::Current()->String(CheckText(L, 1), encoding));
  return 1;
}

int ConvertString(lua_State* L) {
  const std::uint32_t from = EncodingByName(luaL_checkstring(L, 2));
  const auto converted = ConvertText(CheckText(L, 1), from, EncodingByName(luaL_checkstring(L, 3)));
  if (!converted) throw CallError("nothing converts from or to an unknown encoding");
  PushText(L, *converted);
  return 1;
}

int MakeMemoryBlock(lua_State* L) {
  PushHandle(L, Host::Current()->MemoryBlock(CheckText(L, 1)));
  return 1;
}

int MakeStringArray(lua_State* L) {
  PushHandle(L, Host::Current()->StringArray(ToElements(L, 1)));
  return 1;
}

int MakeVariantArray(lua_State* L) {
  PushHandle(L, Host::Current()->VariantArray(ToElements(L, 1)));
  return 1;
}

int MakeNull(lua_State* L) {
  const std::string name = luaL_checkstring(L, 1);
  const Value null = Value::Nil(ParseType(name).kind);
  if (!null.IsNil()) throw CallError(name + " has no nil");
  PushHandle(L, null);
  return 1;
}

int TypeName(lua_State* L) {
  const void* handle = luaL_testudata(L, 1, kHandle);
  if (!handle) return 0;
  const Value& value = *static_cast<const Value*>(handle);
  const bool object = value.kind() == Kind::kObject;
  lua_pushstring(L, object ? Object(value).class_info().name().c_str() : KindName(value.kind()));
  return 1;
}

void PushMemberTable(lua_State* L, const Member& member, const char* kind, bool writable = false) {
  lua_newtable(L);
  SetText(L, "name", member.name);
  SetText(L, "kind", kind);
  SetText(L, "declaration", member.text);
  SetTruth(L, "writable", writable);
}

void SetParameters(lua_State* L, const MethodDeclaration& declaration) {
  lua_newtable(L);
  for (const Parameter& parameter : declaration.parameters) {
    lua_newtable(L);
    SetText(L, "name", parameter.name);
    SetText(L, "type", parameter.type.name);
    SetTruth(L, "optional", parameter.fallback.has_value());
    PushLiteral(L, parameter.fallback.value_or(Literal()));
    lua_setfield(L, -2, "default");
    Append(L);
  }
  lua_setfield(L, -2, "parameters");
}

int ListClasses(lua_State* L) {
  lua_newtable(L);
  for (const auto& info : Host::Current()->classes()) AppendText(L, info->name());
  return 1;
}

int ListMembers(lua_State* L) {
  if (lua_isnone(L, 1)) return ListClasses(L);
  const std::string name = luaL_checkstring(L, 1);
  const ClassInfo* info = Host::Current()->FindClass(name);
  if (!info) throw CallError("there is no class \"" + name + "\"");
  lua_newtable(L);
  for (const Method& method : info->methods()) {
    PushMemberTable(L, method, "method");
    SetParameters(L, method.declaration);
    const Type& result = method.declaration.result;
    if (result.kind != Kind::kNil) SetText(L, "result", result.name);
    Append(L);
  }
  for (const Property& property : info->properties()) {
    PushMemberTable(L, property, "property", property.setter != nullptr);
    SetText(L, "type", property.type.name);
    Append(L);
  }
  for (const Constant& constant : info->constants()) {
    PushMemberTable(L, constant, "constant");
    PushLiteral(L, constant.declaration.value);
    lua_setfield(L, -2, "value");
    Append(L);
  }
  return 1;
}

int ListProblems(lua_State* L) {
  lua_newtable(L);
  for (const std::string& problem : Host::Current()->Problems()) AppendText(L, problem);
  return 1;
}

int Clock(lua_State* L) {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  lua_pushnumber(L, std::chrono::duration<lua_Number>(now).count());
  return 1;
}

// The streams by the names that Lua's io library has for them.
int IsTerminal(lua_State* L) {
  constexpr const char* const kNames[] = {"stdin", "stdout", "stderr", nullptr};
  lua_pushboolean(L, isatty(luaL_checkoption(L, 1, "stdout", kNames)));
  return 1;
}

constexpr luaL_Reg kFunctions[] = {{"string", Entry<MakeString>},
                                   {"convert", Entry<ConvertString>},
                                   {"memoryblock", Entry<MakeMemoryBlock>},
                                   {"stringarray", Entry<MakeStringArray>},
                                   {"variantarray", Entry<MakeVariantArray>},
                                   {"null", Entry<MakeNull>},
                                   {"task", Entry<StartTask>},
                                   {"yield", Entry<Yield>},
                                   {"type", Entry<TypeName>},
                                   {"members", Entry<ListMembers>},
                                   {"watch", Entry<WatchMethods>},
                                   {"problems", Entry<ListProblems>},
                                   {"clock", Entry<Clock>},
                                   {"isatty", Entry<IsTerminal>},
                                   {nullptr, nullptr}};

}  // namespace

void InstallHost(lua_State* L, const Host& host) {
  luaL_newlib(L, kFunctions);
  if (const auto version = host.options().version) {
    lua_pushnumber(L, *version);
    lua_setfield(L, -2, "version");
  }
  lua_setglobal(L, "host");
}

}  // namespace standin::zrkhost
