#include "fuzz/script.h"

#include <array>
#include <cstdio>
#include <cstdlib>

#include "standin/encoding.h"

namespace fuzz {
namespace {

using standin::Kind;

std::string Quote(const std::string& bytes) {
  std::string out = "\"";
  for (const char byte : bytes) {
    const bool plain = byte >= ' ' && byte <= '~' && byte != '"' && byte != '\\';
    std::array<char, 8> text{byte};
    if (!plain)
      std::snprintf(text.data(), text.size(), "\\x%02X", static_cast<unsigned char>(byte));
    out += text.data();
  }
  return out + "\"";
}

std::string LuaOfNil(Kind kind) {
  switch (kind) {
    case Kind::kString:
      return "host.null(\"string\")";
    case Kind::kStringArray:
      return "host.null(\"string()\")";
    case Kind::kVariantArray:
      return "host.null(\"variant()\")";
    default:
      return "nil";
  }
}

std::string LuaOfString(const standin::Value& value) {
  const std::string bytes = Quote(value.Bytes());
  if (value.Encoding() == zrk::kEncodingUTF8) return bytes;
  return "host.string(" + bytes + ", \"" + standin::EncodingName(value.Encoding()) + "\")";
}

std::string LuaOfArray(const standin::Value& value) {
  const standin::Values elements = value.Elements();
  return "{n = " + std::to_string(elements.size()) + (elements.empty() ? "" : ", ") +
         LuaOf(elements) + "}";
}

}  // namespace

bool PrintsLua() {
  static const bool prints = std::getenv("ZRK_FUZZ_LUA") != nullptr;
  return prints;
}

void PrintLua(const std::string& line) { std::fprintf(stderr, "%s\n", line.c_str()); }

std::string LuaOf(const standin::Value& value) {
  if (value.IsNil()) return LuaOfNil(value.kind());
  switch (value.kind()) {
    case Kind::kInteger:
      return std::to_string(value.Integer());
    case Kind::kBoolean:
      return value.Boolean() ? "true" : "false";
    case Kind::kDouble:
      return std::to_string(value.Double());
    case Kind::kString:
      return LuaOfString(value);
    case Kind::kMemoryBlock:
      return "host.memoryblock(" + Quote(value.Bytes()) + ")";
    case Kind::kStringArray:
      return "host.stringarray" + LuaOfArray(value);
    case Kind::kVariantArray:
      return "host.variantarray" + LuaOfArray(value);
    default:
      return value.Describe();
  }
}

std::string LuaOf(const standin::Values& values) {
  std::string text;
  for (const standin::Value& value : values) text += (text.empty() ? "" : ", ") + LuaOf(value);
  return text;
}

std::string LuaOf(const standin::HostOptions& options) {
  std::array<char, 16> version{"none"};
  if (options.version) std::snprintf(version.data(), version.size(), "%.7g", *options.version);
  std::string command = "-- zrkhost --host " + std::string(version.data());
  std::string rest;
  for (const auto& [service, fault] : options.faults) {
    if (fault.missing) command += " --without " + service;
    if (fault.answers_null) {
      rest += "\n-- " + service + " answers null in call " + std::to_string(fault.only_call) +
              " (0: always)";
    }
  }
  if (!options.direct_storage) command += " --no-direct-storage";
  if (!options.terminate_string_data) rest += "\n-- string data without a zero byte behind it";
  for (const std::string& name : options.unknown_classes) rest += "\n-- no class " + name;
  return command + rest;
}

void Check(bool holds, std::string_view invariant) {
  if (holds) return;
  std::fprintf(stderr, "broken: %.*s\n", static_cast<int>(invariant.size()), invariant.data());
  std::abort();
}

}  // namespace fuzz
