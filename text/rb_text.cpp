#include "text/rb_text.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string_view>
#include <utility>

#include "host/services.h"
#include "host/state.h"
#include "text/build_string.h"

namespace zrk {

namespace {

constexpr unsigned char EmptyBuffer[4] = {};

// Room for the zero bytes behind a copied text.
constexpr std::int64_t kTerminatorBytes = 4;

const unsigned char* TextOf(const REALstringStruct* string) { return string->Buffer + 1; }
std::string_view BytesOf(const REALstringStruct* string) {
  return {reinterpret_cast<const char*>(TextOf(string)), static_cast<std::size_t>(string->Length)};
}

bool FitsWithTerminator(std::int64_t length) {
  return length + kTerminatorBytes >= 1 && length + kTerminatorBytes <= INT32_MAX;
}

// The usual ones first: every subject is asked.
bool IsSingleByteFamily(std::uint32_t encoding) {
  return encoding == kEncodingUTF8 || encoding == kEncodingASCII || encoding == kEncodingMacRoman ||
         encoding == kEncodingISOLatin1 || encoding == kEncodingWindowsLatin1;
}

}  // namespace

rbText::rbText(REALstringStruct* string) noexcept : SourceString(StringReference::Share(string)) {
  SetUTF8(EmptyBuffer, string != nullptr ? -1 : 0);
  FormString[kUTF8] = nullptr;
  FormBuffer[kUTF8] = nullptr;
  FormDisposeFlag[kUTF8] = false;
  if (string != nullptr) ReadSource();
}

// A host that cannot tell the encoding answers the neutral 0, which is one of the family. The scan
// needs no lock beside the one that the adapter holds.
void rbText::ReadSource() {
  const std::uint32_t encoding = REALGetStringEncoding(SourceString.get());
  if (IsSingleByteFamily(encoding)) {
    if (SourceIsASCII()) ShareASCII();
  } else if (encoding == kEncodingUnknown) {
    ReadUnknownEncoding();
  }
}

// Bytes above ASCII without an encoding are taken for Mac Roman, the host's oldest default.
void rbText::ReadUnknownEncoding() {
  if (!SourceIsASCII()) {
    const REALstringStruct* source = SourceString.get();
    REALstringStruct* rebuilt = FitsWithTerminator(source->Length)
                                    ? REALBuildUnicodeString(BytesOf(source), kEncodingMacRoman)
                                    : nullptr;
    if (rebuilt == nullptr) {
      ConversionFailed = true;
      return;
    }
    SourceString = StringReference::Adopt(rebuilt);
    if (!SourceIsASCII()) return;
  }
  ShareASCII();
}

bool rbText::SourceIsASCII() const {
  const REALstringStruct* source = SourceString.get();
  return source->Length < 1 || IsASCII(TextOf(source), static_cast<std::size_t>(source->Length));
}

// ASCII bytes are the same in all five single-byte encodings, and the host ends them with a zero.
void rbText::ShareASCII() {
  const REALstringStruct* source = SourceString.get();
  AsciiShared = true;
  SetUTF8(TextOf(source), source->Length);
  Notes.SetASCII();
}

void rbText::ConvertUTF8() {
  SetUTF8(EmptyBuffer, 0);
  if (ConversionFailed) return;
  if (!FetchUTF8()) {
    ConversionFailed = true;
    return;
  }
  Terminate();
}

// Points the form at host memory that holds the text; false where the host cannot convert it.
bool rbText::FetchUTF8() {
  const REALstringStruct* text = SourceString.get();
  const bool readable = !HostIsAtLeast(kHostHidesItsRecords) &&
                        (text->Encoding == kEncodingUTF8 || text->Encoding == kEncodingASCII);
  if (!readable && HostIsAtLeast(kHostConvertsOnRequest)) return FetchStringData();
  if (!readable) {
    FormString[kUTF8] = REALConvertString(SourceString.get(), kEncodingUTF8);
    text = FormString[kUTF8];
    if (text == nullptr) return false;
  }
  SetUTF8(TextOf(text), text->Length);
  return true;
}

bool rbText::FetchStringData() {
  REALstringData& data = FormStringData[kUTF8];
  FormDisposeFlag[kUTF8] = REALGetStringData(SourceString.get(), kEncodingUTF8, &data) != 0;
  if (!FormDisposeFlag[kUTF8] || data.Data == nullptr || data.Length < 0) return false;
  SetUTF8(reinterpret_cast<const unsigned char*>(data.Data), data.Length);
  return true;
}

// The engine's users rely on a zero byte after the text; where the host gave none, a copy has it. A
// copy that cannot be had reads as empty.
void rbText::Terminate() {
  const unsigned char* const text = FormData[kUTF8];
  const std::int32_t length = FormLength[kUTF8];
  if (text[length] == 0) return;
  SetUTF8(EmptyBuffer, 0);
  if (!FitsWithTerminator(length)) return;
  const auto size = static_cast<std::size_t>(length + kTerminatorBytes);
  FormBuffer[kUTF8] = static_cast<unsigned char*>(std::calloc(size, 1));
  if (FormBuffer[kUTF8] == nullptr) return;
  std::memcpy(FormBuffer[kUTF8], text, static_cast<std::size_t>(length));
  SetUTF8(FormBuffer[kUTF8], length);
}

rbText::~rbText() {
  if (!AsciiShared) ReleaseForms();
}

void rbText::ReleaseForms() {
  SourceString.Reset();
  Release(FormString[kUTF8]);
  if (FormDisposeFlag[kUTF8]) REALDisposeStringData(&FormStringData[kUTF8]);
  std::free(FormBuffer[kUTF8]);
}

namespace {
void* spare_memory = nullptr;
}  // namespace

void* rbText::operator new(std::size_t size) {
  void* const memory = std::exchange(spare_memory, nullptr);
  return memory != nullptr ? memory : ::operator new(size);
}

void rbText::operator delete(void* memory) {
  if (spare_memory == nullptr) {
    spare_memory = memory;
  } else {
    ::operator delete(memory);
  }
}

}  // namespace zrk
