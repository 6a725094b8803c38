#include "standin/zrkhost/lua_things.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

#include "host/records.h"
#include "standin/encoding.h"
#include "standin/object.h"
#include "standin/zrkhost/lua_boundary.h"
#include "standin/zrkhost/lua_values.h"

namespace standin::zrkhost {
namespace {

const Value& CheckKind(lua_State* L, std::initializer_list<Kind> kinds) {
  const Value& value = CheckHandle(L, 1);
  const bool fits = value.handle() && std::ranges::find(kinds, value.kind()) != kinds.end();
  luaL_argcheck(L, fits, 1, "another kind of handle, or a closed one");
  return value;
}

int TextBytes(lua_State* L) {
  const std::string bytes = CheckKind(L, {Kind::kString}).Bytes();
  lua_pushlstring(L, bytes.data(), bytes.size());
  return 1;
}

int TextEncoding(lua_State* L) {
  lua_pushstring(L, EncodingName(CheckKind(L, {Kind::kString}).Encoding()).c_str());
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
  std::size_t count = 0;
  const char* bytes = luaL_checklstring(L, 3, &count);
  unsigned char* place = CheckRange(L, CheckBlock(L), static_cast<lua_Integer>(count));
  std::memcpy(place, bytes, count);
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

constexpr luaL_Reg kTextMethods[] = {
    {"bytes", Entry<TextBytes>}, {"encoding", Entry<TextEncoding>}, {nullptr, nullptr}};
constexpr luaL_Reg kBlockMethods[] = {{"size", Entry<BlockSize>}, {"byte", Entry<BlockByte>},
                                      {"read", Entry<BlockRead>}, {"write", Entry<BlockWrite>},
                                      {"resize", Entry<Resize>},  {nullptr, nullptr}};
constexpr luaL_Reg kArrayMethods[] = {
    {"resize", Entry<Resize>}, {"totable", Entry<ArrayToTable>}, {nullptr, nullptr}};

constexpr std::pair<Kind, const luaL_Reg*> kMethods[] = {{Kind::kString, kTextMethods},
                                                         {Kind::kMemoryBlock, kBlockMethods},
                                                         {Kind::kStringArray, kArrayMethods},
                                                         {Kind::kVariantArray, kArrayMethods}};

}  // namespace

const luaL_Reg* MethodsOf(Kind kind) {
  for (const auto& [of, methods] : kMethods) {
    if (of == kind) return methods;
  }
  return nullptr;
}

std::size_t LengthOf(const Value& value) {
  if (value.kind() == Kind::kStringArray || value.kind() == Kind::kVariantArray) {
    return value.Count();
  }
  return value.Bytes().size();
}

}  // namespace standin::zrkhost
