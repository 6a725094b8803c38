// Options, facts about the pattern, and facts about the engine.
#include <gtest/gtest.h>
#include <pcre.h>

#include <cstdint>
#include <map>
#include <string>
#include <utility>

#include "tests/calls.h"
#include "tests/session.h"

namespace {

using namespace tests;

// By name and value as scripts know them, not by the engine's header.
const std::map<std::string, std::uint32_t> kOptions = {
    {"CompileOptionCaseLess", 0x1},
    {"CompileOptionMultiline", 0x2},
    {"CompileOptionDotAll", 0x4},
    {"CompileOptionExtended", 0x8},
    {"CompileOptionAnchored", 0x10},
    {"ExecuteOptionAnchored", 0x10},
    {"CompileOptionDollarEndOnly", 0x20},
    {"ExecuteOptionNotBOL", 0x80},
    {"ExecuteOptionNotEOL", 0x100},
    {"CompileOptionUngreedy", 0x200},
    {"ExecuteOptionNotEmpty", 0x400},
    {"CompileOptionUTF8", 0x800},
    {"CompileOptionNoAutoCapture", 0x1000},
    {"CompileOptionNoUTF8Check", 0x2000},
    {"ExecuteOptionNoUTF8Check", 0x2000},
    {"CompileOptionAutoCallOut", 0x4000},
    {"ExecuteOptionPartial", 0x8000},
    {"CompileOptionFirstLine", 0x40000},
    {"CompileOptionDuplicateNames", 0x80000},
    {"CompileOptionNewLineCR", 0x100000},
    {"CompileOptionNewLineLF", 0x200000},
    {"CompileOptionNewLineCRLF", 0x300000},
    {"CompileOptionNewLineAny", 0x400000},
    {"CompileOptionNewLineAnyCRLF", 0x500000},
    {"ExecuteOptionNewLineCR", 0x100000},
    {"ExecuteOptionNewLineLF", 0x200000},
    {"ExecuteOptionNewLineCRLF", 0x300000},
    {"ExecuteOptionNewLineAny", 0x400000},
    {"ExecuteOptionNewLineAnyCRLF", 0x500000},
    {"CompileOptionBSRAnyCRLF", 0x800000},
    {"ExecuteOptionBSRAnyCRLF", 0x800000},
    {"CompileOptionBSRUnicode", 0x1000000},
    {"ExecuteOptionBSRUnicode", 0x1000000},
    {"CompileOptionJavaScriptCompat", 0x2000000},
    {"ExecuteOptionNoStartOptimize", 0x4000000},
    {"CompileOptionNoStartOptimize", 0x4000000},
    {"ExecuteOptionPartialHard", 0x8000000},
    {"ExecuteOptionNotEmptyAtStart", 0x10000000},
    {"CompileOptionUnicodeCodePoints", 0x20000000},
};

std::uint32_t Word(const Object& regex, const char* word) {
  return static_cast<std::uint32_t>(regex.Get(word).Integer());
}

// The getter answers for any of an option's bits, the setter sets or clears all of them: the two
// differ for newline options of two bits.
TEST(Options, ReadAndWriteTheirBitsOnly) {
  Session session;
  const Object regex = session.New();
  for (const standin::Property& property : regex.class_info().properties()) {
    const std::string& name = property.name;
    if (property.type.kind != Kind::kBoolean) continue;
    ASSERT_TRUE(kOptions.contains(name)) << "no row above for " << name;
    const std::uint32_t option = kOptions.at(name);
    const bool for_compile = name.starts_with("Compile");
    const char* const own = for_compile ? "CompileOptions" : "ExecuteOptions";
    const char* const other = for_compile ? "ExecuteOptions" : "CompileOptions";
    regex.Set(other, 0x55555555);
    for (int bit = 0; bit < 32; ++bit) {
      for (const std::uint32_t word : {std::uint32_t{1} << bit, ~(std::uint32_t{1} << bit)}) {
        SCOPED_TRACE(testing::Message() << name << " on " << word);
        regex.Set(own, static_cast<std::int32_t>(word));
        EXPECT_EQ(regex.Get(name).Boolean(), (word & option) != 0);
        regex.Set(name, true);
        EXPECT_EQ(Word(regex, own), word | option);
        regex.Set(name, false);
        EXPECT_EQ(Word(regex, own), word & ~option);
      }
    }
    EXPECT_EQ(Word(regex, other), 0x55555555U) << name;
  }
}

TEST(Info, TellsAboutTheCompiledPattern) {
  Session session;
  const Object regex = session.New();
  const auto ask = [&](const char* property) {
    regex.Call("ConfigLinkSize");  // leaves 0 in Lasterror
    const int answer = regex.Get(property).Integer();
    return std::pair(answer, regex.Get("Lasterror").Integer());
  };
  for (const char* name : {"InfoStudySize", "InfoSize", "InfoCaptureCount", "InfoNameCount"}) {
    EXPECT_EQ(ask(name), std::pair(0, -99)) << name;
  }
  EXPECT_TRUE(regex.Call("Compile", {"(a)(?<x>b)(?<y>c)"}).Boolean());
  EXPECT_EQ(ask("InfoCaptureCount"), std::pair(3, 0));
  EXPECT_EQ(ask("InfoNameCount"), std::pair(2, 0));
  const auto size = ask("InfoSize");
  EXPECT_TRUE(regex.Call("Compile", {"(a)(?<x>b)(?<y>cc)"}).Boolean());
  EXPECT_GT(ask("InfoSize"), size);
}

TEST(Config, TellsHowTheEngineWasBuilt) {
  struct Row {
    const char* method;
    int item;
  };
  constexpr Row kRows[] = {
      {"ConfigUTF8", PCRE_CONFIG_UTF8},
      {"ConfigNewLine", PCRE_CONFIG_NEWLINE},
      {"ConfigLinkSize", PCRE_CONFIG_LINK_SIZE},
      {"ConfigMallocThreshold", PCRE_CONFIG_POSIX_MALLOC_THRESHOLD},
      {"ConfigMatchLimit", PCRE_CONFIG_MATCH_LIMIT},
      {"ConfigStackRecurse", PCRE_CONFIG_STACKRECURSE},
      {"ConfigUnicodeProperties", PCRE_CONFIG_UNICODE_PROPERTIES},
      {"ConfigMatchLimitRecursion", PCRE_CONFIG_MATCH_LIMIT_RECURSION},
      {"ConfigBSR", PCRE_CONFIG_BSR},
  };
  Session session;
  const Object regex = session.New();
  for (const Row& row : kRows) {
    unsigned long value = 0;  // the limits fill it, the others its low half
    EXPECT_EQ(pcre_config(row.item, &value), 0);
    const auto expected = static_cast<std::int32_t>(value);
    regex.Get("InfoSize");  // leaves an error behind
    const Value answer = regex.Call(row.method);
    const bool truth = answer.kind() == Kind::kBoolean;
    EXPECT_EQ(Show(answer), Show(truth ? Value(expected != 0) : Value(expected))) << row.method;
    EXPECT_EQ(regex.Get("Lasterror").Integer(), 0) << row.method;
  }
  EXPECT_EQ(regex.Call("Version").Bytes(), pcre_version());
  EXPECT_EQ(regex.Call("Version").Encoding(), zrk::kEncodingASCII);
}

}  // namespace
