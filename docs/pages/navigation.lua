-- The pages in reading order, by group; a page is named by its path under docs/ without ".md".
local groups = {
  { title = "Start",
    "help/index", "help/getting-started", "help/recipes", "help/mistakes", "help/coming-from" },
  { title = "Guides",
    "help/patterns", "help/text", "help/replacement-text", "help/speed", "help/limits", "help/threads" },
  { title = "Reference",
    "help/members", "help/object", "help/compiling", "help/compile-options", "help/searching",
    "help/execute-options", "help/results", "help/replacing", "help/arrays", "help/constants",
    "help/errors" },
  { title = "About the project", "README", "safety", "benchmarks", "zrkhost", "maintaining", "releasing" },
}

local source_of = { ["help/members"] = "docs/pages/members.md" }

local function read(page)
  local file = assert(io.open(source_of[page] or "docs/" .. page .. ".md"))
  local text = file:read("a")
  file:close()
  return text
end

-- Titles stand in the lists of pages as they are, so they have to be plain words.
local function title(page)
  return assert(read(page):match("^# ([^\n`&<*_]+)\n"), page .. " does not begin with a title in plain words")
end

-- The way from a page to another, in HTML.
local function address(from, to)
  local folder = from:match("^.*/") or ""
  if to:sub(1, #folder) == folder then return to:sub(#folder + 1) .. ".html" end
  return folder:gsub("[^/]+", "..") .. to .. ".html"
end

local function link(from, to)
  return ('<a href="%s"%s>%s</a>'):format(address(from, to),
    from == to and ' aria-current="page"' or "", title(to))
end

-- The groups that a page shows: what is packaged knows only itself.
local function groups_for(page)
  local shown = {}
  for _, group in ipairs(groups) do
    if not page:find("^help/") or group[1]:find("^help/") then table.insert(shown, group) end
  end
  return shown
end

local function lists(page)
  local html = {}
  for _, group in ipairs(groups_for(page)) do
    table.insert(html, "<p>" .. group.title .. "</p>\n<ul>")
    for _, other in ipairs(group) do table.insert(html, "<li>" .. link(page, other) .. "</li>") end
    table.insert(html, "</ul>")
  end
  return table.concat(html, "\n")
end

-- Links to the pages before and behind a page of the help.
local function turns(page)
  local order, place = {}, nil
  for _, group in ipairs(groups_for("help/")) do
    for _, other in ipairs(group) do
      table.insert(order, other)
      if other == page then place = #order end
    end
  end
  if not place then return page:find("^help/") and error(page .. " stands in no group of navigation.lua") or "" end
  local back, on = order[place - 1], order[place + 1]
  return (back and '<span class="back">Back: ' .. link(page, back) .. "</span> " or "") ..
         (on and '<span class="on">Next: ' .. link(page, on) .. "</span>" or "")
end

return { groups = groups, read = read, address = address, lists = lists, turns = turns }
