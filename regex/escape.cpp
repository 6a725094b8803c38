#include "regex/escape.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include "text/build_string.h"
#include "text/rb_text.h"

namespace zrk {

namespace {

constexpr char kEscape = '\\';
constexpr std::size_t kSpareBytes = 4;

constexpr std::array<bool, 256> kIsSpecial = [] {
  std::array<bool, 256> table{};
  for (const char special : std::string_view(R"($()*+.?[\]^{|})")) {
    table[static_cast<unsigned char>(special)] = true;
  }
  return table;
}();

// Has the processor fetch what is read next: of itself it fetches too little ahead of a loop that
// takes so long over a line of its cache.
void FetchAhead(std::string_view bytes) {
  constexpr std::size_t kCacheLine = 64;
  for (std::size_t at = 0; at < bytes.size(); at += kCacheLine) {
    __builtin_prefetch(bytes.data() + at);
  }
}

// Escapes a block into a buffer with room for twice its length and answers the bytes written. Every
// byte is written behind a backslash that the next write replaces where it was not needed, which
// keeps the loop free of branches.
std::size_t EscapeBlock(std::string_view block, char* out) {
  char* at = out;
  for (const char byte : block) {
    *at = kEscape;
    at += kIsSpecial[static_cast<unsigned char>(byte)] ? 1 : 0;
    *at++ = byte;
  }
  return static_cast<std::size_t>(at - out);
}

// A text that is longer than any string may be lacks memory like one that is only too long for what
// is left.
std::string WithRoomFor(std::size_t bytes) {
  std::string text;
  text.reserve(std::min(bytes + kSpareBytes, text.max_size()));
  return text;
}

}  // namespace

REALstringStruct* EscapeString(RegExClassData& /*data*/, REALstringStruct* text) {
  constexpr std::size_t kBlock = 512;
  rbText adapter(text);
  std::string_view rest = adapter.UTF8();
  // Prose has fewer special characters than one in eight; growing would copy all that is there,
  // 0.1 ns a byte of the 0.7 that escaping takes.
  std::string result = WithRoomFor(rest.size() + rest.size() / 8);
  std::array<char, 2 * kBlock> escaped;
  while (!rest.empty()) {
    const std::string_view block = rest.substr(0, kBlock);
    rest.remove_prefix(block.size());
    FetchAhead(rest.substr(0, kBlock));
    result.append(escaped.data(), EscapeBlock(block, escaped.data()));
  }
  return BuildUTF8(result);
}

REALstringStruct* UnescapeString(RegExClassData& /*data*/, REALstringStruct* text) {
  rbText adapter(text);
  const std::string_view escaped = adapter.UTF8();
  std::string result = WithRoomFor(escaped.size());
  for (std::size_t at = 0; at < escaped.size();) {
    const std::size_t backslash = std::min(escaped.find(kEscape, at), escaped.size());
    result.append(escaped, at, backslash - at);
    // The text's zero byte stands behind a backslash at the very end.
    if (backslash < escaped.size()) result.push_back(escaped.data()[backslash + 1]);
    at = backslash + 2;
  }
  return BuildUTF8(result);
}

}  // namespace zrk
