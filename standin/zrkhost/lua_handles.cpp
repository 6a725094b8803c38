#include "standin/zrkhost/lua_handles.h"

#include <algorithm>
#include <cstring>
#include <initializer_list>
#include <string>
#include <string_view>

#include "host/records.h"
#include "standin/encoding.h"
#include "standin/object.h"
#include "standin/zrkhost/lua_boundary.h"
#include "standin/zrkhost/lua_class.h"
#include "standin/zrkhost/lua_values.h"

namespace standin::zrkhost {
namespace {

bool IsArray(const Value& value) {
  return value.kind() == Kind::kStringArray || value.kind() == Kind::kVariantArray;
}

const Value& CheckKind(lua_State* L, std::initializer_list<Kind> kinds) {
  const Value& value = CheckHandle(L, 1);
  const bool fits = value.handle() && std::ranges::find(kinds, value.kind()) != kinds.end();
  luaL_argcheck(L, fits, 1, "another kind of handle, or a closed one");
  return value;
}

int TextBytes(lua_State* L) {
  PushText(L, CheckKind(L, {Kind::kString}).Bytes());
  return 1;
}

int TextEncoding(lua_State* L) {
  PushText(L, EncodingName(CheckKind(L, {Kind::kString}).Encoding()));
  return 1;
}

zrk::REALmemoryBlockStruct& CheckBlock(lua_State* L) {
  const Value& value = CheckKind(L, {Kind::kMemoryBlock});
  return *static_cast<zrk::REALmemoryBlockStruct*>(value.handle());
}

// Where argument 2, an offset with `count` bytes from there on, lies in the block.
unsigned char* CheckRange(lua_State* L, const zrk::REALmemoryBlockStruct& block,
                          lua_Integer count) {
  const lua_Integer offset = luaL_checkinteger(L, 2);
  const bool inside = offset >= 0 && count >= 0 && offset <= block.Size &&
                      count <= static_cast<lua_Integer>(block.Size) - offset;
  if (inside) return block.Data + offset;
  throw CallError(std::to_string(count) + " bytes at offset " + std::to_string(offset) +
                  " are not all in a block of " + std::to_string(block.Size) + " bytes");
}

int BlockSize(lua_State* L) {
  lua_pushinteger(L, CheckBlock(L).Size);
  return 1;
}

int BlockByte(lua_State* L) {
  unsigned char* place = CheckRange(L, CheckBlock(L), 1);
  if (lua_isnoneornil(L, 3)) {
    lua_pushinteger(L, *place);
    return 1;
  }
  const lua_Integer byte = luaL_checkinteger(L, 3);
  luaL_argcheck(L, byte >= 0 && byte <= 255, 3, "not a byte");
  *place = static_cast<unsigned char>(byte);
  return 0;
}

int BlockRead(lua_State* L) {
  const zrk::REALmemoryBlockStruct& block = CheckBlock(L);
  const lua_Integer rest = block.Size - luaL_checkinteger(L, 2);
  const lua_Integer count = luaL_optinteger(L, 3, std::max<lua_Integer>(rest, 0));
  const unsigned char* place = CheckRange(L, block, count);
  lua_pushlstring(L, reinterpret_cast<const char*>(place), static_cast<std::size_t>(count));
  return 1;
}

int BlockWrite(lua_State* L) {
  const std::string_view bytes = CheckText(L, 3);
  unsigned char* place = CheckRange(L, CheckBlock(L), static_cast<lua_Integer>(bytes.size()));
  std::memcpy(place, bytes.data(), bytes.size());
  return 0;
}

int Resize(lua_State* L) {
  Value value = CheckKind(L, {Kind::kStringArray, Kind::kVariantArray, Kind::kMemoryBlock});
  const lua_Integer size = luaL_checkinteger(L, 2);
  luaL_argcheck(L, size >= 0 && size <= 0x7FFFFFFF, 2, "not a size");
  value.Resize(static_cast<std::size_t>(size));
  return 0;
}

int ArrayToTable(lua_State* L) {
  PushTable(L, CheckKind(L, {Kind::kStringArray, Kind::kVariantArray}));
  return 1;
}

struct Row {
  Kind kind;
  const char* name;
  lua_CFunction function;
};
constexpr Row kMethods[] = {
    {Kind::kString, "bytes", Entry<TextBytes>},
    {Kind::kString, "encoding", Entry<TextEncoding>},
    {Kind::kMemoryBlock, "size", Entry<BlockSize>},
    {Kind::kMemoryBlock, "byte", Entry<BlockByte>},
    {Kind::kMemoryBlock, "read", Entry<BlockRead>},
    {Kind::kMemoryBlock, "write", Entry<BlockWrite>},
    {Kind::kMemoryBlock, "resize", Entry<Resize>},
    {Kind::kStringArray, "resize", Entry<Resize>},
    {Kind::kStringArray, "totable", Entry<ArrayToTable>},
    {Kind::kVariantArray, "resize", Entry<Resize>},
    {Kind::kVariantArray, "totable", Entry<ArrayToTable>},
};

lua_CFunction FindMethod(Kind kind, std::string_view name) {
  for (const Row& row : kMethods) {
    if (row.kind == kind && row.name == name) return row.function;
  }
  if (kind == Kind::kNil) throw CallError("this handle is closed");
  throw CallError("a " + std::string(KindName(kind)) + " has no \"" + std::string(name) + "\"");
}

int Index(lua_State* L) {
  const Value& value = CheckHandle(L, 1);
  if (IsArray(value) && lua_isinteger(L, 2)) {
    // Lua counts from 1; below, the place is past every end.
    PushElement(L, value, static_cast<std::size_t>(lua_tointeger(L, 2)) - 1);
  } else if (value.kind() == Kind::kObject) {
    PushMember(L, Object(value), luaL_checkstring(L, 2));
  } else {
    lua_pushcfunction(L, FindMethod(value.kind(), luaL_checkstring(L, 2)));
  }
  return 1;
}

int NewIndex(lua_State* L) {
  const Value& value = CheckHandle(L, 1);
  const std::string name = luaL_checkstring(L, 2);
  SetMember(L, Object(value), name, ToValue(L, 3));
  return 0;
}

int Length(lua_State* L) {
  const Value& value = CheckHandle(L, 1);
  const std::size_t length = IsArray(value) ? value.Count() : value.Bytes().size();
  lua_pushinteger(L, static_cast<lua_Integer>(length));
  return 1;
}

int ToString(lua_State* L) {
  const Value& value = CheckHandle(L, 1);
  std::string text = value.Describe();
  if (value.kind() == Kind::kString) text = value.UTF8();
  if (value.kind() == Kind::kMemoryBlock) text = value.Bytes();
  PushText(L, text);
  return 1;
}

int Equal(lua_State* L) {
  lua_pushboolean(L, CheckHandle(L, 1).handle() == CheckHandle(L, 2).handle());
  return 1;
}

int Close(lua_State* L) {
  *static_cast<Value*>(luaL_checkudata(L, 1, kHandle)) = Value();
  return 0;
}

constexpr luaL_Reg kEvents[] = {{"__index", Entry<Index>}, {"__newindex", Entry<NewIndex>},
                                {"__len", Entry<Length>},  {"__tostring", Entry<ToString>},
                                {"__eq", Entry<Equal>},    {"__gc", Entry<Close>},
                                {"__close", Entry<Close>}, {nullptr, nullptr}};

}  // namespace

void InstallHandles(lua_State* L) {
  luaL_newmetatable(L, kHandle);
  luaL_setfuncs(L, kEvents, 0);
  lua_pop(L, 1);
}

}  // namespace standin::zrkhost
