// Instances of a registered class, used the way a program of the host's language uses them.
#ifndef ZRK_STANDIN_OBJECT_H
#define ZRK_STANDIN_OBJECT_H

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "standin/class_info.h"
#include "standin/value.h"

namespace standin {

// An exception that the library raised in the host.
struct HostError {
  std::string class_name;
  std::string message;
  std::int32_t number = 0;
};

// The same as a C++ exception; what() is "OutOfBoundsException: message".
class HostException : public std::runtime_error {
 public:
  explicit HostException(HostError error)
      : std::runtime_error(error.class_name + ": " + error.message), error_(std::move(error)) {}
  const HostError& error() const { return error_; }

 private:
  HostError error_;
};

// A call that the host's compiler would refuse: no such member, or arguments that fit nothing.
class CallError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// What a call came to: the method's result, also where it raised, and what it raised, in order.
struct Outcome {
  Value value;
  std::vector<HostError> errors;
  const Method* method = nullptr;
};

// A handle that holds one reference; the object's destructor runs when the last one goes.
class Object {
 public:
  // `value` must be a living object of a registered class; throws CallError otherwise.
  explicit Object(Value value);

  // Calls a method by name; overloads and defaults are resolved from the declarations. A null
  // string result is a nil of kind kString. Call throws HostException where the library raised
  // (the first of several); TryCall answers both the result and what was raised. Both throw
  // CallError for a wrong call.
  Value Call(std::string_view method, const Values& arguments = {}) const;
  Outcome TryCall(std::string_view method, const Values& arguments = {}) const;

  // Properties, through the accessor or from the field; the same exceptions as Call. A String or
  // Memoryblock that comes out of a field carries a reference of the host's own.
  Value Get(std::string_view property) const;
  void Set(std::string_view property, const Value& value) const;

  const ClassInfo& class_info() const { return *class_; }
  const Value& value() const { return value_; }
  // The instance record, for tests that look at it.
  void* InstanceData() const;

 private:
  const Property& FindProperty(std::string_view name) const;

  Value value_;
  const ClassInfo* class_;
};

}  // namespace standin

#endif  // ZRK_STANDIN_OBJECT_H
