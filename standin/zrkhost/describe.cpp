#include "standin/zrkhost/describe.h"

#include <array>
#include <cstdio>
#include <utility>
#include <variant>
#include <vector>

#include "standin/zrkhost/members.h"

namespace standin::zrkhost {
namespace {

// A member as rows of words: the declaration comes first.
using Row = std::vector<std::string>;
using Rows = std::vector<Row>;

struct Section {
  const char* title;
  std::vector<const char*> columns;
  Rows rows;
};

std::vector<Section> SectionsOf(const ClassInfo& info) {
  Section methods{"Methods", {"Declaration"}, {}};
  for (const Method& method : info.methods()) methods.rows.push_back({method.text});
  Section properties{"Properties", {"Property", "Access"}, {}};
  for (const Property& property : info.properties()) {
    properties.rows.push_back({PropertyText(property), AccessText(property)});
  }
  Section constants{"Constants", {"Constant"}, {}};
  for (const Constant& constant : info.constants()) constants.rows.push_back({constant.text});
  return {std::move(methods), std::move(properties), std::move(constants)};
}

std::string Heading(const Section& section) {
  return std::string(section.title) + " (" + std::to_string(section.rows.size()) + ")\n";
}

std::string TextOf(const ClassInfo& info) {
  std::string text = "Class " + info.name() + "\n";
  for (const Section& section : SectionsOf(info)) {
    text += "\n" + Heading(section);
    for (const Row& row : section.rows) {
      text += "  " + row[0] + (row.size() > 1 ? ", " + row[1] : "") + "\n";
    }
  }
  return text;
}

std::string MarkdownOf(const ClassInfo& info) {
  std::string text = "# Class " + info.name() + "\n";
  for (const Section& section : SectionsOf(info)) {
    text += "\n## " + Heading(section) + "\n";
    std::string rule;
    for (const char* column : section.columns) {
      text += "| " + std::string(column) + " ";
      rule += "|---";
    }
    text += "|\n" + rule + "|\n";
    for (const Row& row : section.rows) {
      text += "| `" + row[0] + "` |" + (row.size() > 1 ? " " + row[1] + " |" : "") + "\n";
    }
  }
  return text;
}

std::string Quoted(std::string_view text) {
  std::string quoted = "\"";
  for (const char c : text) {
    std::array<char, 8> escape{};
    if (static_cast<unsigned char>(c) < 0x20) {
      std::snprintf(escape.data(), escape.size(), "\\u%04x", static_cast<unsigned>(c));
      quoted += escape.data();
    } else {
      if (c == '"' || c == '\\') quoted += '\\';
      quoted += c;
    }
  }
  return quoted + '"';
}

std::string JSONOf(const Literal& literal) {
  struct Writer {
    std::string operator()(std::monostate) const { return "null"; }
    std::string operator()(std::int32_t number) const { return std::to_string(number); }
    std::string operator()(bool truth) const { return truth ? "true" : "false"; }
    std::string operator()(const std::string& text) const { return Quoted(text); }
  };
  return std::visit(Writer(), literal);
}

using Fields = std::vector<std::pair<const char*, std::string>>;

std::string JSONOf(const Fields& fields) {
  std::string text;
  for (const auto& [name, value] : fields) {
    text += (text.empty() ? "{" : ", ") + Quoted(name) + ": " + value;
  }
  return text + "}";
}

// An array of what `write` makes of each item.
template <typename Items, typename Write>
std::string JSONArray(const Items& items, const char* separator, Write write) {
  std::string text;
  for (const auto& item : items) text += (text.empty() ? "" : separator) + write(item);
  return "[" + text + "]";
}

std::string JSONOf(const Parameter& parameter) {
  Fields fields = {{"name", Quoted(parameter.name)}, {"type", Quoted(parameter.type.name)}};
  if (parameter.fallback) fields.emplace_back("default", JSONOf(*parameter.fallback));
  return JSONOf(fields);
}

std::string JSONOf(const Method& method) {
  const MethodDeclaration& declaration = method.declaration;
  const Type& result = declaration.result;
  return JSONOf(Fields{
      {"name", Quoted(declaration.name)},
      {"parameters", JSONArray(declaration.parameters, ", ",
                               [](const Parameter& parameter) { return JSONOf(parameter); })},
      {"result", result.kind == Kind::kNil ? "null" : Quoted(result.name)},
      {"declaration", Quoted(method.text)}});
}

std::string JSONOf(const Property& property) {
  return JSONOf(Fields{{"name", Quoted(property.name)},
                       {"type", Quoted(property.type.name)},
                       {"writable", property.setter ? "true" : "false"}});
}

std::string JSONOf(const Constant& constant) {
  return JSONOf(Fields{{"name", Quoted(constant.declaration.name)},
                       {"value", JSONOf(constant.declaration.value)}});
}

std::string JSONOf(const ClassInfo& info) {
  const auto rows = [](const auto& members) {
    return JSONArray(members, ",\n  ", [](const auto& member) { return JSONOf(member); });
  };
  return JSONOf(Fields{{"class", Quoted(info.name())},
                       {"methods", rows(info.methods())},
                       {"properties", rows(info.properties())},
                       {"constants", rows(info.constants())}});
}

}  // namespace

std::optional<Format> FormatByName(std::string_view name) {
  if (name == "text") return Format::kText;
  if (name == "markdown") return Format::kMarkdown;
  if (name == "json") return Format::kJSON;
  return std::nullopt;
}

std::string Describe(const Host& host, Format format) {
  const auto& classes = host.classes();
  if (format == Format::kJSON) {
    return JSONArray(classes, ",\n", [](const auto& info) { return JSONOf(*info); }) + "\n";
  }
  std::string text;
  for (const auto& info : classes) {
    text += (text.empty() ? "" : "\n");
    text += format == Format::kText ? TextOf(*info) : MarkdownOf(*info);
  }
  return text;
}

}  // namespace standin::zrkhost
