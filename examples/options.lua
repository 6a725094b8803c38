-- Options: what a new object starts with, and what each choice changes.
-- What you learn: matching is ungreedy by default; compile options count at the next Compile,
-- execute options at the next Execute; options are also bits of one number.

local function try(title, pattern, text, options)
  local re <close> = RegExZRK.new()
  for name, value in pairs(options or {}) do
    re[name] = value
  end
  assert(re:Compile(pattern))
  local found = "nothing"
  if re:Execute(text) > 0 then
    found = '"' .. re:Substring(0):gsub("\n", "\\n") .. '"'
  elseif re.Lasterror == re.ErrorPartial then
    found = "nothing yet, but the text may go on"
  end
  print(("%-38s %s"):format(title, found))
end

local html = "<b>one</b> <b>two</b>"
try("as little as possible (the default)", "<b>.+</b>", html)
try("as much as possible", "<b>.+</b>", html, { CompileOptionUngreedy = false })
try("by a question mark, the other way", "<b>.+?</b>", html)

try("the letters as they are", "straße", "STRASSE STRAßE")
try("in any case", "straße", "STRASSE STRAßE", { CompileOptionCaseLess = true })

local lines = "first line\nsecond line\n"
try("^ at the start of the text", "^second", lines)
try("^ at the start of each line", "^second", lines, { CompileOptionMultiline = true })
try("a dot stops at the line's end", "first.+second", lines)
try("a dot is any character", "first.+second", lines, { CompileOptionDotAll = true })
try("blanks and comments in the pattern", "second \\s  line  # two words", lines,
  { CompileOptionExtended = true })

try("where the text does not begin a line", "^first", lines, { ExecuteOptionNotBOL = true })
try("a match that is cut by the text's end", "second line!", "second li",
  { ExecuteOptionPartial = true })

local re <close> = RegExZRK.new()
print(("a new object: compile 0x%X, execute 0x%X"):format(re.CompileOptions, re.ExecuteOptions))
re.CompileOptionCaseLess = true
print(("any case:     compile 0x%X"):format(re.CompileOptions))
