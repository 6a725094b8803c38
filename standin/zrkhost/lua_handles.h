// Handles: what programs hold of the host's objects, memory blocks, arrays, and of strings that are
// not plain Lua strings. Besides the members of objects:
//   string        text:bytes(), text:encoding()
//   memory block  block:size(), block:resize(size), block:byte(offset [, new]),
//                 block:read(offset [, count]), block:write(offset, bytes); offsets count from 0
//   arrays        array[1] and so on, array:resize(count), array:totable()
#ifndef ZRK_STANDIN_ZRKHOST_LUA_HANDLES_H
#define ZRK_STANDIN_ZRKHOST_LUA_HANDLES_H

#include <lua.hpp>

namespace standin::zrkhost {

// Makes the metatable of handles in a new state: members, `#`, tostring, `==`, collection and
// `local x <close>`.
void InstallHandles(lua_State* L);

}  // namespace standin::zrkhost

#endif  // ZRK_STANDIN_ZRKHOST_LUA_HANDLES_H
