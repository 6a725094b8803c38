#include "fuzz/values.h"

#include <cstdint>
#include <string>

#include "standin/encoding.h"

namespace fuzz {
namespace {

using namespace zrk;  // for the names of encodings, and one code that is none
constexpr std::uint32_t kOtherEncodings[] = {
    kEncodingASCII,         kEncodingUTF16,    kEncodingUTF32,   kEncodingISOLatin1,
    kEncodingWindowsLatin1, kEncodingMacRoman, kEncodingUnknown, 0x0B0B0B0B};

// Round numbers of the class's own and the ends of the host's integers.
constexpr std::int32_t kIntegers[] = {0, 1, 2, 3, -1, 16, 17, 50, 51, 999, INT32_MAX, INT32_MIN};

constexpr std::size_t kMostBytes = 64;
constexpr std::size_t kRepeats[] = {1, 1, 1, 1, 1, 2, 5, 12};

std::uint32_t AnyEncoding(Input& input) {
  return input.Truth() ? std::uint32_t{kEncodingUTF8} : input.Pick(kOtherEncodings);
}

Value AnyArray(Input& input, standin::Host& host, Kind kind) {
  constexpr Kind kElements[] = {Kind::kString, Kind::kInteger, Kind::kBoolean, Kind::kDouble};
  Values elements;
  for (unsigned count = input.Below(5); count > 0; --count) {
    const bool texts = kind == Kind::kStringArray;
    elements.push_back(AnyValue(input, host, texts ? Kind::kString : input.Pick(kElements)));
  }
  return kind == Kind::kStringArray ? host.StringArray(elements) : host.VariantArray(elements);
}

Value AnyMemoryBlock(Input& input, standin::Host& host) {
  const unsigned choice = input.Below(16);
  if (choice == 0) return Value::Nil(Kind::kMemoryBlock);
  if (choice == 1) return host.MemoryBlockWithoutData(static_cast<std::int32_t>(input.Byte()) - 9);
  if (choice == 2) return host.MemoryBlockClaiming(AnyText(input), -1);
  return host.MemoryBlock(AnyText(input));
}

}  // namespace

std::string AnyText(Input& input) {
  const std::string text = input.Bytes(kMostBytes);
  std::string repeated;
  for (std::size_t i = input.Pick(kRepeats); i > 0; --i) repeated += text;
  return repeated;
}

Value AnyString(Input& input, standin::Host& host) {
  if (input.Below(16) == 15) return Value::Nil(Kind::kString);
  const std::uint32_t encoding = AnyEncoding(input);
  return host.String(AnyText(input), encoding);
}

Value AnyPattern(Input& input, standin::Host& host) {
  const std::uint32_t encoding = AnyEncoding(input);
  const auto begin = standin::ConvertText(kBounded, kEncodingUTF8, encoding);
  return host.String(begin.value_or(std::string(kBounded)) + input.Bytes(kMostBytes), encoding);
}

Values AnyPatternBlock(Input& input, standin::Host& host) {
  Values arguments = {AnyMemoryBlock(input, host), AnyValue(input, host, Kind::kInteger)};
  std::string bytes = arguments[0].Bytes();
  const auto offset = static_cast<std::size_t>(arguments[1].Integer());  // past the end if negative
  if (offset < bytes.size()) arguments[0] = host.MemoryBlock(bytes.insert(offset, kBounded));
  return arguments;
}

Value AnyValue(Input& input, standin::Host& host, Kind kind) {
  switch (kind) {
    case Kind::kInteger: {
      const unsigned choice = input.Byte();
      return choice < 0x80 ? input.Pick(kIntegers) : static_cast<std::int32_t>(choice - 0x80);
    }
    case Kind::kBoolean:
      return input.Truth();
    case Kind::kDouble:
      return input.Byte() / 8.0;
    case Kind::kString:
      return AnyString(input, host);
    case Kind::kMemoryBlock:
      return AnyMemoryBlock(input, host);
    default:
      return input.Below(8) == 0 ? Value::Nil(kind) : AnyArray(input, host, kind);
  }
}

}  // namespace fuzz
