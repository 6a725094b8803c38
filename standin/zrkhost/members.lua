-- The members of the classes that the host has loaded, in the words of the host's language.
local json = require "zrkhost.json"

-- Programs may change the global.
local host = host
local members = {}

-- How many letters have to be put in, left out or changed to make one word the other.
local function distance(one, other)
  local row = {}
  for j = 0, #other do row[j] = j end
  for i = 1, #one do
    local diagonal = row[0]
    row[0] = i
    for j = 1, #other do
      local changed = diagonal + (one:byte(i) == other:byte(j) and 0 or 1)
      diagonal = row[j]
      row[j] = math.min(changed, diagonal + 1, row[j - 1] + 1)
    end
  end
  return row[#other]
end

-- One slip in five letters, or one name in a not much longer one.
local function alike(one, other)
  local shorter, longer = one:lower(), other:lower()
  if #shorter > #longer then shorter, longer = longer, shorter end
  local contained = longer:find(shorter, 1, true)
  return contained and #shorter * 2 >= #longer or distance(shorter, longer) <= 1 + #longer // 5
end

-- The names of the members that `wanted` says yes to, each once.
function members.names(class, wanted)
  local names, seen = {}, {}
  for _, member in ipairs(host.members(class)) do
    if wanted(member) and not seen[member.name] then names[#names + 1] = member.name end
    seen[member.name] = true
  end
  return names
end

-- Names with commas between them, in lines of some width.
local function listed(names)
  local lines, line = {}, " "
  for index, name in ipairs(names) do
    if #line + #name > 77 then
      lines[#lines + 1], line = line, " "
    end
    line = line .. " " .. name .. (index < #names and "," or "")
  end
  lines[#lines + 1] = line
  return lines
end

-- "RegExZRK has no "Compiel"; it has:", and a line for each member with a name like that one; where
-- there is none, the names of all methods and properties.
function members.missing(class, name)
  local lines = {}
  for _, member in ipairs(host.members(class)) do
    if alike(member.name, name) then lines[#lines + 1] = "  " .. member.declaration end
  end
  if #lines == 0 then
    lines = listed(members.names(class, function(member) return member.kind ~= "constant" end))
  end
  return ('%s has no "%s"; it has:\n%s'):format(class, name, table.concat(lines, "\n"))
end

local sections = {
  { kind = "method", title = "Methods", columns = "| Declaration |\n|---|\n" },
  { kind = "property", title = "Properties", columns = "| Property | Access |\n|---|---|\n" },
  { kind = "constant", title = "Constants", columns = "| Constant |\n|---|\n" },
}

local function of_kind(class, kind)
  local list = {}
  for _, member in ipairs(host.members(class)) do
    if member.kind == kind then list[#list + 1] = member end
  end
  return list
end

-- A class with a heading for each section and a line for each member; `access` is put in for
-- properties.
local function laid_out(class, title, heading, line, access)
  local parts = { title:format(class) }
  for _, section in ipairs(sections) do
    local list = of_kind(class, section.kind)
    parts[#parts + 1] = heading:format(section.title, #list, section.columns)
    for _, member in ipairs(list) do
      local words = access:format(member.writable and "read and write" or "read only")
      parts[#parts + 1] = line:format(member.declaration, member.kind == "property" and words or "")
    end
  end
  return table.concat(parts)
end

local function text_of(class)
  return laid_out(class, "Class %s\n", "\n%s (%d)\n", "  %s%s\n", ", %s")
end

local function page_of(class)
  return laid_out(class, "# Class %s\n", "\n## %s (%d)\n\n%s", "| `%s` |%s\n", " %s |")
end

local function or_null(value)
  if value == nil then return json.null end
  return value
end

-- The fields of a member of each kind.
local fields = {}
function fields.method(member)
  local parameters = {}
  for index, parameter in ipairs(member.parameters) do
    parameters[index] = { "name", parameter.name, "type", parameter.type,
      table.unpack(parameter.optional and { "default", or_null(parameter.default) } or {}) }
  end
  return { "name", member.name, "parameters", { list = parameters }, "result", or_null(member.result),
    "declaration", member.declaration }
end
function fields.property(member)
  return { "name", member.name, "type", member.type, "writable", member.writable }
end
function fields.constant(member) return { "name", member.name, "value", or_null(member.value) } end

local function fields_of(class)
  local all = { "class", class }
  for _, section in ipairs(sections) do
    local list = of_kind(class, section.kind)
    for index, member in ipairs(list) do list[index] = fields[section.kind](member) end
    table.move({ section.title:lower(), { list = list, gap = "\n  " } }, 1, 2, #all + 1, all)
  end
  return all
end

-- All classes as "text", which is the default, "markdown" or "json", in the order of their tables.
function host.describe(format)
  local forms = { markdown = page_of, json = fields_of }
  local classes = {}
  for index, class in ipairs(host.members()) do classes[index] = (forms[format] or text_of)(class) end
  if format == "json" then return json.text({ list = classes, gap = "\n" }, " ") .. "\n" end
  return table.concat(classes, "\n")
end

return members
