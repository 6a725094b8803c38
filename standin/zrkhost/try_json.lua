-- What zrkhost try found as JSON: an object for each text. Where bytes are no UTF-8, it says so.
local json = require "zrkhost.json"

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
  return json.text(fields, "")
end
