#include "standin/zrkhost/lua_host.h"

#include <unistd.h>

#include <chrono>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/records.h"
#include "standin/encoding.h"
#include "standin/object.h"
#include "standin/zrkhost/describe.h"
#include "standin/zrkhost/lua_boundary.h"
#include "standin/zrkhost/lua_class.h"
#include "standin/zrkhost/lua_tasks.h"
#include "standin/zrkhost/lua_values.h"
#include "standin/zrkhost/members.h"

namespace standin::zrkhost {
namespace {

std::string_view CheckText(lua_State* L, int index) {
  std::size_t size = 0;
  const char* bytes = luaL_checklstring(L, index, &size);
  return {bytes, size};
}

std::uint32_t EncodingOf(const std::string& name) {
  if (const auto encoding = EncodingByName(name)) return *encoding;
  std::string names;
  for (const std::uint32_t code :
       {zrk::kEncodingUTF8, zrk::kEncodingUTF16, zrk::kEncodingUTF32, zrk::kEncodingASCII,
        zrk::kEncodingISOLatin1, zrk::kEncodingWindowsLatin1, zrk::kEncodingMacRoman,
        zrk::kEncodingUnknown}) {
    names += (names.empty() ? "" : ", ") + EncodingName(code);
  }
  throw CallError("no encoding is called \"" + name + "\"; there are: " + names);
}

int MakeString(lua_State* L) {
  const std::uint32_t encoding = EncodingOf(luaL_optstring(L, 2, "UTF-8"));
  PushHandle(L, Host::Current()->String(CheckText(L, 1), encoding));
  return 1;
}

int ConvertString(lua_State* L) {
  const std::uint32_t from = EncodingOf(luaL_checkstring(L, 2));
  const auto converted = ConvertText(CheckText(L, 1), from, EncodingOf(luaL_checkstring(L, 3)));
  if (!converted) throw CallError("nothing converts from or to an unknown encoding");
  lua_pushlstring(L, converted->data(), converted->size());
  return 1;
}

int DescribeClasses(lua_State* L) {
  lua_pushstring(L, Describe(*Host::Current(), Format::kText).c_str());
  return 1;
}

int MakeMemoryBlock(lua_State* L) {
  PushHandle(L, Host::Current()->MemoryBlock(CheckText(L, 1)));
  return 1;
}

int MakeStringArray(lua_State* L) {
  PushHandle(L, Host::Current()->StringArray(ToElements(L, 1)));
  return 1;
}

int MakeVariantArray(lua_State* L) {
  PushHandle(L, Host::Current()->VariantArray(ToElements(L, 1)));
  return 1;
}

int MakeNull(lua_State* L) {
  std::string name = luaL_checkstring(L, 1);
  const bool array = name.ends_with("()");
  if (array) name.resize(name.size() - 2);
  const Value null = Value::Nil(ParseType(name, array).kind);
  if (!null.IsNil()) throw CallError(name + " has no nil");
  PushHandle(L, null);
  return 1;
}

int TypeName(lua_State* L) {
  const void* handle = luaL_testudata(L, 1, kHandle);
  if (!handle) return 0;
  const Value& value = *static_cast<const Value*>(handle);
  const bool object = value.kind() == Kind::kObject;
  lua_pushstring(L, object ? Object(value).class_info().name().c_str() : KindName(value.kind()));
  return 1;
}

struct Member {
  std::string name;
  const char* kind;
  std::string declaration;
  bool writable = false;
};

std::vector<Member> MembersOf(const ClassInfo& info) {
  std::vector<Member> members;
  for (const Method& method : info.methods()) {
    members.push_back({method.declaration.name, "method", method.text});
  }
  for (const Property& property : info.properties()) {
    const bool writable = property.setter != nullptr;
    members.push_back({property.name, "property", PropertyText(property), writable});
  }
  for (const Constant& constant : info.constants()) {
    members.push_back({constant.declaration.name, "constant", constant.text});
  }
  return members;
}

int ListMembers(lua_State* L) {
  const std::string name = luaL_checkstring(L, 1);
  const ClassInfo* info = Host::Current()->FindClass(name);
  if (!info) throw CallError("there is no class \"" + name + "\"");
  lua_newtable(L);
  for (const Member& member : MembersOf(*info)) {
    lua_createtable(L, 0, 4);
    lua_pushstring(L, member.name.c_str());
    lua_setfield(L, -2, "name");
    lua_pushstring(L, member.kind);
    lua_setfield(L, -2, "kind");
    lua_pushstring(L, member.declaration.c_str());
    lua_setfield(L, -2, "declaration");
    lua_pushboolean(L, member.writable);
    lua_setfield(L, -2, "writable");
    lua_rawseti(L, -2, luaL_len(L, -2) + 1);
  }
  return 1;
}

int ListProblems(lua_State* L) {
  lua_newtable(L);
  for (const std::string& problem : Host::Current()->Problems()) {
    lua_pushstring(L, problem.c_str());
    lua_rawseti(L, -2, luaL_len(L, -2) + 1);
  }
  return 1;
}

int Clock(lua_State* L) {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  lua_pushnumber(L, std::chrono::duration<lua_Number>(now).count());
  return 1;
}

// The streams by the names that Lua's io library has for them.
int IsTerminal(lua_State* L) {
  constexpr const char* const kNames[] = {"stdin", "stdout", "stderr", nullptr};
  lua_pushboolean(L, isatty(luaL_checkoption(L, 1, "stdout", kNames)));
  return 1;
}

constexpr luaL_Reg kFunctions[] = {{"string", Entry<MakeString>},
                                   {"convert", Entry<ConvertString>},
                                   {"describe", Entry<DescribeClasses>},
                                   {"memoryblock", Entry<MakeMemoryBlock>},
                                   {"stringarray", Entry<MakeStringArray>},
                                   {"variantarray", Entry<MakeVariantArray>},
                                   {"null", Entry<MakeNull>},
                                   {"task", Entry<StartTask>},
                                   {"yield", Entry<Yield>},
                                   {"type", Entry<TypeName>},
                                   {"members", Entry<ListMembers>},
                                   {"watch", Entry<WatchMethods>},
                                   {"problems", Entry<ListProblems>},
                                   {"clock", Entry<Clock>},
                                   {"isatty", Entry<IsTerminal>},
                                   {nullptr, nullptr}};

}  // namespace

void InstallHost(lua_State* L, const Host& host) {
  luaL_newlib(L, kFunctions);
  if (const auto version = host.options().version) {
    lua_pushnumber(L, *version);
    lua_setfield(L, -2, "version");
  }
  lua_setglobal(L, "host");
}

}  // namespace standin::zrkhost
