-- The prompt's side in Lua: running entries, showing what they come to, completing names.
local help = require "zrkhost.help"
local values = require "zrkhost.show"
local texts = require "zrkhost.texts"

local prompt = { complete = require "zrkhost.complete" }
local entries = {}  -- by number, for the places of errors
local failed        -- the object of this entry's last Compile, if that failed

-- As they are spelled in the host's language.
True, False = true, false

local function name_of(number) return "=prompt " .. number end

-- Locals of an entry live on as globals: `keep` is called where the entry ends, and looks at the
-- variables of the entry's function.
local function keep()
  local index = 1
  while true do
    local name, value = debug.getlocal(2, index)
    if not name then return end
    if not name:find("^%(") then _G[name] = value end
    index = index + 1
  end
end

-- A variable that is closed where it ends would be closed at once.
local function open_locals(text)
  return (text:gsub("^(%s*local%s[^=]*)", function(names) return (names:gsub("<%s*%a+%s*>", "")) end))
end

local function compile(text, name)
  local code, message = load("return " .. text, name)
  if code then return code end
  code, message = load(open_locals(text), name)
  if not code then return nil, message end
  return load(open_locals(text) .. "\n;(...)()", name) or code
end

function prompt.incomplete(text)
  local code, message = compile(text, "=prompt")
  if code or text:find("^%s*help%f[%W]") or text:find(":%s*[%a_][%w_]*%s*$") then return false end
  return message:find("<eof>$") ~= nil
end

-- Where a line has what the message is about: for a syntax error the token at which the line stops
-- making sense, otherwise the first quoted name.
local function place(message, entry, line)
  local token = message:match(" near '(.*)'$")
  local name = token or message:match("'([^']+)'%)") or message:match('"([^"]+)"')
  if not name or name == "" then return end
  local from = 1
  while true do
    local first, last = line:find(name, from, true)
    if not first or not token then return first end
    local _, said = load(entry:sub(1, entry:find(line, 1, true) + last - 1))
    if said and not said:find("<eof>$") then return first end
    from = last + 1
  end
end

local function draw(message)
  local number, row = message:match("^prompt (%d+):(%d+): ")
  local entry = entries[tonumber(number)]
  if not entry then return end
  local count = 0
  for line in (entry .. "\n"):gmatch("([^\n]*)\n") do
    count = count + 1
    if count == tonumber(row) then
      local column = place(message:match("^[^\n]*"), entry, line)
      local before = column and line:sub(1, column - 1)
      if before then io.stderr:write("  ", line, "\n  ", (" "):rep(texts.width(before)), "^\n") end
      return
    end
  end
end

local function error_text(value)
  local where = type(value) == "table" and rawget(value, "where") or ""
  return tostring(where) .. tostring(value)
end

local function report(text)
  io.stdout:flush()
  io.stderr:write(text, "\n")
  draw(text)
end

-- No property tells an object's pattern, so the prompt looks on when it is compiled.
host.watch(function(object, method, result, pattern)
  if not method:lower():find("^compile") then return end
  values.patterns[object] = { text = tostring(pattern), compiled = result }
  if not result then failed = object end
end)

local function run(code)
  failed = nil
  local results = table.pack(code(keep))
  if results.n == 0 then return end
  for index = 1, results.n do results[index] = values.show(results[index], 0) end
  print(table.concat(results, "\t"))
  if failed and results[1] == "false" then print(texts.mistake(values.patterns[failed].text, failed)) end
end

-- Errors of an entry itself are plain enough without a traceback.
local function describe(problem)
  local text = error_text(problem)
  local plain = text == "interrupted" or text:find("^prompt ")
  return plain and text or debug.traceback(text, 2)
end

function prompt.run(text)
  local name = not rawget(_G, "help") and text:match("^%s*help%s*(%S*)%s*$")
  if name then
    local shown, missing = help.text(name)
    return print(shown or missing)
  end
  entries[#entries + 1] = text
  local code, message = compile(text, name_of(#entries))
  if not code then return report(message) end
  local succeeded, problem = xpcall(run, describe, code)
  if not succeeded then report(problem) end
end

return prompt
