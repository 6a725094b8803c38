-- Statements that begin, part, leave and end blocks, as Lua text.
local expressions = require "listing.expressions"
local types = require "listing.types"

local write = {} -- by the statement's tag: (cx, statement)
local article, value = types.article, expressions.value

local function condition(cx, node) return value(cx, node, "Boolean", "the condition") end

-- If and Select Case.

write["if"] = function(cx, statement)
  cx:emit("if %s then", condition(cx, statement.condition))
  cx:open("If")
end

write["elseif"] = function(cx, statement)
  cx:part_of("If", "ElseIf")
  cx:emit("elseif %s then", condition(cx, statement.condition))
end

write["else"] = function(cx)
  local block = cx.blocks[#cx.blocks]
  if block and block.kind == "Select" then return write.case_else(cx) end
  cx:part_of("If", "Else", true)
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
  block.empty = false
  local tests = {}
  for i, node in ipairs(statement.choices) do tests[i] = choice(cx, block.subject, node) end
  cx:emit("elseif %s then", table.concat(tests, " or "))
end

function write.case_else(cx)
  cx:part_of("Select", "Case Else", true).empty = false
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
  if statement.type then
    local type = cx:type(statement.type)
    return block, cx:declare(statement.name, type), type, "local "
  end
  local variable = cx:variable(statement.name) or cx:fail("there is no %s", statement.name)
  if variable.constant then cx:fail("a constant takes no new value") end
  return block, variable.code, variable.type, ""
end

write["for"] = function(cx, statement)
  local block, code, type, new = open_for(cx, statement)
  if not types.number(type) then cx:fail("For counts in numbers, not in %s", type) end
  local first = value(cx, statement.first, type, "the start of For")
  local last = value(cx, statement.last, type, "the end of For")
  local step, down = step_of(cx, statement, type)
  block.step = ("%s = %s %s %s"):format(code, code, down and "-" or "+", step)
  local test = down and ">=" or "<="
  cx:emit("do %s%s = %s while %s %s %s do do", new, code, first, code, test, last)
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
  if statement.kind == "Sub" or statement.kind == "Function" then return write["return"](cx, statement) end
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
  cx:part_of("Try", "Catch")
  local class = statement.type and cx:type(statement.type) or "RuntimeException"
  if not types.isa(class, "RuntimeException") then cx:fail("%s is no exception", class) end
  local parameter = statement.name and cx:declare(statement.name, class) or ""
  cx:emit("end, %q, function(%s)", class, parameter)
end

function write.finally(cx)
  cx:part_of("Try", "Finally", true)
  cx:emit("end, false, function()")
end

function write.raise(cx, statement)
  local code, type = expressions.write(cx, statement.value)
  if not types.isa(type, "RuntimeException") then
    cx:fail("Raise takes an exception, not %s", article(type))
  end
  cx:emit("L.raise(%s)", code)
end

function write.end_try(cx)
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

return write
