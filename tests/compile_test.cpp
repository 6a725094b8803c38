// Compile and Study: what they answer, what they keep and what they forget.
#include <gtest/gtest.h>
#include <pcre.h>

#include <cstdint>
#include <cstring>
#include <string>

#include "tests/calls.h"
#include "tests/session.h"

namespace {

using namespace std::string_literals;
using namespace tests;

// What a compile came to, such as `14 at 2 "missing )"`; the code is 0 where it succeeded.
std::string Line(int code, int offset, const std::string& message) {
  return std::to_string(code) + " at " + std::to_string(offset) + " \"" + message + '"';
}

std::string CompileDirectly(const std::string& pattern, unsigned options) {
  int code = 0;
  int offset = 0;
  const char* message = nullptr;
  pcre* const compiled =
      pcre_compile2(pattern.c_str(), static_cast<int>(options), &code, &message, &offset, nullptr);
  if (compiled != nullptr) pcre_free(compiled);
  return Line(code, offset, message != nullptr ? message : "");
}

std::string Compile(const Object& regex, const std::string& pattern) {
  const bool compiled = regex.Call("Compile", {pattern}).Boolean();
  // No property shows the engine's code; it is the record's second field.
  std::int32_t code;
  std::memcpy(&code, static_cast<const char*>(regex.InstanceData()) + 4, sizeof code);
  EXPECT_EQ(compiled, code == 0);
  EXPECT_EQ(compiled, regex.Get("Handle").Integer() != 0);
  return Line(code, regex.Get("ErrorOffset").Integer(), regex.Get("ErrorMessage").UTF8());
}

TEST(Compile, AnswersWhatTheEngineDoes) {
  constexpr unsigned kUnchecked = PCRE_UTF8 | PCRE_NO_UTF8_CHECK;
  struct Row {
    std::string pattern;
    unsigned options = kUnchecked | PCRE_UNGREEDY;
    unsigned of_engine = options;
  };
  const Row rows[] = {
      {""},
      {"(a+)(?<n>b)"},
      // Refusals: the offset counts bytes, also behind other characters.
      {"ab("},
      {"äö("},
      // A zero byte ends the pattern.
      {"ab\0("s},
      // The options are the script's own, also those that the engine refuses.
      {"(?<n>a)(?<n>b)"},
      {"(?<n>a)(?<n>b)", PCRE_DUPNAMES},
      {"\xE4(", 0},
      {"\xE4", PCRE_UTF8},
      {"a", 0x80000000},
      {"a", 0xFFFFFFFF},
      // Told not to check, the engine would trust these bytes and leave its tables, or write code
      // that it cannot read back; a broken character that was repeated hung it.
      {"\\p{Lu}\xFD\x80\x80\x80\x80\x80", kUnchecked, PCRE_UTF8},
      {"a\xB8*", kUnchecked, PCRE_UTF8},
      {"\xC3\xA4\xA4\xA4\xA4\xA4\xA4\xA4\xA4\xA4\xA4\xA4\xA4\xA4\xA4\xA4*", kUnchecked, PCRE_UTF8},
      // Wrong, yet harmless: unchecked as the script wants it.
      {"a\xED\xA0\x80", kUnchecked},
      {"a\xF4\x8F\xBF\xBF", kUnchecked},
      {"a\xC0\x80", kUnchecked},
      // Bytes that are no UTF-8 at all to the engine.
      {"\xFD\xFF", PCRE_NO_UTF8_CHECK},
  };
  OnEachHost([&](Session& session) {
    const Object regex = session.New();
    for (const Row& row : rows) {
      const auto options = static_cast<std::int32_t>(row.options);
      regex.Set("CompileOptions", options);
      EXPECT_EQ(Compile(regex, row.pattern), CompileDirectly(row.pattern, row.of_engine))
          << testing::PrintToString(row.pattern);
      EXPECT_EQ(regex.Get("CompileOptions").Integer(), options);
    }
  });
}

TEST(Compile, ForgetsTheSubjectAndKeepsTheNumbers) {
  OnEachHost([](Session& session) {
    const Object regex = session.Compiled("(a)b");
    for (const bool compiles : {true, false}) {
      EXPECT_EQ(Try(regex, "Execute", {"xab"}), "2 err=0");
      EXPECT_EQ(regex.Call("Compile", {compiles ? "(a)b" : "("}).Boolean(), compiles);
      EXPECT_TRUE(regex.Get("Text").IsNil());
      EXPECT_EQ(regex.Get("Count").Integer(), 2);
      EXPECT_EQ(Try(regex, "Offset", {3}), "2 err=0");
    }
    EXPECT_EQ(regex.Get("ErrorMessage").Encoding(), zrk::kEncodingASCII);
    EXPECT_EQ(Describe(regex, regex.Call("Execute", {"ab"}).Integer()), "0 err=-99");
    EXPECT_TRUE(regex.Get("Text").IsNil()) << "without a pattern nothing is kept";
    EXPECT_TRUE(regex.Get("ErrorMessage").IsNil()) << "an execute drops the message";
  });
}

TEST(Study, HoldsForOnePattern) {
  OnEachHost([](Session& session) {
    const Object regex = session.New();
    EXPECT_EQ(Try(regex, "Study"), "false err=0");
    regex.Call("Compile", {"("});
    EXPECT_EQ(Try(regex, "Study"), "false err=0");
    EXPECT_TRUE(regex.Get("ErrorMessage").IsNil());
    regex.Call("Compile", {"(?:ab|cd)+x"});
    regex.Call("Execute", {"..abcdx"});
    for (int times = 0; times < 2; ++times) {
      EXPECT_EQ(Try(regex, "Study"), "true err=0");
      EXPECT_GT(regex.Get("InfoStudySize").Integer(), 0);
    }
    EXPECT_EQ(Try(regex, "Substring", {0}), "\"abcdx\" err=0") << "the subject survives a study";
    EXPECT_EQ(Try(regex, "Execute"), "1 err=0");
    regex.Call("Compile", {".*"});
    EXPECT_EQ(regex.Get("InfoStudySize").Integer(), 0) << "a compile drops the study";
    EXPECT_EQ(Try(regex, "Study"), "true err=0") << "nothing to learn is no failure";
  });
}

}  // namespace
