-- What a statement stands in: its line, routine, blocks and variables, and the Lua text so far.
-- Each statement's Lua stands in the line of the listing that it comes from, so that what Lua
-- reports at run time names the right line.
local types = require "listing.types"

local Context = {}
Context.__index = Context

-- `library` is a table of rows by folded name (see library.lua).
function Context.new(library)
  local own = setmetatable({}, {__index = library})
  local cx = setmetatable({library = own, labels = 0}, Context)
  cx.parts = {main = {line = 1}, routines = {line = 1}}
  cx:start_routine("main", {})
  return cx
end

function Context:fail(message, ...)
  error({problem = message:format(...), line = self.line}, 0)
end

function Context:emit(text, ...)
  local part = self.part
  while part.line < self.line do
    part[#part + 1] = "\n"
    part.line = part.line + 1
  end
  part[#part + 1] = select("#", ...) > 0 and text:format(...) or text
  part[#part + 1] = " "
end

-- Routines, blocks and variables.

-- Starts a routine, or goes on with one, outside of its blocks, in a part of the text.
function Context:start_routine(part, routine)
  routine.tries, routine.scope = 0, routine.scope or {}
  self.part, self.routine, self.scope, self.blocks = self.parts[part], routine, routine.scope, {}
end

function Context:variable(name)
  local scope = self.scope
  while scope do
    local found = scope[name:lower()]
    if found then return found end
    scope = scope.outer_scope
  end
end

function Context:declare(name, type, constant)
  if self:variable(name) then self:fail("%s is declared already", name) end
  local variable = {code = "v_" .. name:lower(), type = type, constant = constant}
  self.scope[name:lower()] = variable
  return variable.code
end

function Context:open(kind, fields)
  local block = fields or {}
  block.kind, block.line, block.tries = kind, self.line, self.routine.tries
  block.outer = self.scope
  self.blocks[#self.blocks + 1] = block
  self.scope = {outer_scope = self.scope}
  return block
end

-- A new part of the innermost block, which must be of this kind; the variables before are gone.
-- Behind the last part, such as Else, comes no other.
function Context:part_of(kind, word, last)
  local block = self.blocks[#self.blocks]
  if not block or block.kind ~= kind then self:fail("%s stands outside of %s", word, kind) end
  if last and block.last then self:fail("there are two %s", word) end
  if block.last then self:fail("%s stands behind %s", word, block.last) end
  block.last = last and word
  self.scope = {outer_scope = block.outer}
  return block
end

function Context:close(kind, word)
  local block = self.blocks[#self.blocks]
  if not block then self:fail("%s ends nothing", word) end
  if block.kind ~= kind then self:no_open_block(word) end
  self.blocks[#self.blocks] = nil
  self.scope = block.outer
  return block
end

function Context:no_open_block(word)
  local block = self.blocks[#self.blocks]
  if not block then return end
  self:fail("%s stands where the %s of line %d has no end yet", word, block.kind, block.line)
end

function Context:label()
  self.labels = self.labels + 1
  return tostring(self.labels)
end

-- Leaves for a label, or with "return". A Try's body is a Lua function: it answers where to go on.
function Context:leave(target, tries, value)
  if self.routine.tries == tries then
    if target == "return" then return "do return " .. (value or "") .. " end" end
    return "goto " .. target
  end
  for i = #self.blocks, 1, -1 do
    if self.blocks[i].kind == "Try" then
      self.blocks[i].leaves[target] = tries
      break
    end
  end
  return ("do return %q%s end"):format(target, value and ", " .. value or "")
end

function Context:type(name, array)
  return types.named(name, array) or self:fail("there is no type %s", name)
end

return Context
