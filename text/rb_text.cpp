// The cheapest way that serves comes first: ASCII is read where it is, UTF-8 on hosts that show
// their records as well, and only the rest is converted by the host, when somebody reads it.
#include "text/rb_text.h"

#include <algorithm>
#include <cstddef>
#include <new>
#include <utility>

#include "host/services.h"
#include "host/state.h"
#include "text/build_string.h"

namespace zrk {

namespace {

constexpr char kZeros[4] = {};
constexpr std::string_view kEmptyText(kZeros);  // ends with a zero byte, as every text here

// Room for the zero bytes behind a copied text.
constexpr std::size_t kTerminatorBytes = 4;

// The text of a host's own record, whose first byte is not part of it. A negative length is none.
std::string_view TextOf(const REALstringStruct* string) {
  if (string->Length < 1) return kEmptyText;
  return {reinterpret_cast<const char*>(string->Buffer) + 1,
          static_cast<std::size_t>(string->Length)};
}

bool FitsWithTerminator(std::string_view text) {
  return text.size() <= INT32_MAX - kTerminatorBytes;
}

// The engine's users rely on a zero byte after the text; where the host gave none, a copy has it. A
// copy that cannot be had reads as empty.
std::string_view Terminated(std::string_view text, std::unique_ptr<char[]>& copy) {
  if (text.data()[text.size()] == '\0') return text;
  if (!FitsWithTerminator(text)) return kEmptyText;
  copy.reset(new (std::nothrow) char[text.size() + kTerminatorBytes]());
  if (copy == nullptr) return kEmptyText;
  std::copy(text.begin(), text.end(), copy.get());
  return {copy.get(), text.size()};
}

// The usual ones first: every subject is asked.
bool IsSingleByteFamily(std::uint32_t encoding) {
  return encoding == kEncodingUTF8 || encoding == kEncodingASCII || encoding == kEncodingMacRoman ||
         encoding == kEncodingISOLatin1 || encoding == kEncodingWindowsLatin1;
}

}  // namespace

void rbText::Read() {
  if (held_.source.get() != nullptr) {
    ReadSource();
  } else {
    SetForm(kEmptyText, true);
  }
}

void rbText::GoOverTo(REALstringStruct* string, Holdings& former) {
  if (held_.conversion) {
    former.conversion.emplace(*std::move(held_.conversion));
    held_.conversion.reset();
  }
  former.source = std::exchange(held_.source, StringReference::Share(string));
  form_ = SubjectBytes();
  converted_ = false;
  Read();
}

// A host that cannot tell the encoding answers the neutral 0, which is one of the family. The scan
// needs no lock beside the one that the adapter holds.
void rbText::ReadSource() {
  encoding_ = REALGetStringEncoding(held_.source.get());
  if (IsSingleByteFamily(encoding_)) {
    ShareASCII();
  } else if (encoding_ == kEncodingUnknown) {
    ReadUnknownEncoding();
  }
}

// Bytes above ASCII without an encoding are taken for Mac Roman, the host's oldest default.
void rbText::ReadUnknownEncoding() {
  if (ShareASCII()) return;
  const std::string_view text = TextOf(held_.source.get());
  REALstringStruct* const rebuilt =
      FitsWithTerminator(text) ? REALBuildUnicodeString(text, kEncodingMacRoman) : nullptr;
  if (rebuilt == nullptr) return SetForm(kEmptyText, true);
  held_.source = StringReference::Adopt(rebuilt);
  ShareASCII();
}

// ASCII bytes are the same in all five single-byte encodings, and the host ends them with a zero:
// they are read in place. Answers whether the source is ASCII.
bool rbText::ShareASCII() {
  const std::string_view text = TextOf(held_.source.get());
  if (!IsASCII(text)) return false;
  SetForm(text, true);
  return true;
}

void rbText::ConvertUTF8() {
  Conversion& made = held_.conversion.emplace();
  SetForm(Terminated(FetchUTF8(made), made.terminated_copy));
}

// The text as host memory holds it; empty where the host cannot convert it.
std::string_view rbText::FetchUTF8(Conversion& made) const {
  REALstringStruct* const source = held_.source.get();
  const bool readable = !HostIsAtLeast(kHostHidesItsRecords) &&
                        (source->Encoding == kEncodingUTF8 || source->Encoding == kEncodingASCII);
  if (readable) return TextOf(source);
  if (HostIsAtLeast(kHostConvertsOnRequest)) return FetchStringData(made.string_data);
  made.converted_string = StringReference::Adopt(REALConvertString(source, kEncodingUTF8));
  const REALstringStruct* const converted = made.converted_string.get();
  return converted != nullptr ? TextOf(converted) : kEmptyText;
}

std::string_view rbText::FetchStringData(StringData& made) const {
  REALstringData& data = made.record;
  made.filled = REALGetStringData(held_.source.get(), kEncodingUTF8, &data) != 0;
  if (!made.filled || data.Data == nullptr || data.Length < 0) return kEmptyText;
  return {data.Data, static_cast<std::size_t>(data.Length)};
}

}  // namespace zrk
