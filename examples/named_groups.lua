-- Named groups: reading a table of addresses.
-- What you learn: substrings by name, walking through all matches of one text, offsets in bytes
-- and in characters, and asking a pattern for its names.

local re <close> = RegExZRK.new()
re.CompileOptionUngreedy = false
re.CompileOptionMultiline = true
re.CompileOptionUnicodeCodePoints = true  -- \w is any letter, not only a to z
assert(re:Compile([[^(?<name>[\w ]+) <(?<box>[\w.]+)@(?<site>[\w.]+)>(?: *# *(?<note>.+))?$]]))

local text = [[
Zoë Müller <zoe@example.org>  # asks for the printed edition
Čeněk Říha <riha.c@example.net>
not an address
Ann Other <ann@example.com> # moved
]]

print("groups", re.InfoCaptureCount, "named", re.InfoNameCount)
for group = 1, re.InfoCaptureCount do
  print(group, re:InfoNameEntry(group))
end

local function padded(name)
  return name .. string.rep(" ", 11 - utf8.len(name))
end

local found = re:Execute(text)
while found > 0 do
  print(padded(re:Substring("name")) .. " " .. re:Substring("box") .. " at " .. re:Substring("site"))
  print("", ("byte %d, character %d"):format(re:Offset(0), re:OffsetCharacters(0)))
  local note = 2 * re:StringNumber("note")  -- where its start is among the offsets
  if re:Offset(note) >= 0 then  -- -1: the group took no part
    print("", ("note at byte %d: %s"):format(re:Offset(note), re:Substring("note")))
  end
  found = re:Execute(re:Offset(1))
end
print("ended with ErrorNoMatch:", re.Lasterror == RegExZRK.ErrorNoMatch)
