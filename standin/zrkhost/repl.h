// The interactive prompt.
#ifndef ZRK_STANDIN_ZRKHOST_REPL_H
#define ZRK_STANDIN_ZRKHOST_REPL_H

#include <lua.hpp>

namespace standin::zrkhost {

// Reads statements and expressions until the input ends; prompt.lua runs them and shows what they
// come to. Ctrl-C stops what runs; where a call of the library does not return, a second one ends
// the process. The history is kept in $ZRKHOST_HISTORY, or in zrkhost/history under
// $XDG_STATE_HOME or ~/.local/state.
void Prompt(lua_State* L);

}  // namespace standin::zrkhost

#endif  // ZRK_STANDIN_ZRKHOST_REPL_H
