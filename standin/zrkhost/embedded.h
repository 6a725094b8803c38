// The Lua programs and the help pages that are built into zrkhost.
#ifndef ZRK_STANDIN_ZRKHOST_EMBEDDED_H
#define ZRK_STANDIN_ZRKHOST_EMBEDDED_H

#include <lua.hpp>

namespace standin::zrkhost {

// Makes each Lua file of this folder a module for `require` ("zrkhost.try" for try.lua), and
// "zrkhost.pages" the text of all help pages.
void InstallModules(lua_State* L);

}  // namespace standin::zrkhost

#endif  // ZRK_STANDIN_ZRKHOST_EMBEDDED_H
