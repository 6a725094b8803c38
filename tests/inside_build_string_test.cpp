// Strings are built from more encodings than any method has results in; these are the others.
#include <gtest/gtest.h>

#include <cstdint>
#include <iterator>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "host/references.h"
#include "host/state.h"
#include "tests/session.h"
#include "text/build_string.h"

namespace {

using namespace standin;

// A host that the objects linked into this program are connected to.
struct Connected {
  explicit Connected(standin::HostOptions options) : host(std::move(options)) {
    zrk::rbversion = 0.0;
    zrk::ConnectHost(&Host::Resolve);
  }
  ~Connected() { EXPECT_EQ(host.Problems(), std::vector<std::string>{}); }
  Host host;
};

// `UTF-8 "abc"` by code and bytes, or "null"; gives the string back.
std::string Show(zrk::REALstringStruct* string) {
  const auto owned = zrk::StringReference::Adopt(string);
  if (string == nullptr) return "null";
  const char* const text = reinterpret_cast<const char*>(string->Buffer) + 1;
  std::ostringstream out;
  out << std::hex << string->Encoding << ' '
      << std::string_view(text, static_cast<std::size_t>(string->Length));
  return out.str();
}

template <typename Unit>
std::string Bytes(std::basic_string_view<Unit> text) {
  return {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(Unit)};
}

std::string Build(const std::string& bytes, std::uint32_t encoding) {
  return Show(zrk::REALBuildUnicodeString(bytes, encoding));
}

constexpr double kVersions[] = {0.0, 2011.0, 2012.0, 2012.9, 2013.0, 2017.0};

TEST(BuildString, MarksOrConvertsByEncoding) {
  struct Row {
    std::uint32_t encoding;
    std::string bytes;
    const char* expected;
  };
  const Row rows[] = {
      {zrk::kEncodingMacRoman, "abc", "600 abc"},
      {zrk::kEncodingISOLatin1, "abc", "600 abc"},
      {zrk::kEncodingWindowsLatin1, "abc", "600 abc"},
      {zrk::kEncodingUnknown, "abc", "600 abc"},
      {zrk::kEncodingMacRoman, "a\x9F", "0 a\x9F"},
      {zrk::kEncodingISOLatin1, "a\xFC", "201 a\xFC"},
      {zrk::kEncodingWindowsLatin1, "a\xFC", "500 a\xFC"},
      {zrk::kEncodingUnknown, "a\xFC", "ffff a\xFC"},
      {zrk::kEncodingASCII, "a\xFC", "600 a\xFC"},
      {zrk::kEncodingUTF8, "abc", "8000100 abc"},
      {zrk::kEncodingUTF8, "\xFC", "8000100 \xFC"},  // nothing is checked
      {0x1234, "abc", "1234 abc"},
      {zrk::kEncodingUTF16, Bytes<char16_t>(u"a\u00FC\U0001F600"), "8000100 aü😀"},
      {zrk::kEncodingUTF32, Bytes<char32_t>(U"a\u00FC\U0001F600"), "8000100 aü😀"},
  };
  for (const double version : kVersions) {
    SCOPED_TRACE(version);
    const Connected connected({.version = version});
    for (const Row& row : rows) {
      EXPECT_EQ(Build(row.bytes, row.encoding), row.expected);
      EXPECT_EQ(Build("", row.encoding), "null");
      EXPECT_EQ(zrk::REALBuildUnicodeString({"abc", 0x80000000}, row.encoding), nullptr);
      EXPECT_EQ(zrk::REALBuildUnicodeString({}, row.encoding), nullptr);
    }
  }
}

// Hosts before 2013.0 cannot build from UTF-32, so it is converted by hand.
TEST(BuildString, ConvertsUTF32ByHand) {
  const std::string crowd = "😀";
  for (const double version : {2011.0, 2012.0}) {
    SCOPED_TRACE(version);
    const Connected connected({.version = version});
    EXPECT_EQ(Build(Bytes<char32_t>(U"a") + "xyz", zrk::kEncodingUTF32), "8000100 a");
    const char32_t odd[] = {'a', 0xD800, 0xDFFF, 0x110000, 0xFFFFFFFF, 0xD7FF, 0xE000, 0x10FFFF};
    EXPECT_EQ(Build(Bytes<char32_t>({odd, std::size(odd)}), zrk::kEncodingUTF32),
              "8000100 a\xEF\xBF\xBD\xEF\xBF\xBD\xED\x9F\xBF\xEE\x80\x80\xF4\x8F\xBF\xBF");
    // Every code point may need two units, in the small buffer and in the allocated one.
    for (const std::size_t count : {1U, 99U, 198U, 199U, 200U, 201U, 400U, 5000U}) {
      std::string expected = "8000100 ";
      for (std::size_t i = 0; i < count; ++i) expected += crowd;
      EXPECT_EQ(Build(Bytes<char32_t>(std::u32string(count, U'\U0001F600')), zrk::kEncodingUTF32),
                expected);
    }
    // A longer text would make more UTF-16 than a host string holds.
    EXPECT_EQ(zrk::REALBuildUnicodeString({"a", INT32_MAX}, zrk::kEncodingUTF32), nullptr);
  }
}

// A service that answers null makes the result null, and whatever was built is given back.
TEST(BuildString, AHostThatFailsGetsNull) {
  struct Row {
    const char* service;
    std::uint32_t encoding;
    double from, below;  // host versions that fail
  };
  constexpr Row kRows[] = {
      {"REALBuildString", zrk::kEncodingUTF8, 0.0, 9999.0},
      {"REALBuildString", zrk::kEncodingUTF16, 0.0, 2012.0},
      {"REALBuildStringWithEncoding", zrk::kEncodingUTF16, 2012.0, 9999.0},
      {"REALBuildStringWithEncoding", zrk::kEncodingUTF32, 2012.0, 9999.0},
      {"REALConvertString", zrk::kEncodingUTF16, 0.0, 9999.0},
      {"REALConvertString", zrk::kEncodingUTF32, 0.0, 9999.0},
      {"REALConvertString", zrk::kEncodingUTF8, 0.0, 0.0},
  };
  for (const Row& row : kRows) {
    for (const double version : kVersions) {
      SCOPED_TRACE(testing::Message() << row.service << " on " << version);
      const Connected connected(
          {.version = version, .faults = {{row.service, Fault::AnswersNull()}}});
      const bool fails = version >= row.from && version < row.below;
      EXPECT_EQ(Build("wordword", row.encoding) == "null", fails) << row.encoding;
    }
  }
}

}  // namespace
