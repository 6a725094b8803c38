-- The entries of the class reference, read from the help pages' Markdown: a heading of level 3 directly
-- followed by a declaration fence.
local navigation = dofile("docs/pages/navigation.lua")

local entry_form = "\n### (%w+)\n+```declaration\n(.-)\n```\n+()"
local members, by_name = {}, {}

for _, group in ipairs(navigation.groups) do
  for _, page in ipairs(group) do
    local text = navigation.read(page) .. "\n\n"
    for name, declarations, behind in text:gmatch(entry_form) do
      local member = { name = name, page = page, declarations = declarations,
                       opening = text:match("^(.-)\n\n", behind) }
      table.insert(members, member)
      by_name[name] = member
    end
  end
end
table.sort(members, function(a, b) return a.name:lower() < b.name:lower() end)

local function address(from, member)
  return navigation.address(from, member.page) .. "#" .. member.name:lower()
end

-- What a piece of code in prose names, such as Compile, Offset(1) or RegExZRK.ErrorNoMatch.
local function named(code)
  return by_name[code:gsub("^RegExZRK%.", ""):gsub("%b()$", "")]
end

-- The sentence that an entry opens with, in HTML, links as plain words; empty where no sentence stands there.
local function first_sentence(markdown)
  if not markdown:find("^[%w`\"*]") then return "" end
  local sentence = (markdown:match("^(.-[.:])%s") or markdown):gsub(":$", ".")
  local read = pandoc.read(sentence, "gfm"):walk { Link = function(link) return link.content end }
  return pandoc.write(read, "html"):gsub("</?p>", "")
end

-- All members, each with its declarations, as an HTML list.
local function index(page)
  local html = { '<ul id="members">' }
  for _, member in ipairs(members) do
    local link = ('<a href="%s">%s</a>'):format(address(page, member), member.name)
    -- Each line of a declaration begins with the name.
    local declared = member.declarations:gsub("%f[^\n\0]%w+", link):gsub("\n", "<br>\n")
    table.insert(html, ('<li><code class="declared">%s</code> %s</li>'):format(declared, first_sentence(member.opening)))
  end
  table.insert(html, "</ul>")
  return table.concat(html, "\n")
end

return { address = address, named = named, index = index }
