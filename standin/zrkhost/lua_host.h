// The global table `host`:
//
//   host.string(bytes [, encoding])   a host string of an encoding such as "Windows Latin-1"
//   host.convert(bytes, from, to)     the bytes of a text in another encoding
//   host.describe([format])           the loaded classes, as --describe prints them
//   host.memoryblock(bytes)           a memory block
//   host.stringarray(table), host.variantarray(table)
//   host.null(type)                   a nil of a type such as "string()", to choose an overload
//   host.task(function)               a cooperative task, resumed in each yield of the host
//   host.yield()                      gives the tasks (or, in a task, the program) their turn
//   host.version                      the version that the host claims, nil for none
//   host.type(value)                  "RegExZRK", "string array" and so on; nil for other values
//   host.members(class)               tables with name, kind ("method", "property", "constant"),
//                                     declaration and writable; parameters (tables with name, type,
//                                     optional, default) and result, type, or value
//   host.members()                    the names of the loaded classes
//   host.watch(function)              called after each method with object, name, result, arguments
//   host.problems()                   what is wrong with the accounts so far
//   host.clock()                      seconds of a clock that only goes forward
//   host.isatty([stream])             whether "stdin", "stdout" (or none) or "stderr" is a terminal
#ifndef ZRK_STANDIN_ZRKHOST_LUA_HOST_H
#define ZRK_STANDIN_ZRKHOST_LUA_HOST_H

#include <lua.hpp>

#include "standin/host.h"

namespace standin::zrkhost {

// All but `describe`, which members.lua adds.
void InstallHost(lua_State* L, const Host& host);

}  // namespace standin::zrkhost

#endif  // ZRK_STANDIN_ZRKHOST_LUA_HOST_H
