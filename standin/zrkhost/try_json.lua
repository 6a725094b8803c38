-- What zrkhost try found as JSON: an object for each text. Bytes that are no UTF-8 are written as the
-- characters of the same number, and the object says so.

local function json_text(bytes)
  if not utf8.len(bytes) then bytes = bytes:gsub("[\x80-\xFF]", function(c) return utf8.char(c:byte()) end) end
  return '"' .. bytes:gsub('["\\\0-\31\127]', function(c)
    return (c == '"' or c == "\\") and "\\" .. c or ("\\u%04x"):format(c:byte())
  end) .. '"'
end

-- Fields in their order, as { name, value, ... }; a table with a field "list" is an array.
local json
function json(value)
  if type(value) == "string" then return json_text(value) end
  if type(value) ~= "table" then return tostring(value) end
  local parts = {}
  if value.list then
    for index, item in ipairs(value.list) do parts[index] = json(item) end
    return "[" .. table.concat(parts, ",") .. "]"
  end
  for index = 1, #value, 2 do parts[#parts + 1] = json_text(value[index]) .. ":" .. json(value[index + 1]) end
  return "{" .. table.concat(parts, ",") .. "}"
end

local function append(fields, ...) table.move({ ... }, 1, select("#", ...), #fields + 1, fields) end

local function json_match(text, match)
  local fields = { "bytes", { list = { match.first, match.last } } }
  if match.first_character then
    append(fields, "characters", { list = { match.first_character, match.last_character } })
  end
  local groups = {}
  for index, group in ipairs(match.groups) do
    local row = { "number", group.number }
    if group.name then append(row, "name", group.name) end
    if group.first then
      append(row, "bytes", { list = { group.first, group.last } }, "text", text.bytes:sub(group.first + 1, group.last))
    end
    groups[index] = row
  end
  append(fields, "text", text.bytes:sub(match.first + 1, match.last), "groups", { list = groups })
  if match.new_text then append(fields, "replacement", match.new_text) end
  return fields
end

-- The object for a text and its matches, in one line.
return function(text, matches)
  local list = {}
  for index, match in ipairs(matches) do list[index] = json_match(text, match) end
  local fields = { "name", text.name, "count", #matches, "matches", { list = list } }
  if text.binary then append(fields, "binary", true) end
  if text.replaced then append(fields, "replaced", text.replaced) end
  return json(fields)
end
