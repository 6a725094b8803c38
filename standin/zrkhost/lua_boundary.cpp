#include "standin/zrkhost/lua_boundary.h"

#include <new>
#include <string>

#include "standin/object.h"
#include "standin/zrkhost/lua_values.h"

namespace standin::zrkhost {
namespace {

constexpr const char* kErrorTable = "host exception";

void PushHostError(lua_State* L, const HostError& error) {
  lua_createtable(L, 0, 4);
  SetText(L, "class", error.class_name);
  SetText(L, "message", error.message);
  lua_pushinteger(L, error.number);
  lua_setfield(L, -2, "number");
  luaL_where(L, 1);
  lua_setfield(L, -2, "where");
  luaL_setmetatable(L, kErrorTable);
}

int ErrorText(lua_State* L) {
  lua_getfield(L, 1, "class");
  lua_getfield(L, 1, "message");
  lua_pushfstring(L, "%s: %s", luaL_tolstring(L, 2, nullptr), luaL_tolstring(L, 3, nullptr));
  return 1;
}

}  // namespace

void PushCurrentException(lua_State* L) {
  try {
    throw;
  } catch (const HostException& exception) {
    PushHostError(L, exception.error());
  } catch (const std::bad_alloc&) {
    lua_pushliteral(L, "not enough memory");
  } catch (const std::exception& exception) {
    luaL_where(L, 1);
    lua_pushstring(L, exception.what());
    lua_concat(L, 2);
  }
}

void PushErrorText(lua_State* L, int index) {
  index = lua_absindex(L, index);
  lua_pushliteral(L, "");
  if (lua_istable(L, index)) {
    lua_pushliteral(L, "where");
    if (lua_rawget(L, index) == LUA_TSTRING) lua_insert(L, -2);
    lua_pop(L, 1);
  }
  luaL_tolstring(L, index, nullptr);
  lua_concat(L, 2);
}

void InstallErrors(lua_State* L) {
  luaL_newmetatable(L, kErrorTable);
  lua_pushcfunction(L, ErrorText);
  lua_setfield(L, -2, "__tostring");
  lua_pop(L, 1);
}

}  // namespace standin::zrkhost
