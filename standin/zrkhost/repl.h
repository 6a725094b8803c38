// The interactive prompt.
#ifndef ZRK_STANDIN_ZRKHOST_REPL_H
#define ZRK_STANDIN_ZRKHOST_REPL_H

#include <lua.hpp>

namespace standin::zrkhost {

// Reads statements and expressions, with line editing and a history that is kept in
// ~/.zrkhost_history, until the input ends. The values of expressions are printed; errors are
// reported, and the prompt goes on.
void Prompt(lua_State* L);

}  // namespace standin::zrkhost

#endif  // ZRK_STANDIN_ZRKHOST_REPL_H
