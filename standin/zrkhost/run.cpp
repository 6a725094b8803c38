#include "standin/zrkhost/run.h"

#include <cstdio>

namespace standin::zrkhost {
namespace {

int AddTraceback(lua_State* L) {
  luaL_traceback(L, L, luaL_tolstring(L, 1, nullptr), 1);
  return 1;
}

bool CallLoaded(lua_State* L, int load_status, int arguments) {
  if (load_status == LUA_OK) return Call(L, arguments, 0);
  ReportError(L);
  return false;
}

}  // namespace

bool Call(lua_State* L, int arguments, int results) {
  const int handler = lua_gettop(L) - arguments;
  lua_pushcfunction(L, AddTraceback);
  lua_insert(L, handler);
  const int status = lua_pcall(L, arguments, results, handler);
  lua_remove(L, handler);
  if (status == LUA_OK) return true;
  ReportError(L);
  return false;
}

void ReportError(lua_State* L) {
  std::fflush(stdout);
  std::fprintf(stderr, "zrkhost: %s\n", luaL_tolstring(L, -1, nullptr));
  lua_pop(L, 2);
}

bool RunText(lua_State* L, const std::string& code, const char* name) {
  return CallLoaded(L, luaL_loadbuffer(L, code.data(), code.size(), name), 0);
}

bool RunFile(lua_State* L, const std::vector<std::string>& file_and_arguments) {
  const std::string& file = file_and_arguments.front();
  const int status = luaL_loadfile(L, file == "-" ? nullptr : file.c_str());
  const int count = static_cast<int>(file_and_arguments.size());
  if (status == LUA_OK) luaL_checkstack(L, count, "too many arguments");
  lua_newtable(L);
  for (int i = 0; i < count; ++i) {
    lua_pushstring(L, file_and_arguments[static_cast<std::size_t>(i)].c_str());
    lua_rawseti(L, -2, i);
  }
  lua_setglobal(L, "arg");
  for (int i = 1; status == LUA_OK && i < count; ++i) {
    lua_pushstring(L, file_and_arguments[static_cast<std::size_t>(i)].c_str());
  }
  return CallLoaded(L, status, count - 1);
}

}  // namespace standin::zrkhost
