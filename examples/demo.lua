-- A tour in seven steps over real text: mistakes in patterns, replacing, walking through matches,
-- named groups, arrays, binary data, and a long search that leaves the program running.
--
--   zrkhost demo.lua [FILE]     FILE is a text in UTF-8; otherwise the GNU GPL, as Debian has it

local licences = "/usr/share/common-licenses/"
local named = ...
local colours = host.isatty() and (os.getenv("NO_COLOR") or "") == ""
local matches, started = 0, host.clock()

local function paint(code, text)
  return colours and ("\27[%sm%s\27[0m"):format(code, text) or text
end
local function padded(text, width)
  return text .. (" "):rep(width - (utf8.len(text) or #text))
end
local function step(title, code)
  print("\n" .. paint("1", padded(title, 45)) .. paint("2", code))
end
local function found(text) return paint("32", text) end
local function flat(text) return (text:gsub("%s+", " ")) end

local function read(path)
  local file = io.open(path, "rb")
  local text = file and file:read("a")
  if file then file:close() end
  return text
end
local function first_of(paths)
  for _, path in ipairs(paths) do
    local text = read(path)
    if text then return path, text end
  end
  error("cannot read " .. table.concat(paths, " or "), 0)
end
local function lines_of(text)
  local lines = {}
  for line in text:gmatch("([^\n]*)\n?") do lines[#lines + 1] = line end
  return lines
end
local function line_at(text, offset)
  return select(2, text:sub(1, offset):gsub("\n", "")) + 1
end

local path, text = first_of(named and { named } or { licences .. "GPL-3", licences .. "GPL-2" })
local re = RegExZRK.new()
re.CompileOptionUnicodeCodePoints = true
re.CompileOptionUngreedy = false
print(("%s, engine %s"):format(paint("1", "RegExZRK"), re:Version()))
print(("%s, %d bytes"):format(path, #text))

step("1  A mistake is found before it matters", 're:Compile(pattern)')
local wrong = "(?<year>[9-0]{4})"
re:Compile(wrong)
print("   " .. wrong)
print("   " .. (" "):rep(re.ErrorOffset) .. paint("31", "^ " .. re.ErrorMessage))
print(("   at byte %d"):format(re.ErrorOffset))

step("2  Straight quotes become round ones", [[re:ReplaceAll(text, "“\1”")]])
assert(re:Compile('"([^"]+)"'))
local clock = host.clock()
local quoted = re:ReplaceAll(text, [[“\1”]])
print(("   %d searches in %.1f ms, %d bytes are now %d"):format(
  re.Count, (host.clock() - clock) * 1000, #text, #quoted))

step("3  Every match has a place and names", 're:Execute(re:Offset(1)); re:Substring("term")')
if not re:Compile([[“(?<term>[^”]+)”\s+(?<says>\w+\s+\w+)]]) or re:Execute(quoted) < 1 then
  assert(re:Compile([[(?<term>\p{Lu}\w+)\s+(?<says>\p{Lu}\w+)\b]]))
  re:Execute(quoted)
end
print(paint("2", "   line    byte    char  term                  says"))
local shown = 0
while re.Count > 0 do
  matches, shown = matches + 1, shown + 1
  if shown <= 8 then
    print(("  %5d %7d %7d  %s %s"):format(
      line_at(quoted, re:Offset(0)), re:Offset(0), re:OffsetCharacters(0),
      found(padded(flat(re:Substring("term")), 21)), flat(re:Substring("says"))))
  end
  re:Execute(re:Offset(1))
end
print(("   %d matches; bytes and characters part ways at the round quotes"):format(shown))

step("4  Arrays are filtered in one call", 're:Match(lines)')
re.CompileOptionCaseLess = true
assert(re:Compile([[\bwarrant(y|ies|ed)\b]]))
re.CompileOptionCaseLess = false
for _, file in ipairs({ path, licences .. "Apache-2.0", licences .. "MPL-2.0", licences .. "BSD" }) do
  local lines = lines_of(read(file) or "")
  local about = re:Match(lines)
  matches = matches + #about
  print(("   %s %5d lines, %3d about warranties  %s"):format(
    padded(file:match("[^/]*$"), 18), #lines, #about, found(("#"):rep(math.min(#about, 30)))))
end

step("5  Binary data stays where it is", 're:ExecuteMemory(block, offset)')
local program, bytes = first_of({ "/bin/sh", path })
local block = host.memoryblock(bytes)
re.CompileOptions = 0  -- bytes, not UTF-8, and as much as possible
assert(re:Compile([[lib[a-z]+\.so[.0-9]*|GLIBC_[.0-9]+]]))
shown = 0
local position = 0
while re:ExecuteMemory(block, position) > 0 do
  matches, shown, position = matches + 1, shown + 1, re:Offset(1)
  if shown <= 4 then
    print(("   byte %7d  %s"):format(re:Offset(0), found(re:Substring(0))))
  end
end
print(("   %d names in the %d bytes of %s"):format(shown, #bytes, program))

step("6  A long search leaves the program running", 're:ExecuteMT(text)')
local ticks, searching = 0, true
host.task(function()
  while searching do
    ticks = ticks + 1
    coroutine.yield()
  end
end)
re.CompileOptionUTF8, re.CompileOptionNoUTF8Check, re.CompileOptionDotAll = true, true, true
assert(re:Compile([[\b(\w[^\n]{59}\w)\b(?=.*\1)]]))
local beginning = quoted:sub(1, (utf8.offset(quoted, 20000) or 0) - 1)
clock = host.clock()
local repeated = re:ExecuteMT(beginning) > 0
searching = false
print("   61 letters that come twice: " .. (repeated and found(flat(re:Substring(1))) or "none"))
print(("   %.2f seconds; a clock of the host ticked %d times meanwhile"):format(
  host.clock() - clock, ticks))

step("7  Nothing is left behind", "host.problems()")
re, block = nil, nil
collectgarbage()
local even = #host.problems() == 0
print(("   %d matches in %.1f seconds; every reference was given back: %s"):format(
  matches, host.clock() - started, even and found("yes") or paint("31", "no")))
