-- What zrkhost try did, as a program of the host's language.

-- A literal of that language: a quote is doubled, and what cannot stand in a line is added by number.
local function literal(text)
  local parts = {}
  for plain, controls in text:gmatch("([^%c]*)(%c*)") do
    if plain ~= "" then parts[#parts + 1] = '"' .. plain:gsub('"', '""') .. '"' end
    for control in controls:gmatch(".") do parts[#parts + 1] = ("Chr(%d)"):format(control:byte()) end
  end
  return #parts > 0 and table.concat(parts, " + ") or '""'
end

local encodings = { "UTF8", "UTF16", "UTF32", "ASCII", "ISOLatin1", "WindowsLatin1", "MacRoman" }
local function encoding_of(options)
  local wanted = (options.encoding or "UTF8"):gsub("%W", ""):lower()
  for _, name in ipairs(encodings) do
    if name:lower() == wanted then return "Encodings." .. name end
  end
end

-- The text comes from its file, or from literals, one for each line.
local function text_lines(text, options)
  if text.file then
    return { ("Dim file As FolderItem = GetFolderItem(%s, FolderItem.PathTypeShell)"):format(literal(text.name)),
      "Dim stream As TextInputStream = TextInputStream.Open(file)",
      ("Dim text As String = stream.ReadAll(%s)"):format(encoding_of(options)),
      "stream.Close" }
  end
  local lines = { 'Dim text As String' }
  for line in text.bytes:gmatch("[^\n]*\n?") do
    if line ~= "" then lines[#lines + 1] = "text = text + " .. literal(line) end
  end
  if #lines == 2 then return { "Dim text As String = " .. literal(text.bytes) } end
  return lines
end

local function option_lines(options)
  local lines = {}
  for name, value in pairs(options.properties) do
    local words = type(value) == "boolean" and (value and "True" or "False") or tostring(value)
    lines[#lines + 1] = ("re.%s = %s"):format(name, words)
  end
  table.sort(lines)
  return lines
end

local function walk_lines(matches)
  local empty = false
  for _, match in ipairs(matches) do empty = empty or match.first == match.last end
  local lines = { "Dim found As Integer = re.Execute(text)", "While found > 0",
    '  MsgBox re.Substring(0) + " at byte " + Str(re.Offset(0)) + ", character " + Str(re.OffsetCharacters(0))' }
  for _, group in ipairs(matches[1] and matches[1].groups or {}) do
    local name = group.name and literal(group.name) or tostring(group.number)
    lines[#lines + 1] = ('  MsgBox "  %s: " + re.Substring(%s)'):format(group.name or group.number, name)
  end
  if empty then
    table.move({ "  Dim start As Integer = re.Offset(1)",
      "  If start = re.Offset(0) Then  ' one character further, or the same place is found for ever",
      "    start = start + Max(1, LenB(Mid(text, re.OffsetCharacters(1) + 1, 1)))",
      "  End If",
      "  found = re.Execute(start)" }, 1, 5, #lines + 1, lines)
  else
    lines[#lines + 1] = "  found = re.Execute(re.Offset(1))"
  end
  lines[#lines + 1] = "Wend"
  return lines
end

local function program(options, text, matches)
  local lines = { "Dim re As New RegExZRK" }
  local function append(more) table.move(more, 1, #more, #lines + 1, lines) end
  local function append_indented(more)
    for _, line in ipairs(more) do lines[#lines + 1] = "  " .. line end
  end
  append(option_lines(options))
  append(text_lines(text, options))
  append { ("If Not re.Compile(%s) Then"):format(literal(options.pattern)),
    '  MsgBox re.ErrorMessage + " at byte " + Str(re.ErrorOffset)', "Else" }
  if options.replace then
    append_indented { ("MsgBox re.ReplaceAll(text, %s)"):format(literal(options.replace)) }
  else
    append_indented(walk_lines(matches))
  end
  append { "End If" }
  return table.concat(lines, "\n")
end

return { program = program }
