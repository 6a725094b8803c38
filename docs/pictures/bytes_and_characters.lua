-- One text twice, by characters and by bytes, and a match's place in both.
local Sheet = ...
local text, pattern = "Grüße, 5 €", "5"

local re = RegExZRK()
assert(re:Compile(pattern) and re:Execute(text) == 1)

local sheet = Sheet.new("A text whose characters have one to three bytes: the match stands at another number " ..
                        "in bytes than in characters.")
local wide, left = 22, 16
sheet:text(left, 20, "Characters")
sheet:text(left, 90, "Bytes in UTF-8")
local number = 0
for from, code in utf8.codes(text) do
  local character = utf8.char(code)
  local class = from - 1 == re:Offset(0) and "first" or #character > 1 and "second" or "cell"
  local x = left + (from - 1) * wide
  sheet:text(x + #character * wide / 2, 37, tostring(number), "small middle")
  sheet:cell(x, 42, wide * #character, character, class, "code")
  for i = 1, #character do
    local at = x + (i - 1) * wide
    sheet:cell(at, 112, wide, ("%02X"):format(character:byte(i)), class, "code")
    sheet:text(at + wide / 2, 107, tostring(from - 2 + i), "small middle")
  end
  number = number + 1
end

local function says(y, call, words) sheet:text(left, y, call, "code") sheet:text(left + 148, y, words) end
says(158, "Offset(0)", re:Offset(0) .. " bytes before it")
says(178, "OffsetCharacters(0)", re:OffsetCharacters(0) .. " characters before it")
says(198, "Mid", "counts from 1: character " .. re:OffsetCharacters(0) + 1)
return sheet
