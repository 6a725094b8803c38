#include "standin/zrkhost/run.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "standin/zrkhost/lua_boundary.h"

namespace standin::zrkhost {
namespace {

int AddTraceback(lua_State* L) {
  PushErrorText(L, 1);
  luaL_traceback(L, L, lua_tostring(L, -1), 1);
  return 1;
}

// Runs what a load left on the stack; `words` are its name and arguments.
bool CallLoaded(lua_State* L, int load_status, const std::vector<std::string>& words) {
  if (load_status != LUA_OK) {
    if (load_status == LUA_ERRFILE && words.size() > 1) {
      lua_pushliteral(L, "; to try a pattern: zrkhost try PATTERN [FILE...]");
      lua_concat(L, 2);
    }
    ReportError(L);
    return false;
  }
  const int count = static_cast<int>(words.size());
  luaL_checkstack(L, count + 1, "too many arguments");
  lua_createtable(L, count, 0);
  for (int i = 0; i < count; ++i) {
    lua_pushstring(L, words[static_cast<std::size_t>(i)].c_str());
    lua_rawseti(L, -2, i);
  }
  lua_setglobal(L, "arg");
  for (int i = 1; i < count; ++i) lua_pushstring(L, words[static_cast<std::size_t>(i)].c_str());
  return Call(L, count - 1, 0);
}

}  // namespace

int FlushOutput(int status) {
  const bool failed = std::ferror(stdout) != 0;
  errno = 0;
  if (std::fflush(stdout) == 0 && !failed) return status;
  std::fprintf(stderr, "zrkhost: not all output could be written%s%s\n", errno ? ": " : "",
               errno ? std::strerror(errno) : "");
  return status == kSuccess ? kNoOutput : status;
}

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
  PushErrorText(L, -1);
  std::fprintf(stderr, "zrkhost: %s\n", lua_tostring(L, -1));
  lua_pop(L, 2);
}

bool RunText(lua_State* L, const std::string& code, const char* name,
             const std::vector<std::string>& words) {
  return CallLoaded(L, luaL_loadbuffer(L, code.data(), code.size(), name), words);
}

bool RunFile(lua_State* L, const std::vector<std::string>& words) {
  const std::string& file = words.front();
  return CallLoaded(L, luaL_loadfile(L, file == "-" ? nullptr : file.c_str()), words);
}

}  // namespace standin::zrkhost
