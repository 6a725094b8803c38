-- Files in translated listings: enough to read a text.
local rows = require "listing.rows"
local text = require "listing.text"
local types = require "listing.types"

local L, row = rows.functions, rows.row
types.class "FolderItem"
types.class "TextInputStream"
types.class("IOException", "RuntimeException")

row("FolderItem.PathTypeShell As Integer", function() return 3 end, nil, {static = true, property = true})
row("GetFolderItem(path As String, pathType As Integer = 0) As FolderItem", function(path)
  return {class = "FolderItem", path = text.bytes(path)}
end)
row("TextInputStream.Open(file As FolderItem) As TextInputStream", function(item)
  local file = io.open(item.path, "rb")
  local whole = file and file:read "a"
  if file then file:close() end
  if not whole then L.raise(L.exception("IOException", "cannot read " .. item.path)) end
  return {class = "TextInputStream", whole = whole}
end, nil, {static = true})
row("TextInputStream.ReadAll(encoding As TextEncoding) As String", function(stream, encoding)
  local whole = stream.whole
  stream.whole = ""
  return L["DefineEncoding"](whole, encoding)
end)
row("TextInputStream.Close", function() end)
