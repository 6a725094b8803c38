// A host string as the engine reads it: UTF-8 bytes with a zero byte after them.
//
// The string stays locked while the adapter lives. Its own buffer is used wherever that will do
// (ASCII text in any single-byte encoding; UTF-8 on hosts whose records may be read), converted
// text otherwise, made on first use. What cannot be converted reads as empty.
#ifndef ZRK_TEXT_RB_TEXT_H
#define ZRK_TEXT_RB_TEXT_H

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

#include "host/references.h"
#include "text/subject_bytes.h"

namespace zrk {

class rbText {
 public:
  // What a text that had to be converted needs besides its string.
  struct Conversion {
    std::unique_ptr<char[]> terminated_copy;
    StringData string_data;
    StringReference converted_string;
  };
  // What an adapter holds. Released from the last one up, also within: the string first, and last
  // the copy, as hosts expect it.
  struct Holdings {
    std::optional<Conversion> conversion;  // none for ASCII text
    StringReference source;
  };

  // Takes a reference of its own; null reads as the empty string and asks nothing of the host.
  explicit rbText(REALstringStruct* string) : held_{std::nullopt, StringReference::Share(string)} {
    Read();
  }
  rbText(const rbText&) = delete;
  rbText& operator=(const rbText&) = delete;

  // Goes over to another string, as if made for it. What was held for the one before goes to
  // `former`, which holds nothing: giving it back can run the program, so the caller says when.
  void GoOverTo(REALstringStruct* string, Holdings& former);

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
  // Few texts need this, so it stays out of line where scripts call most.
  [[gnu::noinline]] void ReadUnknownEncoding();
  void ConvertUTF8();
  void Read();
  void ReadSource();
  bool ShareASCII();
  std::string_view FetchUTF8(Conversion& made) const;
  std::string_view FetchStringData(StringData& made) const;
  void SetForm(std::string_view bytes, bool are_ascii = false) {
    form_.Set(bytes, are_ascii);
    converted_ = true;
  }

  Holdings held_;
  SubjectBytes form_;
  std::uint32_t encoding_ = 0;
  bool converted_ = false;
};

}  // namespace zrk

#endif  // ZRK_TEXT_RB_TEXT_H
