// A host string as the engine reads it: UTF-8 bytes with a zero byte after them, and their length.
//
// The string stays locked while the adapter lives. Its own buffer is used wherever that will do
// (ASCII text in any single-byte encoding; UTF-8 on hosts whose records may be read), converted
// text otherwise, made on first use. What cannot be converted reads as empty.
#ifndef ZRK_TEXT_RB_TEXT_H
#define ZRK_TEXT_RB_TEXT_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

#include "host/references.h"
#include "text/subject_notes.h"

namespace zrk {

struct FreeMemory {
  void operator()(void* memory) const { std::free(memory); }
};

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

  // The UTF-8 bytes as the engine may read them unchecked. Throws std::bad_alloc.
  const unsigned char* EngineBytes() {
    return Notes.EngineBytes(UTF8Bytes(), static_cast<std::size_t>(UTF8Length()));
  }

  // Notes about the UTF-8 form, for a text that is kept as a subject.
  SubjectNotes& notes() { return Notes; }

 private:
  // Five single-byte forms, one of 16-bit and one of 32-bit units. Only UTF-8 is ever asked for;
  // the others are filled where ASCII bytes serve them all.
  static constexpr std::size_t kForms = 7;
  static constexpr std::size_t kSingleByteForms = 5;
  static constexpr std::size_t kUTF8 = 3;

  void ReadSource();
  void ReadUnknownEncoding();
  bool SourceIsASCII() const;
  void ShareASCII();
  void ConvertUTF8();
  bool FetchUTF8();
  bool FetchStringData();
  void Terminate();

  StringReference SourceString;
  std::array<StringReference, kForms> FormString;
  std::array<std::int32_t, kForms> FormLength{};
  std::array<const unsigned char*, kForms> FormData;
  std::array<std::unique_ptr<unsigned char, FreeMemory>, kForms> FormBuffer;
  std::array<REALstringData, kForms> FormStringData;  // filled where the flag below is set
  std::array<bool, kForms> FormDisposeFlag{};
  bool AsciiShared = false;
  bool ConversionFailed = false;

  SubjectNotes Notes;
};

}  // namespace zrk

#endif  // ZRK_TEXT_RB_TEXT_H
