-- JSON texts.
local json = { null = {} }

-- Bytes that are no UTF-8 are written as the characters of the same number.
local function quoted(bytes)
  if not utf8.len(bytes) then bytes = bytes:gsub("[\x80-\xFF]", function(c) return utf8.char(c:byte()) end) end
  return '"' .. bytes:gsub('["\\\0-\31\127]', function(c)
    return (c == '"' or c == "\\") and "\\" .. c or ("\\u%04x"):format(c:byte())
  end) .. '"'
end

-- A value as JSON. Fields come in their order, as { name, value, ... }; a table with a field "list" is
-- an array. `gap` stands behind commas and colons; an array may have one of its own.
function json.text(value, gap)
  if value == json.null then return "null" end
  if type(value) == "string" then return quoted(value) end
  if type(value) ~= "table" then return tostring(value) end
  local parts = {}
  for index, item in ipairs(value.list or {}) do parts[index] = json.text(item, gap) end
  if value.list then return "[" .. table.concat(parts, "," .. (value.gap or gap)) .. "]" end
  for index = 1, #value, 2 do
    parts[#parts + 1] = quoted(value[index]) .. ":" .. gap .. json.text(value[index + 1], gap)
  end
  return "{" .. table.concat(parts, "," .. gap) .. "}"
end

return json
