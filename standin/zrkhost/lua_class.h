// Registered classes and their objects, as programs see them:
//
//   local re = RegExZRK.new(100)        -- or RegExZRK(100)
//   re.CompileOptionCaseLess = true
//   if re:Compile("a+") and re:Execute("baa") > 0 then print(re.Count, re.ErrorNoMatch) end
//
// As in the host's language, upper and lower case are the same in names.
#ifndef ZRK_STANDIN_ZRKHOST_LUA_CLASS_H
#define ZRK_STANDIN_ZRKHOST_LUA_CLASS_H

#include <lua.hpp>
#include <string>

#include "standin/host.h"

namespace standin::zrkhost {

// Pushes a property's value, a constant, or a function that calls the method; throws CallError
// that names what there is where the class has no such member.
void PushMember(lua_State* L, const Object& object, const std::string& name);

// Sets a property; throws CallError likewise.
void SetMember(lua_State* L, const Object& object, const std::string& name, const Value& value);

// (function): from now on called after every method, with object, name, result and arguments.
int WatchMethods(lua_State* L);

// Makes a global of each class that the host knows, and completes the table `host`.
void InstallClasses(lua_State* L, const Host& host);

}  // namespace standin::zrkhost

#endif  // ZRK_STANDIN_ZRKHOST_LUA_CLASS_H
