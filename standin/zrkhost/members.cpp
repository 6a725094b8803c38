#include "standin/zrkhost/members.h"

#include <algorithm>
#include <numeric>
#include <utility>
#include <vector>

namespace standin::zrkhost {
namespace {

// How many letters have to be put in, left out or changed to make one word the other.
std::size_t Distance(std::string_view one, std::string_view other) {
  std::vector<std::size_t> row(other.size() + 1);
  std::iota(row.begin(), row.end(), 0U);
  for (std::size_t i = 0; i < one.size(); ++i) {
    std::size_t diagonal = row[0]++;
    for (std::size_t j = 0; j < other.size(); ++j) {
      const std::size_t changed = diagonal + (one[i] == other[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({changed, diagonal + 1, row[j] + 1});
    }
  }
  return row.back();
}

// One slip in five letters, or one name in a not much longer one.
bool Alike(std::string_view one, std::string_view other) {
  const std::string shorter = Folded(one.size() < other.size() ? one : other);
  const std::string longer = Folded(one.size() < other.size() ? other : one);
  const bool contained = longer.find(shorter) != std::string::npos;
  return (contained && shorter.size() * 2 >= longer.size()) ||
         Distance(shorter, longer) <= 1 + longer.size() / 5;
}

using Texts = std::vector<std::string>;

Texts MembersLike(const ClassInfo& info, std::string_view name) {
  Texts texts;
  for (const Method& method : info.methods()) {
    if (Alike(method.declaration.name, name)) texts.push_back(method.text);
  }
  for (const Property& property : info.properties()) {
    if (Alike(property.name, name)) texts.push_back(PropertyText(property));
  }
  for (const Constant& constant : info.constants()) {
    if (Alike(constant.declaration.name, name)) texts.push_back(constant.text);
  }
  return texts;
}

Texts MethodsAndProperties(const ClassInfo& info) {
  Texts names;
  for (const Method& method : info.methods()) {
    const std::string& name = method.declaration.name;
    if (std::ranges::find(names, name) == names.end()) names.push_back(name);
  }
  for (const Property& property : info.properties()) names.push_back(property.name);
  return names;
}

// Names with commas between them, in lines of some width.
std::string Listed(const Texts& names) {
  constexpr std::size_t kWidth = 78;
  std::string text;
  std::string line = "\n ";
  for (const std::string& name : names) {
    if (line.size() + name.size() > kWidth) text += std::exchange(line, "\n ");
    line += " " + name + (&name == &names.back() ? "" : ",");
  }
  return text + line;
}

}  // namespace

std::string PropertyText(const Property& property) {
  return property.name + " as " + property.type.name;
}

const char* AccessText(const Property& property) {
  return property.setter ? "read and write" : "read only";
}

std::string NoMemberText(const ClassInfo& info, std::string_view name) {
  const Texts texts = MembersLike(info, name);
  std::string text = info.name() + " has no \"" + std::string(name) + "\"; it has:";
  if (texts.empty()) return text + Listed(MethodsAndProperties(info));
  for (const std::string& member : texts) text += "\n  " + member;
  return text;
}

}  // namespace standin::zrkhost
