// What programs can do with handles of host strings, memory blocks and arrays.
#ifndef ZRK_STANDIN_ZRKHOST_LUA_THINGS_H
#define ZRK_STANDIN_ZRKHOST_LUA_THINGS_H

#include <lua.hpp>

#include "standin/value.h"

namespace standin::zrkhost {

// The methods of handles of this kind, ended by a null name; null where there are none:
//   string        text:bytes(), text:encoding()
//   memory block  block:size(), block:byte(offset [, new]), block:read(offset [, count]),
//                 block:write(offset, bytes); offsets count bytes from 0
//   arrays        array:resize(count), array:totable()
const luaL_Reg* MethodsOf(Kind kind);

// Bytes of a string or memory block, elements of an array.
std::size_t LengthOf(const Value& value);

}  // namespace standin::zrkhost

#endif  // ZRK_STANDIN_ZRKHOST_LUA_THINGS_H
