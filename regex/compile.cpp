// A compile forgets the subject, the message and the pattern before anything is looked at, so that
// a failed one leaves no pattern that a script could take for the new one.
#include "regex/compile.h"

#include <algorithm>
#include <cstdint>
#include <new>
#include <string>
#include <string_view>

#include "host/exceptions.h"
#include "regex/stack_depth.h"
#include "regex/subject.h"
#include "text/build_string.h"
#include "text/utf8.h"

namespace zrk {

namespace {

// Puts the engine's message, or none, in place of what is there: ASCII, and not translated.
void StoreMessage(RegExClassData& data, const char* message) {
  auto built = StringReference::Adopt(
      message != nullptr ? REALBuildUnicodeString(message, kEncodingASCII) : nullptr);
  const StringReference earlier = ClearErrorMessage(data);
  data.ErrorMessage = built.Take();
}

// What a compile forgets first, whatever comes of it.
struct Forgotten {
  Released subject;
  StringReference message;
};
Forgotten ForgetPattern(RegExClassData& data) {
  ClearPattern(data);
  return {ClearText(data), ClearErrorMessage(data)};
}

// The engine compiles what it is told not to check as if it were UTF-8: some bytes would take it
// outside its tables, and a broken character outside the code it writes. Such a pattern is left to
// the engine's own check, which refuses it.
int OptionsFor(const RegExClassData& data, const char* pattern) {
  std::uint32_t options = data.CompileOptions;
  if (HasUnsafeBytes(pattern) || HasBrokenCharacters(pattern)) {
    options &= ~std::uint32_t{PCRE_NO_UTF8_CHECK};
  }
  return static_cast<int>(options);
}

// Bytes of stack that the engine's compiler may need for so many bytes of pattern, or its study for
// so many of a compiled one. Measured: 430 a byte where groups nest, which the engine allows 250
// deep, and 43 a byte where one group calls the next or may be skipped like the next.
// For long patterns the number is larger than 32 bits hold.
std::uint64_t StackNeeded(std::uint64_t bytes) {
  constexpr std::uint64_t kAlways = 32 << 10;
  constexpr std::uint64_t kDeepestNesting = 512;
  return kAlways + 512 * std::min(bytes, kDeepestNesting) + 64 * bytes;
}

// Runs the engine's compiler or study, on a deep stack where too little is left of the one at hand.
// Throws std::bad_alloc, with nothing run, where no such stack can be had.
template <typename Work>
void RunWithStack(std::size_t bytes, const Work& work) {
  if (StackLeft() >= StackNeeded(bytes)) return work();
  const auto on_deep_stack = [&](std::size_t) { work(); };
  if (!RunOnDeepStack(std::ref(on_deep_stack))) throw std::bad_alloc();
}

// Compiles up to the first zero byte; the engine takes no length.
HostBoolean CompileText(RegExClassData& data, const char* pattern) {
  int error_code = 0;
  const char* error_text = nullptr;
  int error_offset = 0;
  const int options = OptionsFor(data, pattern);
  // Reading the pattern may have run the program, which may have compiled one and searched with it.
  const Forgotten meanwhile = ForgetPattern(data);
  RunWithStack(std::string_view(pattern).size(), [&] {
    data.Handle = pcre_compile2(pattern, options, &error_code, &error_text, &error_offset, nullptr);
  });
  const bool compiled = data.Handle != nullptr;
  data.CompileErrorCode = error_code;
  StoreMessage(data, error_text);
  data.ErrorOffset = error_offset;
  return compiled;
}

}  // namespace

HostBoolean rb_pcre_compile2(RegExClassData& data, REALstringStruct* pattern) {
  const Forgotten earlier = ForgetPattern(data);
  rbText text(pattern);
  return CompileText(data, text.UTF8().data());
}

HostBoolean rb_pcre_compileM(RegExClassData& data, REALmemoryBlockStruct* pattern,
                             HostInteger ByteOffset) {
  const Forgotten earlier = ForgetPattern(data);
  const rbData block(pattern);
  const std::string_view bytes = block.bytes();
  if (bytes.data() == nullptr) {
    RaiseException("NilObjectException", "pattern Memoryblock is nil");
    return false;
  }
  const auto size = static_cast<std::int64_t>(bytes.size());
  if (ByteOffset < 0 || ByteOffset >= size) {
    RaiseOutOfBoundsException(ByteOffset, 0, size - 1, "ByteOffset", "CompileMemory");
    return false;
  }
  const std::string_view text = bytes.substr(static_cast<std::size_t>(ByteOffset));
  if (std::ranges::find(text, '\0') != text.end()) return CompileText(data, text.data());
  return CompileText(data, std::string(text).c_str());
}

// The earlier study goes only when the new one is there: one that cannot be had changes nothing.
HostBoolean rb_pcre_study(RegExClassData& data) {
  const StringReference earlier_message = ClearErrorMessage(data);
  if (data.Handle == nullptr) return false;
  const char* error_text = nullptr;
  std::size_t compiled_bytes = 0;
  pcre_fullinfo(data.Handle, nullptr, PCRE_INFO_SIZE, &compiled_bytes);
  pcre_extra* study = nullptr;
  RunWithStack(compiled_bytes, [&] { study = pcre_study(data.Handle, 0, &error_text); });
  if (data.StudyExtra != nullptr) pcre_free_study(data.StudyExtra);
  data.StudyExtra = study;
  StoreMessage(data, error_text);
  return error_text == nullptr || study != nullptr;
}

}  // namespace zrk
