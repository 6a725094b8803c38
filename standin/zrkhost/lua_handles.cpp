#include "standin/zrkhost/lua_handles.h"

#include <string>

#include "standin/object.h"
#include "standin/zrkhost/lua_boundary.h"
#include "standin/zrkhost/lua_class.h"
#include "standin/zrkhost/lua_things.h"
#include "standin/zrkhost/lua_values.h"

namespace standin::zrkhost {
namespace {

bool IsArray(const Value& value) {
  return value.kind() == Kind::kStringArray || value.kind() == Kind::kVariantArray;
}

lua_CFunction FindMethod(Kind kind, const std::string& name) {
  for (const luaL_Reg* row = MethodsOf(kind); row && row->name; ++row) {
    if (name == row->name) return row->func;
  }
  if (kind == Kind::kNil) throw CallError("this handle is closed");
  throw CallError("a " + std::string(KindName(kind)) + " has no \"" + name + "\"");
}

int Index(lua_State* L) {
  const Value& value = CheckHandle(L, 1);
  if (IsArray(value) && lua_isinteger(L, 2)) {
    // Lua counts from 1; below, the place is past every end.
    PushElement(L, value, static_cast<std::size_t>(lua_tointeger(L, 2)) - 1);
  } else if (value.kind() == Kind::kObject) {
    PushMember(L, Object(value), luaL_checkstring(L, 2));
  } else {
    lua_pushcfunction(L, FindMethod(value.kind(), luaL_checkstring(L, 2)));
  }
  return 1;
}

int NewIndex(lua_State* L) {
  const Value& value = CheckHandle(L, 1);
  const std::string name = luaL_checkstring(L, 2);
  SetMember(Object(value), name, ToValue(L, 3));
  return 0;
}

int Length(lua_State* L) {
  lua_pushinteger(L, static_cast<lua_Integer>(LengthOf(CheckHandle(L, 1))));
  return 1;
}

int ToString(lua_State* L) {
  const Value& value = CheckHandle(L, 1);
  std::string text = value.Describe();
  if (value.kind() == Kind::kString) text = value.UTF8();
  if (value.kind() == Kind::kMemoryBlock) text = value.Bytes();
  lua_pushlstring(L, text.data(), text.size());
  return 1;
}

int Equal(lua_State* L) {
  lua_pushboolean(L, CheckHandle(L, 1).handle() == CheckHandle(L, 2).handle());
  return 1;
}

int Close(lua_State* L) {
  *static_cast<Value*>(luaL_checkudata(L, 1, kHandle)) = Value();
  return 0;
}

constexpr luaL_Reg kEvents[] = {{"__index", Entry<Index>}, {"__newindex", Entry<NewIndex>},
                                {"__len", Entry<Length>},  {"__tostring", Entry<ToString>},
                                {"__eq", Entry<Equal>},    {"__gc", Entry<Close>},
                                {"__close", Entry<Close>}, {nullptr, nullptr}};

}  // namespace

void InstallHandles(lua_State* L) {
  luaL_newmetatable(L, kHandle);
  luaL_setfuncs(L, kEvents, 0);
  lua_pop(L, 1);
}

}  // namespace standin::zrkhost
