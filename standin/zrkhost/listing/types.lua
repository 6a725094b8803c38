-- The types of the host's language as names: "Integer", "String", "RegExZRK", "String()" for an array;
-- "Nil" is the type of Nil alone, "" of what has no value.
local types = {}

local names = {
  integer = "Integer", int8 = "Integer", int16 = "Integer", int32 = "Integer", int64 = "Integer",
  uint8 = "Integer", uint16 = "Integer", uint32 = "Integer", uint64 = "Integer", byte = "Integer",
  double = "Double", single = "Double", boolean = "Boolean", string = "String", variant = "Variant",
}
local parents = {}
local plain = {Integer = true, Double = true, Boolean = true, String = true, Variant = true}

-- A class that listings may name.
function types.class(name, parent)
  names[name:lower()] = name
  parents[name] = parent or "Object"
end

-- The type as it is spelled here; nil for one that nobody knows.
function types.named(name, array)
  local known = names[name:lower()]
  return known and array and known .. "()" or known
end

function types.element(type) return type:match "^(.+)%(%)$" end
function types.number(type) return type == "Integer" or type == "Double" end
function types.object(type) return not plain[type] and not types.element(type) and type ~= "" end
function types.parent(type) return parents[type] end

-- Whether an object of class `name` is one of `class`, too.
function types.isa(name, class)
  while name and name ~= class do name = parents[name] end
  return name ~= nil
end

-- Lua text for the value that a variable of this type starts with.
function types.initial(type)
  if types.element(type) then return "L.array()" end
  return ({Integer = "0", Double = "0.0", Boolean = "false", String = '""'})[type] or "nil"
end

-- Lua text for a value of type `from` as one of `to`, and what that costs: 0 for nothing; nil where
-- the host's compiler refuses.
function types.convert(code, from, to)
  if from == to then return code, 0 end
  if from == "" then return nil end
  if to == "Variant" then return code, 3 end
  if from == "Variant" then return ("L.cast(%s, %q)"):format(code, to), 4 end
  if from == "Nil" then return types.object(to) and code or nil, 1 end
  if types.object(from) and types.object(to) and types.isa(from, to) then return code, 1 end
  if from == "Integer" and to == "Double" then return ("(%s + 0.0)"):format(code), 1 end
  if from == "Double" and to == "Integer" then return ("L.whole(%s)"):format(code), 2 end
  if from == "MemoryBlock" and to == "String" then return ("L.block_text(%s)"):format(code), 2 end
  if from == "String" and to == "MemoryBlock" then return ("L.text_block(%s)"):format(code), 2 end
  return nil
end

return types
