-- Measures how long two patterns take that find the same, on texts where they find nothing, and writes
-- growth.txt beside this file; run by zrkhost.
local here = arg[0]:match("^(.*)/") or "."
local patterns, lengths = { "a+$", "(a+)+$" }, { 4, 8, 12, 16, 20 }

-- Microseconds of one search, the least of some tries: what disturbs only ever adds.
local function measure(pattern, text)
  local re = RegExZRK()
  re.CompileOptionUngreedy = false
  assert(re:Compile(pattern))
  local least = math.huge
  for _ = 1, 7 do
    local times, started = 0, host.clock()
    repeat
      assert(re:Execute(text) == re.ErrorNoMatch)
      times = times + 1
    until host.clock() - started > 0.02
    least = math.min(least, (host.clock() - started) / times)
  end
  return least * 1e6
end

local file = assert(io.open(here .. "/growth.txt", "w"))
file:write("# microseconds for a search in so many letters a and a !, by measure_growth.lua\n")
file:write("letters\t", table.concat(patterns, "\t"), "\n")
for _, length in ipairs(lengths) do
  local text = ("a"):rep(length) .. "!"
  file:write(length)
  for _, pattern in ipairs(patterns) do file:write(("\t%.1f"):format(measure(pattern, text))) end
  file:write("\n")
end
file:close()
