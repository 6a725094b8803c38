// Handles: what programs hold of the host's objects, memory blocks, arrays, and of strings that are
// not plain Lua strings.
#ifndef ZRK_STANDIN_ZRKHOST_LUA_HANDLES_H
#define ZRK_STANDIN_ZRKHOST_LUA_HANDLES_H

#include <lua.hpp>

namespace standin::zrkhost {

// Makes the metatable of handles in a new state: members, `#`, tostring, `==`, collection and
// `local x <close>`.
void InstallHandles(lua_State* L);

}  // namespace standin::zrkhost

#endif  // ZRK_STANDIN_ZRKHOST_LUA_HANDLES_H
