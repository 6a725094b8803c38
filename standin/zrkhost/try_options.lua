-- The command line of zrkhost try.
local options = {}

options.usage = [[
zrkhost try [option...] PATTERN [FILE...]

Shows what the pattern finds in the files, or in the standard input: each match in its line, with
its place in bytes and characters and its groups; then how many, how long it took, and whether
Study helps. Quantifiers are lazy unless --greedy is given, as everywhere in the class.

  -i, --caseless        upper and lower case are the same
  -s, --dotall          . matches the end of a line too
  -m, --multiline       ^ and $ match at every line
  -x, --extended        white space and comments in the pattern do not count
  -g, --greedy          quantifiers take as much as they can
      --NAME            sets any option property: --dollarendonly, --ExecuteOptionNotEmpty
      --no-NAME         takes one away: --no-utf8
      --matchlimit=N    and --matchlimitrecursion=N: the limits of a search
  -t, --text TEXT       searches this text instead of files
      --encoding NAME   of the files, if it is not UTF-8: "Windows Latin-1", MacRoman, UTF-16
      --bytes           searches bytes; what is not UTF-8 is searched so in any case
  -r, --replace TEXT    shows what ReplaceAll makes of the text, as a difference
  -p, --print           with --replace: prints all of the new text
  -c, --count           prints the number of matches alone
  -o, --only-matching   prints the matches alone, one a line
      --json            prints an object for each file, one a line
      --code            prints the program in the host's language that does the same
      --color=WHEN      always, never, or auto: on a terminal, unless NO_COLOR is set
      --help            this text

The exit status is 0 where something was found, 1 where not, and 2 after an error.]]

-- The options that set a field of their name, and whether they take an argument.
local fields = { text = true, replace = true, encoding = true, color = true, print = false, count = false,
  ["only-matching"] = false, json = false, code = false, bytes = false, help = false }
-- Other ways to write them, and some of the properties.
local other_words = { ["-t"] = "--text", ["-r"] = "--replace", ["-p"] = "--print", ["-c"] = "--count",
  ["-o"] = "--only-matching", ["-h"] = "--help", ["-i"] = "--caseless", ["-s"] = "--dotall",
  ["-m"] = "--multiline", ["-x"] = "--extended", ["-g"] = "--no-ungreedy", ["--greedy"] = "--no-ungreedy",
  ["--lazy"] = "--ungreedy", ["--colour"] = "--color" }

local function unknown(word) return nil, ("no option %q; zrkhost try --help lists them"):format(word) end

-- The writable property that is meant, with or without the start of its name, in any case.
local function property(word)
  local wanted = word:gsub("-", ""):lower()
  for _, start in ipairs { "", "compileoption", "executeoption" } do
    for _, member in ipairs(host.members("RegExZRK")) do
      if member.writable and member.name:lower() == start .. wanted then return member end
    end
  end
end

local function set_property(parsed, word, value)
  local negated = word:match("^no%-(.*)")
  local member = property(word) or negated and property(negated)
  if not member then return unknown("--" .. word) end
  if member.declaration:lower():find("as boolean$") then
    parsed.properties[member.name] = property(word) ~= nil
    return not value, ("--%s takes no value"):format(word)
  end
  if not math.tointeger(tonumber(value)) then
    return nil, ("--%s takes a number, as --%s=1000"):format(word, word)
  end
  parsed.properties[member.name] = math.tointeger(tonumber(value))
  parsed.limited = true
  return true
end

-- Takes the first argument, which is an option, and what belongs to it off the list.
local function take_option(parsed, list)
  local argument = table.remove(list, 1)
  local first, others = argument:match("^%-(%a)(%a+)$")
  if first then  -- "-im" is "-i" and "-m"
    argument = "-" .. first
    table.insert(list, 1, "-" .. others)
  end
  local name, value = argument:match("^(%-%-[^=]+)=(.*)$")
  name = name or argument
  local word = (other_words[name] or name):match("^%-%-(.*)")
  if not word then return unknown(argument) end
  local takes_argument = fields[word]
  if takes_argument == nil then return set_property(parsed, word, value) end
  value = not takes_argument or value or table.remove(list, 1)
  if not value then return nil, ("the option %q needs an argument"):format(argument) end
  parsed[word:gsub("-", "_")] = value
  return true
end

-- The options as a table, or nil and what is wrong with them.
function options.parse(list)
  local parsed = { properties = {}, files = {}, color = "auto" }
  local plain = false
  while list[1] do
    if list[1] == "--" and not plain then
      plain = true
      table.remove(list, 1)
    elseif not plain and list[1]:find("^%-.") then
      local known, problem = take_option(parsed, list)
      if not known then return nil, problem end
    elseif parsed.pattern then
      table.insert(parsed.files, table.remove(list, 1))
    else
      parsed.pattern = table.remove(list, 1)
    end
  end
  if not parsed.pattern and not parsed.help then
    return nil, "a pattern is needed: zrkhost try PATTERN [FILE...]"
  end
  if parsed.print and not parsed.replace then return nil, "--print needs --replace" end
  if not ({ always = 1, never = 1, auto = 1 })[parsed.color] then
    return nil, "--color takes always, never or auto"
  end
  return parsed
end

return options
