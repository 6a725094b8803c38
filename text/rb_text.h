// A host string as the engine reads it: UTF-8 bytes with a zero byte after them, and their length.
//
// The string stays locked while the adapter lives. Its own buffer is used wherever that will do
// (ASCII text in any single-byte encoding; UTF-8 on hosts whose records may be read), converted
// text otherwise, made on first use. What cannot be converted reads as empty.
#ifndef ZRK_TEXT_RB_TEXT_H
#define ZRK_TEXT_RB_TEXT_H

#include <cstddef>
#include <cstdint>

#include "host/references.h"
#include "text/subject_notes.h"

namespace zrk {

class rbText {
 public:
  // Takes a reference of its own; null reads as the empty string and asks nothing of the host.
  explicit rbText(REALstringStruct* string) noexcept;
  ~rbText();
  rbText(const rbText&) = delete;
  rbText& operator=(const rbText&) = delete;

  // The UTF-8 form; never null, zero-terminated, valid while the adapter lives. Converted on first
  // use.
  const unsigned char* UTF8Bytes() {
    if (FormLength[kUTF8] < 0) ConvertUTF8();
    return FormData[kUTF8];
  }
  const char* UTF8Text() { return reinterpret_cast<const char*>(UTF8Bytes()); }
  // In bytes, without the zero byte.
  std::int32_t UTF8Length() {
    if (FormLength[kUTF8] < 0) ConvertUTF8();
    return FormLength[kUTF8];
  }

  // Notes about the UTF-8 form, for a text that is kept as a subject.
  SubjectNotes& notes() { return Notes; }

  // A kept subject ends where the next one begins, so its memory is handed from one to the other.
  // [host thread]
  static void* operator new(std::size_t size);
  static void operator delete(void* memory);

 private:
  // Five single-byte forms, one of 16-bit and one of 32-bit units.
  static constexpr std::size_t kForms = 7;
  static constexpr std::size_t kUTF8 = 3;

  void SetUTF8(const unsigned char* bytes, std::int32_t length) {
    FormData[kUTF8] = bytes;
    FormLength[kUTF8] = length;
  }
  // What ASCII text never needs is kept out of line: the rest is inlined where scripts call most.
  [[gnu::noinline]] void ReadUnknownEncoding();
  [[gnu::noinline]] void ConvertUTF8();
  [[gnu::noinline]] void ReleaseForms();
  void ReadSource();
  bool SourceIsASCII() const;
  void ShareASCII();
  bool FetchUTF8();
  bool FetchStringData();
  void Terminate();

  StringReference SourceString;
  // Of all forms only the UTF-8 entry is ever set, and read.
  REALstringStruct* FormString[kForms];  // one reference
  std::int32_t FormLength[kForms];       // in bytes; negative while not computed
  const unsigned char* FormData[kForms];
  unsigned char* FormBuffer[kForms];      // owned, freed with free
  REALstringData FormStringData[kForms];  // to be disposed where the flag is set
  bool FormDisposeFlag[kForms];
  bool AsciiShared = false;
  bool ConversionFailed = false;

  SubjectNotes Notes;
};

}  // namespace zrk

#endif  // ZRK_TEXT_RB_TEXT_H
