#include "tests/agreement.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/oracle/plain_text.h"

namespace tests {

void ExpectAgreement(Session& session, const Object& regex, const oracle::PlainRegex& plain,
                     const std::string& subject, int start) {
  SCOPED_TRACE(testing::PrintToString(subject) + " from " + std::to_string(start));
  const Value string = subject;
  const Value block = session.host.MemoryBlock(subject);
  const std::string expected = plain.Describe(subject, start);
  const std::string first = plain.Describe(subject);
  EXPECT_EQ(Describe(regex, regex.Call("Execute", {string, start}).Integer()), expected);
  EXPECT_EQ(Describe(regex, regex.Call("Execute", {0}).Integer()), first);
  // What is no match is an error there, and the result 0.
  const int count = regex.Call("ExecuteMemory", {block, start}).Integer();
  EXPECT_EQ(Describe(regex, count > 0 ? count : regex.Get("Lasterror").Integer()), expected);
  const int end = std::max(regex.Call("Offset", {1}).Integer(), 0);
  EXPECT_EQ(regex.Call("OffsetCharacters", {1}).Integer(),
            static_cast<int>(oracle::CharactersBefore(subject, static_cast<std::size_t>(end))));

  const bool matches = first.front() > '0';
  const Value array = session.host.StringArray({string});
  EXPECT_EQ(regex.Call("Match", {string}).Boolean(), matches);
  EXPECT_EQ(regex.Call("Match", {array}).Count(), matches ? 1U : 0U);
  EXPECT_EQ(regex.Call("Match", {array, true}).Count(), matches ? 0U : 1U);
  for (const char* new_text : {"", "<\\2\\1\\0>"}) {
    const oracle::Replaced replaced = oracle::ReplaceAll(plain, subject, new_text);
    EXPECT_EQ(regex.Call("ReplaceAll", {string, new_text}).Bytes(), replaced.text);
    EXPECT_EQ(regex.Get("Count").Integer(), replaced.engine_calls);
  }
  EXPECT_EQ(regex.Call("Escape", {string}).Bytes(), oracle::Escaped(subject));
}

}  // namespace tests
