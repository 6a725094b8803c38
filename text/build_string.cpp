#include "text/build_string.h"

#include <cstring>
#include <memory>
#include <new>

#include "host/references.h"
#include "host/services.h"
#include "host/state.h"
#include "text/utf8.h"

namespace zrk {

namespace {

// Hosts before 2012.0 build strings without an encoding, which is set afterwards.
REALstringStruct* BuildThenMark(const void* bytes, std::int64_t length, std::uint32_t encoding) {
  REALstringStruct* const string =
      originalREALBuildString(static_cast<const char*>(bytes), static_cast<std::int32_t>(length));
  if (string != nullptr) REALSetStringEncoding(string, encoding);
  return string;
}

REALstringStruct* BuildMarked(const void* bytes, std::int64_t length, std::uint32_t encoding) {
  return REALBuildStringWithEncoding(static_cast<const char*>(bytes),
                                     static_cast<std::int32_t>(length), encoding);
}

// The string in UTF-8; the given one, which may be null, is given back.
REALstringStruct* ConvertToUTF8(REALstringStruct* string) {
  const auto source = StringReference::Adopt(string);
  return REALConvertString(source.get(), kEncodingUTF8);
}

// Writes one code point as UTF-16 and answers where the next unit goes. A surrogate value is
// dropped, what lies past the last code point becomes U+FFFD.
std::uint16_t* WriteUTF16(std::uint32_t code_point, std::uint16_t* out) {
  if (code_point >= 0xD800 && code_point <= 0xDFFF) return out;
  if (code_point >= 0x110000) code_point = 0xFFFD;
  if (code_point > 0xFFFF) {
    *out++ = static_cast<std::uint16_t>(((code_point - 0x10000) >> 10) + 0xD800);
    code_point = ((code_point - 0x10000) & 0x3FF) | 0xDC00;
  }
  *out++ = static_cast<std::uint16_t>(code_point);
  return out;
}

// For hosts that cannot build from UTF-32. One to three bytes behind the last code point are left
// out; short text needs no allocation.
REALstringStruct* BuildFromUTF32ByHand(const unsigned char* bytes, std::int64_t length) {
  constexpr std::int64_t kShortText = 800;
  constexpr std::size_t kShortUnits = 2 * kShortText / sizeof(std::uint32_t);
  const auto code_points = static_cast<std::size_t>(length) / sizeof(std::uint32_t);
  const std::size_t units = code_points * 2 + 2;
  if (units * sizeof(std::uint16_t) > INT32_MAX) return nullptr;

  std::uint16_t short_buffer[kShortUnits];
  std::unique_ptr<std::uint16_t[]> long_buffer;
  if (length >= kShortText) {
    long_buffer.reset(new (std::nothrow) std::uint16_t[units]);
    if (long_buffer == nullptr) return nullptr;
  }
  std::uint16_t* const begin = long_buffer != nullptr ? long_buffer.get() : short_buffer;
  std::uint16_t* end = begin;
  for (std::size_t i = 0; i < code_points; ++i) {
    std::uint32_t code_point;
    std::memcpy(&code_point, bytes + i * sizeof code_point, sizeof code_point);
    end = WriteUTF16(code_point, end);
  }
  *end = 0;
  return REALBuildUnicodeStringUTF16(begin, (end - begin) * std::int64_t{sizeof *begin});
}

}  // namespace

REALstringStruct* REALBuildUnicodeString(const void* bytes, std::int64_t length,
                                         std::uint32_t encoding) {
  if (bytes == nullptr || length < 1 || length > INT32_MAX) return nullptr;
  const auto* const text = static_cast<const unsigned char*>(bytes);
  switch (encoding) {
    case kEncodingUTF16:
      return REALBuildUnicodeStringUTF16(static_cast<const std::uint16_t*>(bytes), length);
    case kEncodingUTF32:
      if (!HostIsAtLeast(kHostBuildsUTF32)) return BuildFromUTF32ByHand(text, length);
      return ConvertToUTF8(BuildMarked(bytes, length, kEncodingUTF32));
    case kEncodingMacRoman:
    case kEncodingISOLatin1:
    case kEncodingWindowsLatin1:
    case kEncodingUnknown:
      if (IsASCII(text, static_cast<std::size_t>(length))) encoding = kEncodingASCII;
      [[fallthrough]];
    default:
      return BuildThenMark(bytes, length, encoding);
  }
}

REALstringStruct* REALBuildUnicodeStringUTF16(const std::uint16_t* units, std::int64_t length) {
  if (HostIsAtLeast(kHostConvertsOnRequest)) {
    return ConvertToUTF8(BuildMarked(units, length, kEncodingUTF16));
  }
  REALstringStruct* const marked = BuildThenMark(units, length, kEncodingUTF16);
  return marked != nullptr ? ConvertToUTF8(marked) : nullptr;
}

}  // namespace zrk
