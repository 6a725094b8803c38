-- The reference's entries, as `zrkhost help NAME` and the prompt show them.
local members = require "zrkhost.members"
local pages = require "zrkhost.pages"
local texts = require "zrkhost.texts"
local help = {}

local overview = [[
re = RegExZRK()                     an object of the class
re:Compile[[(\d+)-(\d+)]].."]]"..[[           true, or false with the place of the mistake
re:Execute("12-34")                 1 and more for a match; re:Substring(1), re:Offset(0)
re                                  what it holds now
host.memoryblock("\0\1")            other things of the host: see "man zrkhost"
help Compile                        the reference's entry of a member
help options, help constants        the names of the others

Methods and properties of RegExZRK:]]

-- The lines of the entry below "### Name", up to the next heading of its level or above.
local function entry(name)
  local lines, fenced
  for line in pages:gmatch("([^\n]*)\n") do
    if line:find("^```") then fenced = not fenced end
    local heading = not fenced and line:match("^##?#? (.*)")
    if heading and lines then break end
    if heading and heading:lower() == name:lower() then lines = {} end
    if lines and not heading then lines[#lines + 1] = line end
  end
  return lines
end

-- Markdown as a terminal shows it: fences become indents, links their words.
local function plain(lines)
  local shown, fenced = {}, false
  for _, line in ipairs(lines) do
    if line:find("^```") then
      fenced = not fenced
    else
      line = fenced and "    " .. line or line:gsub("%[([^%]]*)%]%([^)]*%)", "%1")
      shown[#shown + 1] = line
    end
  end
  return (table.concat(shown, "\n"):gsub("^\n+", ""):gsub("\n+$", ""))
end

local function names(wanted) return texts.columns(members.names("RegExZRK", wanted), 78) end

local function is_option(member) return member.kind == "property" and member.name:find("eOption%u") ~= nil end
local lists = {
  options = function() return names(is_option) end,
  constants = function() return names(function(member) return member.kind == "constant" end) end,
}
lists[""] = function()
  return overview .. "\n" .. names(function(member) return member.kind ~= "constant" and not is_option(member) end)
end

-- The text for a name, or nil and what is there instead.
function help.text(name)
  local list = lists[(name or ""):lower()]
  if list then return list() end
  local declarations = {}
  for _, member in ipairs(host.members("RegExZRK")) do
    if member.name:lower() == name:lower() then
      local read_only = member.kind == "property" and not member.writable
      table.insert(declarations, member.declaration .. (read_only and " (read only)" or ""))
    end
  end
  local lines = entry(name)
  if lines then return plain(lines) end
  if #declarations > 0 then return table.concat(declarations, "\n") end
  return nil, members.missing("RegExZRK", name)
end

function help.run(name)
  local shown, missing = help.text(name)
  if shown then
    print(shown)
  else
    io.stderr:write("zrkhost: ", missing, "\n")
    os.exit(1)
  end
end

return help
