#include "standin/zrkhost/repl.h"

#include <editline/readline.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "standin/zrkhost/run.h"

namespace standin::zrkhost {
namespace {

constexpr int kHistoryLines = 1000;

// Ctrl-C stops the running code, not the prompt. The hook is what Lua allows a handler to set.
lua_State* interruptible = nullptr;

void Stop(lua_State* L, lua_Debug*) {
  lua_sethook(L, nullptr, 0, 0);
  luaL_error(L, "interrupted");
}

void OnInterrupt(int) {
  lua_sethook(interruptible, Stop, LUA_MASKCALL | LUA_MASKRET | LUA_MASKLINE | LUA_MASKCOUNT, 1);
}

class History {
 public:
  History() {
    using_history();
    stifle_history(kHistoryLines);
    if (const char* home = std::getenv("HOME")) file_ = std::string(home) + "/.zrkhost_history";
    if (!file_.empty()) read_history(file_.c_str());
  }
  ~History() {
    if (!file_.empty()) write_history(file_.c_str());
  }
  History(const History&) = delete;
  History& operator=(const History&) = delete;

  void Add(const std::string& entry) { add_history(entry.c_str()); }

 private:
  std::string file_;
};

struct FreeLine {
  void operator()(char* line) const { std::free(line); }
};

std::optional<std::string> ReadLine(const char* prompt) {
  const std::unique_ptr<char, FreeLine> line(readline(prompt));
  return line ? std::optional<std::string>(line.get()) : std::nullopt;
}

int Load(lua_State* L, const std::string& code) {
  return luaL_loadbuffer(L, code.data(), code.size(), "=stdin");
}

bool IsIncomplete(lua_State* L, int status) {
  return status == LUA_ERRSYNTAX && std::string_view(lua_tostring(L, -1)).ends_with("<eof>");
}

// Leaves the function for an expression or for a statement of one or more lines, or an error
// message; answers the load's status, or nothing at the end of the input.
std::optional<int> ReadChunk(lua_State* L, History& history) {
  std::optional<std::string> code = ReadLine("> ");
  if (!code) return std::nullopt;
  int status = Load(L, "return " + *code);
  while (status != LUA_OK) {
    lua_pop(L, 1);
    status = Load(L, *code);
    if (!IsIncomplete(L, status)) break;
    const std::optional<std::string> more = ReadLine(">> ");
    if (!more) break;
    *code += "\n" + *more;
  }
  if (!code->empty()) history.Add(*code);
  return status;
}

void PrintResults(lua_State* L) {
  const int count = lua_gettop(L);
  if (count == 0) return;
  lua_getglobal(L, "print");
  lua_insert(L, 1);
  Call(L, count, 0);
}

void RunChunk(lua_State* L) {
  std::signal(SIGINT, OnInterrupt);
  if (Call(L, 0, LUA_MULTRET)) PrintResults(L);
  std::signal(SIGINT, SIG_DFL);
}

}  // namespace

void Prompt(lua_State* L) {
  interruptible = L;
  History history;
  std::puts(LUA_VERSION " on a stand-in host; Ctrl-D ends. Try: re = RegExZRK.new()");
  while (const std::optional<int> status = ReadChunk(L, history)) {
    if (*status == LUA_OK) {
      RunChunk(L);
    } else {
      ReportError(L);
    }
    lua_settop(L, 0);
  }
  std::puts("");
}

}  // namespace standin::zrkhost
