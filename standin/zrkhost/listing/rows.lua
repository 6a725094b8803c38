-- The rows of the library: what listings may call, each with its declaration in the host's language
-- and a function for it.
--
--   row("Left(source As String, count As Integer) As String", function(s, count) ... end)
--   row("MemoryBlock.Byte(offset As Integer) As Integer", get, set)    -- set(block, offset, byte)
--
-- "Array.Append(value As T)" is a method of all arrays, T their elements' type. A name whose first
-- part is no class ("System.DebugLog") is that of a module. Translated text calls `rows.functions`.
local grammar = require "listing.grammar"
local types = require "listing.types"

local rows = {by_name = {}, functions = {}}

local functions = rows.functions

-- An exception of the host, as the library's own: a table with class, message and number.
function functions.exception(class, message)
  return {class = class, message = message or "", number = 0}
end
function functions.raise(exception)
  error(exception or functions.exception "NilObjectException", 0)
end

local function known(type, array)
  if type == "T" then return array and "T()" or "T" end
  return types.named(type, array) or error("the library has no type " .. type)
end

local function literal(node)
  if not node then return nil end
  if node.tag == "minus" then return "-" .. literal(node.operand) end
  return type(node.value) == "string" and ("%q"):format(node.value) or tostring(node.value)
end

-- A member of an object: what is called on Nil raises.
local function guarded(f)
  return function(self, ...)
    if self == nil then functions.raise() end
    return f(self, ...)
  end
end

-- options.static: a constant or function of a class; options.property: a value, no deed.
function rows.row(declaration, get, set, options)
  local parsed = grammar.declaration(declaration)
  local row = {name = parsed.name:match "[^.]*$", parameters = {}, least = 0,
               result = parsed.type and known(parsed.type, parsed.array) or "",
               static = options and options.static, property = set or options and options.property}
  for i, parameter in ipairs(parsed.parameters or {}) do
    local code = literal(parameter.value)
    local type = known(parameter.type, parameter.array)
    row.parameters[i] = {name = parameter.name, type = type, code = code}
    if not code then row.least = i end
  end
  local class = parsed.name:match "^(.*)%."
  local is_member = class and types.named(class) and types.object(class) and not row.static
                    and row.name ~= "Constructor"
  local same = rows.by_name[parsed.name:lower()] or {}
  rows.by_name[parsed.name:lower()] = same
  same[#same + 1] = row
  local key = parsed.name .. (#same > 1 and "/" .. #same or "")
  row.code = ("L[%q]"):format(key)
  function row.bind(f) functions[key] = is_member and guarded(f) or f end
  row.bind(get)
  if set then
    row.setter = ("L[%q]"):format(key .. "=")
    functions[key .. "="] = is_member and guarded(set) or set
  end
  return row
end

return rows
