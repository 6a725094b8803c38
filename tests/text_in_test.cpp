// How host strings reach the engine: the same text from every encoding on every host, in place
// where that will do, and as the empty text where it cannot be had.
#include <gtest/gtest.h>

#include <cstdint>
#include <set>
#include <string>
#include <string_view>

#include "tests/session.h"
#include "tests/texts.h"

namespace {

using standin::Fault;
using namespace tests;

// A text, and what the host is asked to convert for it below 2012, below 2017 and from then on:
// nothing (-), the string (S) or its data on request (R).
struct Spelling {
  std::uint32_t encoding;
  std::string bytes;
  const char* utf8;
  std::string_view conversions;
};
const Spelling kSpellings[] = {
    {zrk::kEncodingMacRoman, "Gr\237\247e", "Grüße", "SRR"},
    {zrk::kEncodingUTF16, Bytes<char16_t>(u"Gr\u00FC\u00DFe"), "Grüße", "SRR"},
    {zrk::kEncodingISOLatin1, "Gr\374\337e", "Grüße", "SRR"},
    {zrk::kEncodingWindowsLatin1, "Gr\374\337e", "Grüße", "SRR"},
    {zrk::kEncodingUnknown, "Gr\237\247e", "Grüße", "SRR"},  // read as Mac Roman
    {zrk::kEncodingUTF32, Bytes<char32_t>(U"Gr\u00FC\u00DFe"), "Grüße", "SRR"},
    {zrk::kEncodingUTF8, "Grüße", "Grüße", "--R"},
    {zrk::kEncodingASCII, "Gruss", "Gruss", "---"},
    {zrk::kEncodingUTF8, "Gruss", "Gruss", "---"},
    {zrk::kEncodingMacRoman, "Gruss", "Gruss", "---"},
    {zrk::kEncodingISOLatin1, "Gruss", "Gruss", "---"},
    {zrk::kEncodingWindowsLatin1, "Gruss", "Gruss", "---"},
    {zrk::kEncodingUnknown, "Gruss", "Gruss", "---"},
    {zrk::kEncodingUTF16, Bytes<char16_t>(u"Gruss"), "Gruss", "SRR"},
    {zrk::kEncodingUTF8, "", "", "---"},
    {zrk::kEncodingUnknown, "", "", "---"},
    {zrk::kEncodingUTF16, "", "", "SRR"},
    // Past the basic plane, and a length that is no whole number of units.
    {zrk::kEncodingUTF16, Bytes<char16_t>(u"\U0001F600"), "😀", "SRR"},
    {zrk::kEncodingUTF32, Bytes<char32_t>(U"\U0001F600"), "😀", "SRR"},
    {zrk::kEncodingUTF16, Bytes<char16_t>(u"ab") + "c", "ab�", "SRR"},
};

constexpr const char* kAll = "(?s)\\A.*\\z";

// Up to its end each text is the subject of the one object and the pattern of the other. A pattern
// ends at its zero byte, so a missing one would show.
void ExpectAllSpellingsToRead(Session& session) {
  const Object whole = session.Compiled(kAll);
  const Object pattern = session.New();
  const double version = *session.host.options().version;
  for (const Spelling& spelling : kSpellings) {
    SCOPED_TRACE(testing::Message() << std::hex << spelling.encoding << ' ' << spelling.utf8);
    const Value text = session.host.String(spelling.bytes, spelling.encoding);
    const std::string expected = DescribeDirectly(kAll, spelling.utf8);
    const auto requests = session.host.Calls("PluginGetStringData");
    const auto strings = session.host.Calls("REALConvertString");
    const auto built = session.host.Calls("REALBuildString");
    const int result = whole.Call("Execute", {text}).Integer();
    const bool rebuilt =
        spelling.encoding == zrk::kEncodingUnknown && spelling.bytes != spelling.utf8;
    EXPECT_EQ(session.host.Calls("REALBuildString") - built, rebuilt ? 1U : 0U);
    EXPECT_EQ(Describe(whole, result), expected);
    EXPECT_EQ(whole.Call("Execute", {0}).Integer(), 1);
    const char how = spelling.conversions[version < 2012 ? 0 : version < 2017 ? 1 : 2];
    EXPECT_EQ(session.host.Calls("PluginGetStringData") - requests, how == 'R' ? 1U : 0U);
    EXPECT_EQ(session.host.Calls("REALConvertString") - strings, how == 'S' ? 1U : 0U);
    EXPECT_EQ(whole.Get("Text").handle(), text.handle()) << "the subject is kept as it came";
    EXPECT_TRUE(pattern.Call("Compile", {text}).Boolean());
    EXPECT_EQ(Describe(pattern, pattern.Call("Execute", {spelling.utf8}).Integer()), expected);
  }
}

TEST(TextIn, EveryEncodingReadsTheSameOnEveryHost) { OnEachHost(ExpectAllSpellingsToRead); }

TEST(TextIn, StringDataNeedsNoZeroByte) {
  for (const double version : {2012.0, 2017.0}) {
    Session session({.version = version, .terminate_string_data = false});
    ExpectAllSpellingsToRead(session);
  }
}

// Newer hosts say of such a text that its bytes are no characters.
TEST(TextIn, OtherBytesMarkedAsASCIIAreUTF8OnOlderHosts) {
  OnEachHost([](Session& session) {
    const Object regex = session.Compiled(kAll);
    regex.Call("Execute", {session.host.String("ü", zrk::kEncodingASCII)});
    const bool older = session.host.options().version < 2017;
    EXPECT_EQ(regex.Call("Substring", {0}).UTF8(), older ? "ü" : "��");
  });
}

TEST(TextIn, NullIsTheEmptyTextAndAsksNothingOfTheHost) {
  OnEachHost([](Session& session) {
    const Object regex = session.New();
    const Value null = Value::Nil(Kind::kString);
    EXPECT_TRUE(regex.Call("Compile", {null}).Boolean());
    EXPECT_EQ(Describe(regex, regex.Call("Execute", {null}).Integer()), "1 err=0 0-0 \"\"");
    const std::set<std::string> at_start = {"REALGetRBVersion", "RegisterPluginVersion",
                                            "PluginRegisterClass"};
    for (const std::string& service : standin::Host::ServiceNames()) {
      EXPECT_EQ(session.host.Calls(service), at_start.contains(service) ? 1U : 0U) << service;
    }
    EXPECT_TRUE(regex.Get("Text").IsNil());
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
        const Object regex = session.Compiled(kAll);
        const Value text = session.host.String(row.bytes, row.encoding);
        const bool fails = version >= row.fails_from && version < row.fails_below;
        EXPECT_EQ(regex.Call("Execute", {text}).Integer(), 1);
        EXPECT_EQ(regex.Call("Offset", {1}).Integer(), fails ? 0 : 2);
        EXPECT_EQ(regex.Get("Text").handle(), text.handle());
        if (fault.missing) continue;
        session.host.SetFault(row.service, {});
        regex.Call("Execute", {text});
        EXPECT_EQ(regex.Call("Offset", {1}).Integer(), 2) << "the host can again";
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
        SCOPED_TRACE(testing::Message() << encoding << ' ' << length);
        Value text = session.host.String("a\xC3\xA9", encoding);
        text.Claim(length);
        EXPECT_EQ(Describe(regex, regex.Call("Execute", {text}).Integer()), "1 err=0 0-0 \"\"");
        EXPECT_TRUE(regex.Call("Escape", {text}).IsNil());
        const Object compiled = session.New();
        EXPECT_TRUE(compiled.Call("Compile", {text}).Boolean());
        EXPECT_EQ(compiled.Call("Execute", {"zz"}).Integer(), 1) << "an empty pattern";
        text.Claim(3);
      }
    }
  });
}

}  // namespace
