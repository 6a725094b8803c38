// Options, facts about the pattern, and facts about the engine.
#include <gtest/gtest.h>
#include <pcre.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/session.h"

namespace {

using namespace tests;

constexpr std::uint32_t kCompileDefault = 0x2A00;
constexpr std::uint32_t kExecuteDefault = 0x2000;

struct Option {
  const char* name;
  std::uint32_t value;

  bool IsForCompile() const { return *name == 'C'; }
  const char* word() const { return IsForCompile() ? "CompileOptions" : "ExecuteOptions"; }
};

// By name and value as scripts know them, not by the engine's header.
constexpr Option kOptions[] = {
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

TEST(Options, AreAllListedAbove) {
  Session session;
  for (const standin::Property& property : session.host.FindClass("RegExZRK")->properties()) {
    if (property.type.kind != Kind::kBoolean) continue;
    EXPECT_TRUE(std::ranges::any_of(
        kOptions, [&](const Option& option) { return option.name == property.name; }))
        << "no row above for " << property.name;
  }
}

// The getter answers for any of an option's bits, the setter sets or clears all of them: the two
// differ for newline options of two bits.
TEST(Options, ReadAndWriteTheirBitsOnly) {
  std::vector<std::uint32_t> words = {0, kCompileDefault, kExecuteDefault, 0xFFFFFFFF};
  for (int bit = 0; bit < 32; ++bit) words.push_back(std::uint32_t{1} << bit);
  OnEachHost([&](Session& session) {
    const Object regex = session.New();
    for (const Option& option : kOptions) {
      const char* const other = option.IsForCompile() ? "ExecuteOptions" : "CompileOptions";
      regex.Set(other, 0x55555555);
      for (const std::uint32_t word : words) {
        SCOPED_TRACE(testing::Message() << option.name << " on " << word);
        regex.Set(option.word(), static_cast<std::int32_t>(word));
        EXPECT_EQ(regex.Get(option.name).Boolean(), (word & option.value) != 0);
        regex.Set(option.name, true);
        EXPECT_EQ(Word(regex, option.word()), word | option.value);
        regex.Set(option.name, false);
        EXPECT_EQ(Word(regex, option.word()), word & ~option.value);
      }
      EXPECT_EQ(Word(regex, other), 0x55555555U);
    }
  });
}

// Each option alone, through a compile and a match, must do what it does in the engine itself.
TEST(Options, ReachTheEngine) {
  struct Row {
    const char* pattern;
    const char* subject;
  };
  constexpr Row kRows[] = {
      {"^a+ b$", "\rAaa b\n"}, {"(?<n>a)(.)b*", "xa\nbb"}, {"\\w+\\R$", "äz\r\n"}, {"b*", "abb"},
      {"\\Aab", "abc"},        {"[]a]|(z)", "]"},          {"a.c$", "abäc\r\n"},
  };
  Session session;
  for (const Option& option : kOptions) {
    for (const bool value : {true, false}) {
      for (const Row& row : kRows) {
        SCOPED_TRACE(testing::Message() << option.name << ' ' << value << ": " << row.pattern);
        const Object regex = session.New();
        regex.Set(option.name, value);
        std::uint32_t compile = kCompileDefault;
        std::uint32_t execute = kExecuteDefault;
        std::uint32_t& word = option.IsForCompile() ? compile : execute;
        word = value ? word | option.value : word & ~option.value;
        const std::string direct =
            tests::DescribeDirectly(row.pattern, row.subject, 0, compile, execute);
        if (!regex.Call("Compile", {row.pattern}).Boolean()) {
          EXPECT_EQ(regex.Get("ErrorMessage").UTF8(), direct);
          continue;
        }
        const int result = regex.Call("Execute", {row.subject}).Integer();
        EXPECT_EQ(tests::Describe(regex, result), direct);
      }
    }
  }
}

TEST(Info, TellsAboutTheCompiledPattern) {
  OnEachHost([](Session& session) {
    const Object regex = session.New();
    for (const char* name : {"InfoStudySize", "InfoSize", "InfoCaptureCount", "InfoNameCount"}) {
      regex.Call("ConfigLinkSize");  // leaves 0 in Lasterror
      EXPECT_EQ(regex.Get(name).Integer(), 0) << name;
      EXPECT_EQ(regex.Get("Lasterror").Integer(), -99) << name;
    }
    ASSERT_TRUE(regex.Call("Compile", {"(a)(?<x>b)(?<y>c)"}).Boolean());
    EXPECT_EQ(regex.Get("InfoCaptureCount").Integer(), 3);
    EXPECT_EQ(regex.Get("Lasterror").Integer(), 0);
    EXPECT_EQ(regex.Get("InfoNameCount").Integer(), 2);
    const int size = regex.Get("InfoSize").Integer();
    ASSERT_TRUE(regex.Call("Compile", {"(a)(?<x>b)(?<y>cc)"}).Boolean());
    EXPECT_GT(regex.Get("InfoSize").Integer(), size);
  });
}

TEST(Config, TellsHowTheEngineWasBuilt) {
  struct Row {
    const char* method;
    int item;
    bool is_boolean, is_long;
  };
  constexpr Row kRows[] = {
      {"ConfigUTF8", 0, true, false},
      {"ConfigNewLine", 1, false, false},
      {"ConfigLinkSize", 2, false, false},
      {"ConfigMallocThreshold", 3, false, false},
      {"ConfigMatchLimit", 4, false, true},
      {"ConfigStackRecurse", 5, true, false},
      {"ConfigUnicodeProperties", 6, true, false},
      {"ConfigMatchLimitRecursion", 7, false, true},
      {"ConfigBSR", 8, true, false},
  };
  OnEachHost([&](Session& session) {
    const Object regex = session.New();
    for (const Row& row : kRows) {
      SCOPED_TRACE(row.method);
      int number = 0;
      unsigned long large = 0;
      EXPECT_EQ(row.is_long ? pcre_config(row.item, &large) : pcre_config(row.item, &number), 0);
      const long expected = row.is_long ? static_cast<long>(large) : number;
      regex.Get("InfoSize");  // leaves an error behind
      const auto answer = regex.Call(row.method);
      EXPECT_EQ(regex.Get("Lasterror").Integer(), 0);
      if (row.is_boolean) {
        EXPECT_EQ(answer.Boolean(), expected != 0);
      } else {
        EXPECT_EQ(answer.Integer(), expected);
      }
    }
    EXPECT_EQ(regex.Call("Version").Bytes(), pcre_version());
    EXPECT_EQ(regex.Call("Version").Encoding(), zrk::kEncodingASCII);
  });
}

}  // namespace
