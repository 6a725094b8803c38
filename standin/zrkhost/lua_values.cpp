#include "standin/zrkhost/lua_values.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <new>
#include <string>
#include <string_view>
#include <utility>

#include "standin/host.h"

namespace standin::zrkhost {
namespace {

using Limits = std::numeric_limits<std::int32_t>;

Value ToNumber(lua_State* L, int index) {
  int whole = 0;
  const lua_Integer number = lua_tointegerx(L, index, &whole);
  if (!whole) return static_cast<double>(lua_tonumber(L, index));
  if (number < Limits::min() || number > Limits::max()) {
    throw CallError(std::to_string(number) + " does not fit the host's Integer");
  }
  return static_cast<std::int32_t>(number);
}

Value ToArray(lua_State* L, int index) {
  const Values elements = ToElements(L, index);
  const bool texts = std::ranges::all_of(elements, [](const Value& element) {
    return element.IsNil() || element.kind() == Kind::kString;
  });
  Host& host = *Host::Current();
  return texts ? host.StringArray(elements) : host.VariantArray(elements);
}

lua_Integer ElementCount(lua_State* L, int index) {
  int given = 0;
  lua_getfield(L, index, "n");
  const lua_Integer count = lua_tointegerx(L, -1, &given);
  lua_pop(L, 1);
  return given ? count : luaL_len(L, index);
}

Value ToElement(lua_State* L, int index) {
  if (lua_istable(L, index)) throw CallError("arrays hold no arrays");
  Value value = ToValue(L, index);
  if (value.IsPlain() || value.kind() == Kind::kString || value.IsNil()) return value;
  throw CallError(std::string("arrays hold no ") + KindName(value.kind()));
}

}  // namespace

std::string_view CheckText(lua_State* L, int index) {
  std::size_t size = 0;
  const char* bytes = luaL_checklstring(L, index, &size);
  return {bytes, size};
}

void PushText(lua_State* L, std::string_view text) { lua_pushlstring(L, text.data(), text.size()); }

void PushLiteral(lua_State* L, const Literal& literal) {
  if (const auto* number = std::get_if<std::int32_t>(&literal)) return lua_pushinteger(L, *number);
  if (const auto* truth = std::get_if<bool>(&literal)) return lua_pushboolean(L, *truth);
  if (const auto* text = std::get_if<std::string>(&literal)) return PushText(L, *text);
  lua_pushnil(L);
}

void SetText(lua_State* L, const char* field, std::string_view text) {
  PushText(L, text);
  lua_setfield(L, -2, field);
}

void SetTruth(lua_State* L, const char* field, bool truth) {
  lua_pushboolean(L, truth);
  lua_setfield(L, -2, field);
}

void AppendText(lua_State* L, std::string_view text) {
  PushText(L, text);
  Append(L);
}

void Append(lua_State* L) { lua_rawseti(L, -2, luaL_len(L, -2) + 1); }

Value ToValue(lua_State* L, int index) {
  switch (lua_type(L, index)) {
    case LUA_TNIL:
      return {};
    case LUA_TBOOLEAN:
      return lua_toboolean(L, index) != 0;
    case LUA_TNUMBER:
      return ToNumber(L, index);
    case LUA_TSTRING:
      return CheckText(L, index);
    case LUA_TTABLE:
      return ToArray(L, index);
    default:
      break;
  }
  if (const void* handle = luaL_testudata(L, index, kHandle)) {
    return *static_cast<const Value*>(handle);
  }
  throw CallError(std::string("the host has no value like a Lua ") + luaL_typename(L, index));
}

Values ToValues(lua_State* L, int first) {
  Values values;
  for (int i = first; i <= lua_gettop(L); ++i) values.push_back(ToValue(L, i));
  return values;
}

Values ToElements(lua_State* L, int index) {
  luaL_checktype(L, index, LUA_TTABLE);
  index = lua_absindex(L, index);
  const lua_Integer count = ElementCount(L, index);
  Values elements;
  for (lua_Integer i = 1; i <= count; ++i) {
    lua_geti(L, index, i);
    elements.push_back(ToElement(L, -1));
    lua_pop(L, 1);
  }
  return elements;
}

void PushValue(lua_State* L, const Value& value) {
  switch (value.kind()) {
    case Kind::kInteger:
      return lua_pushinteger(L, value.Integer());
    case Kind::kBoolean:
      return lua_pushboolean(L, value.Boolean());
    case Kind::kDouble:
      return lua_pushnumber(L, value.Double());
    case Kind::kString:
      return PushText(L, value.UTF8());
    default:
      break;
  }
  if (value.IsNil()) return lua_pushnil(L);
  if (value.kind() == Kind::kStringArray) return PushTable(L, value);
  PushHandle(L, value);
}

void PushElement(lua_State* L, const Value& array, std::size_t index) {
  const Value element = array.At(index);
  const bool null_text =
      element.IsNil() && array.kind() == Kind::kStringArray && index < array.Count();
  PushValue(L, null_text ? Value::Nil(Kind::kString) : element);
}

void PushTable(lua_State* L, const Value& array) {
  const std::size_t count = array.Count();
  lua_newtable(L);
  for (std::size_t i = 0; i < count; ++i) {
    PushElement(L, array, i);
    lua_rawseti(L, -2, static_cast<lua_Integer>(i) + 1);
  }
}

void PushHandle(lua_State* L, Value value) {
  void* memory = lua_newuserdatauv(L, sizeof(Value), 0);
  new (memory) Value(std::move(value));
  luaL_setmetatable(L, kHandle);
}

const Value& CheckHandle(lua_State* L, int index) {
  return *static_cast<const Value*>(luaL_checkudata(L, index, kHandle));
}

}  // namespace standin::zrkhost
