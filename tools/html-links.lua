-- A pandoc filter: a link to a page's Markdown file becomes a link to its HTML.
function Link(link)
  if not link.target:match("^%a+:") then
    link.target = link.target:gsub("%.md$", ".html"):gsub("%.md#", ".html#")
  end
  return link
end
