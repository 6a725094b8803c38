-- Find and replace in a file: compile once, ReplaceAll over the whole text, write it back.
-- What you learn: group references in the replacement text, and what Count says afterwards.
--
--   zrkhost find_and_replace.lua                          shows it on a small text
--   zrkhost find_and_replace.lua FILE PATTERN NEW-TEXT    changes FILE

local file, pattern, new_text = ...
local is_sample = not file

if is_sample then
  file, pattern, new_text = os.tmpname(), [[(\w+)_(\w+)\(]], [[\2_\1(]]
  local out = assert(io.open(file, "w"))
  out:write("open_file(path)\nread_line(file)  -- not read_all (yet)\nclose_file(file)\n")
  out:close()
end

local re <close> = RegExZRK.new()
re.CompileOptionUngreedy = false  -- the usual meaning of + and *: as much as possible
if not re:Compile(pattern) then
  error(("%s at byte %d of the pattern"):format(re.ErrorMessage, re.ErrorOffset))
end

local before = assert(io.open(file)):read("a")
local after = re:ReplaceAll(before, new_text)

-- ReplaceAll counts how often it searched: the last search finds nothing more, unless the last
-- match ended with the text.
print("searches", re.Count)
print("changed", tostring(before ~= after))

local out = assert(io.open(file, "w"))
out:write(after)
out:close()

if is_sample then
  io.write(after)
  os.remove(file)
end
