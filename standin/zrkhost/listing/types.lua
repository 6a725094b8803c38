-- The types of the host's language, by name: "Integer", "RegExZRK", "String()" for an array;
-- "Nil" is the type of Nil alone, "" that of what has no value.
local types = {}

local families = {Integer = "number", Double = "number", Boolean = "Boolean", String = "String",
                  Variant = "Variant", [""] = ""}
local names = {single = "Double", byte = "Integer", object = "Object"}
for name in pairs(families) do names[name:lower()] = name end
for _, bits in ipairs {"8", "16", "32", "64"} do
  names["int" .. bits], names["uint" .. bits] = "Integer", "Integer"
end
names[""] = nil
local parents = {}

-- Makes a class known.
function types.class(name, parent)
  names[name:lower()], parents[name] = name, parent or "Object"
end

-- The type as it is spelled here; nil for one that nobody knows.
function types.named(name, array)
  local known = names[name:lower()]
  return known and array and known .. "()" or known
end

function types.element(type) return type:match "^(.+)%(%)$" end
-- "number", "String", "Boolean", "Variant", "array", "object" (Nil is one), "".
function types.family(type) return families[type] or types.element(type) and "array" or "object" end
function types.number(type) return types.family(type) == "number" end
function types.object(type) return types.family(type) == "object" end
function types.parent(type) return parents[type] end

-- Whether an object of class `name` is one of `class`, too.
function types.isa(name, class)
  while name and name ~= class do name = parents[name] end
  return name ~= nil
end

-- "an Integer", for messages.
function types.article(type)
  if type == "" then return "nothing" end
  if type == "Nil" then return "Nil" end
  return (type:find "^[AEIO]" and "an " or "a ") .. type
end

-- Lua text for the value that a variable of this type starts with.
function types.initial(type)
  if types.element(type) then return "L.array()" end
  return ({Integer = "0", Double = "0.0", Boolean = "false", String = '""'})[type] or "nil"
end

local conversions = {
  ["Integer Double"] = {"(%s + 0.0)", 1},
  ["Double Integer"] = {"L.whole(%s)", 2},
  ["MemoryBlock String"] = {"L.block_text(%s)", 2},
  ["String MemoryBlock"] = {"L.text_block(%s)", 2},
}

-- Lua text for a value of type `from` as one of `to`, and what that costs: 0 for nothing; nil where
-- the host's compiler refuses.
function types.convert(code, from, to)
  if from == to then return code, 0 end
  local conversion = conversions[from .. " " .. to]
  if conversion then return conversion[1]:format(code), conversion[2] end
  if from == "" or to == "" then return nil end
  if to == "Variant" then return code, 3 end
  if from == "Variant" then return ("L.cast(%s, %q)"):format(code, to), 4 end
  local fits = types.object(from) and types.object(to) and (from == "Nil" or types.isa(from, to))
  return fits and code or nil, 1
end

return types
