// How host strings reach the engine: the same text from every encoding on every host, in place
// where that will do, and as the empty text where it cannot be had.
#include <gtest/gtest.h>

#include <cstdint>
#include <set>
#include <string>
#include <string_view>

#include "tests/session.h"

namespace {

using standin::Fault;
using namespace tests;

template <typename Unit>
std::string Bytes(std::basic_string_view<Unit> text) {
  return {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(Unit)};
}

// "Grüße", and "Gruss" where an encoding has no more than ASCII.
struct Spelling {
  std::uint32_t encoding;
  std::string bytes;
  const char* utf8;
};
const char* const kUmlauts = "Grüße";
const Spelling kSpellings[] = {
    {zrk::kEncodingMacRoman, "Gr\237\247e", kUmlauts},
    {zrk::kEncodingUTF16, Bytes<char16_t>(u"Gr\u00FC\u00DFe"), kUmlauts},
    {zrk::kEncodingISOLatin1, "Gr\374\337e", kUmlauts},
    {zrk::kEncodingWindowsLatin1, "Gr\374\337e", kUmlauts},
    {zrk::kEncodingASCII, "Gruss", "Gruss"},
    {zrk::kEncodingUnknown, "Gr\237\247e", kUmlauts},  // read as Mac Roman
    {zrk::kEncodingUTF8, kUmlauts, kUmlauts},
    {zrk::kEncodingUTF32, Bytes<char32_t>(U"Gr\u00FC\u00DFe"), kUmlauts},
    // The other forms of ASCII text.
    {zrk::kEncodingMacRoman, "Gruss", "Gruss"},
    {zrk::kEncodingUTF16, Bytes<char16_t>(u"Gruss"), "Gruss"},
    {zrk::kEncodingWindowsLatin1, "Gruss", "Gruss"},
    {zrk::kEncodingUnknown, "Gruss", "Gruss"},
    // Past the basic plane, and a length that is no whole number of units.
    {zrk::kEncodingUTF16, Bytes<char16_t>(u"\U0001F600"), "😀"},
    {zrk::kEncodingUTF32, Bytes<char32_t>(U"\U0001F600"), "😀"},
    {zrk::kEncodingUTF16, Bytes<char16_t>(u"ab") + "c", "ab�"},
};

// The whole subject as the engine sees it.
std::string Seen(const Object& regex, const Value& subject) {
  EXPECT_EQ(regex.Call("Execute", {subject}).Integer(), 1);
  const std::string seen = regex.Call("Substring", {0}).Bytes();
  EXPECT_EQ(regex.Call("Offset", {1}).Integer(), static_cast<int>(seen.size()));
  return seen;
}

constexpr const char* kAll = "(?s)\\A.*\\z";

void ExpectAllSpellingsToRead(Session& session) {
  const Object whole = session.Compiled(kAll);
  const Object pattern = session.New();
  for (const Spelling& spelling : kSpellings) {
    SCOPED_TRACE(testing::Message() << std::hex << spelling.encoding << ' ' << spelling.utf8);
    const Value text = session.host.String(spelling.bytes, spelling.encoding);
    EXPECT_EQ(Seen(whole, text), spelling.utf8);
    EXPECT_EQ(whole.Get("Text").handle(), text.handle()) << "the subject is kept as it came";
    // A pattern ends at its zero byte, so a missing one would show here.
    EXPECT_TRUE(pattern.Call("Compile", {text}).Boolean());
    EXPECT_EQ(pattern.Call("Execute", {spelling.utf8}).Integer(), 1);
    EXPECT_EQ(pattern.Call("Offset", {1}).Integer(),
              static_cast<int>(std::string_view(spelling.utf8).size()));
  }
}

TEST(TextIn, EveryEncodingReadsTheSameOnEveryHost) { OnEachHost(ExpectAllSpellingsToRead); }

TEST(TextIn, StringDataNeedsNoZeroByte) {
  for (const double version : {2012.0, 2017.0}) {
    Session session({.version = version, .terminate_string_data = false});
    ExpectAllSpellingsToRead(session);
  }
}

struct Conversions {
  std::uint64_t by_request;  // "PluginGetStringData"
  std::uint64_t by_string;   // "REALConvertString"
  bool operator==(const Conversions&) const = default;
};

Conversions ConversionsSoFar(const Session& session) {
  return {session.host.Calls("PluginGetStringData"), session.host.Calls("REALConvertString")};
}

TEST(TextIn, HostBuffersServeInPlaceWhereTheyCan) {
  struct Row {
    const char* what;
    std::uint32_t encoding;
    std::string bytes;
    Conversions on_2011, on_2016, on_2017;
  };
  constexpr Conversions kNone{0, 0}, kRequest{1, 0}, kString{0, 1};
  const Row rows[] = {
      {"ASCII", zrk::kEncodingASCII, "word", kNone, kNone, kNone},
      {"ASCII in UTF-8", zrk::kEncodingUTF8, "word", kNone, kNone, kNone},
      {"ASCII in Mac Roman", zrk::kEncodingMacRoman, "word", kNone, kNone, kNone},
      {"ASCII in Windows Latin-1", zrk::kEncodingWindowsLatin1, "word", kNone, kNone, kNone},
      {"ASCII in ISO Latin-1", zrk::kEncodingISOLatin1, "word", kNone, kNone, kNone},
      {"ASCII, unknown", zrk::kEncodingUnknown, "word", kNone, kNone, kNone},
      {"empty", zrk::kEncodingWindowsLatin1, "", kNone, kNone, kNone},
      {"UTF-8", zrk::kEncodingUTF8, "ü", kNone, kNone, kRequest},
      {"UTF-8 marked ASCII", zrk::kEncodingASCII, "ü", kNone, kNone, kRequest},
      {"Latin-1", zrk::kEncodingISOLatin1, "\xFC", kString, kRequest, kRequest},
      {"unknown", zrk::kEncodingUnknown, "\x9F", kString, kRequest, kRequest},
      {"UTF-16", zrk::kEncodingUTF16, Bytes<char16_t>(u"w"), kString, kRequest, kRequest},
  };
  for (const double version : {2011.0, 2016.0, 2017.0}) {
    Session session({.version = version});
    const Object regex = session.Compiled("");
    for (const Row& row : rows) {
      SCOPED_TRACE(testing::Message() << row.what << " on " << version);
      const Conversions before = ConversionsSoFar(session);
      regex.Call("Execute", {session.host.String(row.bytes, row.encoding)});
      // Whatever is asked of the kept subject later needs no second conversion.
      regex.Call("Execute", {0});
      regex.Call("OffsetCharacters", {1});
      regex.Call("Substring", {0});
      const Conversions after = ConversionsSoFar(session);
      EXPECT_EQ(
          (Conversions{after.by_request - before.by_request, after.by_string - before.by_string}),
          version < 2012.0   ? row.on_2011
          : version < 2017.0 ? row.on_2016
                             : row.on_2017);
    }
  }
}

TEST(TextIn, NullIsTheEmptyTextAndAsksNothingOfTheHost) {
  OnEachHost([](Session& session) {
    const Object regex = session.New();
    const Value null = Value::Nil(Kind::kString);
    EXPECT_TRUE(regex.Call("Compile", {null}).Boolean());
    EXPECT_EQ(regex.Call("Execute", {null}).Integer(), 1);
    EXPECT_EQ(regex.Call("Offset", {1}).Integer(), 0);
    const std::set<std::string> at_start = {"REALGetRBVersion", "RegisterPluginVersion",
                                            "PluginRegisterClass"};
    for (const std::string& service : standin::Host::ServiceNames()) {
      EXPECT_EQ(session.host.Calls(service), at_start.contains(service) ? 1U : 0U) << service;
    }
    EXPECT_TRUE(regex.Get("Text").IsNil());
    // Empty strings read the same, whatever their encoding.
    regex.Call("Compile", {"^$"});
    for (const Spelling& spelling : kSpellings) {
      const Value empty = session.host.String("", spelling.encoding);
      EXPECT_EQ(regex.Call("Execute", {empty}).Integer(), 1) << spelling.encoding;
    }
  });
}

// A text that cannot be had reads as empty, and nothing else changes.
TEST(TextIn, WhatCannotBeConvertedReadsAsEmpty) {
  struct Row {
    const char* service;
    std::uint32_t encoding;
    std::string bytes;
    double fails_from, fails_below;  // host versions
  };
  const std::string utf16 = Bytes<char16_t>(u"\u00FC");
  const Row rows[] = {
      {"PluginGetStringData", zrk::kEncodingISOLatin1, "\xFC", 2012.0, 9999.0},
      {"PluginGetStringData", zrk::kEncodingUTF16, utf16, 2012.0, 9999.0},
      {"PluginGetStringData", zrk::kEncodingUTF8, "ü", 2017.0, 9999.0},
      {"REALConvertString", zrk::kEncodingISOLatin1, "\xFC", 0.0, 2012.0},
      {"REALConvertString", zrk::kEncodingUTF8, "ü", 0.0, 0.0},
      {"REALBuildString", zrk::kEncodingUnknown, "\x9F", 0.0, 9999.0},
      {"REALSetStringEncoding", zrk::kEncodingUnknown, "\x9F", 0.0, 9999.0},
      // Taken for a single-byte text: looked at, found not to be ASCII, converted after all.
      {"REALGetStringEncoding", zrk::kEncodingUTF16, utf16, 0.0, 0.0},
  };
  for (const Row& row : rows) {
    for (const Fault& fault : {Fault::Missing(), Fault::AnswersNull()}) {
      for (const double version : {2011.0, 2012.0, 2016.0, 2017.0}) {
        SCOPED_TRACE(testing::Message() << row.service << (fault.missing ? " missing" : " failing")
                                        << ", " << row.encoding << " on " << version);
        Session session({.version = version, .faults = {{row.service, fault}}});
        const Object regex = session.New();
        const Value text = session.host.String(row.bytes, row.encoding);
        ASSERT_TRUE(regex.Call("Compile", {kAll}).Boolean());
        EXPECT_EQ(regex.Call("Execute", {text}).Integer(), 1);
        const bool fails = version >= row.fails_from && version < row.fails_below;
        EXPECT_EQ(regex.Call("Offset", {1}).Integer(), fails ? 0 : 2);
        EXPECT_EQ(regex.Get("Text").handle(), text.handle());
        if (fault.missing) continue;
        // Once the host can again, the same text is there.
        session.host.SetFault(row.service, {});
        regex.Call("Execute", {text});
        EXPECT_EQ(regex.Call("Offset", {1}).Integer(), 2);
      }
    }
  }
}

// A record that claims a negative length is an empty text: as it comes, and after a conversion.
TEST(TextIn, NegativeLengthsAreNone) {
  OnEachHost([](Session& session) {
    const Object regex = session.Compiled("^$");
    for (const std::uint32_t encoding :
         {zrk::kEncodingUTF8, zrk::kEncodingUnknown, zrk::kEncodingUTF16}) {
      for (const int length : {-1, -5, INT32_MIN}) {
        Value text = session.host.String("a\xC3\xA9", encoding);
        text.Claim(length);
        EXPECT_EQ(regex.Call("Execute", {text}).Integer(), 1) << encoding << ' ' << length;
        EXPECT_EQ(regex.Call("Offset", {1}).Integer(), 0);
        const Object compiled = session.New();
        EXPECT_TRUE(compiled.Call("Compile", {text}).Boolean());
        EXPECT_EQ(compiled.Call("Execute", {"zz"}).Integer(), 1) << "an empty pattern";
        EXPECT_TRUE(compiled.Call("Escape", {text}).IsNil());
        text.Claim(3);
      }
    }
  });
}

}  // namespace
