// Running Lua code and reporting its errors, with a traceback, on the error output.
#ifndef ZRK_STANDIN_ZRKHOST_RUN_H
#define ZRK_STANDIN_ZRKHOST_RUN_H

#include <lua.hpp>
#include <string>
#include <vector>

namespace standin::zrkhost {

enum ExitStatus {
  kSuccess = 0,
  kProgramFailed = 1,
  kNotStarted = 2,
  kNoOutput = 2,
  kUnbalanced = 3,
};

// Answers `status`, or kNoOutput where that would be 0 and not all that was printed could be
// written; then it says so.
int FlushOutput(int status);

// Calls the function below `arguments` values on the stack, leaving its results. False after an
// error; then both are gone.
bool Call(lua_State* L, int arguments, int results);

// Prints the error on top of the stack and removes it.
void ReportError(lua_State* L);

// Both run code with a name and arguments for it, the global `arg` from 0 and `...`; false after an
// error. `name` is what messages call the code, as Lua wants it: "=(command line)".
bool RunText(lua_State* L, const std::string& code, const char* name,
             const std::vector<std::string>& words);
// The name is the file's, "-" for the standard input.
bool RunFile(lua_State* L, const std::vector<std::string>& words);

}  // namespace standin::zrkhost

#endif  // ZRK_STANDIN_ZRKHOST_RUN_H
