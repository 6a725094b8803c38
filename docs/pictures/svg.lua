-- A sheet to draw on, 340 units wide so that its words can be read on a narrow screen, and its SVG.
-- Colours are classes: each has one colour for a light page and one for a dark page.
local style = [[
text { font: 12px "DejaVu Sans", Verdana, Arial, sans-serif; fill: #1d2733 }
.code { font-family: "DejaVu Sans Mono", Consolas, Menlo, monospace }
.small { font-size: 10.5px; fill: #55606c }
.middle { text-anchor: middle } .end { text-anchor: end }
.paper { fill: #fff } .cell { fill: #f4f6f8; stroke: #9aa7b4 } .quiet { fill: #e6eaef; stroke: #9aa7b4 }
.first { fill: #cfe3fa; stroke: #0b57a4 } .second { fill: #fbdcc4; stroke: #9a3412 }
.line { fill: none; stroke: #7a8794; stroke-width: 0.7 }
.first-line { fill: none; stroke: #0b57a4; stroke-width: 2 } .second-line { fill: none; stroke: #9a3412; stroke-width: 2 }
@media (prefers-color-scheme: dark) {
text { fill: #dbe2e9 } .small { fill: #9aa7b4 }
.paper { fill: #14191f } .cell { fill: #1d242c; stroke: #5b6874 } .quiet { fill: #2a333d; stroke: #5b6874 }
.first { fill: #173a5e; stroke: #82baf6 } .second { fill: #55301a; stroke: #f0a878 }
.first-line { stroke: #82baf6 } .second-line { stroke: #f0a878 }
}
]]

local function escaped(text)
  return (text:gsub("[&<>]", { ["&"] = "&amp;", ["<"] = "&lt;", [">"] = "&gt;" }))
end

local Sheet = {}
Sheet.__index = Sheet

-- title says in a sentence what is to be seen, for those who cannot.
function Sheet.new(title)
  return setmetatable({ title = title, parts = {}, height = 0 }, Sheet)
end

local function add(sheet, bottom, form, ...)
  table.insert(sheet.parts, form:format(...))
  sheet.height = math.max(sheet.height, bottom)
end

-- x, y are the left end of the base line, or its middle or right end by the class.
function Sheet:text(x, y, text, class)
  add(self, y + 4, '<text x="%g" y="%g" class="%s">%s</text>', x, y, class or "", escaped(text))
end

function Sheet:box(x, y, width, height, class)
  add(self, y + height, '<rect x="%g" y="%g" width="%g" height="%g" class="%s"/>', x, y, width, height, class)
end

function Sheet:line(points, class)
  local bottom, written = 0, {}
  for i = 1, #points, 2 do
    bottom = math.max(bottom, points[i + 1])
    table.insert(written, ("%.5g,%.5g"):format(points[i], points[i + 1]))
  end
  add(self, bottom, '<polyline points="%s" class="%s"/>', table.concat(written, " "), class or "line")
end

-- A box with a text in its middle.
function Sheet:cell(x, y, width, text, class, text_class)
  self:box(x, y, width, 20, class or "cell")
  self:text(x + width / 2, y + 14, text, "middle " .. (text_class or ""))
end

function Sheet:svg()
  local height = self.height + 10
  return ('<svg xmlns="http://www.w3.org/2000/svg" width="340" height="%g" viewBox="0 0 340 %g" role="img">\n')
         :format(height, height) ..
         ("<title>%s</title>\n<style>\n%s</style>\n"):format(escaped(self.title), style) ..
         ('<rect width="340" height="%g" class="paper"/>\n'):format(height) ..
         table.concat(self.parts, "\n") .. "\n</svg>\n"
end

return Sheet
