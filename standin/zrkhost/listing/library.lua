-- What translated listings call beside functions for text: values of any type, arrays, exceptions,
-- Dictionary, MemoryBlock, output and time. The classes that the host has loaded come from what it
-- says of them.
local rows = require "listing.rows"
local text = require "listing.text"
local types = require "listing.types"

local exceptions = {"OutOfBounds", "NilObject", "OutOfMemory", "TypeMismatch", "KeyNotFound",
                    "IllegalCast", "UnsupportedFormat", "InvalidArgument", "StackOverflow"}
types.class("RuntimeException")
for _, name in ipairs(exceptions) do types.class(name .. "Exception", "RuntimeException") end
for _, name in ipairs {"Dictionary", "MemoryBlock", "TextEncoding"} do types.class(name) end

local L, row = rows.functions, rows.row
local property = {property = true}
require "listing.text_functions"
require "listing.files"

local function raise(class, message) L.raise(L.exception(class, message)) end

-- Values.

function L.whole(value)
  return math.tointeger(value < 0 and math.ceil(value) or math.floor(value))
end
local function check_divisor(b) if b == 0 then raise("RuntimeException", "division by zero") end end
function L.quotient(a, b)
  a, b = L.whole(a), L.whole(b)
  check_divisor(b)
  local q = math.abs(a) // math.abs(b)
  return (a < 0) ~= (b < 0) and -q or q
end
function L.remainder(a, b)
  check_divisor(b)
  return L.whole(math.fmod(a, b))
end

-- The class of an object or array, the type of another value.
local function kind(value)
  if value == nil then return "Nil" end
  if math.type(value) then return math.type(value) == "integer" and "Integer" or "Double" end
  if type(value) == "boolean" then return "Boolean" end
  if text.is(value) then return "String" end
  if type(value) == "table" then return value.class end
  local is_block = pcall(function() return value.size end)
  return is_block and "MemoryBlock" or tostring(value):match "%w+$"
end
function L.isa(value, class) return value ~= nil and types.isa(kind(value), class) end

function L.equal(a, b)
  if text.is(a) and text.is(b) then return text.order(a, b) == 0 end
  return a == b
end
function L.order(a, b)
  if text.is(a) and text.is(b) then return text.order(a, b) end
  if type(a) ~= "number" or type(b) ~= "number" then raise "TypeMismatchException" end
  return a < b and -1 or a > b and 1 or 0
end
function L.add(a, b)
  if text.is(a) or text.is(b) then return text.concat(L.value_text(a), L.value_text(b)) end
  if type(a) ~= "number" or type(b) ~= "number" then raise "TypeMismatchException" end
  return a + b
end

local function number(value) return text.is(value) and L["Val"](value) or value + 0.0 end
local initial = {String = "", Integer = 0, Double = 0.0, Boolean = false}
-- What a Variant holds as a value of one type.
function L.cast(value, wanted)
  local held = kind(value)
  local scalar = held == "Integer" or held == "Double" or held == "String"
  if value == nil then return initial[wanted] end
  if wanted == "String" then return L.value_text(value) end
  if wanted == "Double" and scalar then return number(value) end
  if wanted == "Integer" and scalar then return L.whole(number(value)) end
  local is_array = held == "Array" and types.element(wanted)
  if wanted == held or is_array or types.isa(held, wanted) then return value end
  raise(initial[wanted] ~= nil and "TypeMismatchException" or "IllegalCastException")
end

-- Arrays: their elements from 0 to n - 1.

-- An array of the elements 1 to n of a Lua table.
function L.array_of(list, n)
  return table.move(list, 1, n or #list, 0, {n = n or #list, class = "Array"})
end
function L.array(...) return L.array_of({...}, select("#", ...)) end
function L.resize(array, bound, initial)
  for i = array.n, bound do array[i] = initial end
  for i = bound + 1, array.n - 1 do array[i] = nil end
  array.n = math.max(bound + 1, 0)
end
function L.sized(bound, initial)
  local array = L.array()
  L.resize(array, bound, initial)
  return array
end
local function check(array, index, bound)
  if index < 0 or index > bound then raise "OutOfBoundsException" end
end
function L.at(array, index)
  check(array, index, array.n - 1)
  return array[index]
end
function L.put(array, index, value)
  check(array, index, array.n - 1)
  array[index] = value
end
function L.each(array)
  local i = -1
  return function()
    i = i + 1
    if i < array.n then return i, array[i] end
  end
end
local function insert(array, index, value)
  check(array, index, array.n)
  table.move(array, index, array.n - 1, index + 1)
  array[index], array.n = value, array.n + 1
end
local function remove(array, index)
  local value = L.at(array, index)
  table.move(array, index + 1, array.n - 1, index)
  array[array.n - 1], array.n = nil, array.n - 1
  return value
end
for _, declaration in ipairs {"Ubound(values() As T) As Integer", "Array.Ubound As Integer"} do
  row(declaration, function(array) return array.n - 1 end)
end
row("Array.Append(value As T)", function(array, value) insert(array, array.n, value) end)
row("Array.Insert(index As Integer, value As T)", insert)
row("Array.Remove(index As Integer)", function(array, index) remove(array, index) end)
row("Array.Pop As T", function(array) return remove(array, array.n - 1) end)
row("Array.IndexOf(value As T, start As Integer = 0) As Integer", function(array, value, start)
  for i = start, array.n - 1 do
    if L.equal(array[i], value) then return i end
  end
  return -1
end)
row("Array.Sort", function(array)
  local list = table.move(array, 0, array.n - 1, 1, {})
  table.sort(list, function(a, b) return L.order(a, b) < 0 end)
  table.move(list, 1, array.n, 0, array)
end)

-- Exceptions. An error of Lua's own is a fault of translator or stand-in: nothing catches it.

local function is_exception(value) return type(value) == "table" and value.class ~= nil end

-- Notes where an exception was raised: the innermost place in the listing.
function L.note_place(exception)
  if is_exception(exception) and not exception.line then
    for depth = 2, 200 do
      local info = debug.getinfo(depth, "Sl")
      if not info then break end
      if info.source == L.source then exception.line = info.currentline break end
    end
  end
  return exception
end

function L.try(body, ...)
  local clauses = table.pack(...)
  local answer = table.pack(xpcall(body, L.note_place))
  local exception = answer[2]
  for i = 1, not answer[1] and is_exception(exception) and clauses.n or 0, 2 do
    if clauses[i] and types.isa(exception.class, clauses[i]) then
      exception.line = nil
      answer = table.pack(xpcall(clauses[i + 1], L.note_place, exception))
      break
    end
  end
  if clauses.n > 0 and not clauses[clauses.n - 1] then
    local final = table.pack(clauses[clauses.n]())
    if final.n > 0 then return table.unpack(final, 1, final.n) end
  end
  if not answer[1] then error(answer[2], 0) end
  return table.unpack(answer, 2, answer.n)
end

local function field(class, declaration, name)
  row(class .. "." .. declaration, function(object) return object[name] end,
      function(object, value) object[name] = value end)
end
field("RuntimeException", "Message As String", "message")
field("RuntimeException", "ErrorNumber As Integer", "number")
for _, name in ipairs {"Runtime", table.unpack(exceptions)} do
  row(name .. "Exception.Constructor", function() return L.exception(name .. "Exception") end)
end

-- Dictionary: strings are the same key in upper and lower case; keys stand as they came in.

local function fold(key)
  if key == nil then return L end
  return text.is(key) and "s" .. text.lower(text.to_utf8(key)) or key
end
row("Dictionary.Constructor", function()
  return {class = "Dictionary", keys = L.array(), values = {}}
end)
row("Dictionary.HasKey(key As Variant) As Boolean", function(d, key)
  return d.values[fold(key)] ~= nil
end)
row("Dictionary.Value(key As Variant) As Variant", function(d, key)
  local held = d.values[fold(key)] or raise "KeyNotFoundException"
  return held.value
end, function(d, key, value)
  if not d.values[fold(key)] then insert(d.keys, d.keys.n, key) end
  d.values[fold(key)] = {value = value}
end)
row("Dictionary.Lookup(key As Variant, default As Variant) As Variant", function(d, key, default)
  local held = d.values[fold(key)]
  if held then return held.value end
  return default
end)
row("Dictionary.Remove(key As Variant)", function(d, key)
  if not d.values[fold(key)] then raise "KeyNotFoundException" end
  d.values[fold(key)] = nil
  for i = 0, d.keys.n - 1 do
    if fold(d.keys[i]) == fold(key) then return remove(d.keys, i) end
  end
end)
row("Dictionary.Count As Integer", function(d) return d.keys.n end, nil, property)
row("Dictionary.Key(index As Integer) As Variant", function(d, i) return L.at(d.keys, i) end)
row("Dictionary.Keys As Variant()", function(d)
  local keys = L.array()
  for i, key in L.each(d.keys) do insert(keys, i, key) end
  return keys
end)
row("Dictionary.Clear", function(d) d.keys, d.values = L.array(), {} end)

-- MemoryBlock: a handle of the host's.

local function span(block, offset, count)
  if count < 0 or offset < 0 or offset + count > block:size() then raise "OutOfBoundsException" end
end
local function read(block, offset, count)
  span(block, offset, count)
  return block:read(offset, count)
end
local function write(block, offset, data)
  span(block, offset, #data)
  block:write(offset, data)
end
function L.block_text(block) return text.make(read(block or L.raise(), 0, block:size()), nil) end
function L.text_block(s) return host.memoryblock(text.bytes(s)) end
row("MemoryBlock.Constructor(size As Integer)", function(size)
  return host.memoryblock(("\0"):rep(size))
end)
row("MemoryBlock.Size As Integer", function(block) return block:size() end,
    function(block, size) block:resize(size) end)
row("MemoryBlock.StringValue(offset As Integer, size As Integer) As String",
    function(block, offset, size) return text.make(read(block, offset, size), nil) end,
    function(block, offset, size, s)
      write(block, offset, (text.bytes(s):sub(1, size) .. ("\0"):rep(size - #text.bytes(s))))
    end)
row("MemoryBlock.CString(offset As Integer) As String", function(block, offset)
  span(block, offset, 0)
  return text.make(block:read(offset):match "^%Z*", nil)
end, function(block, offset, s) write(block, offset, text.bytes(s) .. "\0") end)
for name, format in pairs {Byte = "<B", UInt8Value = "<B", Int8Value = "<b", UInt16Value = "<I2",
                           Int16Value = "<i2", UInt32Value = "<I4", Int32Value = "<i4"} do
  local size = format:packsize()
  row(("MemoryBlock.%s(offset As Integer) As Integer"):format(name), function(block, offset)
    return (format:unpack(read(block, offset, size)))
  end, function(block, offset, value)
    write(block, offset, ("<i8"):pack(value):sub(1, size))
  end)
end

-- Output and time.

for _, name in ipairs {"MsgBox", "System.DebugLog"} do
  row(name .. "(message As String)", function(s)
    io.write(text.encoding(s) and text.to_utf8(s) or text.bytes(s), "\n")
  end)
end
row("Ticks As Integer", function() return math.floor(host.clock() * 60) end)
row("Microseconds As Double", function() return host.clock() * 1e6 end)

-- What the host has loaded.

local function to_host(value, wanted)
  if wanted == "String" and type(value) == "table" then
    return host.string(value.bytes, value.encoding or "unknown")
  end
  if not types.element(wanted) then return value end
  local list = {n = value.n}
  for i, one in L.each(value) do list[i + 1] = to_host(one, text.is(one) and "String" or "") end
  return wanted == "String()" and host.stringarray(list) or host.variantarray(list)
end
local function from_host(value)
  return type(value) == "table" and L.array_of(value) or value
end

-- A row for a member of each kind.
local bind = {}

function bind.method(class, member)
  local name = member.name
  local declared = row(class .. "." .. member.declaration)
  local function convert(...)
    local given = table.pack(...)
    for i = 1, given.n do given[i] = to_host(given[i], declared.parameters[i].type) end
    return table.unpack(given, 1, given.n)
  end
  declared.bind(name == "Constructor" and function(...) return _G[class].new(convert(...)) end
    or function(object, ...) return from_host(object[name](object, convert(...))) end)
end

function bind.property(class, member)
  local name = member.name
  row(class .. "." .. member.declaration, function(object) return object[name] end,
      member.writable and function(object, value) object[name] = value end, property)
end

function bind.constant(class, member)
  row(("%s.%s As Integer"):format(class, member.name), function() return member.value end, nil,
      {static = true, property = true})
end

for _, class in ipairs(host.members()) do
  types.class(class)
  for _, member in ipairs(host.members(class)) do bind[member.kind](class, member) end
end

return rows
