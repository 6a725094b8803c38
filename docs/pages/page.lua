-- The pandoc filter that makes a page from a Markdown file: links lead to HTML, members that prose
-- names to their entries, and what the template shows around the text goes into the metadata.
--
-- Metadata from the caller: page, the path under docs/ without ".md"; version.
local navigation = dofile("docs/pages/navigation.lua")
local members = dofile("docs/pages/members.lua")

local page, heading, entry
local headings = 0

local function html(text) return pandoc.MetaBlocks { pandoc.RawBlock("html", text) } end
local function text_of(inlines) return pandoc.utils.stringify(inlines) end

-- Code that names something of another class.
local function of_others(code)
  code.classes = { "other" }
  return code
end

local text_filter = {
  traverse = "topdown",

  -- The title goes above the contents.
  Header = function(header)
    if header.level == 1 and not heading then
      heading = header.content
      return {}, false
    end
    headings = headings + (header.level <= 3 and 1 or 0)
    local member = header.level == 3 and members.named(text_of(header.content))
    if member and member.page == page then header.identifier = member.name:lower() end
    if header.level <= 3 then entry = member end
    return header, false
  end,

  -- What is not made into pages, such as the change log, is not led to.
  Link = function(link)
    local up, below = select(2, link.target:gsub("%.%./", "")), select(2, page:gsub("/", ""))
    if up > below then return link.content, false end
    if not link.target:match("^%a+:") then
      link.target = link.target:gsub("%.md$", ".html"):gsub("%.md#", ".html#")
    end
    return link, false
  end,

  -- An entry does not link to itself.
  Code = function(code)
    local member = not code.classes:includes("other") and members.named(code.text)
    if member and member ~= entry then return pandoc.Link(code, members.address(page, member)), false end
  end,

  CodeBlock = function(block)
    if block.classes[1] == "declaration" then block.classes = { "vb", "declaration" } end
    return block, false
  end,

  -- On a narrow screen the cells of a wide table stand below each other, each with its column's name.
  -- Beside a column that is headed RegExZRK stand the names of others.
  Table = function(table)
    local columns = {}
    for i, cell in ipairs(table.head.rows[1].cells) do
      columns[i] = text_of(cell.contents)
      columns[columns[i]] = i
    end
    if #columns > 2 then table.classes:insert("wide") end
    for _, body in ipairs(table.bodies) do
      for _, row in ipairs(body.body) do
        for i, cell in ipairs(row.cells) do
          cell.attributes["data-column"] = #columns > 2 and columns[i] or nil
          if i ~= (columns.RegExZRK or i) then cell.contents = cell.contents:walk { Code = of_others } end
        end
      end
    end
    return table
  end,

  RawBlock = function(block)
    if block.text:find('id="members"', 1, true) then
      return pandoc.RawBlock("html", members.index(page)), false
    end
  end,
}

function Pandoc(document)
  local meta = document.meta
  page = text_of(meta.page)
  local blocks = document.blocks:walk(text_filter)
  if not heading then error("docs/" .. page .. ".md has no title") end

  local up = page:gsub("[^/]+/", "../"):gsub("[^/]*$", "")
  meta.help = page:find("^help/") and "" or up .. "help/"
  meta.heading = heading
  meta.pagetitle = text_of(heading) .. (page == "help/index" and "" or " - RegExZRK")
  meta.front = page == "help/index"
  meta.long = headings >= 4
  meta.navigation = html(navigation.lists(page))
  meta.turns = html(navigation.turns(page))
  meta.script = page == "help/members" and "filter.js" or nil
  return pandoc.Pandoc(blocks, meta)
end
