#include "tests/oracle/plain_text.h"

#include <algorithm>

#include "standin/encoding.h"

namespace oracle {
namespace {

bool IsASCII(const std::string& bytes) {
  return std::ranges::all_of(bytes, [](char byte) { return (byte & 0x80) == 0; });
}

bool HoldsOnlyUnits(std::uint32_t encoding) {
  return encoding == zrk::kEncodingUTF16 || encoding == zrk::kEncodingUTF32;
}

unsigned At(const std::string& bytes, std::size_t at) {
  return static_cast<unsigned char>(bytes[at]);
}

bool IsContinuation(unsigned byte) { return byte >= 0x80 && byte <= 0xBF; }

}  // namespace

std::string ReadAs(const standin::HostOptions& host, const standin::Value& string) {
  const std::string bytes = string.Bytes();
  std::uint32_t encoding = string.Encoding();
  const bool known = standin::EncodingName(encoding).substr(0, 2) != "0x";
  if (known && !HoldsOnlyUnits(encoding) && IsASCII(bytes)) return bytes;
  if (encoding == zrk::kEncodingUnknown) encoding = zrk::kEncodingMacRoman;
  const bool in_place = encoding == zrk::kEncodingUTF8 ||
                        (encoding == zrk::kEncodingASCII && host.version.value_or(0) < 2017.0);
  if (in_place) return bytes;
  return standin::ConvertText(bytes, encoding, zrk::kEncodingUTF8).value_or("");
}

std::string WithoutUnsafeBytes(const std::string& bytes) {
  std::string shown = bytes;
  bool at_start = true;
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    const unsigned byte = At(bytes, at);
    at_start = at_start && IsContinuation(byte);
    const bool cut = SequenceLength(bytes, at) > bytes.size() - at;
    const bool past_last = byte == 0xF4 && !cut && (At(bytes, at + 1) & 0x3F) >= 0x10;
    if (at_start || byte >= 0xF5 || cut || past_last) shown[at] = 0x1A;
  }
  return shown;
}

bool HasBrokenCharacters(const std::string& bytes) {
  std::size_t announced = 0;
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    if (IsContinuation(At(bytes, at)) != (announced > 0)) return true;
    announced = announced > 0 ? announced - 1 : SequenceLength(bytes, at) - 1;
  }
  return announced > 0;
}

std::size_t SequenceLength(const std::string& bytes, std::size_t at) {
  const unsigned lead = At(bytes, at);
  if (lead >= 0xC0 && lead <= 0xDF) return 2;
  if (lead >= 0xE0 && lead <= 0xEF) return 3;
  return lead >= 0xF0 && lead <= 0xF7 ? 4 : 1;
}

std::size_t CharactersBefore(const std::string& bytes, std::size_t offset) {
  std::size_t count = 0;
  for (std::size_t at = 0; at < std::min(offset, bytes.size()); at += SequenceLength(bytes, at)) {
    ++count;
  }
  return count;
}

std::string Escaped(const std::string& text) {
  std::string out;
  for (const char byte : text) {
    if (std::string_view("$()*+.?[\\]^{|}").find(byte) != std::string_view::npos) out += '\\';
    out += byte;
  }
  return out;
}

}  // namespace oracle
