// Declarations in the host's language, as a class registers them:
//
//   Match(text() as variant, inverse as boolean = false) as string()
//   Version as string
//   ErrorPlugin = -99
#ifndef ZRK_STANDIN_DECLARATION_H
#define ZRK_STANDIN_DECLARATION_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "standin/value.h"

namespace standin {

// A declared type. kNil is "no result"; kVariantArray stands for arrays of variants, and every
// name that is not built in for the class of an object.
struct Type {
  Kind kind = Kind::kNil;
  std::string name;  // as declared, with "()" after an array's
};

// A literal of the host's language: nil, number, boolean or text. Not a Value, because reading a
// declaration must not build host strings.
using Literal = std::variant<std::monostate, std::int32_t, bool, std::string>;

struct Parameter {
  std::string name;
  Type type;
  std::optional<Literal> fallback;
};

struct MethodDeclaration {
  std::string name;
  std::vector<Parameter> parameters;
  Type result;
  // How many arguments a call has to give at least.
  std::size_t Required() const;
};

struct ConstantDeclaration {
  std::string name;
  Literal value;
};

// Each throws std::invalid_argument with one sentence that quotes a text it cannot read.
MethodDeclaration ParseMethod(std::string_view text);
ConstantDeclaration ParseConstant(std::string_view text);
// `name` as a property row has it, such as "Memoryblock"; with "()" behind it an array's.
Type ParseType(std::string_view name);

// The host's language does not tell upper from lower case in names (ASCII).
std::string Folded(std::string_view name);
bool SameName(std::string_view one, std::string_view other);

}  // namespace standin

#endif  // ZRK_STANDIN_DECLARATION_H
