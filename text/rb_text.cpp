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

void rbText::GoOverTo(REALstringStruct* string, std::optional<Holdings>& former) {
  former.emplace(std::move(held_));
  held_.source = StringReference::Share(string);
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

void rbText::ConvertUTF8() { SetForm(Terminated(FetchUTF8())); }

// The text as host memory holds it; empty where the host cannot convert it.
std::string_view rbText::FetchUTF8() {
  const REALstringStruct* const source = held_.source.get();
  const bool readable = !HostIsAtLeast(kHostHidesItsRecords) &&
                        (source->Encoding == kEncodingUTF8 || source->Encoding == kEncodingASCII);
  if (readable) return TextOf(source);
  if (HostIsAtLeast(kHostConvertsOnRequest)) return FetchStringData();
  held_.converted_string =
      StringReference::Adopt(REALConvertString(held_.source.get(), kEncodingUTF8));
  return held_.converted_string.get() != nullptr ? TextOf(held_.converted_string.get())
                                                 : kEmptyText;
}

std::string_view rbText::FetchStringData() {
  REALstringData& data = held_.string_data.record;
  held_.string_data.filled = REALGetStringData(held_.source.get(), kEncodingUTF8, &data) != 0;
  if (!held_.string_data.filled || data.Data == nullptr || data.Length < 0) return kEmptyText;
  return {data.Data, static_cast<std::size_t>(data.Length)};
}

// The engine's users rely on a zero byte after the text; where the host gave none, a copy has it. A
// copy that cannot be had reads as empty.
std::string_view rbText::Terminated(std::string_view text) {
  if (text.data()[text.size()] == '\0') return text;
  if (!FitsWithTerminator(text)) return kEmptyText;
  held_.terminated_copy.reset(new (std::nothrow) char[text.size() + kTerminatorBytes]());
  if (held_.terminated_copy == nullptr) return kEmptyText;
  std::copy(text.begin(), text.end(), held_.terminated_copy.get());
  return {held_.terminated_copy.get(), text.size()};
}

}  // namespace zrk
