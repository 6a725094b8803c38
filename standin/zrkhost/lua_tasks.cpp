#include "standin/zrkhost/lua_tasks.h"

#include <cstdio>

#include "standin/host.h"
#include "standin/zrkhost/lua_boundary.h"

namespace standin::zrkhost {
namespace {

constexpr const char* kFailed = "host task failed";

void ReportError(lua_State* task) {
  PushErrorText(task, -1);
  luaL_traceback(task, task, lua_tostring(task, -1), 0);
  std::fprintf(stderr, "zrkhost: a task ended with an error: %s\n", lua_tostring(task, -1));
  lua_pushboolean(task, true);
  lua_setfield(task, LUA_REGISTRYINDEX, kFailed);
}

// One turn of a task; `reference` keeps its coroutine alive until it is done.
bool Step(lua_State* task, int reference) {
  int results = 0;
  const int status = lua_resume(task, nullptr, 0, &results);
  if (status == LUA_YIELD) {
    lua_pop(task, results);
    return true;
  }
  if (status != LUA_OK) ReportError(task);
  lua_resetthread(task);
  luaL_unref(task, LUA_REGISTRYINDEX, reference);
  return false;
}

}  // namespace

int StartTask(lua_State* L) {
  luaL_checktype(L, 1, LUA_TFUNCTION);
  lua_State* task = lua_newthread(L);
  lua_pushvalue(L, 1);
  lua_xmove(L, task, 1);
  const int reference = luaL_ref(L, LUA_REGISTRYINDEX);
  Host::Current()->AddTask([task, reference] { return Step(task, reference); });
  return 0;
}

int Yield(lua_State* L) {
  if (lua_isyieldable(L)) return lua_yield(L, 0);
  Host::Current()->RunTasks();
  lua_pushboolean(L, Host::Current()->HasTasks());
  return 1;
}

bool TaskFailed(lua_State* L) {
  const bool failed = lua_getfield(L, LUA_REGISTRYINDEX, kFailed) == LUA_TBOOLEAN;
  lua_pop(L, 1);
  return failed;
}

}  // namespace standin::zrkhost
