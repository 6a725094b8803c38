#include "standin/zrkhost/repl.h"

#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

#include "standin/host.h"
#include "standin/zrkhost/line_editor.h"
#include "standin/zrkhost/run.h"

namespace standin::zrkhost {
namespace {

// prompt.lua's table of functions is at the bottom of the stack, always.

constexpr int kInterruptedStatus = 130;  // as shells count: 128 and the signal's number

lua_State* interruptible = nullptr;
volatile std::sig_atomic_t interrupts = 0;

void Stop(lua_State* L, lua_Debug*) {
  lua_sethook(L, nullptr, 0, 0);
  lua_pushliteral(L, "interrupted");
  lua_error(L);
}

void Say(std::string_view text) {
  // Nothing is left to do where it cannot be written.
  [[maybe_unused]] const auto written = write(STDERR_FILENO, text.data(), text.size());
}

// The hook is what Lua allows a signal handler to set; it waits for calls of the library.
void OnInterrupt(int) {
  if (interrupts != 0) {
    Say("\n");
    std::_Exit(kInterruptedStatus);
  }
  interrupts = 1;
  lua_sethook(interruptible, Stop, LUA_MASKCALL | LUA_MASKRET | LUA_MASKLINE | LUA_MASKCOUNT, 1);
  if (*Host::Current()->accounts().method() != '\0') {
    Say("\nA call is under way and cannot be stopped; Ctrl-C again ends zrkhost.\n");
  }
}

std::filesystem::path HistoryFile() {
  const auto variable = [](const char* name) {
    const char* const value = std::getenv(name);
    return std::filesystem::path(value ? value : "");
  };
  if (auto file = variable("ZRKHOST_HISTORY"); !file.empty()) return file;
  const auto within = std::filesystem::path("zrkhost") / "history";
  if (auto state = variable("XDG_STATE_HOME"); !state.empty()) return state / within;
  if (auto home = variable("HOME"); !home.empty()) return home / ".local/state" / within;
  return {};
}

Completion CompleteLine(lua_State* L, std::string_view line, int width) {
  Completion completion;
  const int top = lua_gettop(L);
  lua_getfield(L, 1, "complete");
  lua_pushlstring(L, line.data(), line.size());
  lua_pushinteger(L, width);
  if (Call(L, 2, 3)) {
    completion.remove = static_cast<std::size_t>(lua_tointeger(L, -3));
    completion.insert = luaL_optstring(L, -2, "");
    completion.choices = luaL_optstring(L, -1, "");
  }
  lua_settop(L, top);
  return completion;
}

// What a function of prompt.lua says to the entry.
bool Ask(lua_State* L, const char* function, const std::string& entry) {
  lua_getfield(L, 1, function);
  lua_pushlstring(L, entry.data(), entry.size());
  const bool answer = Call(L, 1, 1) && lua_toboolean(L, -1);
  lua_settop(L, 1);
  return answer;
}

void RunEntry(lua_State* L, const std::string& entry) {
  interrupts = 0;
  const auto before = std::signal(SIGINT, OnInterrupt);
  Ask(L, "run", entry);
  std::signal(SIGINT, before);
  lua_sethook(L, nullptr, 0, 0);
}

}  // namespace

void Prompt(lua_State* L) {
  interruptible = L;
  lua_settop(L, 0);
  lua_getglobal(L, "require");
  lua_pushliteral(L, "zrkhost.prompt");
  if (!Call(L, 1, 1)) return;
  const auto complete = [L](std::string_view line, int width) {
    return CompleteLine(L, line, width);
  };
  std::signal(SIGINT, SIG_IGN);  // a key of the editor's, but for the moment before it looks
  LineEditor editor(HistoryFile(), complete);
  std::puts("zrkhost " ZRK_VERSION ", " LUA_VERSION ". Try help; Tab completes, Ctrl-D ends.");
  std::string entry;
  std::string line;
  for (;;) {
    const auto ended = editor.Read(entry.empty() ? "> " : ">> ", line);
    if (ended == LineEditor::Ended::kInput) break;
    if (ended == LineEditor::Ended::kInterrupted) {
      entry.clear();
      continue;
    }
    entry += (entry.empty() ? "" : "\n") + line;
    if (entry.empty() || Ask(L, "incomplete", entry)) continue;
    editor.AddHistory(entry);  // before it runs: it may not return
    RunEntry(L, entry);
    entry.clear();
  }
  std::puts("");
}

}  // namespace standin::zrkhost
