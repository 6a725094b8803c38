-- Limits: patterns that would take for ever, and what the error codes say.
-- What you learn: MatchLimit bounds the time of a match and MatchLimitRecursion its depth; neither
-- is an exception. Lasterror tells why there is no match.

local names = {}
for _, name in ipairs({ "ErrorPlugin", "ErrorNoMatch", "ErrorNoSubstring", "ErrorMatchLimit",
                        "ErrorBadUTF8", "ErrorRecursionLimit", "ErrorBadOffset" }) do
  names[RegExZRK[name]] = name
end

local re <close> = RegExZRK.new()
local function report(title)
  print(("%-42s %4d  %s"):format(title, re.Lasterror, names[re.Lasterror] or "found"))
end

re:Execute("text")
report("no pattern yet")

-- Each further letter doubles the ways to divide the letters between the two loops.
assert(re:Compile("^(?:a+)+$"))
local hostile = string.rep("a", 40) .. "!"
re.MatchLimit = 100000
re:Execute(hostile)
report("two loops, no more than 100000 steps")
re:Execute("aaaa")
report("the same limit, a harmless text")

re.MatchLimit = 0  -- the engine's own limit again
re.MatchLimitRecursion = 50
re:Execute(string.rep("a", 1000))
report("no deeper than 50")
re.MatchLimitRecursion = 0

-- The pattern that means the same without the trap needs no limit at all.
assert(re:Compile("^a++$"))
re:Execute(hostile)
report("a possessive loop gives nothing back")

re:Execute("aaa", 10)
report("a start past the end of the text")
re:Execute("aaa")
re:Substring(60)
report("a group that no pattern of this size has")

re.ExecuteOptionNoUTF8Check = false
re:Execute("cut: \xC3")
report("bytes that are no UTF-8, with the check on")

-- Only misuse raises: an index that no vector has.
local ok, problem = pcall(re.Offset, re, re.VectorSize)
print(ok, problem)
