-- How zrkhost try shows what it found: in lines, as a difference, as counts, bare matches or JSON.
local codes = require "zrkhost.try_code"
local json = require "zrkhost.try_json"
local texts = require "zrkhost.texts"

local gap_shown <const> = 100  -- characters between two matches of a line before they are shortened
local colours <const> = { match = "1;31", gone = "31", new = "32", dim = "2", bold = "1" }
local group_colours <const> = { "32", "36", "33", "35", "34" }

local paint, marked  -- set for each run; marked: matches are marked below, for want of colour
local function painter(options)
  local wanted = options.color == "always" or
    options.color == "auto" and host.isatty() and (os.getenv("NO_COLOR") or "") == ""
  return function(style, text)
    local code = colours[style] or style
    return wanted and code and text ~= "" and ("\27[%sm%s\27[0m"):format(code, text) or text
  end, wanted
end

local function plural(count, word)
  local ending = word:find("h$") and "es" or "s"
  return ("%d %s%s"):format(count, word, count == 1 and "" or ending)
end

-- The matches that share lines, with the bytes (from 0, behind the last) and number of those lines.
local function stretches(text, matches)
  local list, line, start = {}, 1, 0
  local function line_end(from) return (text.bytes:find("\n", from + 1, true) or #text.bytes + 1) - 1 end
  local behind = line_end(0)
  for _, match in ipairs(matches) do
    local current = list[#list]
    if not current or match.first > current.last then
      while behind < match.first do
        line, start = line + 1, behind + 1
        behind = line_end(start)
      end
      current = { first = start, line = line }
      list[#list + 1] = current
    end
    current[#current + 1] = match
    current.last = line_end(math.max(match.first, match.last - 1))
  end
  return list
end

-- The pieces { text, style } of a match: at each byte the last group that holds it gives the colour.
local function match_pieces(text, match)
  local edges = { match.first, match.last }
  for _, group in ipairs(match.groups) do
    if group.first then table.move({ group.first, group.last }, 1, 2, #edges + 1, edges) end
  end
  table.sort(edges)
  local pieces = {}
  for index = 1, #edges - 1 do
    local from, to = edges[index], edges[index + 1]
    local style = "match"
    for _, group in ipairs(match.groups) do
      if group.first and group.first <= from and group.last >= to then
        style = group_colours[(group.number - 1) % #group_colours + 1]
      end
    end
    if from >= match.first and to <= match.last and from < to then
      pieces[#pieces + 1] = { text.bytes:sub(from + 1, to), style }
    end
  end
  if #pieces == 0 then pieces[1] = { "", "match" } end
  return pieces
end

-- What of a long text around matches is shown; `behind` and `ahead` say where matches are.
local function shortened(gap, behind, ahead)
  local limit = utf8.len(gap) and gap_shown or gap_shown // 4
  if #gap <= limit then return gap end
  local function edge(offset) return utf8.len(gap) and utf8.offset(gap, 0, offset) or offset end
  local head = behind and gap:sub(1, edge(limit // 2) - 1) or ""
  local tail = ahead and gap:sub(edge(#gap - limit // 2)) or ""
  return head .. "..." .. tail
end

local function pieces_of(text, stretch, write_match)
  local pieces, at = {}, stretch.first
  for index, match in ipairs(stretch) do
    pieces[#pieces + 1] = { shortened(text.bytes:sub(at + 1, match.first), index > 1, true) }
    for _, piece in ipairs(write_match(match)) do pieces[#pieces + 1] = piece end
    at = match.last
  end
  if at < stretch.last then
    pieces[#pieces + 1] = { shortened(text.bytes:sub(at + 1, stretch.last), true, false) }
  end
  return pieces
end

-- The row of ^ below a line, of pieces that are printable; an empty match has one below what follows.
local function marks_of(pieces)
  local row, empty = "", false
  for _, piece in ipairs(pieces) do
    local blank = piece[1]:gsub(utf8.len(piece[1]) and "[^\t\x80-\xBF]" or "[^\t]", " "):gsub("[\x80-\xBF]", "")
    local marks = piece[2] and blank:gsub(" ", "^") or empty and blank:gsub("^ ", "^") or blank
    row, empty = row .. marks, piece[1] == "" and (piece[2] or empty)
  end
  return (row .. (empty and "^" or "")):gsub("%s+$", "")
end

local function print_line(number, sign, pieces)
  local shown = ""
  for _, piece in ipairs(pieces) do shown = shown .. paint(piece[2], piece[1]) end
  print(paint("dim", ("%5d%s "):format(number, sign)) .. shown)
  local marks = marked and sign == ":" and marks_of(pieces) or ""
  if marks ~= "" then print("       " .. marks) end
end

-- Prints pieces in lines, each with its number and the sign.
local function print_pieces(pieces, number, sign)
  local line = {}
  for _, piece in ipairs(pieces) do
    for row, newline in piece[1]:gmatch("([^\n]*)(\n?)") do
      line[#line + 1] = { texts.printable(row), piece[2] }
      if newline ~= "" then
        print_line(number, sign, line)
        line, number = {}, number + 1
      end
    end
  end
  if #line > 0 then print_line(number, sign, line) end
end

local function part(text, from, to) return text.bytes:sub(from + 1, to) end

local function details(text, match)
  local place = ("%d-%d"):format(match.first, match.last)
  if match.first_character and (match.first_character ~= match.first or match.last_character ~= match.last) then
    place = ("%s (characters %d-%d)"):format(place, match.first_character, match.last_character)
  end
  local words = { paint("dim", place), paint("match", texts.quoted(part(text, match.first, match.last))) }
  for _, group in ipairs(match.groups) do
    local name = group.name and group.number .. " " .. group.name or tostring(group.number)
    local colour = group_colours[(group.number - 1) % #group_colours + 1]
    local value = group.first and texts.quoted(part(text, group.first, group.last))
    words[#words + 1] = name .. " " .. (value and paint(colour, value) or paint("dim", "unset"))
  end
  return "       " .. table.concat(words, "  ")
end

local function show_lines(text, matches)
  for _, stretch in ipairs(stretches(text, matches)) do
    print_pieces(pieces_of(text, stretch, function(match) return match_pieces(text, match) end), stretch.line, ":")
    for _, match in ipairs(stretch) do print(details(text, match)) end
  end
end

local function show_difference(text, matches)
  for _, stretch in ipairs(stretches(text, matches)) do
    local function old(match) return { { part(text, match.first, match.last), "gone" } } end
    local function new(match) return { { match.new_text, "new" } } end
    print_pieces(pieces_of(text, stretch, old), stretch.line, "-")
    print_pieces(pieces_of(text, stretch, new), stretch.line, "+")
  end
end

local function duration(seconds)
  if seconds < 0.001 then return ("%.0f us"):format(seconds * 1e6) end
  return seconds < 1 and ("%.3g ms"):format(seconds * 1000) or ("%.2f s"):format(seconds)
end

local function study_words(seconds, studied)
  if not studied then return "Study was not tried" end
  local ratio = seconds / studied
  if ratio < 1.2 then return "Study does not help" end
  return ("Study makes it %.1f times as fast"):format(ratio)
end

local function summary(all, count)
  local bytes, seconds, studied = 0, 0, 0
  for _, text in ipairs(all) do
    bytes, seconds = bytes + #text.bytes, seconds + (text.seconds or 0)
    studied = studied and text.studied_seconds and studied + text.studied_seconds
    if text.binary and not text.asked then
      print(paint("dim", text.name .. " is not UTF-8: searched as bytes"))
    end
    if text.hint then print(paint("dim", text.hint)) end
  end
  print(paint("bold", ("%s in %s"):format(plural(count, "match"), plural(bytes, "byte"))) ..
    paint("dim", (", %s; %s"):format(duration(seconds), study_words(seconds, studied))))
end

-- What to do with each text and its matches and, in some ways, at the end.
local ways = {}

function ways.code(options) return { text = function(text, matches) print(codes.program(options, text, matches)) end } end
function ways.json() return { text = function(text, matches) print(json(text, matches)) end } end

function ways.print() return { text = function(text) io.write(text.replaced or text.bytes) end } end

function ways.count(_, several)
  return { text = function(text, matches) print((several and text.name .. ":" or "") .. #matches) end }
end

function ways.only_matching(_, several)
  return { text = function(text, matches)
    for _, match in ipairs(matches) do
      print((several and text.name .. ":" or "") .. paint("match", part(text, match.first, match.last)))
    end
  end }
end

function ways.lines(options, several)
  local show = options.replace and show_difference or show_lines
  return { summary = summary, text = function(text, matches)
    if several and #matches > 0 then print(paint("bold", text.name)) end
    show(text, matches)
  end }
end

return { for_options = function(options, several)
  local coloured
  paint, coloured = painter(options)
  marked = not coloured
  for _, name in ipairs { "code", "json", "count", "only_matching", "print" } do
    if options[name] then return ways[name](options, several) end
  end
  return ways.lines(options, several)
end }
