-- The host's language, a line at a time: each statement of a listing becomes a table with a "tag"
-- and what belongs to it. Blocks are put together by statements.lua; here "If x Then" and "End If"
-- are statements of their own.
local lpeg = require "lpeg"
local P, R, S, V = lpeg.P, lpeg.R, lpeg.S, lpeg.V
local C, Cc, Cf, Cg = lpeg.C, lpeg.Cc, lpeg.Cf, lpeg.Cg
local Cmt, Cs, Ct = lpeg.Cmt, lpeg.Cs, lpeg.Ct

local grammar = {}

local farthest = 1 -- how far the reading of a line got, for messages

local space = S " \t" ^ 0 * Cmt(P(true), function(_, at)
  farthest = math.max(farthest, at)
  return at
end)
local letter = R("az", "AZ") + P "_"
local word_end = -(letter + R "09")

local function token(text) return P(text) * space end
local function list(item, separator) return item * (separator * item) ^ 0 end

-- Words that no name may be: those below, and what else the host's language keeps for itself.
local reserved = {}
for word in ([[AddressOf Aggregates Assigns Async Attributes Await Break Class Declare Delegate Enum
    Event Extends Global GoTo Handles Implements Inherits Interface Lib Me Module Namespace Object
    Of Private Property Protected Public RaiseEvent RemoveHandler Self Shared Soft Static Structure
    Super Using WeakAddressOf With]]):gmatch "%a+" do
  reserved[word:lower()] = true
end
local function keyword(text)
  local pattern = P(true)
  for one in text:gmatch "%S+" do
    reserved[one:lower()] = true
    for character in one:gmatch "." do
      pattern = pattern * S(character:lower() .. character:upper())
    end
    pattern = pattern * word_end * space
  end
  return pattern
end

-- A node: the captures of `pattern` in order, or its named groups, and the tag.
local function node(tag, pattern) return Ct(Cg(Cc(tag), "tag") * pattern) end
local function field(name, pattern) return Cg(pattern, name) end
local function flag(name, pattern) return Cg(pattern * Cc(true), name) end

local any_name = C(letter * (letter + R "09") ^ 0) * space
local name = Cmt(any_name, function(_, at, text)
  return not reserved[text:lower()] and at, text
end)
local type_name = C(list(letter * (letter + R "09") ^ 0, P ".")) * space
local open, close, comma = token "(", token ")", token ","

local digits = R "09" ^ 1
local number = C(digits ^ -1 * P "." * digits * (S "eE" * S "+-" ^ -1 * digits) ^ -1
                 + digits * (S "eE" * S "+-" ^ -1 * digits) ^ -1) / function(text)
  local whole = math.tointeger(tonumber(text))
  return whole and not text:find "[.eE]" and whole or tonumber(text) + 0.0
end
number = number + P "&" * S "hH" * C(R("09", "af", "AF") ^ 1) / function(text)
  return tonumber(text, 16)
end + P "&" * S "bB" * C(S "01" ^ 1) / function(text) return tonumber(text, 2) end
local quoted = P '"' * Cs(((1 - P '"') + P '""' / '"') ^ 0) * P '"'

-- A first operand and what is done with it, from left to right.
local function level(operators, operand)
  return Cf(operand * Cg(operators * operand) ^ 0, function(left, op, right)
    return {tag = "binary", op = op, left = left, right = right}
  end)
end
local function postfix(first, following)
  return Cf(first * following, function(base, part)
    part.base = base
    return part
  end)
end
local function operator(text)
  local pattern = text:find "%a" and keyword(text) or token(text)
  return pattern * Cc(text)
end

local arguments = field("arguments", Ct(list(V "expression", comma) ^ -1))
local parentheses = open * arguments * close
local member = node("member", token "." * field("name", any_name))
local comparison = operator "<=" + operator ">=" + operator "<>" + operator "=" + operator "<"
                   + operator ">"

-- The levels from the loosest to the tightest.
local expressions = {
  expression = level(operator "Or" + operator "Xor", V "conjunction"),
  conjunction = level(operator "And", V "comparison"),
  comparison = level(comparison + operator "Is", V "sum"),
  sum = level(operator "+" + operator "-", V "product"),
  product = level(operator "*" + operator "/" + operator "\\" + operator "Mod", V "negation"),
  negation = node("not", keyword "Not" * field("operand", V "negation")) + V "sign",
  sign = node("minus", token "-" * field("operand", V "sign")) + token "+" * V "sign" + V "power",
  power = level(operator "^", V "isa"),
  isa = postfix(V "postfix", node("isa", keyword "IsA" * field("class", type_name)) ^ -1),
  postfix = postfix(V "primary", (node("call", parentheses) + member) ^ 0),
  primary = node("literal", field("value", number) * space)
            + node("literal", field("value", quoted) * space)
            + node("literal", keyword "True" * field("value", Cc(true)))
            + node("literal", keyword "False" * field("value", Cc(false)))
            + node("nil", keyword "Nil")
            + node("new", keyword "New" * field("class", type_name) * parentheses ^ -1)
            + node("paren", open * field("inner", V "expression") * close)
            + node("name", field("name", name)),
}

local as_type = keyword "As" * field("type", type_name)
local initial = token "=" * field("value", V "expression")
local bounds = open * field("bounds", Ct(list(V "expression", comma) ^ -1)) * close
local item = Ct(field("name", name) * bounds ^ -1)
local group = Ct(field("items", Ct(list(item, comma)))
                 * (keyword "As" * flag("new", keyword "New") * field("type", type_name)
                    * parentheses ^ -1 + as_type * initial ^ -1))
local array_mark = flag("array", open * close)
local unknown = field("unknown", operator "ByRef" + operator "Optional" + operator "ParamArray")
local parameter = Ct((unknown + keyword "ByVal") ^ -1 * field("name", any_name) * array_mark ^ -1
                     * as_type * initial ^ -1)
local parameters = field("parameters", open * Ct(list(parameter, comma) ^ -1) * close)
local result = as_type * array_mark ^ -1
local condition = field("condition", V "expression")
local kind = field("kind", operator "For" + operator "While" + operator "Do" + operator "Sub"
                           + operator "Function")
local range = node("range", field("first", V "sum") * keyword "To" * field("last", V "sum"))
local choice = range + node("is", keyword "Is" * field("op", comparison) * field("value", V "sum"))
               + node("value", field("value", V "expression"))
local loop_end = flag("negated", keyword "While") * condition + keyword "Until" * condition

local line_end = P(-1)
-- What is called without parentheses: "a.b" of "a.b c, d".
local bare = postfix(V "primary", (node("call", parentheses * #P ".") + member) ^ 0)

local statements = {
  node("dim", (keyword "Dim" + keyword "Var") * field("groups", Ct(list(group, comma)))),
  node("const", keyword "Const" * field("name", name) * as_type ^ -1 * initial),
  node("redim", keyword "ReDim" * field("target", V "postfix")),
  node("if_line", keyword "If" * condition * keyword "Then" * field("body", V "simple")
                  * (keyword "Else" * field("otherwise", V "simple")) ^ -1),
  node("if", keyword "If" * condition * keyword "Then"),
  node("elseif", keyword "ElseIf" * condition * keyword "Then"),
  node("else", keyword "Else"),
  node("end", keyword "End" * field("kind", operator "If" + operator "Select" + operator "Try"
                                            + operator "Sub" + operator "Function")),
  node("while", keyword "While" * condition),
  node("wend", keyword "Wend"),
  node("do", keyword "Do" * loop_end ^ -1),
  node("loop", keyword "Loop" * loop_end ^ -1),
  node("for_each", keyword "For Each" * field("name", name) * as_type ^ -1 * keyword "In"
                   * field("values", V "expression")),
  node("for", keyword "For" * field("name", name) * as_type ^ -1 * token "="
              * field("first", V "expression") * (keyword "To" + flag("down", keyword "DownTo"))
              * field("last", V "expression")
              * (keyword "Step" * field("step", V "expression")) ^ -1),
  node("next", keyword "Next" * field("name", name) ^ -1),
  node("select", keyword "Select Case" * field("value", V "expression")),
  node("case_else", keyword "Case Else"),
  node("case", keyword "Case" * field("choices", Ct(list(choice, comma)))),
  node("try", keyword "Try"),
  node("catch", keyword "Catch" * (field("name", name) * as_type ^ -1) ^ -1),
  node("finally", keyword "Finally"),
  node("sub", keyword "Sub" * field("name", name) * parameters),
  node("function", keyword "Function" * field("name", name) * parameters * result),
}

-- What may also stand behind "Then" on the same line.
local simple = {
  node("exit", keyword "Exit" * kind ^ -1),
  node("continue", keyword "Continue" * kind ^ -1),
  node("return", keyword "Return" * field("value", V "expression") ^ -1),
  node("raise", keyword "Raise" * field("value", V "expression")),
  node("call_away", keyword "Call" * field("value", V "postfix")),
  node("assign", field("target", V "postfix") * token "=" * field("value", V "expression")),
  node("run", field("value", V "postfix") * #(line_end + keyword "Else")),
  node("run_bare", field("value", bare) * field("arguments", Ct(list(V "expression", comma)))),
}

local function choose(patterns)
  local all = P(false)
  for _, pattern in ipairs(patterns) do all = all + pattern end
  return all
end
local function complete(start)
  local rules = {start, simple = choose(simple)}
  for name_, pattern in pairs(expressions) do rules[name_] = pattern end
  return P(rules)
end
local ended = {}
for i, pattern in ipairs(statements) do ended[i] = pattern * line_end end
local statement = space * complete(choose(ended) + V "simple" * line_end)

-- Rows of the library and members of registered classes: "Class.Name(p As Type = value) As Type()".
local declared = Ct(field("name", type_name) * parameters ^ -1 * result ^ -1)
local declaration = space * complete(declared * line_end)

-- The statement in a line; nil and how far the line could be read where it is none.
function grammar.statement(text)
  farthest = 1
  return statement:match(text), farthest
end

function grammar.declaration(text)
  return declaration:match(text) or error("not a declaration: " .. text)
end

local comment = P "'" + P "//"
local code = C((P '"' * (1 - P '"') ^ 0 * P '"' + (1 - comment)) ^ 0)

-- The lines of a listing without comments, those that " _" continues as one: {text = , line = }.
function grammar.lines(source)
  local lines, count, begun = {}, 0, nil
  for text in (source:gsub("\r\n?", "\n") .. "\n"):gmatch "(.-)\n" do
    count = count + 1
    text = code:match(text):gsub("^%s*[Rr][Ee][Mm]%f[^%w_].*", "")
    local continued = (" " .. text):match "^(.*%s)_%s*$"
    begun = begun or {text = "", line = count}
    begun.text = begun.text .. (continued or text)
    if begun.text:find "%S" and lines[#lines] ~= begun then lines[#lines + 1] = begun end
    if not continued then begun = nil end
  end
  return lines
end

return grammar
