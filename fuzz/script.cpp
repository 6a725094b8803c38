#include "fuzz/script.h"

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <iomanip>
#include <sstream>

#include "standin/encoding.h"

namespace fuzz {
namespace {

using standin::Kind;

std::string Quote(const std::string& bytes) {
  std::ostringstream out;
  out << '"' << std::hex << std::uppercase << std::setfill('0');
  for (const char byte : bytes) {
    const auto code = static_cast<unsigned char>(byte);
    if (std::isprint(code) != 0 && byte != '"' && byte != '\\') {
      out << byte;
    } else {
      out << "\\x" << std::setw(2) << int{code};
    }
  }
  out << '"';
  return out.str();
}

std::string LuaOfArray(const char* kind, const standin::Value& array) {
  if (array.IsNil()) return std::string("host.null(\"") + kind + "()\")";
  return std::string("host.") + kind + "array{n = " + std::to_string(array.Count()) +
         LuaOf(array.Elements()) + "}";
}

}  // namespace

bool PrintsLua() {
  static const bool prints = std::getenv("ZRK_FUZZ_LUA") != nullptr;
  return prints;
}

void PrintLua(const std::string& line) { std::fprintf(stderr, "%s\n", line.c_str()); }

std::string LuaOf(const standin::Value& value) {
  switch (value.kind()) {
    case Kind::kBoolean:
      return value.Boolean() ? "true" : "false";
    case Kind::kString:
      if (value.IsNil()) return "host.null(\"string\")";
      return "host.string(" + Quote(value.Bytes()) + ", \"" +
             standin::EncodingName(value.Encoding()) + "\")";
    case Kind::kMemoryBlock:
      return value.IsNil() ? "nil" : "host.memoryblock(" + Quote(value.Bytes()) + ")";
    case Kind::kStringArray:
      return LuaOfArray("string", value);
    case Kind::kVariantArray:
      return LuaOfArray("variant", value);
    default:
      return value.Describe();
  }
}

std::string LuaOf(const standin::Values& values) {
  std::string text;
  for (const standin::Value& value : values) text += ", " + LuaOf(value);
  return text;
}

std::string LuaOf(const standin::HostOptions& options) {
  std::ostringstream command;
  std::ostringstream rest;
  command << std::setprecision(7) << "-- zrkhost --host ";
  if (options.version) command << *options.version;
  if (!options.version) command << "none";
  if (!options.direct_storage) command << " --no-direct-storage";
  for (const auto& [service, fault] : options.faults) {
    if (fault.missing) command << " --without " << service;
    if (!fault.answers_null) continue;
    rest << "\n-- " << service << " answers null in call " << fault.only_call << " (0: always)";
  }
  if (!options.terminate_string_data) rest << "\n-- string data without a zero byte behind it";
  for (const std::string& name : options.unknown_classes) rest << "\n-- no class " << name;
  return command.str() + rest.str();
}

void Check(bool holds, std::string_view invariant) {
  if (holds) return;
  std::fprintf(stderr, "broken: %.*s\n", static_cast<int>(invariant.size()), invariant.data());
  std::abort();
}

}  // namespace fuzz
