// Values on their way between Lua and the host.
//
//   Lua                      host
//   nil                      nil, of whatever kind fits
//   boolean, number          Boolean, Integer (a number with a fraction: Double)
//   string                   a UTF-8 string; strings come back as Lua strings in UTF-8
//   table                    a string array, or a variant array where not all elements are strings
//   handle (a userdata)      what it holds: string, memory block, array or object
#ifndef ZRK_STANDIN_ZRKHOST_LUA_VALUES_H
#define ZRK_STANDIN_ZRKHOST_LUA_VALUES_H

#include <cstddef>
#include <lua.hpp>
#include <string_view>

#include "standin/declaration.h"
#include "standin/value.h"

namespace standin::zrkhost {

// The name of the metatable that all handles have.
inline constexpr const char* kHandle = "host value";

// The text at `index`, which lives as long as its Lua string does; another argument is a Lua error.
std::string_view CheckText(lua_State* L, int index);
void PushText(lua_State* L, std::string_view text);
void PushLiteral(lua_State* L, const Literal& literal);

// Each sets a field of the table on top of the stack, or adds an element at its end.
void SetText(lua_State* L, const char* field, std::string_view text);
void SetTruth(lua_State* L, const char* field, bool truth);
void AppendText(lua_State* L, std::string_view text);
// Takes what is on top of the stack and adds it to the table below.
void Append(lua_State* L);

// The value for what is at `index`; throws CallError where the host has nothing like it.
Value ToValue(lua_State* L, int index);
// The arguments from `first` to the top of the stack.
Values ToValues(lua_State* L, int first);
// The elements of the table at `index`, whose field "n", if there is one, says how many they are.
Values ToElements(lua_State* L, int index);

// Pushes a value: a null string as "", a string array as a table, other host things as handles.
void PushValue(lua_State* L, const Value& value);
// Pushes one element, counted from 0; a null string of a string array is "", as everywhere.
void PushElement(lua_State* L, const Value& array, std::size_t index);
// Pushes a table of all elements.
void PushTable(lua_State* L, const Value& array);
// Pushes a handle, also for strings and string arrays. It gives its reference back when it is
// collected or closed; then it is nil.
void PushHandle(lua_State* L, Value value);
// The value of the handle at `index`; another argument is a Lua error.
const Value& CheckHandle(lua_State* L, int index);

}  // namespace standin::zrkhost

#endif  // ZRK_STANDIN_ZRKHOST_LUA_VALUES_H
