#include "standin/zrkhost/lua_class.h"

#include <string>

#include "standin/zrkhost/lua_boundary.h"
#include "standin/zrkhost/lua_values.h"

namespace standin::zrkhost {
namespace {

// The registry's table of functions that call methods, by the names that programs wrote.
constexpr const char* kCallers = "host methods";

constexpr const char* kWatcher = "watcher of methods";

// The function of members.lua that says what a class has instead of a member.
constexpr const char* kMissing = "missing member";

// The name of the method or class that a function is for.
const char* OwnName(lua_State* L) { return lua_tostring(L, lua_upvalueindex(1)); }

// After a method: the stack holds the object, the arguments and the result.
void TellWatcher(lua_State* L, const char* method) {
  if (lua_getfield(L, LUA_REGISTRYINDEX, kWatcher) == LUA_TNIL) return lua_pop(L, 1);
  const int result = lua_gettop(L) - 1;
  lua_pushvalue(L, 1);
  lua_pushstring(L, method);
  lua_pushvalue(L, result);
  for (int i = 2; i < result; ++i) lua_pushvalue(L, i);
  lua_call(L, result + 1, 0);
}

int CallMethod(lua_State* L) {
  const std::string name = OwnName(L);
  if (!luaL_testudata(L, 1, kHandle)) {
    throw CallError(name + " is called with a colon: object:" + name + "(...)");
  }
  const Object object(CheckHandle(L, 1));
  PushValue(L, object.Call(name, ToValues(L, 2)));
  TellWatcher(L, name.c_str());
  return 1;
}

void PushCaller(lua_State* L, const std::string& name) {
  luaL_getsubtable(L, LUA_REGISTRYINDEX, kCallers);
  if (lua_getfield(L, -1, name.c_str()) == LUA_TNIL) {
    PushText(L, name);
    lua_pushcclosure(L, Entry<CallMethod>, 1);
    lua_pushvalue(L, -1);
    lua_setfield(L, -4, name.c_str());
  }
}

[[noreturn]] void FailMissing(lua_State* L, const ClassInfo& info, const std::string& name) {
  lua_getfield(L, LUA_REGISTRYINDEX, kMissing);
  PushText(L, info.name());
  PushText(L, name);
  lua_call(L, 2, 1);
  throw CallError(std::string(CheckText(L, -1)));
}

int New(lua_State* L) {
  PushHandle(L, Host::Current()->New(OwnName(L), ToValues(L, 1)).value());
  return 1;
}

// A call of the class itself has the class as its first argument.
int Construct(lua_State* L) {
  lua_remove(L, 1);
  return New(L);
}

int ClassMember(lua_State* L) {
  const ClassInfo& info = *Host::Current()->FindClass(OwnName(L));
  const std::string name = luaL_checkstring(L, 2);
  if (SameName(name, "new")) {
    lua_pushvalue(L, lua_upvalueindex(1));
    lua_pushcclosure(L, Entry<New>, 1);
  } else if (const Constant* constant = info.FindConstant(name)) {
    PushLiteral(L, constant->declaration.value);
  } else {
    throw CallError(info.name() + " itself has \"new\" and constants, but no \"" + name + "\"");
  }
  return 1;
}

int RefuseMember(lua_State* L) {
  throw CallError(std::string(OwnName(L)) + ": a class takes no new members");
}

int ClassText(lua_State* L) {
  lua_pushfstring(L, "class %s", OwnName(L));
  return 1;
}

constexpr luaL_Reg kClassEvents[] = {{"__call", Entry<Construct>},
                                     {"__index", Entry<ClassMember>},
                                     {"__newindex", Entry<RefuseMember>},
                                     {"__tostring", Entry<ClassText>},
                                     {nullptr, nullptr}};

}  // namespace

void PushMember(lua_State* L, const Object& object, const std::string& name) {
  const ClassInfo& info = object.class_info();
  if (info.FindProperty(name)) {
    PushValue(L, object.Get(name));
  } else if (const Constant* constant = info.FindConstant(name)) {
    PushLiteral(L, constant->declaration.value);
  } else if (!info.FindMethods(name).empty()) {
    PushCaller(L, name);
  } else {
    FailMissing(L, info, name);
  }
}

void SetMember(lua_State* L, const Object& object, const std::string& name, const Value& value) {
  const ClassInfo& info = object.class_info();
  if (!info.FindProperty(name)) FailMissing(L, info, name);
  object.Set(name, value);
}

int WatchMethods(lua_State* L) {
  lua_settop(L, 1);
  lua_setfield(L, LUA_REGISTRYINDEX, kWatcher);
  return 0;
}

void InstallClasses(lua_State* L, const Host& host) {
  lua_getglobal(L, "require");
  lua_pushliteral(L, "zrkhost.members");
  lua_call(L, 1, 1);
  lua_getfield(L, -1, "missing");
  lua_setfield(L, LUA_REGISTRYINDEX, kMissing);
  lua_pop(L, 1);
  for (const auto& info : host.classes()) {
    lua_newtable(L);
    lua_newtable(L);
    PushText(L, info->name());
    luaL_setfuncs(L, kClassEvents, 1);
    lua_setmetatable(L, -2);
    lua_setglobal(L, info->name().c_str());
  }
}

}  // namespace standin::zrkhost
