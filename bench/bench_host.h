// A host that costs next to nothing: it loads the library, keeps plain reference counts, answers
// the library's services with a few instructions each, and calls the registered functions directly.
// It keeps no accounts and forgives nothing; what it measures is the library.
//
//   bench::Start(2017.0);
//   bench::String text("to be, or not to be");
//   bench::RegEx regex("(\\w+) be");
//   regex.execute(text.get(), 0);   // 2
//   regex.offset(1);                // 5
#ifndef ZRK_BENCH_BENCH_HOST_H
#define ZRK_BENCH_BENCH_HOST_H

#include <pcre.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/records.h"

namespace bench {

using zrk::HostBoolean;
using zrk::HostInteger;
using zrk::REALmemoryBlockStruct;
using zrk::REALobjectStruct;
using zrk::REALstringStruct;

// Loads the library as a host of that version. Once per process; ends it where that fails.
void Start(double version);

// Ends the process with a message: nothing that was measured afterwards would mean anything.
[[noreturn]] void Fail(const std::string& message);

// One reference to a UTF-8 host string, which is never null.
class String {
 public:
  explicit String(std::string_view text);
  // Reads a file straight into the string, so that no other copy of it was ever in memory.
  static String FromFile(const std::string& path);
  // Takes over the reference that a method returned; null becomes the empty string.
  static String Adopt(REALstringStruct* string);
  ~String();
  String(String&& other) noexcept : string_(std::exchange(other.string_, nullptr)) {}
  String& operator=(String&&) = delete;

  REALstringStruct* get() const { return string_; }
  std::string_view view() const;
  const char* data() const { return view().data(); }
  int length() const { return string_->Length; }

 private:
  explicit String(REALstringStruct* string) : string_(string) {}

  REALstringStruct* string_;
};

// Gives back a reference that a method returned; null is none.
void Unlock(REALstringStruct* string);

// A host array of strings.
struct Array {
  zrk::_REALarrayString record{};  // what the library reads on older hosts
  std::vector<REALstringStruct*> elements = {};

  Array() = default;
  Array(Array&&) = default;
  Array& operator=(Array&&) = delete;
  ~Array();
  // Takes a reference of its own.
  void Append(REALstringStruct* string);
  zrk::_REALarrayString* handle() { return &record; }
};

// A memory block over bytes that somebody else keeps.
struct MemoryBlock {
  REALmemoryBlockStruct record;
  std::int32_t references = 1;

  explicit MemoryBlock(const String& bytes);
  REALmemoryBlockStruct* handle() { return &record; }
};

zrk::HostFunction FindMethod(const char* declaration);

// A method of one object, called through the function that stands in the registered table.
template <typename Signature>
class Method;

template <typename Result, typename... Arguments>
class Method<Result(Arguments...)> {
 public:
  Method(REALobjectStruct* const& object, const char* declaration)
      : object_(object), function_(reinterpret_cast<Function>(FindMethod(declaration))) {}
  Result operator()(Arguments... arguments) const { return function_(object_, arguments...); }

 private:
  using Function = Result (*)(REALobjectStruct*, Arguments...);

  REALobjectStruct* object_;
  Function function_;
};

// Greedy UTF-8 patterns, and what both sides tell the engine when they match.
inline constexpr int kCompileOptions = PCRE_UTF8 | PCRE_NO_UTF8_CHECK;
inline constexpr int kExecuteOptions = PCRE_NO_UTF8_CHECK;
inline constexpr int kVectorSize = 51;

// An object of the class with a compiled pattern. Its fields call its methods.
class RegEx {
 public:
  explicit RegEx(const char* pattern, int compile_options = kCompileOptions);
  ~RegEx();
  RegEx(const RegEx&) = delete;
  RegEx& operator=(const RegEx&) = delete;

 private:
  REALobjectStruct* object_;

 public:
  using Block = REALmemoryBlockStruct*;
  using Text = REALstringStruct*;
  using Texts = zrk::_REALarrayString*;

  // clang-format off
  const Method<HostInteger(Text, HostInteger)> execute{object_, "Execute(text as string, start as integer = 0) as integer"};
  const Method<HostInteger(HostInteger)> execute_again{object_, "Execute(start as integer = 0) as integer"};
  const Method<HostInteger(Block, HostInteger, HostInteger)> execute_memory{object_, "ExecuteMemory(text as memoryblock, ByteOffset as integer = 0, ByteLength as integer = 0) as integer"};
  const Method<HostInteger(Text, HostInteger)> execute_mt{object_, "ExecuteMT(text as string, start as integer = 0) as integer"};
  const Method<HostInteger(HostInteger)> offset{object_, "Offset(index as Integer) as integer"};
  const Method<HostInteger(HostInteger)> offset_characters{object_, "OffsetCharacters(index as Integer) as integer"};
  const Method<Text(HostInteger)> substring{object_, "Substring(index as integer) as string"};
  const Method<Text(Text)> substring_named{object_, "Substring(name as string) as string"};
  const Method<Text(Text, Text)> replace_all{object_, "ReplaceAll(Target as string, NewText as string = \"\") as string"};
  const Method<HostBoolean(Text)> match{object_, "Match(text as string) as boolean"};
  const Method<Texts(Texts, HostBoolean)> filter{object_, "Match(text() as string, inverse as boolean = false) as string()"};
  const Method<Text(Text)> escape{object_, "Escape(text as string) as string"};
  // clang-format on
};

// Gives back an array that a method returned.
void Unlock(zrk::_REALarrayString* array);

}  // namespace bench

#endif  // ZRK_BENCH_BENCH_HOST_H
