-- zrkhost try: what a pattern does to a text. This file searches; try_options.lua reads the command
-- line, try_show.lua lays out what was found, try_code.lua writes it as a program of the host's language.
local options_of = require "zrkhost.try_options"
local shows = require "zrkhost.try_show"
local texts = require "zrkhost.texts"

local found_status <const>, none_status <const>, error_status <const> = 0, 1, 2
local failed = false

local function complain(message, ...)
  io.stdout:flush()
  io.stderr:write("zrkhost try: ", message:format(...), "\n")
  failed = true
end

local function read(name)
  if name == "-" then
    if host.isatty("stdin") then io.stderr:write("Type the text; Ctrl-D ends it.\n") end
    return io.read("a")
  end
  local file, problem = io.open(name, "rb")
  if not file then return complain("%s", problem) end
  local bytes, reason = file:read("a")
  file:close()
  return bytes or complain("%s: %s", name, reason)
end

-- A text is { name, bytes, subject }; bytes that are no UTF-8 are searched as they are, in a block.
local function text_of(name, bytes, options)
  if options.encoding then
    local known, text = pcall(host.string, bytes, options.encoding)
    if not known then return complain("%s", text) end
    bytes = tostring(text)
  elseif options.bytes or not utf8.len(bytes) then
    return { name = name, bytes = bytes, subject = host.memoryblock(bytes), binary = true, asked = options.bytes }
  end
  return { name = name, bytes = bytes, subject = bytes, file = name ~= "the input" and not options.text }
end

-- A compiled object with room for all groups, or nil and where the pattern is wrong.
local function compile(options, binary)
  local function new(entries)
    local re = RegExZRK(entries)
    for name, value in pairs(options.properties) do re[name] = value end
    if binary then re.CompileOptionUTF8, re.ExecuteOptionNoUTF8Check = false, false end
    if not re:Compile(options.pattern) then return nil, texts.mistake(options.pattern, re) end
    return re
  end
  local re, mistake = new(0)
  if not re then return nil, mistake end
  return new(3 * (re.InfoCaptureCount + 2))
end

-- Where the search goes on: behind the match, and one character further after an empty one.
local function next_start(re, text)
  local from, to = re:Offset(0), re:Offset(1)
  if to > from then return to end
  return text.binary and to + 1 or (utf8.offset(text.bytes, 2, to + 1) or #text.bytes + 2) - 1
end

-- The search from a byte on, the first of which names the text; `way` is "MT" for one on another thread.
local function execute(re, text, start, way)
  if start > 0 then return re["Execute" .. way](re, start) end
  return re[(text.binary and "ExecuteMemory" or "Execute") .. way](re, text.subject)
end

-- On a terminal a task shows how far the search is, which runs on another thread for that.
local function progress(text)
  local live = host.isatty("stderr")
  local state = { at = 0, count = 0, live = live, searching = live, shown = false }
  local started, last = host.clock(), host.clock()
  function state.tick()
    local now = host.clock()
    if not live or now - last < 0.25 then return end
    last, state.shown = now, true
    io.stderr:write(("\rsearching %s: %d %%, %d matches, %d s; Ctrl-C ends it "):format(
      text.name, 100 * state.at // math.max(1, #text.bytes), state.count, math.floor(now - started)))
  end
  function state.finish()
    state.searching = false
    if state.shown then io.stderr:write("\r\27[K") end
  end
  host.task(function()
    while state.searching do
      state.tick()
      host.yield()
    end
  end)
  return state
end

local function match_here(re, binary, new_text)
  local match = { first = re:Offset(0), last = re:Offset(1), groups = {} }
  if not binary then
    match.first_character, match.last_character = re:OffsetCharacters(0), re:OffsetCharacters(1)
  end
  for number = 1, re.InfoCaptureCount do
    local set = number < re.Count and re:Offset(2 * number) >= 0
    local name = re:InfoNameEntry(number)
    match.groups[number] = { number = number, name = name ~= "" and name or nil,
      first = set and re:Offset(2 * number), last = set and re:Offset(2 * number + 1) }
  end
  if new_text then match.new_text = re:ReplaceSelection(new_text) end
  return match
end

local threaded_matches <const> = 1000  -- a thread for each search costs little for that many

-- All matches of a text, and the code of an error that ended the search.
local function search(re, text, options)
  local started = host.clock()
  local state = progress(text)
  local threaded = state.live and not options.limited  -- another thread applies no limits
  local matches = {}
  local function run(start)
    state.at, state.count = start, #matches
    state.tick()
    return execute(re, text, start, threaded and #matches < threaded_matches and "MT" or "")
  end
  local start = 0
  while start <= #text.bytes and run(start) > 0 do
    matches[#matches + 1] = match_here(re, text.binary, not text.binary and options.replace)
    start = next_start(re, text)
  end
  state.finish()
  text.seconds = host.clock() - started
  local ended = start > #text.bytes or re.Lasterror == re.ErrorNoMatch
  return matches, not ended and re.Lasterror
end

local function walk(re, text)
  local started, start = host.clock(), 0
  while start <= #text.bytes and execute(re, text, start, "") > 0 do start = next_start(re, text) end
  return host.clock() - started
end

-- The fastest of several walks, for a twentieth of a second.
local function fastest(re, text)
  local best, spent = math.huge, 0
  repeat
    local seconds = walk(re, text)
    best, spent = math.min(best, seconds), spent + seconds
  until spent > 0.05
  return best
end

local longest <const> = 1  -- what took longer, in seconds, is not walked again for its time

-- Seconds as compiled and as studied.
local function time(re, text)
  local plain = fastest(re, text)
  if plain > longest then return plain end
  re:Study()
  return plain, fastest(re, text)
end

-- What a newcomer may have expected otherwise, said once: lazy quantifiers, and lines that end in CR LF.
local function hint(options, text, match)
  if not match then
    local ends = options.pattern:find("$", 1, true) and text.bytes:find("\r\n", 1, true)
    return ends and "Lines end in CR LF here: --newlineanycrlf lets $ match before it"
  end
  if options.properties.CompileOptionUngreedy == false or text.binary then return end
  local greedy = RegExZRK()
  for name, value in pairs(options.properties) do greedy[name] = value end
  greedy.CompileOptionUngreedy, greedy.MatchLimit = false, 100000
  if not greedy:Compile(options.pattern) or greedy:Execute(text.subject) < 1 then return end
  if greedy:Offset(0) ~= match.first or greedy:Offset(1) == match.last then return end
  return "Quantifiers are lazy here; with --greedy the first match is " .. texts.quoted(greedy:Substring(0))
end

local function all_texts(options)
  if options.text then return { text_of("text", options.text, options) } end
  local all = {}
  for _, name in ipairs(#options.files > 0 and options.files or { "-" }) do
    local bytes = read(name)
    all[#all + 1] = bytes and text_of(name == "-" and "the input" or name, bytes, options)
  end
  return all
end

-- What ReplaceAll makes of the text; the difference is shown match by match, and has to be the same.
local function replace(re, text, matches, new_text)
  text.replaced = re:ReplaceAll(text.subject, new_text)
  local parts, at = {}, 0
  for _, match in ipairs(matches) do
    parts[#parts + 1] = text.bytes:sub(at + 1, match.first) .. match.new_text
    at = match.last
  end
  if table.concat(parts) .. text.bytes:sub(at + 1) ~= text.replaced then
    complain("%s: ReplaceAll makes something else of it than is shown match by match: see --print", text.name)
  end
end

local function try_text(options, text, show)
  local re = assert(compile(options, text.binary))
  if text.binary and (options.replace or options.code) then
    local name = text.name .. (text.asked and " is searched as bytes" or " is not UTF-8")
    return complain("%s, and only text can be replaced or read by a program: see --encoding", name)
  end
  local matches, code = search(re, text, options)
  if code then complain("%s: the search ended with %s", text.name, texts.constant(code)) end
  if options.replace and #matches > 0 and not code then replace(re, text, matches, options.replace) end
  show.text(text, matches)
  if show.summary and not code then
    if text.seconds < longest then text.seconds, text.studied_seconds = time(re, text) end
    text.hint = hint(options, text, matches[1])
  end
  return #matches
end

local function run(...)
  local options, problem = options_of.parse({ ... })
  if not options then
    complain("%s", problem)
    return error_status
  elseif options.help then
    print(options_of.usage)
    return found_status
  end
  local re, mistake = compile(options)
  if not re then
    io.stderr:write("The pattern does not compile:\n", mistake, "\n")
    return error_status
  end
  local all = all_texts(options)
  local show = shows.for_options(options, #options.files > 1)
  local count = 0
  for _, text in ipairs(all) do count = count + (try_text(options, text, show) or 0) end
  if show.summary and #all > 0 then show.summary(all, count) end
  return failed and error_status or count > 0 and found_status or none_status
end

return { run = function(...)
  local done, status = xpcall(run, debug.traceback, ...)
  if not done then complain("%s", status) end
  if not done or status ~= 0 then os.exit(done and status or error_status) end
end }
