-- Runs a listing in the host's language: zrkhost FILE.xojo_code
--
-- It is translated to Lua, statement by statement, with the types that its declarations give to
-- names. What the translator does not know, and what the host's compiler would refuse, is refused
-- with its line. The help's listings are held to what they show by this.

local function stop(message, ...)
  io.stdout:flush()
  io.stderr:write(message:format(...), "\n")
  os.exit(1)
end

if not pcall(require, "lpeg") then
  stop "listing: LPeg for Lua 5.4 is not installed (on Debian lua-lpeg), and listings need it"
end
local grammar = require "listing.grammar"
local library = require "listing.library"
local statements = require "listing.statements"

local function read(name)
  local file = name == "-" and io.stdin or name and io.open(name, "rb")
  if not file then stop("listing: cannot read %s", name or "nothing: name a file") end
  return file:read "a"
end

local function translate(name, source)
  local lines = grammar.lines(source)
  for _, entry in ipairs(lines) do
    local statement, reached = grammar.statement(entry.text)
    if not statement then
      local rest = entry.text:sub(reached)
      local problem = rest == "" and "the line ends too early" or "not understood from here: "
      stop("%s:%d: %s%s", name, entry.line, problem, rest)
    end
    entry.statement = statement
  end
  local done, routines, main = pcall(statements.write, lines, library.by_name)
  if done then return routines, main end
  if type(routines) ~= "table" then error(routines, 0) end
  stop("%s:%d: %s", name, routines.line, routines.problem)
end

local name = arg[1]
local routines, main = translate(name, read(name))

local L, F = library.functions, {}
L.source = "=" .. name
local function run(code) assert(load("local L, F = ... " .. code, L.source))(L, F) end
local done, failure = xpcall(function()
  run(routines)
  run(main)
end, function(failure)
  if type(failure) == "table" then return L.note_place(failure) end
  return debug.traceback(failure, 2)
end)
if not done and type(failure) == "table" then
  local message = failure.message ~= "" and ": " .. failure.message or ""
  stop("%s:%s: unhandled %s%s", name, failure.line or "?", failure.class, message)
elseif not done then
  stop("%s", failure)
end
