-- Expressions as Lua text. Each answers its text and its type, which decides what a "+" or a pair
-- of parentheses means, and whether the host's compiler would take it.
--
-- `cx` is what the expression stands in: cx:fail(message, ...), cx:variable(name),
-- cx:type(name), cx.library.
local types = require "listing.types"

local expressions = {}
local write = {} -- by the node's tag: (cx, node, expected type) -> text, type
local article, element_of, family = types.article, types.element, types.family

function expressions.write(cx, node, expected)
  return write[node.tag](cx, node, expected)
end

-- An expression as a value of one type; `what` names it in messages.
function expressions.value(cx, node, type, what)
  local code, from = expressions.write(cx, node, type)
  return types.convert(code, from, type)
    or cx:fail("%s: expected %s, not %s", what, article(type), article(from))
end

function write.literal(_, node)
  local value = node.value
  if type(value) == "string" then return ("%q"):format(value), "String" end
  if type(value) == "boolean" then return tostring(value), "Boolean" end
  return tostring(value), math.type(value) == "integer" and "Integer" or "Double"
end
write["nil"] = function() return "nil", "Nil" end

-- What is Lua text already.
function write.code(_, node) return node.code, node.type end

function write.paren(cx, node, expected)
  local code, type = expressions.write(cx, node.inner, expected)
  return "(" .. code .. ")", type
end

write["not"] = function(cx, node)
  return "(not " .. expressions.value(cx, node.operand, "Boolean", "Not") .. ")", "Boolean"
end

function write.minus(cx, node)
  local code, type = expressions.write(cx, node.operand)
  if not types.number(type) then cx:fail("there is no negative of %s", article(type)) end
  return "(- " .. code .. ")", type
end

function write.isa(cx, node)
  local code, type = expressions.write(cx, node.base)
  if not types.object(type) and type ~= "Variant" then
    cx:fail("IsA takes an object, not %s", article(type))
  end
  return ("L.isa(%s, %q)"):format(code, cx:type(node.class)), "Boolean"
end

-- Operators: functions of both sides, texts and types, that answer text and type, or nil where they
-- do not take such sides.

local function comparison(lua, equality)
  return function(left, left_type, right, right_type)
    local a, b = family(left_type), family(right_type)
    local plain = a == b and (a == "number" or a == "Boolean" and equality)
    local ordered = a == b and a == "String"
                    or not equality and (a == "Variant" or b == "Variant")
    local form
    if plain then
      form = "%s " .. lua .. " %s"
    elseif ordered then
      form = "L.order(%s, %s) " .. lua .. " 0"
    elseif equality and (a == "Variant" or b == "Variant" or a == "object" and b == "object") then
      form = (lua == "~=" and "not " or "") .. "L.equal(%s, %s)"
    end
    return form and form:format(left, right), "Boolean"
  end
end

local function arithmetic(form, result)
  return function(left, left_type, right, right_type)
    if not types.number(left_type) or not types.number(right_type) then return nil end
    local whole = left_type == "Integer" and right_type == "Integer"
    return form:format(left, right), result or (whole and "Integer" or "Double")
  end
end

-- Of truth values, or of the bits of whole numbers.
local function logic(form, bits)
  return function(left, left_type, right, right_type)
    if left_type ~= right_type then return nil end
    local fitting = left_type == "Boolean" and form or left_type == "Integer" and bits
    return fitting and fitting:format(left, right), left_type
  end
end

local add = arithmetic "%s + %s"
local function plus(left, left_type, right, right_type)
  if left_type == "String" and right_type == "String" then
    return ("L.concat(%s, %s)"):format(left, right), "String"
  elseif left_type == "Variant" or right_type == "Variant" then
    return ("L.add(%s, %s)"):format(left, right), "Variant"
  end
  return add(left, left_type, right, right_type)
end

local function same_object(left, left_type, right, right_type)
  if not types.object(left_type) and left_type ~= "Variant" then return nil end
  return comparison("==", true)(left, left_type, right, right_type)
end

local operators = {
  ["="] = comparison("==", true), ["<>"] = comparison("~=", true), Is = same_object,
  ["<"] = comparison "<", [">"] = comparison ">",
  ["<="] = comparison "<=", [">="] = comparison ">=",
  ["+"] = plus, ["-"] = arithmetic "%s - %s", ["*"] = arithmetic "%s * %s",
  ["/"] = arithmetic("%s / %s", "Double"), ["^"] = arithmetic("%s ^ %s", "Double"),
  ["\\"] = arithmetic("L.quotient(%s, %s)", "Integer"),
  Mod = arithmetic("L.remainder(%s, %s)", "Integer"),
  And = logic("%s and %s", "%s & %s"), Or = logic("%s or %s", "%s | %s"),
  Xor = logic("%s ~= %s", "%s ~ %s"),
}

-- A Variant that meets a number or truth value, and a memory block that meets a string, become one.
local function meet(code, type, other)
  local becomes = type == "Variant" and (types.number(other) or other == "Boolean")
                  or type == "MemoryBlock" and other == "String"
  if becomes then return types.convert(code, type, other), other end
  return code, type
end

function write.binary(cx, node)
  local left, left_type = expressions.write(cx, node.left)
  local right, right_type = expressions.write(cx, node.right)
  local met, met_type = meet(left, left_type, right_type)
  right, right_type = meet(right, right_type, left_type)
  local code, type = operators[node.op](met, met_type, right, right_type)
  if code then return "(" .. code .. ")", type end
  cx:fail("%s does not take %s and %s", node.op, article(left_type), article(right_type))
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

-- "T" and "T()" of a row for arrays, where the elements are known.
local function substitute(type, element) return (type:gsub("^T%f[^%w]", element or "T")) end

-- The arguments as Lua text, and what their conversions cost; nil and why where they do not fit.
local function fit(cx, row, arguments, element)
  local codes, total = {}, 0
  for i, parameter in ipairs(row.parameters) do
    local wanted = substitute(parameter.type, element)
    local code, from, cost = parameter.code, wanted, 0
    if arguments[i] then
      code, from = expressions.write(cx, arguments[i], wanted)
      if wanted == "T()" and element_of(from) then wanted = from end
      code, cost = types.convert(code, from, wanted)
    end
    if not code then
      return nil, ("%s of %s: expected %s, not %s"):format(parameter.name, row.name,
                                                           article(wanted), article(from))
    end
    codes[i], total = code, total + cost
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
  cx:fail("%s", problem or ("%s takes %s, not %d"):format(rows[1].name, count_text(rows),
                                                          #arguments))
end

-- Places: {code, type}, with set(text), a statement, where something can be put there, and the row
-- or variable that it is.

local function call(cx, rows, arguments, receiver, element)
  local row, codes = choose(cx, rows, arguments, element)
  if receiver then table.insert(codes, 1, receiver) end
  local given = table.concat(codes, ", ")
  local place = {type = substitute(row.result, element), code = row.code .. "(" .. given .. ")",
                 row = row}
  if row.setter then
    function place.set(value)
      return row.setter .. "(" .. given .. (given ~= "" and ", " or "") .. value .. ")"
    end
  end
  return place
end

local function array_literal(cx, arguments, expected)
  local element = expected and element_of(expected)
  local codes = {}
  for i, argument in ipairs(arguments) do
    local code, type = expressions.write(cx, argument)
    element = element or type
    codes[i] = types.convert(code, type, element)
      or cx:fail("an Array of %s holds no %s", element, type)
  end
  if not element then cx:fail("what such an Array holds is not known") end
  return {code = "L.array(" .. table.concat(codes, ", ") .. ")", type = element .. "()"}
end

local function index(cx, code, type, arguments)
  if #arguments ~= 1 then cx:fail("an element of an array has one index") end
  local at = expressions.value(cx, arguments[1], "Integer", "the index")
  local place = {code = ("L.at(%s, %s)"):format(code, at), type = element_of(type)}
  function place.set(value) return ("L.put(%s, %s, %s)"):format(code, at, value) end
  return place
end

-- The rows of a member of this type.
local function members(cx, type, name)
  if element_of(type) then type = "Array" end
  while type do
    local rows = cx.library[(type .. "." .. name):lower()]
    if rows then return rows end
    type = types.parent(type)
  end
end

-- The functions whose first parameter is a String are methods of strings, too.
local function extending(cx, type, name)
  local rows = {}
  for _, row in ipairs(type == "String" and cx.library[name:lower()] or {}) do
    if row.parameters[1] and row.parameters[1].type == "String" then rows[#rows + 1] = row end
  end
  return rows[1] and rows
end

-- What stands behind the name of a class or module; nil where the base is a value.
local function static_member(cx, node, arguments)
  local base = node.base
  if base.tag ~= "name" or cx:variable(base.name) then return nil end
  local class = types.named(base.name)
  local rows = cx.library[(base.name .. "." .. node.name):lower()]
  if rows and (rows[1].static or not class) then return call(cx, rows, arguments) end
  if class then cx:fail("the class %s itself has no %s", class, node.name) end
end

local function member(cx, node, arguments)
  if node.name:lower() == "constructor" then cx:fail("only New calls a Constructor") end
  local static = static_member(cx, node, arguments or {})
  if static then return static end
  local code, type = expressions.write(cx, node.base)
  local rows = members(cx, type, node.name)
  if not rows then
    rows = extending(cx, type, node.name)
      or cx:fail("%s has no %s", type == "" and "nothing" or type, node.name)
    return call(cx, rows, {{tag = "code", code = code, type = type}, table.unpack(arguments or {})})
  end
  -- The parentheses behind a member without parameters are those of the array that it answers.
  if arguments and #arguments > 0 and #rows[1].parameters == 0 and element_of(rows[1].result) then
    local array = call(cx, rows, {}, code, element_of(type))
    return index(cx, array.code, array.type, arguments)
  end
  return call(cx, rows, arguments or {}, code, element_of(type))
end

local function named(cx, node, arguments, expected)
  local variable = cx:variable(node.name)
  if not variable then
    if node.name:lower() == "array" then return array_literal(cx, arguments or {}, expected) end
    local rows = cx.library[node.name:lower()] or cx:fail("there is no %s", node.name)
    return call(cx, rows, arguments or {})
  end
  if arguments and element_of(variable.type) then
    return index(cx, variable.code, variable.type, arguments)
  elseif arguments then
    cx:fail("%s is %s and takes no arguments", node.name, article(variable.type))
  end
  local place = {code = variable.code, type = variable.type, variable = variable}
  if not variable.constant then
    function place.set(value) return variable.code .. " = " .. value end
  end
  return place
end

function expressions.place(cx, node, expected)
  local arguments
  if node.tag == "call" then node, arguments = node.base, node.arguments end
  if node.tag == "name" then return named(cx, node, arguments, expected) end
  if node.tag == "member" then return member(cx, node, arguments) end
  local code, type = expressions.write(cx, node)
  if not arguments then return {code = code, type = type} end
  if not element_of(type) then cx:fail("%s takes no arguments", article(type)) end
  return index(cx, code, type, arguments)
end

local function read(cx, node, expected)
  local place = expressions.place(cx, node, expected)
  return place.code, place.type
end
write.name, write.call, write.member = read, read, read

function write.new(cx, node)
  local class = cx:type(node.class)
  local rows = cx.library[class:lower() .. ".constructor"] or cx:fail("there is no New %s", class)
  return call(cx, rows, node.arguments or {}).code, class
end

return expressions
