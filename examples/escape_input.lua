-- Searching for what a user typed, as it was typed: Escape puts a backslash before every character
-- that means something in a pattern.
-- What you learn: Escape and Unescape, and building a pattern around input.

local re <close> = RegExZRK.new()
local price_list = "Pens (blue): $1.50, pens [red]: $2.50, C:\\prices\\*.txt"

local function count(pattern)
  if not re:Compile(pattern) then
    return "no pattern: " .. re.ErrorMessage
  end
  local found, position = 0, 0
  while re:Execute(price_list, position) > 0 do
    found = found + 1
    position = re:Offset(1)
  end
  return found
end

for _, input in ipairs({ "$1.50", "(blue)", "[red", "*.txt", "C:\\", "pens" }) do
  local escaped = re:Escape(input)
  print(("%-8s raw: %-52s escaped %-10s: %s"):format(input, count(input), escaped, count(escaped)))
  assert(re:Unescape(escaped) == input)
end

-- The escaped input as one piece of a larger pattern: whole words, in any case.
re.CompileOptionCaseLess = true
print("pens, whole words in any case:", count([[\b]] .. re:Escape("pens") .. [[\b]]))
