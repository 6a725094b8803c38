-- What one pattern finds in one text, lazy and greedy.
local Sheet = ...
local pattern, text = "<b>.+</b>", "<b>one</b>, <b>two</b>"

local function found(lazy)
  local re = RegExZRK()
  re.CompileOptionUngreedy = lazy
  assert(re:Compile(pattern) and re:Execute(text) == 1)
  return re:Offset(0), re:Offset(1)
end

local sheet = Sheet.new("One pattern on one text: lazy, it ends at the first place where it can; greedy, at the last.")
sheet:text(10, 20, "Pattern")
sheet:text(66, 20, pattern, "code")

local wide, left = 14.5, 10
for i = 1, #text do
  sheet:cell(left + (i - 1) * wide, 34, wide, text:sub(i, i), "cell", "code")
end

local rows = {
  { lazy = true, class = "first", "Lazy: what .+ does in a new object" },
  { lazy = false, class = "second", "Greedy: with CompileOptionUngreedy = False" },
}
local y = 64
for _, row in ipairs(rows) do
  local from, to = found(row.lazy)
  sheet:box(left + from * wide, y, (to - from) * wide, 16, row.class)
  sheet:text(left, y + 32, row[1])
  y = y + 50
end
return sheet
