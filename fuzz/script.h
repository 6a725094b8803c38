// A run as a Lua program for zrkhost, printed line by line as it happens, so that one that crashes
// is printed as well. Only with ZRK_FUZZ_LUA in the environment.
#ifndef ZRK_FUZZ_SCRIPT_H
#define ZRK_FUZZ_SCRIPT_H

#include <string>
#include <string_view>

#include "standin/host.h"

namespace fuzz {

bool PrintsLua();
// Prints one line to the standard error.
void PrintLua(const std::string& line);

// The value as Lua source, or the values with a comma before each. Whatever a program cannot ask of
// its host (a block without data, an odd encoding) shows as the nearest thing that it can.
std::string LuaOf(const standin::Value& value);
std::string LuaOf(const standin::Values& values);
// How to run the program on such a host, as comments.
std::string LuaOf(const standin::HostOptions& options);

// Ends the program with the broken invariant's name, unless it holds.
void Check(bool holds, std::string_view invariant);

}  // namespace fuzz

#endif  // ZRK_FUZZ_SCRIPT_H
