// A host string as the engine reads it: UTF-8 bytes with a zero byte after them.
//
// The string stays locked while the adapter lives. Its own buffer is used wherever that will do
// (ASCII text in any single-byte encoding; UTF-8 on hosts whose records may be read), converted
// text otherwise, made on first use. What cannot be converted reads as empty.
#ifndef ZRK_TEXT_RB_TEXT_H
#define ZRK_TEXT_RB_TEXT_H

#include <cstdint>
#include <memory>
#include <string_view>

#include "host/references.h"
#include "text/subject_bytes.h"

namespace zrk {

class rbText {
 public:
  // Takes a reference of its own; null reads as the empty string and asks nothing of the host.
  explicit rbText(REALstringStruct* string);
  rbText(const rbText&) = delete;
  rbText& operator=(const rbText&) = delete;

  // Whether what was read is still what this string holds: strings do not change, but a script may
  // have declared another encoding for this very one. `string` is the one that the adapter is for.
  // Never so for an empty form, which may be a text that could not be had when it was asked for.
  bool StillReads(REALstringStruct* string) const {
    return !form_.bytes().empty() && REALGetStringEncoding(string) == encoding_;
  }

  // The UTF-8 form: its data is never null, ends with a zero byte that is not counted, and is valid
  // while the adapter lives. Converted on first use.
  std::string_view UTF8() { return UTF8Subject().bytes(); }
  // The same with what is known about its bytes, for a search.
  SubjectBytes& UTF8Subject() {
    if (!converted_) ConvertUTF8();
    return form_;
  }

 private:
  // Bytes that the host hands out for a string, to be handed back once.
  struct StringData {
    ~StringData() {
      try {
        if (filled) REALDisposeStringData(&record);
      } catch (...) {  // as for a reference that is given back
      }
    }
    REALstringData record{};
    bool filled = false;
  };

  // What ASCII text never needs is kept out of line: the rest is inlined where scripts call most.
  [[gnu::noinline]] void ReadUnknownEncoding();
  [[gnu::noinline]] void ConvertUTF8();
  void ReadSource();
  bool ShareASCII();
  std::string_view FetchUTF8();
  std::string_view FetchStringData();
  std::string_view Terminated(std::string_view text);
  void SetForm(std::string_view bytes, bool are_ascii = false) {
    form_.Set(bytes, are_ascii);
    converted_ = true;
  }

  // Released from the last one up: the string first, and last the copy, as hosts expect it.
  std::unique_ptr<char[]> terminated_copy_;
  StringData string_data_;
  StringReference converted_string_;
  StringReference source_;

  SubjectBytes form_;
  std::uint32_t encoding_ = 0;
  bool converted_ = false;
};

}  // namespace zrk

#endif  // ZRK_TEXT_RB_TEXT_H
