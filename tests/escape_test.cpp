// Text as a pattern that matches it literally, and back.
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "tests/session.h"
#include "tests/texts.h"

namespace {

using namespace std::string_view_literals;
using namespace tests;

struct Row {
  const char* method;
  std::string_view text, result;
};
constexpr Row kRows[] = {
    // A backslash before fourteen characters ...
    {"Escape", "", ""},
    {"Escape", "a.b*c", "a\\.b\\*c"},
    {"Escape", "$()*+.?[\\]^{|}", "\\$\\(\\)\\*\\+\\.\\?\\[\\\\\\]\\^\\{\\|\\}"},
    {"Escape", " !\"#%&',-/:;<=>@_`~\t\n", " !\"#%&',-/:;<=>@_`~\t\n"},
    {"Escape", "é.€", "é\\.€"},
    {"Escape", "a\0.b"sv, "a\0\\.b"sv},
    {"Escape", "\xFF.\x80", "\xFF\\.\x80"},
    // ... and every one away again, whatever stands behind it; at the end, that is a zero byte.
    {"Unescape", "", ""},
    {"Unescape", "a\\\\b", "a\\b"},
    {"Unescape", "\\n", "n"},
    {"Unescape", "\\x41\\101\\Q", "x41101Q"},
    {"Unescape", "\\\\\\.", "\\."},
    {"Unescape", "abc\\", "abc\0"sv},
    {"Unescape", "\\é\\", "é\0"sv},
    {"Unescape", "a\0\\b"sv, "a\0b"sv},
    {"Unescape", "\\\0b"sv, "\0b"sv},
};

// Neither method needs a vector, or touches Lasterror.
TEST(Escape, PutsABackslashBeforeFourteenCharactersAndUnescapeDropsAll) {
  for (auto options : HostKinds()) {
    options.terminate_string_data = options.direct_storage;
    SCOPED_TRACE(NameOf(options));
    Session session(options);
    const Object regex = session.host.NewUninitialised("RegExZRK");
    regex.Get("InfoSize");  // leaves an error behind
    for (const Row& row : kRows) {
      SCOPED_TRACE(testing::Message() << row.method << ' ' << row.text);
      const Value result = regex.Call(row.method, {Value(row.text)});
      EXPECT_EQ(result.Bytes(), row.result);
      EXPECT_EQ(result.IsNil(), row.result.empty());
      EXPECT_TRUE(result.IsNil() || result.Encoding() == zrk::kEncodingUTF8);
      EXPECT_EQ(regex.Get("Lasterror").Integer(), -99);
    }
  }
}

// Every byte but the zero, which ends a pattern, at sizes around the block in which text is
// escaped.
TEST(Escape, IsUndoneByUnescapeAndMatchesTheTextItself) {
  std::string bytes;
  while (bytes.size() < 255) bytes += static_cast<char>(bytes.size() + 1);
  const std::string special = "$()*+.?[\\]^{|}";
  Session session;
  const Object regex = session.New();
  regex.Set("CompileOptionUTF8", false);
  for (const std::string& unit : {bytes, special}) {
    for (const std::size_t size : {1U, 2U, 255U, 4095U, 4096U, 4097U, 8192U, 20000U}) {
      const std::string text = Filled(unit, size);
      const Value escaped = regex.Call("Escape", {text});
      EXPECT_EQ(regex.Call("Unescape", {escaped}).Bytes(), text) << size;
      ASSERT_TRUE(regex.Call("Compile", {"\\A" + escaped.Bytes() + "\\z"}).Boolean()) << size;
      EXPECT_EQ(regex.Call("Execute", {text}).Integer(), 1) << size;
    }
  }
}

}  // namespace
