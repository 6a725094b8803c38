// A class as the library registered it, in either layout.
#ifndef ZRK_STANDIN_CLASS_INFO_H
#define ZRK_STANDIN_CLASS_INFO_H

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "host/records.h"
#include "standin/declaration.h"

namespace standin {

// Whether a value may be passed where the type stands; a nil without kind fits every reference.
bool Fits(const Type& type, const Value& value);

struct Member {
  std::string name;
  std::string text;  // the declaration as registered; of a property `Count as Integer`
};

struct Property : Member {
  std::string group;
  Type type;
  zrk::HostWord flags = 0;
  zrk::HostFunction getter = nullptr;
  zrk::HostFunction setter = nullptr;
  zrk::HostWord parameter = 0;

  // Read or written by the host itself, `parameter` bytes into the instance record.
  bool ReadsField() const;
  bool WritesField() const;
};

struct Method : Member {
  MethodDeclaration declaration;
  zrk::HostFunction function = nullptr;
  zrk::HostWord flags = 0;
};

struct Constant : Member {
  ConstantDeclaration declaration;
};

class ClassInfo {
 public:
  using Problem = std::function<void(const std::string&)>;

  // Reads the definition, which must stay where it is, and writes the instance offset into it.
  // What cannot be read is left out and handed to `problem`, one sentence each.
  ClassInfo(zrk::REALclassDefinition* definition, std::size_t instance_offset,
            const Problem& problem);

  const std::string& name() const { return name_; }
  // 9 is the old layout; 10 and above the current one.
  zrk::HostWord version() const { return definition_->Version; }
  bool old_layout() const { return version() < 10; }
  // The instance record's size in bytes, and where it starts in an object.
  std::size_t data_size() const { return static_cast<std::size_t>(definition_->DataSize); }
  std::size_t data_offset() const { return static_cast<std::size_t>(definition_->DataOffset); }
  // The definition itself, for tests that look at the registered words.
  const zrk::REALclassDefinition& definition() const { return *definition_; }
  const zrk::HostWord* words() const;
  // Words from one row to the next in the registered tables.
  std::size_t property_words() const { return old_layout() ? 10 : 12; }
  std::size_t method_words() const { return old_layout() ? 4 : 6; }
  std::size_t constant_words() const { return old_layout() ? 3 : 5; }

  // In the order of registration.
  const std::vector<Property>& properties() const { return properties_; }
  const std::vector<Method>& methods() const { return methods_; }
  const std::vector<Constant>& constants() const { return constants_; }

  // By name, in any case; null or empty where there is none.
  const Property* FindProperty(std::string_view name) const;
  const Constant* FindConstant(std::string_view name) const;
  std::vector<const Method*> FindMethods(std::string_view name) const;

  // The declaration that these arguments fit. Throws CallError, naming the declarations that
  // exist, where none or more than one does.
  const Method& Choose(std::string_view name, const Values& arguments) const;

 private:
  void ReadProperties(const Problem& problem);
  void ReadMethods(const Problem& problem);
  void ReadConstants(const Problem& problem);

  zrk::REALclassDefinition* definition_;
  std::string name_;
  std::vector<Property> properties_;
  std::vector<Method> methods_;
  std::vector<Constant> constants_;
};

}  // namespace standin

#endif  // ZRK_STANDIN_CLASS_INFO_H
