#include "text/rb_text.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

#include "host/services.h"
#include "host/state.h"
#include "text/build_string.h"

namespace zrk {

namespace {

constexpr unsigned char EmptyBuffer[4] = {};
constexpr std::uint16_t EmptyBufferUInt16[4] = {};
constexpr std::uint32_t EmptyBufferUInt32[4] = {};

// Room for the zero bytes behind a copied text.
constexpr std::int64_t kTerminatorBytes = 4;

template <typename Unit>
const unsigned char* AsBytes(const Unit* units) {
  return reinterpret_cast<const unsigned char*>(units);
}

const unsigned char* TextOf(const REALstringStruct* string) { return string->Buffer + 1; }

bool FitsWithTerminator(std::int64_t length) {
  return length + kTerminatorBytes >= 1 && length + kTerminatorBytes <= INT32_MAX;
}

bool IsSingleByteFamily(std::uint32_t encoding) {
  switch (encoding) {
    case kEncodingMacRoman:
    case kEncodingISOLatin1:
    case kEncodingWindowsLatin1:
    case kEncodingASCII:
    case kEncodingUTF8:
      return true;
    default:
      return false;
  }
}

}  // namespace

rbText::rbText(REALstringStruct* string) noexcept {
  const std::int32_t not_computed = string != nullptr ? -1 : 0;
  FillForms(EmptyBuffer, not_computed, not_computed);
  FormString[kUTF8] = nullptr;
  FormBuffer[kUTF8] = nullptr;
  FormDisposeFlag[kUTF8] = false;
  if (string == nullptr) return;
  SourceString = StringReference::Share(string);
  ReadSource();
}

void rbText::FillForms(const unsigned char* single_bytes, std::int32_t single_length,
                       std::int32_t other_length) {
  FormData = {single_bytes,
              single_bytes,
              single_bytes,
              single_bytes,
              single_bytes,
              AsBytes(EmptyBufferUInt16),
              AsBytes(EmptyBufferUInt32)};
  FormLength = {single_length, single_length, single_length, single_length,
                single_length, other_length,  other_length};
}

// A host that cannot tell the encoding answers the neutral 0, which is one of the family.
void rbText::ReadSource() {
  const std::uint32_t encoding = REALGetStringEncoding(SourceString.get());
  if (IsSingleByteFamily(encoding)) {
    const auto scanned = StringReference::Share(SourceString.get());
    if (SourceIsASCII()) ShareASCII();
  } else if (encoding == kEncodingUnknown) {
    ReadUnknownEncoding();
  }
}

// Bytes above ASCII without an encoding are taken for Mac Roman, the host's oldest default.
void rbText::ReadUnknownEncoding() {
  if (!SourceIsASCII()) {
    const REALstringStruct* source = SourceString.get();
    REALstringStruct* rebuilt =
        FitsWithTerminator(source->Length)
            ? REALBuildUnicodeString(TextOf(source), source->Length, kEncodingMacRoman)
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
  FillForms(TextOf(source), source->Length, -1);
  Notes.SetASCII();
}

void rbText::ConvertUTF8() {
  FormLength[kUTF8] = 0;
  FormData[kUTF8] = EmptyBuffer;
  if (SourceString.get() == nullptr || ConversionFailed) return;
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
  FormData[kUTF8] = TextOf(text);
  FormLength[kUTF8] = text->Length;
  return true;
}

bool rbText::FetchStringData() {
  REALstringData& data = FormStringData[kUTF8];
  FormDisposeFlag[kUTF8] = REALGetStringData(SourceString.get(), kEncodingUTF8, &data) != 0;
  if (!FormDisposeFlag[kUTF8] || data.Data == nullptr || data.Length < 0) return false;
  FormData[kUTF8] = AsBytes(data.Data);
  FormLength[kUTF8] = data.Length;
  return true;
}

// The engine's users rely on a zero byte after the text; where the host gave none, a copy has it. A
// copy that cannot be had reads as empty.
void rbText::Terminate() {
  const unsigned char* const text = FormData[kUTF8];
  const std::int32_t length = FormLength[kUTF8];
  if (text[length] == 0) return;
  FormData[kUTF8] = EmptyBuffer;
  FormLength[kUTF8] = 0;
  if (!FitsWithTerminator(length)) return;
  const auto size = static_cast<std::size_t>(length + kTerminatorBytes);
  FormBuffer[kUTF8] = static_cast<unsigned char*>(std::calloc(size, 1));
  if (FormBuffer[kUTF8] == nullptr) return;
  std::memcpy(FormBuffer[kUTF8], text, static_cast<std::size_t>(length));
  FormData[kUTF8] = FormBuffer[kUTF8];
  FormLength[kUTF8] = length;
}

rbText::~rbText() {
  SourceString.Reset();
  if (AsciiShared) return;
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
  ::operator delete(std::exchange(spare_memory, memory));
}

}  // namespace zrk
