// Compile and Study: what they answer, what they keep and what they forget.
#include <gtest/gtest.h>
#include <pcre.h>

#include <cstdint>
#include <cstring>
#include <sstream>
#include <string>

#include "tests/session.h"

namespace {

using namespace std::string_literals;
using namespace tests;

// What a compile came to as one line, such as `code 14 at 2 "missing )"`.
std::string Line(bool compiled, int code, int offset, const std::string& message) {
  std::ostringstream line;
  line << (compiled ? "compiled" : "refused") << ", code " << code << " at " << offset << " \""
       << message << '"';
  return line.str();
}

std::string CompileDirectly(const std::string& pattern, unsigned options) {
  int code = 0;
  int offset = 0;
  const char* message = nullptr;
  pcre* const compiled =
      pcre_compile2(pattern.c_str(), static_cast<int>(options), &code, &message, &offset, nullptr);
  if (compiled != nullptr) pcre_free(compiled);
  return Line(compiled != nullptr, code, offset, message != nullptr ? message : "");
}

// No property shows the engine's code; it is the record's second field.
int CompileErrorCode(const Object& regex) {
  std::int32_t code;
  std::memcpy(&code, static_cast<const char*>(regex.InstanceData()) + 4, sizeof code);
  return code;
}

std::string Compile(const Object& regex, const std::string& pattern) {
  const bool compiled = regex.Call("Compile", {pattern}).Boolean();
  EXPECT_EQ(regex.Get("Handle").Integer() != 0, compiled);
  return Line(compiled, CompileErrorCode(regex), regex.Get("ErrorOffset").Integer(),
              regex.Get("ErrorMessage").UTF8());
}

TEST(Compile, AnswersWhatTheEngineDoes) {
  struct Row {
    std::string pattern;
    std::int32_t options = PCRE_UNGREEDY | PCRE_UTF8 | PCRE_NO_UTF8_CHECK;
  };
  const Row rows[] = {
      {""},
      {"a+b"},
      {"(a)(?<n>b)"},
      {"(?(?<=x)y|z)"},
      // Refusals: the offset counts bytes, also behind other characters.
      {"ab("},
      {"a)"},
      {"[z-a]"},
      {"*"},
      {"äö("},
      {"(?<n>a)(?<n>b)"},
      {"\\"},
      {"a{5,2}"},
      // A zero byte ends the pattern.
      {"ab\0("s},
      // The options are the script's own, also those that the engine refuses.
      {"(?<n>a)(?<n>b)", PCRE_DUPNAMES},
      {"\xE4(", 0},
      {"\xE4", PCRE_UTF8},
      {"a", INT32_MIN},
      {"a", -1},
  };
  OnEachHost([&](Session& session) {
    const Object regex = session.New();
    for (const Row& row : rows) {
      regex.Set("CompileOptions", row.options);
      EXPECT_EQ(Compile(regex, row.pattern),
                CompileDirectly(row.pattern, static_cast<unsigned>(row.options)))
          << row.pattern;
    }
  });
}

// With the check switched off the engine would trust these bytes and leave its tables.
TEST(Compile, UnsafeBytesAreLeftToTheEnginesCheck) {
  constexpr unsigned kUnchecked = PCRE_UTF8 | PCRE_NO_UTF8_CHECK;
  struct Row {
    const char* pattern;
    unsigned options;
    bool checked;
  };
  const Row rows[] = {
      {"\\p{Lu}\xFD\x80\x80\x80\x80\x80", kUnchecked, true},
      {"ab\xF5\x80\x80\x80", kUnchecked, true},
      {"ab\xF4\x90\x80\x80", kUnchecked, true},
      {"ab\xE2\x82", kUnchecked, true},
      {"\200ab", kUnchecked, true},
      // A broken character makes it write code that it cannot read back; a repeated one hung it.
      {"a\xB8*", kUnchecked, true},
      {"\xC3(a)", kUnchecked, true},
      {"\xC3\xA4\xA4\xA4\xA4\xA4\xA4\xA4\xA4\xA4\xA4\xA4\xA4\xA4\xA4\xA4*", kUnchecked, true},
      // Wrong, yet harmless: unchecked as the script wants it.
      {"a\xED\xA0\x80", kUnchecked, false},
      {"a\xF4\x8F\xBF\xBF", kUnchecked, false},
      {"a\xC0\x80", kUnchecked, false},
      // Bytes that are no UTF-8 at all to the engine.
      {"\xFD\xFF", PCRE_NO_UTF8_CHECK, false},
  };
  OnEachHost([&](Session& session) {
    const Object regex = session.New();
    for (const Row& row : rows) {
      regex.Set("CompileOptions", static_cast<std::int32_t>(row.options));
      const unsigned engine = row.checked ? PCRE_UTF8 : row.options;
      EXPECT_EQ(Compile(regex, row.pattern), CompileDirectly(row.pattern, engine)) << row.pattern;
      EXPECT_EQ(regex.Get("Handle").Integer() == 0, row.checked) << row.pattern;
      EXPECT_EQ(regex.Get("CompileOptions").Integer(), static_cast<std::int32_t>(row.options));
    }
  });
}

TEST(Compile, ForgetsTheSubjectAndKeepsTheNumbers) {
  OnEachHost([](Session& session) {
    for (const char* next : {"b", "("}) {
      const Object regex = session.Compiled("(a)b");
      EXPECT_EQ(regex.Call("Execute", {"xab"}).Integer(), 2);
      const bool compiled = regex.Call("Compile", {next}).Boolean();
      EXPECT_TRUE(regex.Get("Text").IsNil());
      EXPECT_EQ(regex.Get("Count").Integer(), 2);
      EXPECT_EQ(regex.Get("Lasterror").Integer(), 0);
      EXPECT_EQ(regex.Call("Offset", {3}).Integer(), 2);
      if (compiled) continue;
      EXPECT_EQ(regex.Get("ErrorMessage").Encoding(), zrk::kEncodingASCII);
      EXPECT_EQ(tests::Describe(regex, regex.Call("Execute", {"ab"}).Integer()), "0 err=-99");
      EXPECT_TRUE(regex.Get("Text").IsNil()) << "without a pattern nothing is kept";
      EXPECT_TRUE(regex.Get("ErrorMessage").IsNil()) << "an execute drops the message";
    }
  });
}

TEST(Study, HoldsForOnePattern) {
  OnEachHost([](Session& session) {
    const Object regex = session.New();
    EXPECT_FALSE(regex.Call("Study").Boolean());
    regex.Call("Compile", {"("});
    EXPECT_FALSE(regex.Call("Study").Boolean());
    EXPECT_TRUE(regex.Get("ErrorMessage").IsNil());

    regex.Call("Compile", {"(?:ab|cd)+x"});
    EXPECT_EQ(regex.Call("Execute", {"..abcdx"}).Integer(), 1);
    EXPECT_EQ(regex.Get("InfoStudySize").Integer(), 0);
    for (int times = 0; times < 2; ++times) {
      EXPECT_TRUE(regex.Call("Study").Boolean());
      EXPECT_GT(regex.Get("InfoStudySize").Integer(), 0);
    }
    EXPECT_EQ(regex.Call("Substring", {0}).UTF8(), "abcdx") << "the subject survives a study";
    EXPECT_EQ(regex.Call("Execute", {0}).Integer(), 1);

    regex.Call("Compile", {"(?:ab|cd)+x"});
    EXPECT_EQ(regex.Get("InfoStudySize").Integer(), 0) << "a compile drops the study";
    regex.Call("Compile", {".*"});
    EXPECT_TRUE(regex.Call("Study").Boolean()) << "nothing to learn is no failure";
  });
}

}  // namespace
