#include "regex/compile.h"

#include <cstring>
#include <string>

#include "host/exceptions.h"
#include "text/build_string.h"
#include "text/utf8.h"

namespace zrk {

namespace {

REALstringStruct* BuildMessage(const char* message) {
  return message != nullptr ? REALBuildUnicodeString(message, kEncodingASCII) : nullptr;
}

void ForgetPattern(RegExClassData& data) {
  ClearText(data);
  Release(data.ErrorMessage);
  ClearPattern(data);
}

// The engine compiles what it is told not to check as if it were UTF-8: some bytes would take it
// outside its tables, and a broken character outside the code it writes. Such a pattern is left to
// the engine's own check, which refuses it.
int OptionsFor(const RegExClassData& data, const char* pattern) {
  const auto* const bytes = reinterpret_cast<const unsigned char*>(pattern);
  const std::size_t length = std::strlen(pattern);
  std::uint32_t options = data.CompileOptions;
  if (HasUnsafeBytes(bytes, length) || HasBrokenCharacters(bytes, length)) {
    options &= ~std::uint32_t{PCRE_NO_UTF8_CHECK};
  }
  return static_cast<int>(options);
}

HostBoolean CompileText(RegExClassData& data, const char* pattern) {
  int error_code = 0;
  const char* error_text = nullptr;
  int error_offset = 0;
  data.Handle = pcre_compile2(pattern, OptionsFor(data, pattern), &error_code, &error_text,
                              &error_offset, nullptr);
  data.CompileErrorCode = error_code;
  data.ErrorMessage = BuildMessage(error_text);
  data.ErrorOffset = error_offset;
  return data.Handle != nullptr;
}

}  // namespace

HostBoolean rb_pcre_compile2(RegExClassData& data, REALstringStruct* pattern) {
  ForgetPattern(data);
  rbText text(pattern);
  return CompileText(data, text.UTF8Text());
}

HostBoolean rb_pcre_compileM(RegExClassData& data, REALmemoryBlockStruct* pattern,
                             HostInteger ByteOffset) {
  ForgetPattern(data);
  const rbData block(pattern);
  if (block.data() == nullptr) {
    RaiseException("NilObjectException", "pattern Memoryblock is nil");
    return false;
  }
  if (ByteOffset < 0 || ByteOffset >= block.size()) {
    RaiseOutOfBoundsException(ByteOffset, 0, std::int64_t{block.size()} - 1, "ByteOffset",
                              "CompileMemory");
    return false;
  }
  const char* const bytes = reinterpret_cast<const char*>(block.data()) + ByteOffset;
  const auto available = static_cast<std::size_t>(block.size() - ByteOffset);
  if (std::memchr(bytes, 0, available) != nullptr) return CompileText(data, bytes);
  return CompileText(data, std::string(bytes, available).c_str());
}

HostBoolean rb_pcre_study(RegExClassData& data) {
  Release(data.ErrorMessage);
  if (data.Handle == nullptr) return false;
  const char* error_text = nullptr;
  pcre_extra* const study = pcre_study(data.Handle, 0, &error_text);
  if (data.StudyExtra != nullptr) pcre_free_study(data.StudyExtra);
  data.StudyExtra = study;
  data.ErrorMessage = BuildMessage(error_text);
  return error_text == nullptr || study != nullptr;
}

}  // namespace zrk
