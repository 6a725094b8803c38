-- How two patterns that find the same grow with the text, from the figures in growth.txt.
local Sheet, here = ...

local function columns(line)
  local found = {}
  for column in line:gmatch("[^\t]+") do table.insert(found, column) end
  return found
end

local patterns, rows = nil, {}
for line in io.lines(here .. "/growth.txt") do
  if not line:find("^#") then
    if patterns then table.insert(rows, columns(line)) else patterns = columns(line) end
  end
end

local sheet = Sheet.new("The time of a search by the length of the text: one pattern stays at microseconds, the " ..
                        "other takes twice as long for each letter more.")
local left, right, bottom, decade = 52, 326, 214, 33
local first, last = tonumber(rows[1][1]), tonumber(rows[#rows][1])
local function x_of(letters) return left + (letters - first) / (last - first) * (right - left) end
local function y_of(microseconds) return bottom - math.log(microseconds, 10) * decade end

sheet:text(10, 20, "Time of a search that finds nothing")
for i, name in ipairs { "1 µs", "10 µs", "0.1 ms", "1 ms", "10 ms", "0.1 s" } do
  local y = bottom - (i - 1) * decade
  sheet:line { left, y, right, y }
  sheet:text(left - 6, y + 4, name, "small end")
end
for i, class in ipairs { "first-line", "second-line" } do
  local points = {}
  for _, row in ipairs(rows) do
    table.insert(points, x_of(tonumber(row[1])))
    table.insert(points, y_of(tonumber(row[i + 1])))
  end
  sheet:line(points, class)
end
local middle = rows[(#rows + 1) // 2]
sheet:text(x_of(middle[1]) + 18, y_of(middle[2]) - 7, patterns[2], "code")
sheet:text(x_of(middle[1]) - 8, y_of(middle[3]) - 8, patterns[3], "code end")
for _, row in ipairs(rows) do sheet:text(x_of(row[1]), bottom + 16, row[1], "small middle") end
sheet:text((left + right) / 2, bottom + 32, "letters a in front of a !", "small middle")
return sheet
