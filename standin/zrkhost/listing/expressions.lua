-- Expressions as Lua text. Each answers its text and its type, which decides what a "+" or a pair of
-- parentheses means, and whether the host's compiler would take it.
--
-- `cx` is what the statement stands in: cx:fail(message), cx:variable(name) and cx.library.
local types = require "listing.types"

local expressions = {}
local write = {} -- by the node's tag: (cx, node, expected type) -> text, type

function expressions.write(cx, node, expected)
  return write[node.tag](cx, node, expected)
end

-- An expression as a value of one type.
function expressions.value(cx, node, type, what)
  local code, from = expressions.write(cx, node, type)
  return types.convert(code, from, type)
    or cx:fail("%s: expected %s, not %s", what, expressions.article(type), expressions.article(from))
end

function expressions.article(type)
  if type == "" then return "nothing" end
  if type == "Nil" then return "Nil" end
  return (type:find "^[AEIO]" and "an " or "a ") .. type
end

function write.literal(_, node)
  local value = node.value
  if type(value) == "string" then return ("%q"):format(value):gsub("\n", "n"), "String" end
  if type(value) == "boolean" then return tostring(value), "Boolean" end
  return tostring(value), math.type(value) == "integer" and "Integer" or "Double"
end
write["nil"] = function() return "nil", "Nil" end

function write.code(_, node) return node.code, node.type end

function write.paren(cx, node, expected)
  local code, type = expressions.write(cx, node.inner, expected)
  return "(" .. code .. ")", type
end

write["not"] = function(cx, node)
  return "(not " .. expressions.value(cx, node.operand, "Boolean", "what Not takes") .. ")", "Boolean"
end

function write.minus(cx, node)
  local code, type = expressions.write(cx, node.operand)
  if not types.number(type) then cx:fail("there is no negative of %s", expressions.article(type)) end
  return "(- " .. code .. ")", type
end

function write.isa(cx, node)
  local code, type = expressions.write(cx, node.base)
  local class = types.named(node.class) or cx:fail("there is no class %s", node.class)
  if not types.object(type) and type ~= "Variant" then cx:fail("IsA takes an object, not %s", expressions.article(type)) end
  return ("L.isa(%s, %q)"):format(code, class), "Boolean"
end

local lua_operator = {["="] = "==", ["<>"] = "~="}
local function compare(cx, op, left, left_type, right, right_type)
  local lua = lua_operator[op] or op
  local equality = op == "=" or op == "<>" or op == "Is"
  if types.number(left_type) and types.number(right_type) then return left .. " " .. lua .. " " .. right end
  if left_type == "String" and right_type == "String" or (left_type == "Variant" or right_type == "Variant") and not equality then
    return ("L.order(%s, %s) %s 0"):format(left, right, lua)
  end
  if not equality then return nil end
  if left_type == "Boolean" and right_type == "Boolean" then return left .. " " .. lua .. " " .. right end
  local objects = (types.object(left_type) or left_type == "Variant") and (types.object(right_type) or right_type == "Variant")
  if op == "Is" then return objects and ("L.equal(%s, %s)"):format(left, right) end
  if objects or left_type == "Variant" or right_type == "Variant" then
    return (op == "<>" and "not " or "") .. ("L.equal(%s, %s)"):format(left, right)
  end
end

local function bits_or_logic(logic, bits)
  return function(_, _, left, left_type, right, right_type)
    if left_type == "Boolean" and right_type == "Boolean" then return left .. logic .. right, "Boolean" end
    if left_type == "Integer" and right_type == "Integer" then return left .. bits .. right, "Integer" end
  end
end
local function arithmetic(form, result)
  return function(_, _, left, left_type, right, right_type)
    if not types.number(left_type) or not types.number(right_type) then return nil end
    local whole = left_type == "Integer" and right_type == "Integer"
    return form:format(left, right), result or (whole and "Integer" or "Double")
  end
end
local add = arithmetic "%s + %s"

local binary = {
  ["-"] = arithmetic "%s - %s", ["*"] = arithmetic "%s * %s", ["/"] = arithmetic("%s / %s", "Double"),
  ["^"] = arithmetic("%s ^ %s", "Double"), ["\\"] = arithmetic("L.quotient(%s, %s)", "Integer"),
  Mod = arithmetic("L.remainder(%s, %s)", "Integer"),
  And = bits_or_logic(" and ", " & "), Or = bits_or_logic(" or ", " | "), Xor = bits_or_logic(" ~= ", " ~ "),
  ["+"] = function(cx, op, left, left_type, right, right_type)
    if left_type == "String" and right_type == "String" then return ("L.concat(%s, %s)"):format(left, right), "String" end
    if left_type == "Variant" or right_type == "Variant" then return ("L.add(%s, %s)"):format(left, right), "Variant" end
    return add(cx, op, left, left_type, right, right_type)
  end,
}
for _, op in ipairs {"=", "<>", "<", ">", "<=", ">=", "Is"} do
  binary[op] = function(...) return compare(...), "Boolean" end
end

-- The value of a Variant, or a block of memory, that meets a String, number or truth value.
local function meet(code, type, other)
  local wants_it = type == "Variant" and (types.number(other) or other == "Boolean")
                   or type == "MemoryBlock" and other == "String"
  if not wants_it then return code, type end
  return types.convert(code, type, other), other
end

function write.binary(cx, node)
  local left, left_type = expressions.write(cx, node.left)
  local right, right_type = expressions.write(cx, node.right)
  if not lua_operator[node.op] and node.op ~= "Is" then
    local own_left = left_type
    left, left_type = meet(left, left_type, right_type)
    right, right_type = meet(right, right_type, own_left)
  end
  local code, type = binary[node.op](cx, node.op, left, left_type, right, right_type)
  if code then return "(" .. code .. ")", type end
  cx:fail("%s does not take %s and %s", node.op, expressions.article(left_type), expressions.article(right_type))
end

-- Calls: the rows that a name may mean, the one that fits, and its arguments.

-- "2 to 3 arguments": what any of the rows takes.
local function count_text(rows)
  local least, most = math.huge, 0
  for _, row in ipairs(rows) do
    least, most = math.min(least, row.least), math.max(most, #row.parameters)
  end
  if most == 0 then return "no arguments" end
  local range = least == most and tostring(most) or least .. " to " .. most
  return range .. (range == "1" and " argument" or " arguments")
end

local function substitute(type, element) return (type:gsub("^T%f[^%w]", element or "T")) end

-- The arguments as Lua text, and what their conversions cost; nil and why where they do not fit.
local function fit(cx, row, arguments, element)
  local codes, total = {}, 0
  for i, parameter in ipairs(row.parameters) do
    local wanted = substitute(parameter.type, element)
    local code, from, cost = parameter.code, wanted, 0
    if arguments[i] then
      code, from = expressions.write(cx, arguments[i], wanted)
      if wanted == "T()" and types.element(from) then wanted = from end
      code, cost = types.convert(code, from, wanted)
    end
    if not code then
      return nil, ("%s of %s: expected %s, not %s"):format(parameter.name, row.name, expressions.article(wanted),
                                                    expressions.article(from))
    end
    codes[#codes + 1] = code
    total = total + cost
  end
  return codes, total
end

local function choose(cx, rows, arguments, element)
  local best, codes, cost, problem
  for _, row in ipairs(rows) do
    if #arguments >= row.least and #arguments <= #row.parameters then
      local fitting, about = fit(cx, row, arguments, element)
      if fitting and (not cost or about < cost) then best, codes, cost = row, fitting, about end
      problem = problem or not fitting and about
    end
  end
  if best then return best, codes end
  cx:fail("%s", problem or ("%s takes %s, not %d"):format(rows[1].name, count_text(rows), #arguments))
end

-- What a name with arguments stands for: text, type, and where it can be set, set(text) as a statement.
local function call(cx, rows, arguments, receiver, element)
  local row, codes = choose(cx, rows, arguments, element)
  if receiver then table.insert(codes, 1, receiver) end
  local type = substitute(row.result, element)
  local place = {type = type, code = row.code .. "(" .. table.concat(codes, ", ") .. ")", row = row}
  if row.setter then
    place.set = function(value)
      codes[#codes + 1] = value
      return row.setter .. "(" .. table.concat(codes, ", ") .. ")"
    end
  end
  return place
end

local function array_literal(cx, arguments, expected)
  local element = expected and types.element(expected)
  local codes = {}
  for i, argument in ipairs(arguments) do
    local code, type = expressions.write(cx, argument)
    element = element or type
    codes[i] = types.convert(code, type, element)
      or cx:fail("an Array of %s holds no %s", element, type)
  end
  if not element then cx:fail("Array takes at least 1 argument here") end
  return {code = "L.array(" .. table.concat({tostring(#codes), table.unpack(codes)}, ", ") .. ")", type = element .. "()"}
end

local function index(cx, code, type, arguments)
  if #arguments ~= 1 then cx:fail("an element of an array has one index") end
  local at = expressions.value(cx, arguments[1], "Integer", "an index")
  return {
    code = ("L.at(%s, %s)"):format(code, at), type = types.element(type),
    set = function(value) return ("L.put(%s, %s, %s)"):format(code, at, value) end,
  }
end

local function members(cx, type, name)
  if types.element(type) then return cx.library["array." .. name:lower()] end
  while type do
    local rows = cx.library[(type .. "." .. name):lower()]
    if rows then return rows end
    type = types.parent(type)
  end
end

-- The functions whose first parameter is a String are methods of strings, too.
local function extends(cx, name, type)
  if type ~= "String" then return nil end
  local rows = {}
  for _, row in ipairs(cx.library[name:lower()] or {}) do
    if row.parameters[1] and row.parameters[1].type == "String" then rows[#rows + 1] = row end
  end
  return rows[1] and rows
end

local resolve

local function member(cx, node, arguments)
  local base, name = node.base, node.name
  if base.tag == "name" and not cx:variable(base.name) then
    local rows = cx.library[(base.name .. "." .. name):lower()]
    if rows and (rows[1].static or not types.named(base.name)) then return call(cx, rows, arguments) end
    if types.named(base.name) then cx:fail("the class %s itself has no %s", types.named(base.name), name) end
  end
  local code, type = expressions.write(cx, base)
  local rows = members(cx, type, name)
  if rows then return call(cx, rows, arguments, code, types.element(type)) end
  rows = extends(cx, name, type)
  if not rows then cx:fail("%s has no %s", type == "" and "nothing" or type, name) end
  return call(cx, rows, {{tag = "code", code = code, type = type}, table.unpack(arguments)})
end

-- A place is {code, type, set}: what stands there, and how to put something there.
function resolve(cx, node, arguments, expected)
  if node.tag == "member" then
    local place
    local rows_take = arguments
    if not rows_take then return member(cx, node, {}) end
    place = cx.try(function() return member(cx, node, rows_take) end)
    if place.code then return place end
    local whole = cx.try(function() return member(cx, node, {}) end)
    if whole.code and types.element(whole.type) and #arguments == 1 then return index(cx, whole.code, whole.type, arguments) end
    cx:fail("%s", place.problem)
  end
  if node.tag ~= "name" then
    local code, type = expressions.write(cx, node)
    if arguments and types.element(type) then return index(cx, code, type, arguments) end
    if arguments then cx:fail("%s is not called", expressions.article(type)) end
    return {code = code, type = type}
  end
  local variable = cx:variable(node.name)
  if variable and not arguments then
    return {code = variable.code, type = variable.type, variable = variable, set = not variable.constant and
      function(value) return variable.code .. " = " .. value end or nil}
  end
  if variable and types.element(variable.type) then return index(cx, variable.code, variable.type, arguments) end
  if variable then cx:fail("%s is %s and takes no arguments", node.name, expressions.article(variable.type)) end
  if node.name:lower() == "array" and arguments then return array_literal(cx, arguments, expected) end
  local rows = cx.library[node.name:lower()] or cx:fail("there is no %s", node.name)
  return call(cx, rows, arguments or {})
end

function expressions.place(cx, node, expected)
  if node.tag == "call" then return resolve(cx, node.base, node.arguments, expected) end
  return resolve(cx, node, nil, expected)
end

local function read(cx, node, expected)
  local place = expressions.place(cx, node, expected)
  return place.code, place.type
end
write.name, write.call, write.member = read, read, read

function write.new(cx, node)
  local class = types.named(node.class) or cx:fail("there is no class %s", node.class)
  local rows = cx.library[class:lower() .. ".constructor"] or cx:fail("there is no New %s", class)
  return call(cx, rows, node.arguments or {}).code, class
end

return expressions
