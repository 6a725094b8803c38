// Where C++ meets Lua. The Lua library is the one that is built as C++: its errors unwind the stack
// as exceptions do, so functions for Lua may hold C++ objects and still raise Lua errors. What must
// not pass the other way is an exception of ours; Entry turns it into a Lua error.
#ifndef ZRK_STANDIN_ZRKHOST_LUA_BOUNDARY_H
#define ZRK_STANDIN_ZRKHOST_LUA_BOUNDARY_H

#include <exception>
#include <lua.hpp>

namespace standin::zrkhost {

// Pushes the exception being handled: a host exception as a table with class, message, number and
// where (the place of the call, as "file:line: ") that prints as "Class: message", anything else as
// a text with the place of the call.
void PushCurrentException(lua_State* L);

// Pushes an error as its report begins: the place of a host exception stands before its text.
void PushErrorText(lua_State* L, int index);

// `function` as Lua can call it.
template <lua_CFunction function>
int Entry(lua_State* L) {
  try {
    return function(L);
  } catch (const std::exception&) {
    PushCurrentException(L);
  }
  return lua_error(L);
}

// Makes the table behind host exceptions in a new state.
void InstallErrors(lua_State* L);

}  // namespace standin::zrkhost

#endif  // ZRK_STANDIN_ZRKHOST_LUA_BOUNDARY_H
