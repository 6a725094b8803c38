-- Statements as Lua text.
local Context = require "listing.context"
local expressions = require "listing.expressions"
local types = require "listing.types"

local write = require "listing.blocks" -- by the statement's tag: (cx, statement)
local article, value = types.article, expressions.value

-- Declarations, assignments and calls.

local function declare_item(cx, item, group)
  local array = item.bounds ~= nil
  local type = cx:type(group.type, array)
  if array and #item.bounds > 1 then cx:fail("%s has more than one dimension", item.name) end
  local initial = types.initial(type)
  if array and item.bounds[1] then
    initial = ("L.sized(%s, %s)"):format(value(cx, item.bounds[1], "Integer", "an array's bound"),
                                         types.initial(types.element(type)))
  elseif group.new then
    initial = expressions.write(cx, {tag = "new", class = group.type, arguments = group.arguments})
  elseif group.value then
    initial = value(cx, group.value, type, item.name)
  end
  cx:emit("local %s = %s", cx:declare(item.name, type), initial)
end

function write.dim(cx, statement)
  for _, group in ipairs(statement.groups) do
    for _, item in ipairs(group.items) do declare_item(cx, item, group) end
  end
end

function write.const(cx, statement)
  local code, type = expressions.write(cx, statement.value)
  if statement.type then
    type = cx:type(statement.type)
    code = value(cx, statement.value, type, statement.name)
  end
  cx:emit("local %s = %s", cx:declare(statement.name, type, true), code)
end

function write.redim(cx, statement)
  local target = statement.target
  if target.tag ~= "call" or #target.arguments ~= 1 then
    cx:fail("ReDim takes an array and one bound")
  end
  local code, type = expressions.write(cx, target.base)
  local element = types.element(type) or cx:fail("ReDim takes an array, not %s", article(type))
  local bound = value(cx, target.arguments[1], "Integer", "the bound")
  cx:emit("L.resize(%s, %s, %s)", code, bound, types.initial(element))
end

function write.assign(cx, statement)
  local place = expressions.place(cx, statement.target)
  if not place.set then
    local reason = place.variable and "a constant takes no new value" or "%s cannot be set"
    cx:fail(reason, place.row and place.row.name or "this")
  end
  cx:emit("%s", place.set(value(cx, statement.value, place.type, "what is assigned here")))
end

local function run(cx, target, uses_result)
  local place = expressions.place(cx, target)
  if not place.row then cx:fail("this does nothing") end
  local name, result = place.row.name, place.type
  if place.row.property then cx:fail("%s is a value, and nothing is done with it", name) end
  if result ~= "" and not uses_result then
    cx:fail("%s answers %s that nobody takes; write Call before it", name, article(result))
  end
  cx:emit("%s", place.code)
end

function write.run(cx, statement) run(cx, statement.value) end
function write.call_away(cx, statement) run(cx, statement.value, true) end
function write.run_bare(cx, statement)
  run(cx, {tag = "call", base = statement.value, arguments = statement.arguments})
end

function write.if_line(cx, statement)
  cx:emit("if %s then", value(cx, statement.condition, "Boolean", "the condition"))
  write[statement.body.tag](cx, statement.body)
  if statement.otherwise then
    cx:emit("else")
    write[statement.otherwise.tag](cx, statement.otherwise)
  end
  cx:emit("end")
end

-- Subs and Functions.

local function signature(cx, statement)
  local row = {name = statement.name, parameters = {}, least = 0,
               code = "F." .. statement.name:lower()}
  row.result = statement.type and cx:type(statement.type, statement.array) or ""
  for i, parameter in ipairs(statement.parameters) do
    if parameter.unknown then cx:fail("%s is not known here", parameter.unknown) end
    local type = cx:type(parameter.type, parameter.array)
    local code = parameter.value and value(cx, parameter.value, type, parameter.name)
    row.parameters[i] = {name = parameter.name, type = type, code = code}
    if not code then row.least = i end
  end
  return row
end

local function open_routine(cx, statement)
  cx:no_open_block("this")
  if cx.routine.name then cx:fail("this stands within %s", cx.routine.name) end
  local row = cx.library[statement.name:lower()][1]
  cx:start_routine("routines", {name = statement.name, kind = statement.tag, main = cx.routine,
                                result = row.result ~= "" and row.result or nil})
  local names = {}
  for i, parameter in ipairs(row.parameters) do
    names[i] = cx:declare(parameter.name, parameter.type)
  end
  cx:emit("function %s(%s)", row.code, table.concat(names, ", "))
end
write.sub, write["function"] = open_routine, open_routine

local function end_routine(cx, kind)
  local routine = cx.routine
  cx:no_open_block("End " .. kind)
  if not routine.name or routine.kind ~= kind:lower() then cx:fail("End %s ends nothing", kind) end
  local nothing = routine.result and types.initial(routine.result) or ""
  cx:emit("do return %s end end", nothing)
  cx:start_routine("main", routine.main)
end

write["return"] = function(cx, statement)
  local result = cx.routine.result
  if statement.value and not result then cx:fail("nothing is answered here") end
  if result and not (statement.value or statement.tag == "exit") then
    cx:fail("%s answers %s", cx.routine.name, article(result))
  end
  local code = statement.value and value(cx, statement.value, result, "what is answered here")
  cx:emit("%s", cx:leave("return", 0, result and (code or types.initial(result))))
end

write["end"] = function(cx, statement)
  local kind = statement.kind
  if kind == "Sub" or kind == "Function" then return end_routine(cx, kind) end
  if kind == "Try" then return write.end_try(cx) end
  local block = cx:close(kind, "End " .. kind)
  cx:emit(kind == "Select" and "end end" or "end")
end

local statements = {}

-- The Lua text of a listing's routines and of its loose statements. `lines` are those of
-- grammar.lines, each with the statement in it.
function statements.write(lines, library)
  local cx = Context.new(library)
  for _, entry in ipairs(lines) do
    local statement = entry.statement
    cx.line = entry.line
    if statement.tag == "sub" or statement.tag == "function" then
      local name = statement.name:lower()
      if cx.library[name] then cx:fail("%s is declared already", statement.name) end
      cx.library[name] = {signature(cx, statement)}
    end
  end
  for _, entry in ipairs(lines) do
    cx.line = entry.line
    local block = cx.blocks[#cx.blocks]
    if block and block.empty and not entry.statement.tag:find "^case" then
      cx:fail("this stands before the first Case")
    end
    write[entry.statement.tag](cx, entry.statement)
  end
  local open = cx.blocks[#cx.blocks]
  if open then cx.line = open.line cx:fail("this %s has no end", open.kind) end
  if cx.routine.name then cx:fail("%s has no end", cx.routine.name) end
  return table.concat(cx.parts.routines), table.concat(cx.parts.main)
end

return statements
