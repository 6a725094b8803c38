#include "standin/zrkhost/embedded.h"

#include <string>
#include <string_view>

// One row for each file, written by CMake: ZRK_FILE(symbol, "module", "path").
#define ZRK_FILE(symbol, module, path)                              \
  asm(".pushsection .rodata\n"                                      \
      "zrkhost_" #symbol ": .incbin \"" path "\"\nzrkhost_" #symbol \
      "_end:\n"                                                     \
      ".globl zrkhost_" #symbol ", zrkhost_" #symbol                \
      "_end\n"                                                      \
      ".popsection\n");                                             \
  extern "C" const char zrkhost_##symbol[], zrkhost_##symbol##_end[];
#include "standin/zrkhost/embedded_files.inc"
#undef ZRK_FILE

namespace standin::zrkhost {
namespace {

struct File {
  std::string_view module;
  const char* begin;
  const char* end;
};

constexpr std::string_view kPages = "zrkhost.pages";

const File kFiles[] = {
#define ZRK_FILE(symbol, module, path) {module, zrkhost_##symbol, zrkhost_##symbol##_end},
#include "standin/zrkhost/embedded_files.inc"
#undef ZRK_FILE
};

int LoadFile(lua_State* L) {
  const auto& file = *static_cast<const File*>(lua_touserdata(L, lua_upvalueindex(1)));
  const auto size = static_cast<std::size_t>(file.end - file.begin);
  if (file.module == kPages) {
    lua_pushlstring(L, file.begin, size);
    return 1;
  }
  const std::string name = "=" + std::string(file.module);
  if (luaL_loadbuffer(L, file.begin, size, name.c_str()) != LUA_OK) return lua_error(L);
  lua_insert(L, 1);
  lua_call(L, lua_gettop(L) - 1, 1);
  return 1;
}

}  // namespace

void InstallModules(lua_State* L) {
  luaL_getsubtable(L, LUA_REGISTRYINDEX, LUA_PRELOAD_TABLE);
  for (const File& file : kFiles) {
    lua_pushlightuserdata(L, const_cast<File*>(&file));
    lua_pushcclosure(L, LoadFile, 1);
    lua_setfield(L, -2, file.module.data());
  }
  lua_pop(L, 1);
}

}  // namespace standin::zrkhost
