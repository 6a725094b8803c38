-- A long search that does not stop the program: ExecuteMT runs the engine on a thread of its own
-- while the host gives its cooperative tasks their turns.
-- What you learn: ExecuteMT, tasks, and that the results are read as after Execute.

-- A text of 12,000 letters in which one phrase comes twice, far apart.
local phrase = "the quick brown fox jumps over the lazy dog"
local state, letters = 7, {}
for i = 1, 12000 do
  state = (state * 1103515245 + 12345) % 2147483648
  letters[i] = string.char(97 + (state >> 16) % 26)
end
local noise = table.concat(letters)
local text = noise:sub(1, 3000) .. phrase .. noise:sub(3001) .. phrase .. "."

local ticks, searching = 0, true
host.task(function()
  while searching do
    ticks = ticks + 1  -- a program would move its clock or its progress bar here
    coroutine.yield()
  end
end)

-- For every place in the text, look for the same 40 letters in all of the rest: tens of millions
-- of steps.
local re <close> = RegExZRK.new()
assert(re:Compile("(.{40})(?=.*\\1)"))

local started = host.clock()
local groups = re:ExecuteMT(text)
local seconds = host.clock() - started
searching = false

print("groups", groups)
print("repeated", re:Substring(1))
print("at byte", re:Offset(0))
print("the clock ticked while the search ran: " .. (ticks > 3 and "yes" or "no"))
if host.isatty() then
  print(("%d ticks in %.2f seconds"):format(ticks, seconds))
end
