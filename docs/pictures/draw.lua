-- Draws the pictures of the help pages; run by zrkhost, for what they show is what the class answers.
--
--   zrkhost docs/pictures/draw.lua [--check]     writes docs/help/NAME.svg, or compares with them
local here = arg[0]:match("^(.*)/") or "."
local names = { "offset-vector", "bytes-and-characters", "lazy-and-greedy", "two-threads", "growth" }
local Sheet = dofile(here .. "/svg.lua")
local checking, stale = ... == "--check", {}

for _, name in ipairs(names) do
  local draw = assert(loadfile(here .. "/" .. name:gsub("-", "_") .. ".lua"))
  local path, drawn = here .. "/../help/" .. name .. ".svg", draw(Sheet, here):svg()
  if checking then
    local file = io.open(path)
    if not file or file:read("a") ~= drawn then table.insert(stale, name) end
    if file then file:close() end
  else
    local file = assert(io.open(path, "w"))
    file:write(drawn)
    file:close()
  end
end

assert(#stale == 0, "not what their programs draw; run make pictures: " .. table.concat(stale, ", "))
print(#names .. " pictures " .. (checking and "compared" or "drawn"))
