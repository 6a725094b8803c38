-- Strings of the host's language: bytes with an encoding. One in UTF-8 is a plain Lua string;
-- another is a table with its bytes and its encoding's name, nil for a string that has none.
local text = {}

local Text = {}
Text.__index = Text
Text.__eq = function(a, b) return a.bytes == b.bytes and a.encoding == b.encoding end

local UTF8 = "UTF-8"

function text.make(bytes, encoding)
  if encoding == UTF8 then return bytes end
  return setmetatable({bytes = bytes, encoding = encoding}, Text)
end

function text.is(value) return type(value) == "string" or getmetatable(value) == Text end
function text.bytes(s) return type(s) == "string" and s or s.bytes end
function text.encoding(s)
  if type(s) == "string" then return UTF8 end
  return s.encoding
end

-- The string in UTF-8. Of a string without an encoding each byte counts as one character.
local function to_utf8(s)
  if type(s) == "string" then return s end
  return host.convert(s.bytes, s.encoding or "ISO Latin-1", UTF8)
end
-- UTF-8 as a string like `model`.
local function from_utf8(utf8_text, model)
  if type(model) == "string" then return utf8_text end
  return text.make(host.convert(utf8_text, UTF8, model.encoding or "ISO Latin-1"), model.encoding)
end
text.to_utf8 = to_utf8

-- Does with the string in UTF-8 what `f` does, and answers a string like `s`.
function text.through(f)
  return function(s, ...) return from_utf8(f(to_utf8(s), ...), s) end
end
-- The same with bytes.
function text.through_bytes(f)
  return function(s, ...) return text.make(f(text.bytes(s), ...), text.encoding(s)) end
end

function text.convert(s, encoding)
  if not encoding or not text.encoding(s) then return text.make(text.bytes(s), encoding) end
  return text.make(host.convert(text.bytes(s), text.encoding(s), encoding), encoding)
end

-- What the host makes of strings that meet: their encoding where it is one, none where one has
-- none, UTF-8 otherwise.
function text.concat(a, b)
  if type(a) == "string" and type(b) == "string" then return a .. b end
  local one, other = text.encoding(a), text.encoding(b)
  if one == other or not one or not other then
    return text.make(text.bytes(a) .. text.bytes(b), one == other and one or nil)
  end
  return to_utf8(a) .. to_utf8(b)
end

-- Letters beyond ASCII: first and last capital, and how far the small ones are from them.
local cases = {{0xC0, 0xD6, 32}, {0xD8, 0xDE, 32}, {0x391, 0x3A1, 32}, {0x3A3, 0x3A9, 32},
               {0x410, 0x42F, 32}, {0x400, 0x40F, 80}}
local lower_of, upper_of = {}, {}
for _, range in ipairs(cases) do
  for code = range[1], range[2] do
    local capital, small = utf8.char(code), utf8.char(code + range[3])
    lower_of[capital], upper_of[small] = small, capital
  end
end

function text.lower(s) return (s:lower():gsub("[\xC3-\xD1][\x80-\xBF]", lower_of)) end
function text.upper(s) return (s:upper():gsub("[\xC3-\xD1][\x80-\xBF]", upper_of)) end

-- Less than, equal to or greater than zero; upper and lower case are the same.
function text.order(a, b)
  local one, other = text.lower(to_utf8(a)), text.lower(to_utf8(b))
  return one == other and 0 or one < other and -1 or 1
end

-- The characters of UTF-8, right or wrong: a stray byte belongs to what stands before it.
function text.length(s) return select(2, s:gsub("[^\x80-\xBF]", "")) end

-- The byte after which `count` characters are over, at most the last one.
local function place(s, count)
  if count <= 0 then return 0 end
  local loose = #s:match "^[\x80-\xBF]*"
  local at = utf8.offset(s, count + 1, loose + 1)
  return at and at - 1 or #s
end

function text.mid(s, start, count)
  local first = place(s, start - 1)
  local rest = s:sub(first + 1)
  return count and rest:sub(1, place(rest, count)) or rest
end
function text.left(s, count) return s:sub(1, place(s, count)) end
function text.right(s, count) return s:sub(place(s, text.length(s) - count) + 1) end

-- The byte where `find` stands at or behind byte `from`, whatever the case; nil for nowhere.
function text.find(s, find, from) return text.lower(s):find(text.lower(find), from, true) end

-- The pieces between the first `most` separators, or all; one for each character where there is no
-- separator.
function text.split(s, separator, most)
  local pieces, from = {}, 1
  if s == "" then return pieces end
  if separator == "" then
    for character in s:gmatch "[^\x80-\xBF]?[\x80-\xBF]*" do
      if character ~= "" then pieces[#pieces + 1] = character end
    end
    return pieces
  end
  local low, low_separator = text.lower(s), text.lower(separator)
  while #pieces < (most or math.huge) do
    local first, last = low:find(low_separator, from, true)
    if not first then break end
    pieces[#pieces + 1], from = s:sub(from, first - 1), last + 1
  end
  pieces[#pieces + 1] = s:sub(from)
  return pieces
end

-- The first `count` occurrences of `find` replaced.
function text.replace(s, find, replacement, count)
  if find == "" then return s end
  return table.concat(text.split(s, find, count), replacement)
end

return text
