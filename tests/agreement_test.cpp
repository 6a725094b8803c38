// Every way to a match gives the same match, and it is the engine's own. The threaded methods are
// compared with the others in threaded_execute_test.
#include "tests/agreement.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/session.h"

namespace {

using namespace std::string_literals;
using namespace tests;

const char* const kPatterns[] = {
    // Nothing, little, and anything.
    "", "b", "\\G.", "(?!)", "(*ACCEPT)a|b", "(?-U)x*",
    // Groups.
    "b(.)(x)?", "(a)(?:(b)|(c))*", "(.)\\1", "(?-U)(\\w+) (\\w+)",
    "(?<first>a)|(?<second>\\x{20ac})|(?<third>\\d)", "(?J)(?<n>a)|(?<n>b)",
    // Places.
    "^", "$", "\\z", "\\bx|y\\b", "(?=(b))", "(?<=é)(.)", "a\\Kb",
    // Lines.
    "(?m)^.*$", "(?-U)\\R", "\\r\\n|\\n", "(*CRLF)^.+$", "(*ANY)(?m)^(.)",
    // Characters.
    "\\p{Lu}", "\\X", "(?i)\\xC9|STRA\\x{DF}E", "(?i)É", "\\x00(.)?", "[^\\x00]+"};

const std::string kTexts[] = {"",
                              "b",
                              "abcbdb",
                              "xxaxx",
                              "one two three",
                              "é€😀",
                              "Éé straße STRASSE",
                              "a\0b\0\0x"s,
                              "line\r\nline two\r\n\r\nlast\n",
                              "a€7aabbc",
                              "e\xCC\x81x\xCC\x81y"};

TEST(Agreement, OfEveryMethodWithTheEngineCalledDirectly) {
  OnEachHost([](Session& session) {
    for (const char* pattern : kPatterns) {
      SCOPED_TRACE(pattern);
      const Object regex = session.Compiled(pattern);
      const Object studied = session.Compiled(pattern);
      ASSERT_TRUE(studied.Call("Study").Boolean());
      const oracle::PlainRegex plain(pattern);
      for (const std::string& text : kTexts) {
        ExpectAgreement(session, studied, plain, text, 0);
        for (int start = 0; start <= static_cast<int>(text.size()); ++start) {
          ExpectAgreement(session, regex, plain, text, start);
        }
      }
    }
  });
}

}  // namespace
