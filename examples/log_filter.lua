-- Filtering the lines of a log: Match takes a whole array and answers the elements that match.
-- What you learn: tables go in and come out as arrays; `inverse` keeps what does not match; with
-- variants, numbers and booleans are matched as the host writes them.

local log = {
  "08:00:01 info  service started",
  "08:00:07 debug cache has 120 entries",
  "08:02:40 error disk /dev/sdb does not answer",
  "08:02:41 warn  working without /dev/sdb",
  "08:05:00 debug cache has 118 entries",
  "08:09:12 error user “zoë” is unknown",
}

local function show(title, lines)
  print(title .. ":")
  for _, line in ipairs(lines) do
    print("  " .. line)
  end
end

local re <close> = RegExZRK.new()
assert(re:Compile([[^\S+ (?:error|warn)\b]]))
show("errors and warnings", re:Match(log))
show("everything else", re:Match(log, true))

assert(re:Compile("debug"))
local rest = re:Match(log, true)
assert(re:Compile("/dev/"))
show("devices, without debug lines", re:Match(rest))

-- A table that does not hold strings only is an array of variants; texts come back.
assert(re:Compile("^(?:True|[0-9]+)$"))
show("counts and flags", re:Match({ "n/a", 404, true, false, "17", -3 }))
