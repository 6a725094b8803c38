-- Texts laid out for a terminal.
local texts = {}

-- Names in columns, as many as fit the width.
function texts.columns(names, width)
  local widest = 0
  for _, name in ipairs(names) do widest = math.max(widest, #name + 2) end
  local across = math.max(1, width // widest)
  local down = (#names + across - 1) // across
  local lines = {}
  for index, name in ipairs(names) do
    local row = (index - 1) % down + 1
    lines[row] = (lines[row] or "") .. name .. (" "):rep(widest - #name)
  end
  return (table.concat(lines, "\n"):gsub(" +%f[\n\0]", ""))
end

local escapes = { ["\n"] = "\\n", ["\r"] = "\\r" }
local function escaped(c) return escapes[c] or ("\\x%02X"):format(c:byte()) end

-- The text with what a terminal would not show, or would obey, in the notation of patterns. Tabs stay.
function texts.printable(text)
  if not utf8.len(text) then return (text:gsub("[^\t\32-\126]", escaped)) end
  return (text:gsub("[\0-\8\10-\31\127]", escaped):gsub("\xC2[\x80-\x9F]", function(c)
    return ("\\x{%X}"):format(utf8.codepoint(c))
  end))
end

-- A text in quotes, printable, and cut where it is long.
function texts.quoted(bytes)
  local limit <const> = 80
  if #bytes <= limit then return '"' .. texts.printable(bytes) .. '"' end
  local edge = utf8.len(bytes) and utf8.offset(bytes, 0, limit) or limit
  return '"' .. texts.printable(bytes:sub(1, edge - 1)) .. '"...'
end

-- How many columns a printable text takes, near enough: one a character.
function texts.width(text) return utf8.len(text) or #text end

-- The name of the constant with this value, or the number.
function texts.constant(value)
  for _, member in ipairs(host.members("RegExZRK")) do
    if member.kind == "constant" and RegExZRK[member.name] == value then return member.name end
  end
  return tostring(value)
end

-- The pattern that the object could not compile, with a caret under the place and the reason.
function texts.mistake(pattern, object)
  local before = texts.printable(pattern:sub(1, object.ErrorOffset))
  return ("  %s\n  %s^ %s"):format(
    texts.printable(pattern), (" "):rep(texts.width(before)), object.ErrorMessage)
end

return texts
