-- Turning dates around: 2024-03-09 becomes 09.03.2024.
-- What you learn: \1 to \99 stand for the groups of each match, \0 for all of it; Replace works on
-- the match of the last Execute, ReplaceSelection answers the new text alone.

local re <close> = RegExZRK.new()
assert(re:Compile([[\b(\d{4})-(\d\d)-(\d\d)\b]]))

local letter = "Ordered on 2024-03-09, shipped on 2024-03-11, paid on 2024-04-02."
local turned = [[\3.\2.\1]]

print(re:ReplaceAll(letter, turned))

-- One match at a time: the second date only.
re:Execute(letter)
re:Execute(re:Offset(1))  -- go on where the first match ended
print("found", re:Substring(0))
print("new text", re:ReplaceSelection(turned))
print(re:Replace(turned))

-- Without a new text the matches are deleted.
assert(re:Compile([[ on \d{4}-\d\d-\d\d]]))
print(re:ReplaceAll(letter))
