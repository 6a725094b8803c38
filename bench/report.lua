-- lua5.4 bench/report.lua [--check] FACTS.txt RESULT.json... : compares what was measured with
-- bench/targets.lua. Writes docs/benchmarks.md and its charts, or with --check prints the figures and
-- exits with 1 when one is clearly behind its target.
local json = require "cjson"
package.path = arg[0]:match("^(.*)/") .. "/?.lua;" .. package.path
local targets = require "targets"

local check = arg[1] == "--check"
if check then table.remove(arg, 1) end

local function read(path)
  local file = assert(io.open(path))
  local text = file:read "a"
  file:close()
  return text
end

-- The rounds by row, each with its counters.
local function collect(paths)
  local rows = {}
  for _, path in ipairs(paths) do
    for _, run in ipairs(json.decode(read(path)).benchmarks) do
      assert(not run.error_occurred, run.error_message)
      if run.run_type == "iteration" then
        local row = run.run_name:match "^[^/]+/[^/]+"
        rows[row] = rows[row] or {}
        table.insert(rows[row], run)
      end
    end
  end
  return rows
end

local rows = collect(table.move(arg, 2, #arg, 1, {}))

local function rounds_of(row) return rows[row] or error("nothing was measured for " .. row) end

-- The median of a figure over the rounds.
local function median(row, figure, who)
  local figures = {}
  for i, round in ipairs(rounds_of(row)) do figures[i] = figure(round, who) end
  table.sort(figures)
  local middle = (#figures + 1) / 2
  return (figures[math.floor(middle)] + figures[math.ceil(middle)]) / 2
end

local function median_of_counter(row, name)
  return median(row, function(round) return round[name] end)
end

-- From the cheapest size to the dearest.
local function spread(row)
  local least, most = math.huge, 0
  for size in pairs { mb1 = 1, mb10 = 1, mb100 = 1 } do
    if rounds_of(row)[1][size] then
      local cost = median_of_counter(row, size)
      least, most = math.min(least, cost), math.max(most, cost)
    end
  end
  return most / least
end

local function judge(target)
  local figure = target.spread and spread(target.row) or median(target.row, target.figure, "zrk")
  -- Room for noise in a check: a tenth, and a few nanoseconds more where those are all there is.
  local room = check and 1.1 or 1
  local more = check and target.unit == "ns" and 5 or 0
  local met
  if target.at_most then met = figure <= target.at_most * room + more end
  if target.at_least then met = figure >= target.at_least / room end
  return figure, met
end

local function number(value)
  local digits = math.abs(value) >= 100 and 0 or math.abs(value) >= 10 and 1 or 2
  return (("%." .. digits .. "f"):format(value):gsub("^%-(0%.0+)$", "%1"))
end

local function promise(target)
  local word = target.at_most and "at most" or "at least"
  return ("%s %s %s"):format(word, target.at_most or target.at_least, target.unit)
end

local function of_other(target, who)
  local is_there = target.others ~= "no" and rounds_of(target.row)[1][who]
  return is_there and number(median(target.row, target.figure, who)) or ""
end

if check then
  local behind = 0
  for _, target in ipairs(targets) do
    local figure, met = judge(target)
    if not met then behind = behind + 1 end
    print(("%-7s %10s  %-22s %s"):format(met and "ok" or "BEHIND", number(figure), promise(target), target.work))
  end
  print(("%d of %d clearly behind their targets"):format(behind, #targets))
  os.exit(behind == 0 and 0 or 1)
end

local page = {}
local function line(...) page[#page + 1] = table.concat({ ... }) end

line "# Benchmarks\n"
line "Written by `make bench`; bench/README.md says how each row is measured. Each figure is taken in every\nround of one run, in which the contenders take turns and the fastest turn of each counts; shown is the median over\nthe rounds. In the last two columns stand the same figures for the engine's C++ binding and for RE2; the binding runs without\nUTF-8 mode, in which it would check the whole text again for each match.\n"
line(read(arg[1]))
line "| work | target | measured | | C++ binding | RE2 |"
line "|---|---|---|---|---|---|"
-- Each reason once, with what it holds for.
local missed, reasons, works_by = 0, {}, {}
local function explain(work, why)
  missed = missed + 1
  for _, reason in ipairs(type(why) == "table" and why or { why or "not yet explained." }) do
    if not works_by[reason] then
      reasons[#reasons + 1] = reason
      works_by[reason] = {}
    end
    table.insert(works_by[reason], work)
  end
end
for _, target in ipairs(targets) do
  local figure, met = judge(target)
  line("| ", target.work, " | ", promise(target), " | ", number(figure), " | ", met and "met" or "**not met**", " | ",
       of_other(target, "pcrecpp"), " | ", of_other(target, "re2"), " |")
  if not met then explain(target.work, target.why) end
end
if missed > 0 then line "\n## Not met\n" end
for _, reason in ipairs(reasons) do line("- ", table.concat(works_by[reason], "; "), ": ", reason) end

-- Charts. Each is a block of data, one line a case, and the gnuplot commands that draw it.
local function draw(name, data, commands)
  local gnuplot = assert(io.popen("gnuplot", "w"))
  gnuplot:write("$data << EOD\n", table.concat(data, "\n"), "\nEOD\n",
                "set terminal svg size 760,340 font 'sans-serif,12' background 'white'\n",
                "set output 'docs/benchmarks-", name, ".svg'\n", "set grid ytics\n", commands)
  assert(gnuplot:close(), "gnuplot failed")
end

local function cases(prefix, names, figure)
  local data = {}
  for _, name in ipairs(names) do
    local row, of = prefix .. name, {}
    for i, who in ipairs { "zrk", "pcrecpp", "re2" } do
      of[i] = rounds_of(row)[1][who] and ("%.4f"):format(median(row, figure, who)) or "?"
    end
    data[#data + 1] = name:gsub("_", " "):gsub("^(.*)$", '"%1" ') .. table.concat(of, " ")
  end
  return data
end

local bars = [[
set style data histograms
set style fill solid 0.8 border -1
set datafile missing '?'
set key outside bottom center horizontal
plot $data using 2:xtic(1) title 'RegExZRK' linecolor '#1f77b4', \
     '' using 3 title 'C++ binding' linecolor '#ff7f0e', '' using 4 title 'RE2' linecolor '#999999'%s
]]

local function ratio(counters, who) return counters[who] / counters.bare end
local function beyond(counters, who) return counters[who] - counters.bare end

draw("walk", cases("walk/", { "literal", "caseless", "alternatives", "address", "capitals", "groups", "words", "letters", "short" }, ratio),
     "set title 'Walking all matches of 10 MB: time by the bare engine loop'\n" .. bars:format ", 1 title 'bare loop' linecolor 'black'")
draw("replace", cases("replace/", { "pairs", "capitals", "words", "each_word", "delete" }, ratio),
     "set title 'Replacing all matches in 10 MB: time by one bare pass'\n" .. bars:format ", 1 title 'bare pass' linecolor 'black'")
draw("calls", cases("call/", { "no_match", "substrings", "lines_ascii", "lines_mixed" }, beyond),
     "set title 'One call: nanoseconds beyond the bare engine call'\n" .. bars:format "")

local growth = {}
local names = { "walk", "walk_characters", "replace", "filter", "escape" }
for _, size in ipairs { 1, 10, 100 } do
  local of = { tostring(size) }
  for _, name in ipairs(names) do of[#of + 1] = ("%.4f"):format(median_of_counter("growth/" .. name, "mb" .. size)) end
  growth[#growth + 1] = table.concat(of, " ")
end
local plots = {}
for i, name in ipairs(names) do
  plots[i] = ("$data using 1:%d with linespoints linewidth 2 title '%s'"):format(i + 1, (name:gsub("_", " with ")))
end
draw("growth", growth, "set title 'Nanoseconds a byte, by size of text'\nset logscale x\nset xrange [0.8:125]\nset yrange [0:*]\n" ..
     "set xtics ('1 MB' 1, '10 MB' 10, '100 MB' 100)\nset key outside right\nplot " .. table.concat(plots, ", "))

for _, name in ipairs { "walk", "replace", "calls", "growth" } do line("\n![](benchmarks-", name, ".svg)") end

local file = assert(io.open("docs/benchmarks.md", "w"))
file:write(table.concat(page, "\n"), "\n")
file:close()
print(("docs/benchmarks.md: %d of %d targets met"):format(#targets - missed, #targets))
