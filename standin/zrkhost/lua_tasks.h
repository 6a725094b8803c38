// Cooperative tasks: coroutines that the host resumes once in each of its yields. Those that are
// not done when the program ends go with it.
#ifndef ZRK_STANDIN_ZRKHOST_LUA_TASKS_H
#define ZRK_STANDIN_ZRKHOST_LUA_TASKS_H

#include <lua.hpp>

namespace standin::zrkhost {

// (function): starts a task. An error ends it and is printed; the program goes on.
int StartTask(lua_State* L);
// (): in a coroutine its yield, so that others go on; in the program a turn for every task, and
// true while there are tasks.
int Yield(lua_State* L);

// Whether a task of this state ended with an error.
bool TaskFailed(lua_State* L);

}  // namespace standin::zrkhost

#endif  // ZRK_STANDIN_ZRKHOST_LUA_TASKS_H
