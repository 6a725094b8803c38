#include "standin/class_info.h"

#include <algorithm>
#include <stdexcept>

#include "standin/object.h"

namespace standin {
namespace {

using zrk::HostWord;

const char* TextOf(HostWord word) {
  const auto* text = reinterpret_cast<const char*>(word);
  return text ? text : "";
}

zrk::HostFunction FunctionOf(HostWord word) { return reinterpret_cast<zrk::HostFunction>(word); }

bool IsField(zrk::HostFunction accessor) { return reinterpret_cast<HostWord>(accessor) == -1; }

// Calls `read` with the first word of each row; the old layout's rows lack some last words.
template <typename Read>
void ForRows(const void* table, HostWord count, std::size_t stride,
             const ClassInfo::Problem& problem, Read read) {
  const auto* row = static_cast<const HostWord*>(table);
  if (!row && count != 0) problem("registered a table that is null but has rows");
  for (HostWord i = 0; row && i < count; ++i, row += stride) {
    try {
      read(row);
    } catch (const std::invalid_argument& error) {
      problem(std::string("registered what cannot be read: ") + error.what());
    }
  }
}

bool Fits(const MethodDeclaration& declaration, const Values& arguments) {
  const auto& parameters = declaration.parameters;
  if (arguments.size() < declaration.Required() || arguments.size() > parameters.size()) {
    return false;
  }
  return std::ranges::equal(
      arguments.begin(), arguments.end(), parameters.begin(),
      parameters.begin() + static_cast<std::ptrdiff_t>(arguments.size()),
      [](const Value& value, const Parameter& parameter) { return Fits(parameter.type, value); });
}

// `Execute(string, boolean)`, as the caller wrote it.
std::string CallText(std::string_view name, const Values& arguments) {
  std::string text(name);
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    text += (i == 0 ? "(" : ", ") + std::string(KindName(arguments[i].kind()));
  }
  return text + (arguments.empty() ? "()" : ")");
}

std::string DeclarationTexts(const std::vector<const Method*>& methods) {
  std::string text;
  for (const Method* method : methods) text += (text.empty() ? "" : "; ") + method->text;
  return text;
}

// The first row of this name, in any case, or null.
template <typename Row>
const Row* Find(const std::vector<Row>& rows, std::string_view name) {
  const auto found =
      std::ranges::find_if(rows, [&](const Member& row) { return SameName(row.name, name); });
  return found == rows.end() ? nullptr : &*found;
}

}  // namespace

bool Fits(const Type& type, const Value& value) {
  if (value.kind() == type.kind) return true;
  if (type.kind == Kind::kDouble) return value.kind() == Kind::kInteger;
  const bool plain = type.kind == Kind::kInteger || type.kind == Kind::kBoolean;
  return value.kind() == Kind::kNil && !plain;
}

bool Property::ReadsField() const { return IsField(getter); }
bool Property::WritesField() const { return IsField(setter); }

ClassInfo::ClassInfo(zrk::REALclassDefinition* definition, std::size_t instance_offset,
                     const Problem& problem)
    : definition_(definition), name_(definition->Name ? definition->Name : "") {
  definition->DataOffset = static_cast<HostWord>(instance_offset);
  if (name_.empty()) problem("registered a class without a name");
  if (definition->DataSize < 0) problem("registered a class with a negative data size");
  ReadProperties(problem);
  ReadMethods(problem);
  ReadConstants(problem);
}

const HostWord* ClassInfo::words() const { return reinterpret_cast<const HostWord*>(definition_); }

void ClassInfo::ReadProperties(const Problem& problem) {
  const auto read = [this](const HostWord* row) {
    const std::string name = TextOf(row[1]);
    if (name.empty()) throw std::invalid_argument("a property without a name");
    const Type type = ParseType(TextOf(row[2]));
    properties_.push_back({{name, name + " as " + type.name},
                           TextOf(row[0]),
                           type,
                           row[3],
                           FunctionOf(row[4]),
                           FunctionOf(row[5]),
                           row[6]});
  };
  ForRows(definition_->Properties, definition_->PropertyCount, property_words(), problem, read);
}

void ClassInfo::ReadMethods(const Problem& problem) {
  const auto read = [this](const HostWord* row) {
    const MethodDeclaration declaration = ParseMethod(TextOf(row[2]));
    methods_.push_back(
        {{declaration.name, TextOf(row[2])}, declaration, FunctionOf(row[0]), row[3]});
  };
  ForRows(definition_->Methods, definition_->MethodCount, method_words(), problem, read);
}

void ClassInfo::ReadConstants(const Problem& problem) {
  const auto read = [this](const HostWord* row) {
    const ConstantDeclaration declaration = ParseConstant(TextOf(row[0]));
    constants_.push_back({{declaration.name, TextOf(row[0])}, declaration});
  };
  ForRows(definition_->Constants, definition_->ConstantCount, constant_words(), problem, read);
}

const Property* ClassInfo::FindProperty(std::string_view name) const {
  return Find(properties_, name);
}

const Constant* ClassInfo::FindConstant(std::string_view name) const {
  return Find(constants_, name);
}

std::vector<const Method*> ClassInfo::FindMethods(std::string_view name) const {
  std::vector<const Method*> found;
  for (const Method& method : methods_) {
    if (SameName(method.name, name)) found.push_back(&method);
  }
  return found;
}

const Method& ClassInfo::Choose(std::string_view name, const Values& arguments) const {
  const std::vector<const Method*> methods = FindMethods(name);
  if (methods.empty()) throw CallError(name_ + " has no method \"" + std::string(name) + "\"");
  const Method* chosen = nullptr;
  for (const Method* method : methods) {
    if (!Fits(method->declaration, arguments)) continue;
    if (chosen) {
      throw CallError(CallText(name, arguments) +
                      " fits more than one declaration: " + DeclarationTexts(methods));
    }
    chosen = method;
  }
  if (chosen) return *chosen;
  throw CallError(CallText(name, arguments) + " fits no declaration: " + DeclarationTexts(methods));
}

}  // namespace standin
