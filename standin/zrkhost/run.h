// Running Lua code and reporting its errors, with a traceback, on the error output.
#ifndef ZRK_STANDIN_ZRKHOST_RUN_H
#define ZRK_STANDIN_ZRKHOST_RUN_H

#include <lua.hpp>
#include <string>
#include <vector>

namespace standin::zrkhost {

// Calls the function below `arguments` values on the stack, leaving its results. False after an
// error; then both are gone.
bool Call(lua_State* L, int arguments, int results);

// Prints the error on top of the stack and removes it.
void ReportError(lua_State* L);

// False after an error. `name` is what messages call the code, as Lua wants it: "=(command line)".
bool RunText(lua_State* L, const std::string& code, const char* name);
// Runs a file, "-" for the standard input, with arguments in `...` and in the global `arg`.
bool RunFile(lua_State* L, const std::vector<std::string>& file_and_arguments);

}  // namespace standin::zrkhost

#endif  // ZRK_STANDIN_ZRKHOST_RUN_H
