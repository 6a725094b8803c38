-- Patterns over binary data in a memory block: here the parts of a small PNG file.
-- What you learn: bytes instead of UTF-8, ByteOffset and ByteLength, and why bytes are read from
-- the block at Offset: a Substring is text and ends at the first zero byte.

local function part(kind, data)
  return string.pack(">I4c4", #data, kind) .. data .. string.pack(">I4", 0xAB12CD34)
end

local file = "\x89PNG\r\n\x1A\n"
  .. part("IHDR", string.pack(">I4I4I1I1I1I1I1", 640, 480, 8, 2, 0, 0, 0))
  .. part("tEXt", "Title\0Sunrise in M\xFCnchen")
  .. part("tEXt", "Author\0N. N.")
  .. part("IEND", "")
local block = host.memoryblock(file)

local re <close> = RegExZRK.new()
re.CompileOptionUTF8 = false  -- the bytes are no UTF-8 and shall not be taken for it
re.CompileOptionDotAll = true  -- a dot is any byte, a line feed as well
assert(re:Compile("(....)(IHDR|tEXt|IEND)"))

local position = 0
while re:ExecuteMemory(block, position) > 0 do
  local at = re:Offset(2)
  local size = string.unpack(">I4", block:read(at, 4))
  local data = block:read(re:Offset(5), size)
  local shown = data:gsub("[^\x20-\x7E]", ".")
  print(("byte %3d  %s  %2d bytes  %s"):format(at, re:Substring(2), size, shown))
  position = re:Offset(5) + size
end

-- Only bytes 8 to 32: the length counts from the block's start, like every offset.
print("a title in the header part:", re:Compile("Title") and re:ExecuteMemory(block, 8, 33) > 0)
print("a title in the file:", re:ExecuteMemory(block) > 0, "at byte", re:Offset(0))

-- Changing the block in place, where the match is.
block:write(re:Offset(0), "TITLE")
print("old title:", re:ExecuteMemory(block) > 0)

-- A pattern may lie in a block as well; a zero byte ends it.
local patterns = host.memoryblock("Title\0TITLE\0")
print("pattern at byte 6:", re:CompileMemory(patterns, 6), re:ExecuteMemory(block) > 0)
