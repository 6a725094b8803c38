-- Tab at the prompt: which names may stand at the cursor.
local texts = require "zrkhost.texts"

local words = { "and", "break", "do", "else", "elseif", "end", "false", "for", "function", "goto", "help",
  "if", "in", "local", "nil", "not", "or", "repeat", "return", "then", "true", "until", "while" }
local methods = {
  ["memory block"] = { "byte", "read", "resize", "size", "write" },
  ["string array"] = { "resize", "totable" },
  ["variant array"] = { "resize", "totable" },
  string = { "bytes", "encoding" },
}

local function keys(table_)
  local names = {}
  for key in pairs(table_) do
    if type(key) == "string" then names[#names + 1] = key end
  end
  return names
end

local function class_members(class, wanted)
  local names = {}
  for _, member in ipairs(host.members(class)) do
    local name = member.kind == "method" and member.name .. "(" or member.name
    if wanted[member.kind] then names[#names + 1] = name end
  end
  return names
end

-- What may follow `value` and a dot or colon.
local function members_of(value, dot)
  local kind = host.type(value)
  if methods[kind] then return methods[kind] end
  if kind then
    return class_members(kind, dot == ":" and { method = true } or { property = true, constant = true })
  end
  if value == RegExZRK then return { "new(", table.unpack(class_members("RegExZRK", { constant = true })) } end
  if type(value) == "string" and dot == ":" then return keys(string) end
  return type(value) == "table" and keys(value) or {}
end

-- The value that a path of names such as "string." or "a.b:" stands for; nothing is called.
local function value_of(path)
  local value = _G
  for name in path:gmatch("([%a_][%w_]*)[.:]") do
    local kind = host.type(value)
    if kind and methods[kind] or type(value) ~= "table" and not kind then return end
    local known, found = pcall(function() return kind and value[name] or rawget(value, name) end)
    value = known and found or nil
  end
  return value
end

local function candidates(line)
  if line:find("^%s*help%s+") then
    return line:match("%S*$"), class_members("RegExZRK", { property = true, constant = true, method = true })
  end
  local path, start = line:match("([%a_][%w_.:]*[.:])([%w_]*)$")
  if path then
    local value = value_of(path)
    return start, value ~= nil and members_of(value, path:sub(-1)) or {}
  end
  local names = keys(_G)
  return line:match("[%w_]*$"), table.move(words, 1, #words, #names + 1, names)
end

local function common_start(names)
  local shared = names[1]
  for _, name in ipairs(names) do
    while name:sub(1, #shared):lower() ~= shared:lower() do shared = shared:sub(1, -2) end
  end
  return shared
end

-- How many characters to take back, what to put there, and the choices where there are several.
return function(line, width)
  local start, names = candidates(line)
  local fitting, seen = {}, {}
  for _, name in ipairs(names) do
    local fits = name:sub(1, #start):lower() == start:lower()
    if fits and not seen[name] then fitting[#fitting + 1] = name end
    seen[name] = true
  end
  if #fitting == 0 then return 0, "", "" end
  table.sort(fitting)
  local shared = common_start(fitting)
  local choices = #fitting > 1 and #shared == #start and texts.columns(fitting, width) or ""
  return #start, shared, choices
end
