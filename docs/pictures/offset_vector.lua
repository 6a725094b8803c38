-- What the offset vector holds after a match with groups, one of them without text.
local Sheet = ...
local pattern, text = [[(\d{4})-(?:([A-Z]\w+)|(\d\d))]], "due 2024-05, paid"
local colours = { [0] = "first", "second", "quiet", "second" }

local re = RegExZRK()
re.CompileOptionUngreedy = false
assert(re:Compile(pattern) and re:Execute(text) == 4)

local sheet = Sheet.new("A text with its bytes numbered, the places of the match and of its groups, " ..
                        "and the same places as the entries of the offset vector.")
sheet:text(10, 20, "Pattern")
sheet:text(66, 20, pattern, "code")

-- The text, a byte a cell; the numbers are the offsets in front of each.
local wide, left = 18.5, 13
for i = 1, #text do
  sheet:cell(left + (i - 1) * wide, 44, wide, text:sub(i, i), "cell", "code")
  sheet:text(left + (i - 1) * wide, 39, tostring(i - 1), "small middle")
end

local row = 72
for group = 0, re.Count - 1 do
  local from, to = re:Offset(2 * group), re:Offset(2 * group + 1)
  local name = group == 0 and "the match" or "group " .. group
  if from < 0 then
    sheet:text(left, row + 12, name .. ": took no part", "small")
  else
    sheet:box(left + from * wide, row, (to - from) * wide, 16, colours[group])
    sheet:text(left + to * wide + 6, row + 12, name)
  end
  row = row + 22
end

-- The vector, a pair in one colour.
sheet:text(left, row + 20, "Offset(n)")
for entry = 0, 2 * re.Count - 1 do
  local x = left + entry * 39
  sheet:text(x + 19.5, row + 38, tostring(entry), "small middle")
  sheet:cell(x, row + 44, 39, tostring(re:Offset(entry)), colours[entry // 2], "code")
  if entry % 2 == 0 then
    sheet:text(x + 39, row + 80, entry == 0 and "the match" or "group " .. entry // 2, "small middle")
  end
end
sheet:text(left, row + 102, "Count is " .. re.Count .. ", Substring(3) is \"" .. re:Substring(3) .. "\",", "small")
sheet:text(left, row + 118, "Substring(2) is empty.", "small")
return sheet
