// Values as a program of the host's language holds them: the stand-in host's handles.
//
//   Value text = "a text";                        // a UTF-8 string of the current host
//   Value bytes = host.String("\xE4", zrk::kEncodingISOLatin1);
//   regex.Call("Execute", {text, 0}).Integer();
#ifndef ZRK_STANDIN_VALUE_H
#define ZRK_STANDIN_VALUE_H

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace standin {

// What a value is, and what a host keeps accounts of.
enum class Kind : unsigned char {
  kNil,
  kInteger,
  kBoolean,
  kDouble,
  kString,
  kMemoryBlock,
  kStringArray,
  kVariantArray,
  kObject,
  kStringData,
};

// The kind's name in reports, such as "string array".
const char* KindName(Kind kind);

// One reference of the host's side on a host string, memory block, array or object, common to all
// copies. It must end before its host does; one that is left over then does nothing.
class Reference {
 public:
  // Adds a reference of its own; null stays null.
  static Reference Share(void* handle);
  // Takes over a reference that the accounts already count for the host's side.
  static Reference Adopt(void* handle);
  void* handle() const { return handle_.get(); }

 private:
  std::shared_ptr<void> handle_;
};

// A nil, a plain value, or one reference to a host thing. A typed nil (Nil(Kind::kString), say)
// is passed as null and takes part in choosing an overload; Value() is a nil that fits every
// reference parameter.
class Value {
 public:
  Value() = default;
  Value(std::monostate) {}                                                // NOLINT: implicit
  Value(std::int32_t number) : kind_(Kind::kInteger), number_(number) {}  // NOLINT: implicit
  template <std::same_as<bool> B>
  Value(B truth) : kind_(Kind::kBoolean), number_(truth) {}        // NOLINT: implicit
  Value(double number) : kind_(Kind::kDouble), number_(number) {}  // NOLINT: implicit
  // These build a UTF-8 string in the current host; the bytes are not checked. Without a host they
  // throw std::logic_error.
  Value(std::string_view utf8);                                      // NOLINT: implicit
  Value(const char* utf8) : Value(std::string_view(utf8)) {}         // NOLINT: implicit
  Value(const std::string& utf8) : Value(std::string_view(utf8)) {}  // NOLINT: implicit
  Value(Kind kind, Reference reference);
  static Value Nil(Kind kind) { return Value(kind, Reference()); }

  Kind kind() const { return kind_; }
  // A number or a truth value.
  bool IsPlain() const;
  // True for every kind of nil: the handle is null and the value is no plain one.
  bool IsNil() const { return !IsPlain() && !handle(); }
  // The host's address of the thing, null for nil and plain values.
  void* handle() const { return reference_.handle(); }

  // The plain values; another kind answers 0 or false.
  std::int32_t Integer() const;
  bool Boolean() const { return kind_ == Kind::kBoolean && number_ != 0; }
  double Double() const { return number_; }

  // The bytes of a string (as they are stored) or memory block; nil is the empty string.
  std::string Bytes() const;
  // A string's bytes converted to UTF-8; a string of unknown encoding answers its bytes.
  std::string UTF8() const;
  // A string's encoding code; nil answers zrk::kEncodingUnknown.
  std::uint32_t Encoding() const;

  // Arrays: number of elements, one element (nil for a null one, or outside the array), all of
  // them. Variant elements come back as the values they hold.
  std::size_t Count() const;
  Value At(std::size_t index) const;
  std::vector<Value> Elements() const;

  // A new size for an array, in elements, or for a memory block, in bytes, which then moves.
  void Resize(std::size_t size);
  // What a memory block or a string says its size is from now on; its bytes stay where they are.
  void Claim(std::int32_t size);

  // For reports and traces: `string #3 "abc"`, `5`, `True`, `nil`.
  std::string Describe() const;

 private:
  Kind kind_ = Kind::kNil;
  double number_ = 0;
  Reference reference_;
};

using Values = std::vector<Value>;

}  // namespace standin

#endif  // ZRK_STANDIN_VALUE_H
