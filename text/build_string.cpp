#include "text/build_string.h"

#include <cstring>
#include <memory>
#include <new>

#include "host/references.h"
#include "host/services.h"
#include "host/state.h"
#include "host/strings.h"
#include "text/utf8.h"

namespace zrk {

namespace {

REALstringStruct* BuildMarked(std::string_view bytes, std::uint32_t encoding) {
  return REALBuildStringWithEncoding(bytes.data(), LengthOf(bytes), encoding);
}

// The string in UTF-8; the given one, which may be null, is given back.
REALstringStruct* ConvertToUTF8(REALstringStruct* string) {
  const auto source = StringReference::Adopt(string);
  return REALConvertString(source.get(), kEncodingUTF8);
}

// A new UTF-8 string from UTF-16 in the machine's byte order. From 2012.0 on hosts build that
// themselves; the conversion is asked for even where they answered null.
REALstringStruct* REALBuildUnicodeStringUTF16(std::string_view bytes) {
  if (HostIsAtLeast(kHostConvertsOnRequest)) {
    return ConvertToUTF8(BuildMarked(bytes, kEncodingUTF16));
  }
  REALstringStruct* const marked = BuildThenMark(bytes, kEncodingUTF16);
  return marked != nullptr ? ConvertToUTF8(marked) : nullptr;
}

// Writes one code point as UTF-16 and answers where the next unit goes. A surrogate value is
// dropped, what lies past the last code point becomes U+FFFD.
char16_t* WriteUTF16(std::uint32_t code_point, char16_t* out) {
  if (code_point >= 0xD800 && code_point <= 0xDFFF) return out;
  if (code_point >= 0x110000) code_point = 0xFFFD;
  if (code_point > 0xFFFF) {
    *out++ = static_cast<char16_t>(((code_point - 0x10000) >> 10) + 0xD800);
    code_point = ((code_point - 0x10000) & 0x3FF) | 0xDC00;
  }
  *out++ = static_cast<char16_t>(code_point);
  return out;
}

// For hosts that cannot build from UTF-32. One to three bytes behind the last code point are left
// out; short text needs no allocation.
REALstringStruct* BuildFromUTF32ByHand(std::string_view bytes) {
  constexpr std::size_t kShortText = 800;
  constexpr std::size_t kShortUnits = 2 * kShortText / sizeof(std::uint32_t);
  const std::size_t code_points = bytes.size() / sizeof(std::uint32_t);
  const std::size_t units = code_points * 2 + 2;
  if (units * sizeof(char16_t) > INT32_MAX) return nullptr;

  char16_t short_buffer[kShortUnits];
  std::unique_ptr<char16_t[]> long_buffer;
  if (bytes.size() >= kShortText) {
    long_buffer.reset(new (std::nothrow) char16_t[units]);
    if (long_buffer == nullptr) return nullptr;
  }
  char16_t* const begin = long_buffer != nullptr ? long_buffer.get() : short_buffer;
  char16_t* end = begin;
  for (std::size_t i = 0; i < code_points; ++i) {
    std::uint32_t code_point;
    std::memcpy(&code_point, bytes.data() + i * sizeof code_point, sizeof code_point);
    end = WriteUTF16(code_point, end);
  }
  *end = 0;
  const auto* const text = reinterpret_cast<const char*>(begin);
  return REALBuildUnicodeStringUTF16({text, reinterpret_cast<const char*>(end)});
}

}  // namespace

REALstringStruct* REALBuildUnicodeString(std::string_view bytes, std::uint32_t encoding) {
  if (bytes.empty() || bytes.size() > INT32_MAX) return nullptr;
  switch (encoding) {
    case kEncodingUTF16:
      return REALBuildUnicodeStringUTF16(bytes);
    case kEncodingUTF32:
      if (!HostIsAtLeast(kHostBuildsUTF32)) return BuildFromUTF32ByHand(bytes);
      return ConvertToUTF8(BuildMarked(bytes, kEncodingUTF32));
    case kEncodingMacRoman:
    case kEncodingISOLatin1:
    case kEncodingWindowsLatin1:
    case kEncodingUnknown:
      return BuildThenMark(bytes, IsASCII(bytes) ? kEncodingASCII : encoding);
    default:
      return BuildThenMark(bytes, encoding);
  }
}

}  // namespace zrk
