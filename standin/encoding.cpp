#include "standin/encoding.h"

#include <iconv.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <memory>
#include <stdexcept>

#include "host/records.h"
#include "standin/declaration.h"

namespace standin {
namespace {

constexpr bool kLittle = std::endian::native == std::endian::little;

struct EncodingRow {
  std::uint32_t code;
  const char* name;
  const char* iconv_name;  // null: nothing converts from or to it
  std::size_t unit;        // bytes
};

constexpr EncodingRow kEncodings[] = {
    {zrk::kEncodingUTF8, "UTF-8", "UTF-8", 1},
    {zrk::kEncodingUTF16, "UTF-16", kLittle ? "UTF-16LE" : "UTF-16BE", 2},
    {zrk::kEncodingUTF32, "UTF-32", kLittle ? "UTF-32LE" : "UTF-32BE", 4},
    {zrk::kEncodingASCII, "ASCII", "ASCII", 1},
    {zrk::kEncodingISOLatin1, "ISO Latin-1", "ISO-8859-1", 1},
    {zrk::kEncodingWindowsLatin1, "Windows Latin-1", "CP1252", 1},
    {zrk::kEncodingMacRoman, "Mac Roman", "MACINTOSH", 1},
    {zrk::kEncodingUnknown, "unknown", nullptr, 1},
};

const EncodingRow* Find(std::uint32_t code) {
  const auto* row = std::ranges::find(kEncodings, code, &EncodingRow::code);
  return row == std::end(kEncodings) ? nullptr : row;
}

struct CloseConverter {
  void operator()(void* converter) const { iconv_close(converter); }
};
// Null where nothing converts. iconv keeps no state between calls for these encodings.
using Converter = std::unique_ptr<void, CloseConverter>;

Converter Open(const char* from, const char* to) {
  iconv_t opened = iconv_open(to, from);
  return Converter(opened == reinterpret_cast<iconv_t>(-1) ? nullptr : opened);
}

// Converts until something stops it; drops what it read from `bytes`. 0 when all was read.
int Run(const Converter& converter, std::string_view& bytes, std::string& out) {
  std::array<char, 4096> buffer;
  while (!bytes.empty()) {
    char* in = const_cast<char*>(bytes.data());
    std::size_t in_left = bytes.size();
    char* to = buffer.data();
    std::size_t to_left = buffer.size();
    const bool failed = iconv(converter.get(), &in, &in_left, &to, &to_left) == std::size_t(-1);
    const int error = failed ? errno : 0;
    out.append(buffer.data(), buffer.size() - to_left);
    bytes.remove_prefix(bytes.size() - in_left);
    if (error != 0 && error != E2BIG) return error;
  }
  return 0;
}

std::string Substitute(const EncodingRow& to) {
  std::string_view mark = "\xEF\xBF\xBD";
  std::string out;
  const Converter converter = Open("UTF-8", to.iconv_name);
  return converter && Run(converter, mark, out) == 0 ? out : "?";
}

// Drops one bad or foreign character; of UTF-8 with the continuation bytes that follow it.
void SkipCharacter(const EncodingRow& from, std::string_view& bytes) {
  bytes.remove_prefix(std::min(from.unit, bytes.size()));
  if (from.code != zrk::kEncodingUTF8) return;
  while (!bytes.empty() && (static_cast<unsigned char>(bytes.front()) & 0xC0) == 0x80) {
    bytes.remove_prefix(1);
  }
}

}  // namespace

std::string EncodingName(std::uint32_t encoding) {
  if (const EncodingRow* row = Find(encoding)) return row->name;
  std::array<char, 16> text;
  std::snprintf(text.data(), text.size(), "0x%08X", static_cast<unsigned>(encoding));
  return text.data();
}

std::uint32_t EncodingByName(std::string_view name) {
  std::string names;
  for (const EncodingRow& row : kEncodings) {
    if (SameName(row.name, name)) return row.code;
    names += (names.empty() ? "" : ", ") + std::string(row.name);
  }
  throw std::invalid_argument("no encoding is called \"" + std::string(name) +
                              "\"; there are: " + names);
}

std::optional<std::string> ConvertText(std::string_view bytes, std::uint32_t from,
                                       std::uint32_t to) {
  const EncodingRow* source = Find(from);
  const EncodingRow* target = Find(to);
  if (!source || !target || !source->iconv_name || !target->iconv_name) return std::nullopt;
  if (source == target) return std::string(bytes);
  const Converter converter = Open(source->iconv_name, target->iconv_name);
  if (!converter) return std::nullopt;
  std::string out;
  while (const int error = Run(converter, bytes, out)) {
    out += Substitute(*target);
    if (error == EINVAL) break;  // a character that the text's end cuts
    SkipCharacter(*source, bytes);
  }
  return out;
}

}  // namespace standin
