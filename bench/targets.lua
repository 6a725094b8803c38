-- What is promised, row by row. Read by report.lua, for the report and for the check.
--
--   work    what is done, as the report names it
--   row     the benchmark that does it; its counters are nanoseconds by contender (rounds.h)
--   figure  how the promised number comes from them: figure(counters, contender)
--   spread  instead: how the medians of the three sizes lie to each other
--   unit    of that number
--   at_most, at_least, below   the promise
--   others  "no" where the other contenders have no figure of this kind
--   why     said in the report, where the promise is not kept: a reason or a list of them

local function over_bare(ns, who) return ns[who] / ns.bare end
local function beyond_bare(ns, who) return ns[who] - ns.bare end
local function over_binding(ns) return ns.zrk_bytes / ns.pcrecpp end
local function bytes_a_nanosecond(ns, who) return 1 / ns[who] end
local function megabytes(field)
  return function(counters) return counters[field] / 1e6 end
end

local rows = {}
local function add(row) rows[#rows + 1] = row end

local two_calls = "each match is two calls of the class, Execute(start) and Offset, some 140 instructions, many of them where the " ..
  "engine has just mispredicted the end of a match. Clearing the vector and the engine's reading of a recursion limit are 3 ns " ..
  "of them; keeping its arguments out of memory saved 0.2 ns more, and an open-coded clearing cost 5."
local one_scan = "the text is read once for ASCII or for unsafe bytes before the engine may have it unchecked, 0.3 to 0.6 ms as " ..
  "fast as memory hands out 10 MB, which is up to a twentieth of so fast a search. Reading at four places side by side took a third off it."
local function walk(name, pattern, at_most, why)
  add { work = "walk all matches of `" .. pattern .. "`", row = "walk/" .. name,
        figure = over_bare, unit = "x bare", at_most = at_most or 1.02, why = why or one_scan }
end
walk("literal", "software")
walk("caseless", "(?i)copyright")
walk("alternatives", "GNU\\|Perl\\|Unix\\|POSIX\\|Artistic")
walk("address", "https?://[^\\s>]+")
walk("capitals", "[A-Z][a-z]+ [A-Z][a-z]+")
walk("groups", "(\\w+)\\s*=>\\s*(\\w+)")
walk("words", "\\w+", 1.08, two_calls)
walk("letters", "\\p{Lu}\\p{L}+", 1.02, two_calls)
walk("short", "\\p{L}+", 1.10, two_calls)
add { work = "walk that names its string at every step", row = "walk/named_again", unit = "x a kept one",
      figure = function(ns) return ns.string / ns.once end, at_most = 1.05, others = "no" }
local block_again = "a program may have written into the block between two calls, so that each call reads it for unsafe bytes: " ..
  "0.3 to 0.6 ms for 10 MB. Execute(start) goes on in a kept block without. Reading only around the place to start from would not be safe: " ..
  "the engine does not tell how far back a match may look (1 character for `(?<=(?<=(?<=a)b)c)d`, which looks at 3)."
add { work = "walk that names its block at every step", row = "walk/named_again", unit = "x bare",
      figure = function(ns) return ns.block / ns.bare end, at_most = 1.5, others = "no", why = block_again }

local two_references = "a kept subject is referenced twice, by the object and by the adapter, and each reference taken " ..
  "and given back is some 4 ns. Forgetting what was known about the text before is 1.2, clearing the vector once more after no match " ..
  "0.7; without both it would be 16.7. The rest is what Execute(start) takes, asking for the encoding, and the scan for ASCII."
add { work = "Execute on 20 bytes, no match", row = "call/no_match",
      figure = beyond_bare, unit = "ns", at_most = 15, why = two_references }
add { work = "the same in a text that is not ASCII, beyond one that is", row = "call/no_match", unit = "ns",
      figure = function(ns) return ns.zrk_not_ascii - ns.bare_not_ascii - (ns.zrk - ns.bare) end, at_most = 10, others = "no",
      why = "converting asks the host for the string's data and gives that back, some 5 ns, and the scan is 3." }
add { work = "Execute on 20 bytes, three Substring calls", row = "call/substrings",
      figure = beyond_bare, unit = "ns", at_most = 60,
      why = "Execute as above, and some 15 ns for each string that the host builds, marks and releases; 3 of them look for a zero byte." }
add { work = "Substring(name) with 20 names", row = "call/names", unit = "ns",
      figure = function(ns) return ns.zrk end, at_most = 35, others = "no" }

for _, case in ipairs {
  { "pairs", "(\\w+)\\s*=>\\s*(\\w+)" }, { "capitals", "([A-Z])([a-z]+)" }, { "words", "(\\w+) (\\w+)" } } do
  local work = "ReplaceAll with groups, `" .. case[2] .. "`"
  local why = "the same pace but for noise: 0.98 to 1.03 in medians of 41 rounds over 1 MB. A call over 10 MB is long enough to meet " ..
    "slow stretches of a shared processor whenever it is made, and cannot be timed in parts."
  add { work = work, row = "replace/" .. case[1], figure = over_bare, unit = "x bare", at_most = 1.15, why = why }
  add { work = work .. ", without UTF-8 as the C++ binding", row = "replace/" .. case[1],
        figure = over_binding, unit = "x binding", at_most = 1, others = "no", why = why }
end
add { work = "ReplaceAll with empty text", row = "replace/delete",
      figure = over_bare, unit = "x bare", at_most = 1.10 }

add { work = "ReplaceAll of each word", row = "replace/each_word", figure = over_bare, unit = "x bare", at_most = 1.08,
      why = "7 ns a match beside the engine's 62 to 70: reading the limits and the place to go on from, four copies, and the host's " ..
        "copy of the result. Copying exact lengths costs 10 ns more; keeping the limits from match to match saves nothing." }
for _, short in ipairs { { "short", "with" }, { "short_none", "without" } } do
  add { work = "ReplaceAll in 20 bytes " .. short[2] .. " a match, without UTF-8 as the C++ binding", row = "replace/" .. short[1],
        figure = over_binding, unit = "x binding", at_most = 1, others = "no",
        why = "where nothing matches, the binding reads and writes in place; here two host strings are referenced and scanned and a " ..
          "third is built, some 30 ns beyond the engine. The text to put in is read before the search, since reading it may run the program." }
end

local lines = { ascii = 30, mixed = 25 }
for _, kind in ipairs { "ascii", "mixed" } do
  add { work = "Match over 1,000,000 lines, " .. kind .. " text, a line", row = "call/lines_" .. kind,
        figure = beyond_bare, unit = "ns", at_most = lines[kind],
        why = "14 ns on one subject of 20 bytes, 20 where it is not ASCII; each line here is another string, whose length, encoding and " ..
          "count come from memory before its text does, and whether it is ASCII is not foreseen." }
end

add { work = "Escape 10 MB, against RE2's QuoteMeta", row = "text/escape", unit = "x as fast",
      figure = function(ns) return ns.re2 / ns.zrk end, at_least = 3, others = "no" }
add { work = "Escape 10 MB, against the binding's QuoteMeta", row = "text/escape", unit = "x as fast",
      figure = function(ns) return ns.pcrecpp / ns.zrk end, at_least = 3, others = "no" }

add { work = "OffsetCharacters at the end of 10 MB of ASCII", row = "text/characters_ascii",
      figure = bytes_a_nanosecond, unit = "GB/s", at_least = 20,
      why = "10 MB come through the last cache at the pace that other machines leave; 26 to 34 in quieter runs." }
add { work = "OffsetCharacters at the end of 10 MB of mixed text", row = "text/characters_mixed",
      figure = bytes_a_nanosecond, unit = "GB/s", at_least = 3 }
add { work = "OffsetCharacters of every match of a walk over 10 MB, in all", unit = "ms",
      row = "text/characters_walking", at_most = 10,
      figure = function(ns) return (ns.zrk - ns.without) * 10 end }

add { work = "OffsetCharacters from the last match of 10 MB to the first, a call", unit = "us",
      row = "text/characters_out_of_order", at_most = 20, others = "no",
      figure = function(ns) return (ns.zrk - ns.without) / 1e3 end }

for _, kind in ipairs { "ascii", "mixed" } do
  add { work = "scan for unsafe bytes, " .. kind .. " text", row = "text/unsafe_" .. kind,
        figure = function(ns, who) return 1 / (ns[who] - ns.without) end, unit = "GB/s", at_least = 10 }
end
add { work = "Execute(start) on a kept 10 MB subject: no second scan", row = "text/unsafe_again",
      figure = function(ns) return ns.zrk end, unit = "ns", at_most = 200 }

add { work = "ExecuteMT beyond Execute", row = "call/threaded", unit = "ms", at_most = 1.3,
      figure = function(ns) return (ns.zrk - ns.execute) / 1e6 end }
add { work = "recursion-limit bookkeeping of an engine call", row = "call/limits", unit = "ns", at_most = 3,
      figure = function(ns) return ns.zrk - ns.without end }

for _, case in ipairs {
  { "execute_ascii", "Execute on 100 MB of ASCII" },
  { "execute_mixed", "Execute on 100 MB of UTF-8, host 2016" },
  { "execute_block", "ExecuteMemory on 100 MB" } } do
  add { work = case[2] .. ": growth of the peak", row = "memory/" .. case[1],
        figure = megabytes "grown", unit = "MB", at_most = 1 }
end
-- The finished text is there twice at the end: as the library wrote it and as the host's string.
add { work = "ReplaceAll on 100 MB: scratch beside the finished text, by the target", row = "memory/replace",
      figure = function(of) return (of.grown - 2 * of.result) / of.subject end, unit = "x target", at_most = 1 }

local caches = "1 MB and its result stay in the processor's caches, 100 MB do not; the work for a byte is the same."
for _, case in ipairs {
  { "walk", "walking" }, { "walk_characters", "walking with character offsets" },
  { "replace", "replacing" }, { "filter", "filtering" },
  { "named_string", "naming a string at every step of a walk" },
  { "named_block", "naming a block at every step of a walk", block_again },
  { "escape", "escaping", { caches, "escaping takes half a nanosecond a byte in the caches, and what it reads, its result and the " ..
    "host's copy of that come through the memory's bus, 0.2 more; fetching ahead took a third off." } } } do
  add { work = case[2] .. " 1, 10 and 100 MB: dearest byte by cheapest", row = "growth/" .. case[1],
        spread = true, unit = "x", at_most = 1.10,
        why = case[3] or caches }
end

return rows
