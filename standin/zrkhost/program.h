// One run of zrkhost: a host, the library that it loads, and the Lua state on top.
#ifndef ZRK_STANDIN_ZRKHOST_PROGRAM_H
#define ZRK_STANDIN_ZRKHOST_PROGRAM_H

#include <lua.hpp>
#include <memory>

#include "standin/host.h"
#include "standin/library.h"
#include "standin/zrkhost/options.h"

namespace standin::zrkhost {

class Program {
 public:
  // Throws std::exception with one line where the library or the host cannot be had.
  explicit Program(Options options);

  // Does what the options say and answers the exit status.
  int Run();

  // Ends the Lua state, which gives all references back, and looks at the accounts. Answers
  // `status`, or kUnbalanced where that would be 0 and something is off.
  int Finish(int status);
  // Ends the process the same way; where a call of the library is still under way (a task asks), it
  // holds what it holds by right, and nothing is looked at.
  [[noreturn]] void Exit(int status);

 private:
  // What each class that has a method "Version" answers to it.
  void PrintVersions();
  void OpenState();
  bool RunCode();
  // A command, a listing in the host's language, a Lua file, or the prompt.
  bool RunScript();

  Options options_;
  Library library_;
  Host host_;
  std::unique_ptr<lua_State, decltype(&lua_close)> lua_{nullptr, lua_close};
};

}  // namespace standin::zrkhost

#endif  // ZRK_STANDIN_ZRKHOST_PROGRAM_H
