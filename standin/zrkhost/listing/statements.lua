-- Statements as Lua text.
local Context = require "listing.context"
local expressions = require "listing.expressions"
local types = require "listing.types"

local article = types.article

local write = {} -- by the statement's tag: (cx, statement)

local function value(cx, node, type, what) return expressions.value(cx, node, type, what) end
local function condition(cx, node) return value(cx, node, "Boolean", "the condition") end

-- Declarations and assignments.

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

-- If and Select Case.

function write.if_line(cx, statement)
  cx:emit("if %s then", condition(cx, statement.condition))
  write[statement.body.tag](cx, statement.body)
  if statement.otherwise then
    cx:emit("else")
    write[statement.otherwise.tag](cx, statement.otherwise)
  end
  cx:emit("end")
end

write["if"] = function(cx, statement)
  cx:emit("if %s then", condition(cx, statement.condition))
  cx:open("If")
end

write["elseif"] = function(cx, statement)
  if cx:part_of("If", "ElseIf").otherwise then cx:fail("ElseIf stands behind Else") end
  cx:emit("elseif %s then", condition(cx, statement.condition))
end

write["else"] = function(cx)
  local block = cx.blocks[#cx.blocks]
  if block and block.kind == "Select" then return write.case_else(cx) end
  block = cx:part_of("If", "Else")
  if block.otherwise then cx:fail("there are two Else") end
  block.otherwise = true
  cx:emit("else")
end

write.select = function(cx, statement)
  local code, type = expressions.write(cx, statement.value)
  local name = "case_" .. cx:label()
  cx:open("Select", {subject = {tag = "code", code = name, type = type}, empty = true})
  cx:emit("do local %s = %s if false then", name, code)
end

local function choice(cx, subject, node)
  local function test(op, right)
    return (expressions.write(cx, {tag = "binary", op = op, left = subject, right = right}))
  end
  if node.tag == "range" then return test(">=", node.first) .. " and " .. test("<=", node.last) end
  return test(node.op or "=", node.value)
end

function write.case(cx, statement)
  local block = cx:part_of("Select", "Case")
  if block.otherwise then cx:fail("Case stands behind Case Else") end
  block.empty = false
  local tests = {}
  for i, node in ipairs(statement.choices) do tests[i] = choice(cx, block.subject, node) end
  cx:emit("elseif %s then", table.concat(tests, " or "))
end

function write.case_else(cx)
  local block = cx:part_of("Select", "Case Else")
  if block.otherwise then cx:fail("there are two Case Else") end
  block.otherwise, block.empty = true, false
  cx:emit("else")
end

-- Loops: "do while C do do BODY end ::next_1:: STEP end ::exit_1:: end".

local function open_loop(cx, kind, head)
  local block = cx:open(kind, {label = cx:label(), loop = true})
  cx:emit("do %s do", head)
  return block
end

local function close_loop(cx, block, step)
  cx:emit("end ::next_%s:: %s end ::exit_%s:: end", block.label, step or "", block.label)
end

write["while"] = function(cx, statement)
  open_loop(cx, "While", "while " .. condition(cx, statement.condition) .. " do")
end
function write.wend(cx) close_loop(cx, cx:close("While", "Wend")) end

local function loop_end(cx, statement)
  if not statement.condition then return "" end
  local test = condition(cx, statement.condition)
  return ("if %s(%s) then break end"):format(statement.negated and "not " or "", test)
end

write["do"] = function(cx, statement)
  open_loop(cx, "Do", "while true do " .. loop_end(cx, statement))
end
function write.loop(cx, statement)
  local block = cx:close("Do", "Loop")
  close_loop(cx, block, loop_end(cx, statement))
end

local function step_of(cx, statement, type)
  local step, down = statement.step, statement.down
  if not step then return "1", down end
  if step.tag == "minus" and not down then step, down = step.operand, true end
  return value(cx, step, type, "a Step"), down
end

-- Opens a For and answers its block, and its variable: Lua text, type, and "local " for a new one.
local function open_for(cx, statement)
  local block = cx:open("For", {label = cx:label(), loop = true, name = statement.name})
  local variable = cx:variable(statement.name)
  if statement.type then
    local type = cx:type(statement.type)
    return block, cx:declare(statement.name, type), type, "local "
  elseif not variable then
    cx:fail("there is no %s", statement.name)
  end
  return block, variable.code, variable.type, ""
end

write["for"] = function(cx, statement)
  local block, code, type, new = open_for(cx, statement)
  if not types.number(type) then cx:fail("For counts in numbers, not in %s", type) end
  local first = value(cx, statement.first, type, "the start of For")
  local last = value(cx, statement.last, type, "the end of For")
  local step, down = step_of(cx, statement, type)
  block.step = ("%s = %s %s %s"):format(code, code, down and "-" or "+", step)
  cx:emit("do %s%s = %s while %s %s %s do do", new, code, first, code, down and ">=" or "<=", last)
end

function write.for_each(cx, statement)
  local values, array = expressions.write(cx, statement.values)
  local element = types.element(array) or cx:fail("For Each takes an array, not %s", article(array))
  local block, code, type, new = open_for(cx, statement)
  local each = "value_" .. block.label
  local item = types.convert(each, element, type)
    or cx:fail("%s: expected %s, not %s", statement.name, article(type), article(element))
  cx:emit("do for _, %s in L.each(%s) do %s%s = %s do", each, values, new, code, item)
end

function write.next(cx, statement)
  local block = cx:close("For", "Next")
  if statement.name and statement.name:lower() ~= block.name:lower() then
    cx:fail("Next %s ends the For of line %d, which counts %s", statement.name, block.line,
            block.name)
  end
  close_loop(cx, block, block.step)
end

local function innermost(cx, word, kind)
  for i = #cx.blocks, 1, -1 do
    local block = cx.blocks[i]
    if block.loop and (not kind or block.kind == kind) then return block end
  end
  cx:fail("%s stands outside of %s", word, kind or "a loop")
end

function write.exit(cx, statement)
  if statement.kind == "Sub" or statement.kind == "Function" then return write["return"](cx, {}) end
  local block = innermost(cx, "Exit", statement.kind)
  cx:emit("%s", cx:leave("exit_" .. block.label, block.tries))
end

function write.continue(cx, statement)
  local block = innermost(cx, "Continue", statement.kind)
  cx:emit("%s", cx:leave("next_" .. block.label, block.tries))
end

-- Exceptions: "do local signal, value = L.try(function() BODY end, CLASS, function(e) ... end)".

write.try = function(cx)
  cx:open("Try", {leaves = {}})
  cx.routine.tries = cx.routine.tries + 1
  cx:emit("do local signal, value = L.try(function()")
end

function write.catch(cx, statement)
  local block = cx:part_of("Try", "Catch")
  if block.finally then cx:fail("Catch stands behind Finally") end
  local class = statement.type and cx:type(statement.type) or "RuntimeException"
  if not types.isa(class, "RuntimeException") then cx:fail("%s is no exception", class) end
  local parameter = statement.name and cx:declare(statement.name, class) or ""
  block.caught = true
  cx:emit("end, %q, function(%s)", class, parameter)
end

function write.finally(cx)
  local block = cx:part_of("Try", "Finally")
  if block.finally then cx:fail("there are two Finally") end
  block.finally = true
  cx:emit("end, false, function()")
end

function write.raise(cx, statement)
  local code, type = expressions.write(cx, statement.value)
  if not types.isa(type, "RuntimeException") then
    cx:fail("Raise takes an exception, not %s", article(type))
  end
  cx:emit("L.raise(%s)", code)
end

local function end_try(cx)
  local block = cx:close("Try", "End Try")
  cx.routine.tries = block.tries
  cx:emit("end)")
  local targets = {}
  for target in pairs(block.leaves) do targets[#targets + 1] = target end
  table.sort(targets)
  for _, target in ipairs(targets) do
    local result = target == "return" and cx.routine.result and "value"
    cx:emit("if signal == %q then %s end", target, cx:leave(target, block.leaves[target], result))
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
  local code = statement.value and value(cx, statement.value, result, "what is answered here")
  cx:emit("%s", cx:leave("return", 0, result and (code or types.initial(result))))
end

write["end"] = function(cx, statement)
  local kind = statement.kind
  if kind == "Sub" or kind == "Function" then return end_routine(cx, kind) end
  if kind == "Try" then return end_try(cx) end
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
      if cx.library[name] then cx:fail("there is a %s already", statement.name) end
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
  if cx.routine.name then cx:fail("%s has no End %s", cx.routine.name, cx.routine.kind) end
  return table.concat(cx.parts.routines), table.concat(cx.parts.main)
end

return statements
