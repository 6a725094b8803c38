#include "standin/zrkhost/program.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "standin/zrkhost/embedded.h"
#include "standin/zrkhost/lua_boundary.h"
#include "standin/zrkhost/lua_class.h"
#include "standin/zrkhost/lua_handles.h"
#include "standin/zrkhost/lua_host.h"
#include "standin/zrkhost/lua_tasks.h"
#include "standin/zrkhost/repl.h"
#include "standin/zrkhost/run.h"

namespace standin::zrkhost {
namespace {

// What the first word, or its ending, runs instead of a Lua file.
constexpr std::pair<const char*, const char*> kCommands[] = {
    {"try", "require('zrkhost.try').run(...)"},
    {"help", "require('zrkhost.help').run(...)"},
    {".xojo_code", "table.move(arg, 0, #arg, 1) arg[0] = 'listing' require('listing')"},
};

// os.exit of programs.
int ExitProgram(lua_State* L) {
  auto* program = static_cast<Program*>(lua_touserdata(L, lua_upvalueindex(1)));
  if (lua_isboolean(L, 1)) program->Exit(lua_toboolean(L, 1) ? kSuccess : kProgramFailed);
  program->Exit(static_cast<int>(luaL_optinteger(L, 1, kSuccess)));
}

void ReplaceExit(lua_State* L, Program* program) {
  lua_getglobal(L, LUA_OSLIBNAME);
  lua_pushlightuserdata(L, program);
  lua_pushcclosure(L, Entry<ExitProgram>, 1);
  lua_setfield(L, -2, "exit");
  lua_pop(L, 1);
}

}  // namespace

Program::Program(Options options)
    : options_(std::move(options)), library_(options_.library), host_(options_.host) {
  library_.Start(host_);
}

void Program::OpenState() {
  lua_.reset(luaL_newstate());
  if (!lua_) throw std::bad_alloc();
  lua_State* state = lua_.get();
  luaL_openlibs(state);
  InstallErrors(state);
  InstallHandles(state);
  InstallHost(state, host_);
  InstallModules(state);
  InstallClasses(state, host_);
  ReplaceExit(state, this);
}

bool Program::RunCode() {
  for (const std::string& code : options_.code) {
    if (!RunText(lua_.get(), code, "=(command line)", {"-e"})) return false;
  }
  return true;
}

bool Program::RunScript() {
  const std::vector<std::string>& words = options_.script;
  if (words.empty() && !options_.code.empty()) return true;
  if (words.empty() && !isatty(STDIN_FILENO)) return RunFile(lua_.get(), {"-"});
  if (words.empty()) {
    Prompt(lua_.get());
    return true;
  }
  const std::string ending = std::filesystem::path(words[0]).extension();
  for (const auto& [name, code] : kCommands) {
    if (words[0] == name || ending == name) return RunText(lua_.get(), code, "=(zrkhost)", words);
  }
  return RunFile(lua_.get(), words);
}

void Program::PrintVersions() {
  for (const auto& info : host_.classes()) {
    if (info->FindMethods("Version").empty()) continue;
    const std::string version = host_.New(info->name()).Call("Version").UTF8();
    std::printf("%s, engine %s\n", info->name().c_str(), version.c_str());
  }
  std::printf("library: %s\n", options_.library.c_str());
}

int Program::Run() {
  if (options_.version) {
    PrintVersions();
    return Finish(kSuccess);
  }
  OpenState();
  const bool succeeded = options_.describe.empty()
                             ? RunCode() && RunScript() && !TaskFailed(lua_.get())
                             : RunText(lua_.get(), "io.write(host.describe(...))", "=(zrkhost)",
                                       {"--describe", options_.describe});
  return Finish(succeeded ? kSuccess : kProgramFailed);
}

int Program::Finish(int status) {
  // Not reset(): while the state closes, nobody may find it and close it again.
  if (lua_State* state = lua_.release()) lua_close(state);
  status = FlushOutput(status);
  const auto problems = host_.Problems();
  if (problems.empty()) return status;
  std::fputs("zrkhost: the accounts do not balance:\n", stderr);
  for (const std::string& problem : problems) std::fprintf(stderr, "  %s\n", problem.c_str());
  return status == kSuccess ? kUnbalanced : status;
}

void Program::Exit(int status) {
  if (*host_.accounts().method() == '\0') std::exit(Finish(status));
  std::fflush(stdout);
  std::_Exit(status);
}

}  // namespace standin::zrkhost
