-- The host's functions for strings and numbers.
local rows = require "listing.rows"
local text = require "listing.text"

local L, row = rows.functions, rows.row
local bytes, to_utf8, through = text.bytes, text.to_utf8, text.through
local through_bytes = text.through_bytes

L.concat = text.concat

row("Len(source As String) As Integer", function(s) return text.length(to_utf8(s)) end)
row("LenB(source As String) As Integer", function(s) return #bytes(s) end)
row("Mid(source As String, start As Integer) As String", through(text.mid))
row("Mid(source As String, start As Integer, length As Integer) As String", through(text.mid))
row("Left(source As String, count As Integer) As String", through(text.left))
row("Right(source As String, count As Integer) As String", through(text.right))
local function mid_bytes(s, start, count)
  start = math.max(start, 1)
  return s:sub(start, count and start + count - 1 or -1)
end
row("MidB(source As String, start As Integer) As String", through_bytes(mid_bytes))
row("MidB(source As String, start As Integer, length As Integer) As String",
    through_bytes(mid_bytes))
row("LeftB(source As String, count As Integer) As String", through_bytes(function(s, count)
  return s:sub(1, count)
end))
row("RightB(source As String, count As Integer) As String", through_bytes(function(s, count)
  return s:sub(math.max(#s - count, 0) + 1)
end))

local function find_from(start, s, find)
  s, find = to_utf8(s), to_utf8(find)
  local skipped = #text.left(s, math.max(start, 1) - 1)
  local at = text.find(s, find, skipped + 1)
  return at and text.length(s:sub(1, at - 1)) + 1 or 0
end
local function find_bytes(start, s, find)
  return bytes(s):find(bytes(find), math.max(start, 1), true) or 0
end
for name, find in pairs {InStr = find_from, InStrB = find_bytes} do
  local function from_start(s, wanted) return find(1, s, wanted) end
  row(name .. "(source As String, find As String) As Integer", from_start)
  row(name .. "(start As Integer, source As String, find As String) As Integer", find)
  row("String." .. name .. "(find As String) As Integer", from_start)
  row("String." .. name .. "(start As Integer, find As String) As Integer",
      function(s, start, wanted) return find(start, s, wanted) end)
end

local function strip(pattern) return through(function(s) return s:match(pattern) end) end
row("Trim(source As String) As String", strip "^[%z\1-\32]*(.-)[%z\1-\32]*$")
row("LTrim(source As String) As String", strip "^[%z\1-\32]*(.*)$")
row("RTrim(source As String) As String", strip "^(.-)[%z\1-\32]*$")
row("Uppercase(source As String) As String", through(text.upper))
row("Lowercase(source As String) As String", through(text.lower))
row("Titlecase(source As String) As String", through(function(s)
  return (text.lower(s):gsub("%f[^%s\0]([^\x80-\xBF][\x80-\xBF]*)", text.upper))
end))

for name, count in pairs {Replace = 1, ReplaceAll = math.huge} do
  row(name .. "(source As String, find As String, replacement As String) As String",
      through(function(s, find, replacement)
        return text.replace(s, to_utf8(find), to_utf8(replacement), count)
      end))
end
row("ReplaceLineEndings(source As String, ending As String) As String", through(function(s, ending)
  return (s:gsub("\r\n?", "\n"):gsub("\n", {["\n"] = to_utf8(ending)}))
end))

local function pieces(s, separator)
  return L.array_of(text.split(to_utf8(s), to_utf8(separator)))
end
row('Split(source As String, delimiter As String = " ") As String()', pieces)
row('Join(parts() As String, delimiter As String = " ") As String', function(parts, delimiter)
  local joined = parts.n > 0 and parts[0] or ""
  for i = 1, parts.n - 1 do joined = text.concat(text.concat(joined, delimiter), parts[i]) end
  return joined
end)
row("CountFields(source As String, separator As String) As Integer", function(s, separator)
  return pieces(s, separator).n
end)
row("NthField(source As String, separator As String, number As Integer) As String",
    function(s, separator, number) return pieces(s, separator)[number - 1] or "" end)

row("StrComp(one As String, two As String, mode As Integer) As Integer", function(one, other, mode)
  if mode == 1 then return text.order(one, other) end
  local a, b = bytes(one), bytes(other)
  return a == b and 0 or a < b and -1 or 1
end)

row("Chr(code As Integer) As String", utf8.char)
row("ChrB(code As Integer) As String", function(code)
  return text.make(string.char(code & 0xFF), nil)
end)
row("Asc(source As String) As Integer", function(s)
  local code = to_utf8(s):match "^[^\x80-\xBF][\x80-\xBF]*"
  return code and utf8.len(code) and utf8.codepoint(code) or bytes(s):byte() or 0
end)
row("AscB(source As String) As Integer", function(s) return bytes(s):byte() or 0 end)

-- Numbers.

local function number_text(value)
  if math.type(value) == "integer" then return tostring(value) end
  return (("%.7g"):format(value):gsub("e([+-])0*", "e%1"))
end
local function value_text(value)
  if value == nil then return "" end
  if type(value) == "boolean" then return value and "True" or "False" end
  if type(value) == "number" then return number_text(value) end
  if text.is(value) then return value end
  return L.raise(L.exception("TypeMismatchException"))
end
L.value_text = value_text

-- "#,##0.00" and its kind: signs and digits of the whole and the fraction, the rest as it stands.
local function format_number(value, mask)
  local positive, negative = mask:match "^([^;]*);?([^;]*)"
  if value < 0 and negative ~= "" then positive, value = negative, -value end
  local before, digits, after = positive:match "^([^#0.,]*)([#0.,]*)(.*)$"
  if digits:find "[#0]" == nil then return positive end
  if after:find "%%" then value = value * 100 end
  local whole, fraction = digits:match "^([^.]*)%.?(.*)$"
  local shown = ("%." .. #fraction .. "f"):format(math.abs(value))
  local left, right = shown:match "^(%d+)%.?(%d*)$"
  local least = select(2, whole:gsub("0", ""))
  left = left:gsub("^0+", "")
  left = ("0"):rep(least - #left) .. left
  if whole:find "," then left = left:reverse():gsub("(%d%d%d)", "%1,"):reverse():gsub("^,", "") end
  local optional = #fraction:match "#*$"
  while optional > 0 and right:sub(-1) == "0" do
    right, optional = right:sub(1, -2), optional - 1
  end
  local sign = value < 0 and not before:find "-" and "-" or ""
  if before:find "+" and value < 0 then before, sign = before:gsub("%+", "-"), "" end
  if value >= 0 then before = before:gsub("%-", "") end
  return sign .. before .. left .. (right ~= "" and "." .. right or "") .. after
end
row("Str(value As Variant) As String", value_text)
row("Str(value As Double, format As String) As String", format_number)
row("CStr(value As Variant) As String", value_text)
row("Format(value As Double, format As String) As String", format_number)

local function value_of(s)
  s = to_utf8(s)
  local base = ({H = 16, B = 2, O = 8})[(s:match "^%s*&([hHbBoO])" or ""):upper()]
  if base then return (tonumber(s:match "&%a(%x+)" or "0", base) or 0) + 0.0 end
  local exponent = s:match "^%s*[+-]?%d*%.?%d*[eE][+-]?%d+"
  return (tonumber(exponent or "") or tonumber(s:match "^%s*([+-]?%d*%.?%d*)") or 0) + 0.0
end
row("Val(source As String) As Double", value_of)
row("CDbl(source As String) As Double", value_of)
row("Hex(value As Integer) As String", function(value) return ("%X"):format(value & 0xFFFFFFFF) end)
row("Abs(value As Integer) As Integer", math.abs)
row("Abs(value As Double) As Double", math.abs)
for name, f in pairs {Max = math.max, Min = math.min} do
  row(name .. "(one As Integer, other As Integer) As Integer", f)
  row(name .. "(one As Double, other As Double) As Double", f)
end
row("Sqrt(value As Double) As Double", math.sqrt)
row("Floor(value As Double) As Double", function(value) return math.floor(value) + 0.0 end)
row("Ceil(value As Double) As Double", function(value) return math.ceil(value) + 0.0 end)
row("Round(value As Double) As Double", function(value)
  return (value < 0 and math.ceil(value - 0.5) or math.floor(value + 0.5)) + 0.0
end)

-- Encodings and line ends.

L.encodings = {}
local constant = {static = true, property = true}
for name, called in pairs {UTF8 = "UTF-8", UTF16 = "UTF-16", UTF32 = "UTF-32", ASCII = "ASCII",
                           ISOLatin1 = "ISO Latin-1", WindowsLatin1 = "Windows Latin-1",
                           WindowsANSI = "Windows Latin-1", MacRoman = "Mac Roman"} do
  L.encodings[called] = L.encodings[called] or {name = called, class = "TextEncoding"}
  row("Encodings." .. name .. " As TextEncoding", function() return L.encodings[called] end, nil,
      constant)
end
row("TextEncoding.Chr(code As Integer) As String", function(encoding, code)
  return text.convert(utf8.char(code), encoding.name)
end)
row("Encoding(source As String) As TextEncoding", function(s)
  return L.encodings[text.encoding(s)]
end)
row("DefineEncoding(source As String, encoding As TextEncoding) As String", function(s, encoding)
  return text.make(bytes(s), encoding and encoding.name)
end)
row("ConvertEncoding(source As String, encoding As TextEncoding) As String", function(s, encoding)
  return text.convert(s, (encoding or L.raise()).name)
end)
local endings = {[""] = "\n", [".Unix"] = "\n", [".Windows"] = "\r\n", [".Macintosh"] = "\r"}
for name, ending in pairs(endings) do
  row("EndOfLine" .. name .. " As String", function() return ending end, nil, constant)
end
