-- Values as the prompt shows them.
local texts = require "zrkhost.texts"

-- What each object was given to compile last, as { text = ..., compiled = ... }: no property tells.
local patterns = setmetatable({}, { __mode = "k" })

local function size(bytes) return bytes == 1 and "1 byte" or bytes .. " bytes" end

local shapes = {}

function shapes.RegExZRK(object)
  local known = patterns[object]
  local state = "no pattern"
  if known and known.compiled then
    state = "pattern " .. texts.quoted(known.text)
  elseif known then
    return "RegExZRK, pattern does not compile:\n" .. texts.mistake(known.text, object)
  end
  local code = object.Lasterror
  local name = code ~= 0 and " (" .. texts.constant(code) .. ")" or ""
  return ("RegExZRK, %s, Count %d, Lasterror %d%s"):format(state, object.Count, code, name)
end
shapes["memory block"] = function(block)
  local hex = {}
  local bytes = tostring(block)
  for index = 1, math.min(#bytes, 16) do hex[index] = ("%02x"):format(bytes:byte(index)) end
  local rest = #bytes > 16 and " ..." or ""
  return ("memory block, %s: %s%s  %s"):format(size(#bytes), table.concat(hex, " "), rest, texts.quoted(bytes))
end
shapes["string"] = function(text)
  return ("%s in %s, %s"):format(texts.quoted(tostring(text)), text:encoding(), size(#text))
end

local show
local function elements(table_, depth)
  local parts = {}
  for index, value in ipairs(table_) do
    if index > 50 then break end
    parts[index] = show(value, depth + 1)
  end
  local listed = #parts
  for key, value in pairs(table_) do
    if not (math.type(key) == "integer" and key >= 1 and key <= #table_) then
      if #parts >= 50 then break end
      parts[#parts + 1] = tostring(key) .. " = " .. show(value, depth + 1)
    end
  end
  if listed < #table_ then table.insert(parts, listed + 1, ("... (%d in all)"):format(#table_)) end
  return "{" .. table.concat(parts, ", ") .. "}"
end
local function array(value) return host.type(value) .. " " .. elements(value:totable(), 0) end
shapes["string array"], shapes["variant array"] = array, array

function show(value, depth)
  local shape = shapes[host.type(value)]
  if shape then return shape(value) end
  if type(value) == "string" then return depth > 0 and texts.quoted(value) or value end
  local plain = type(value) == "table" and not getmetatable(value)
  return plain and depth < 3 and elements(value, depth) or tostring(value)
end

return { show = show, patterns = patterns }
