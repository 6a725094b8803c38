// Strings are built from more encodings than any method has results in; these are the others.
#include <gtest/gtest.h>

#include <cstdint>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "host/references.h"
#include "host/state.h"
#include "standin/encoding.h"
#include "standin/host.h"
#include "tests/texts.h"
#include "text/build_string.h"

namespace {

using standin::Host;
using tests::Bytes;

// A host that the objects linked into this program are connected to.
struct Connected {
  explicit Connected(standin::HostOptions options) : host(std::move(options)) {
    zrk::ConnectHost(&Host::Resolve);
  }
  ~Connected() { EXPECT_EQ(host.Problems(), std::vector<std::string>{}); }
  Host host;
};

// What is built: `ASCII abc` by encoding and bytes, or `null`.
std::string Build(std::string_view bytes, std::uint32_t encoding) {
  const auto built = zrk::StringReference::Adopt(zrk::REALBuildUnicodeString(bytes, encoding));
  if (built.get() == nullptr) return "null";
  const standin::Value text(standin::Kind::kString, standin::Reference::Share(built.get()));
  return standin::EncodingName(text.Encoding()) + ' ' + text.Bytes();
}

constexpr double kVersions[] = {0.0, 2011.0, 2012.0, 2012.9, 2013.0, 2017.0};

TEST(BuildString, MarksOrConvertsByEncoding) {
  struct Row {
    std::uint32_t encoding;
    std::string bytes;
    const char* expected;
  };
  const Row rows[] = {
      {zrk::kEncodingMacRoman, "abc", "ASCII abc"},
      {zrk::kEncodingISOLatin1, "abc", "ASCII abc"},
      {zrk::kEncodingWindowsLatin1, "abc", "ASCII abc"},
      {zrk::kEncodingUnknown, "abc", "ASCII abc"},
      {zrk::kEncodingMacRoman, "a\x9F", "Mac Roman a\x9F"},
      {zrk::kEncodingUnknown, "a\xFC", "unknown a\xFC"},
      {zrk::kEncodingASCII, "a\xFC", "ASCII a\xFC"},
      {zrk::kEncodingUTF8, "\xFC", "UTF-8 \xFC"},  // nothing is checked
      {0x1234, "abc", "0x00001234 abc"},
      {zrk::kEncodingUTF16, Bytes<char16_t>(u"a\u00FC\U0001F600"), "UTF-8 aü😀"},
      {zrk::kEncodingUTF32, Bytes<char32_t>(U"a\u00FC\uFFFF\U00010000"), "UTF-8 aü\uFFFF𐀀"},
  };
  for (const double version : kVersions) {
    SCOPED_TRACE(version);
    const Connected connected({.version = version});
    for (const Row& row : rows) {
      SCOPED_TRACE(row.expected);
      EXPECT_EQ(Build(row.bytes, row.encoding), row.expected);
      EXPECT_EQ(Build("", row.encoding), "null");
      EXPECT_EQ(Build({"abc", 0x80000000}, row.encoding), "null");
    }
  }
}

// Hosts before 2013.0 cannot build from UTF-32, so it is converted by hand.
TEST(BuildString, ConvertsUTF32ByHand) {
  for (const double version : {2011.0, 2012.9}) {
    SCOPED_TRACE(version);
    const Connected connected({.version = version});
    EXPECT_EQ(Build(Bytes<char32_t>(U"a") + "xyz", zrk::kEncodingUTF32), "UTF-8 a");
    const std::u32string odd = {'a',        0xD800, 0xDFFF, 0x110000,
                                0xFFFFFFFF, 0xD7FF, 0xE000, 0x10FFFF};
    EXPECT_EQ(Build(Bytes<char32_t>(odd), zrk::kEncodingUTF32),
              "UTF-8 a\xEF\xBF\xBD\xEF\xBF\xBD\xED\x9F\xBF\xEE\x80\x80\xF4\x8F\xBF\xBF");
    // Every code point may need two units, in the small buffer and in the allocated one.
    std::u32string crowd;
    std::string expected = "UTF-8 ";
    for (const std::size_t count : {1U, 99U, 198U, 199U, 200U, 201U, 400U, 5000U}) {
      for (; crowd.size() < count; expected += "😀") crowd += U'\U0001F600';
      EXPECT_EQ(Build(Bytes<char32_t>(crowd), zrk::kEncodingUTF32), expected);
    }
    // A longer text would make more UTF-16 than a host string holds.
    EXPECT_EQ(Build({"a", INT32_MAX}, zrk::kEncodingUTF32), "null");
  }
}

// A service that answers null makes the result null, and whatever was built is given back.
TEST(BuildString, AHostThatFailsGetsNull) {
  struct Row {
    const char* service;
    std::uint32_t encoding;
    const char* failing;  // host versions
  };
  constexpr Row kRows[] = {
      {"REALBuildString", zrk::kEncodingUTF8, "0 2011 2012 2012.9 2013 2017 "},
      {"REALBuildString", zrk::kEncodingUTF16, "0 2011 "},
      {"REALBuildStringWithEncoding", zrk::kEncodingUTF16, "2012 2012.9 2013 2017 "},
      {"REALBuildStringWithEncoding", zrk::kEncodingUTF32, "2012 2012.9 2013 2017 "},
      {"REALConvertString", zrk::kEncodingUTF16, "0 2011 2012 2012.9 2013 2017 "},
      {"REALConvertString", zrk::kEncodingUTF32, "0 2011 2012 2012.9 2013 2017 "},
  };
  for (const Row& row : kRows) {
    std::ostringstream failing;
    for (const double version : kVersions) {
      const Connected connected(
          {.version = version, .faults = {{row.service, standin::Fault::AnswersNull()}}});
      if (Build("wordword", row.encoding) == "null") failing << version << ' ';
    }
    EXPECT_EQ(failing.str(), row.failing) << row.service << " for " << row.encoding;
  }
}

}  // namespace
