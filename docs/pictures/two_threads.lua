-- A search on the host's thread and on a worker, over time. Nothing here is measured.
local Sheet = ...
local sheet = Sheet.new("With Execute the host's thread is taken by the search. With ExecuteMT a worker searches, " ..
                        "and the host's thread goes on with windows and other threads until the result is there.")

-- Bars of a lane: from and to on a scale of 100, what they are, what stands in them.
local panels = {
  { "Execute", {
    { "host's thread", { 0, 21, "cell", "your code" }, { 21, 79, "first", "the search" }, { 79, 100, "cell", "your code" } },
  }, "Windows and other threads stand still meanwhile." },
  { "ExecuteMT", {
    { "host's thread", { 0, 21, "cell", "your code" }, { 21, 79, "second", "windows, other threads" },
      { 79, 100, "cell", "your code" } },
    { "worker", { 21, 78, "first", "the search" } },
  }, "Your line goes on when the search has ended." },
}

local left, wide, y = 10, 320, 20
for _, panel in ipairs(panels) do
  local name, lanes, remark = table.unpack(panel)
  sheet:text(left, y, name, "code")
  y = y + 8
  for _, lane in ipairs(lanes) do
    sheet:text(left, y + 12, lane[1], "small")
    y = y + 17
    for i = 2, #lane do
      local from, to, class, words = table.unpack(lane[i])
      sheet:cell(left + from * wide / 100, y, (to - from) * wide / 100, words, class)
    end
    y = y + 26
  end
  sheet:text(left, y + 10, remark, "small")
  y = y + 46
end

sheet:line { left, y - 22, left + wide, y - 22 }
sheet:line { left + wide - 6, y - 26, left + wide, y - 22, left + wide - 6, y - 18 }
sheet:text(left + wide, y - 5, "time", "small end")
return sheet
