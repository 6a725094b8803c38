// What each registered member needs beside its row in regex/tables.cpp. docs/maintaining.md tells
// how to add one; what was forgotten is reported here by its name.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>

#include "tests/calls.h"
#include "tests/session.h"

namespace {

using namespace tests;

class Members : public testing::Test {
 protected:
  Session session_;
  const standin::ClassInfo& class_ = *session_.host.FindClass("RegExZRK");
};

// The tests of failing services and failing allocations make these calls and no others.
TEST_F(Members, MethodsAreCalledByARowOfCalls) {
  std::set<const standin::Method*> called;
  for (const CallRow& row : CallRows()) {
    called.insert(&class_.Choose(row.method, row.arguments(session_.host)));
  }
  for (const standin::Method& method : class_.methods()) {
    if (method.declaration.name == "Constructor") continue;
    EXPECT_TRUE(called.contains(&method)) << "no row of tests/calls.cpp calls " << method.text;
  }
}

// The sources of all tests as one text.
std::string TextOfTests() {
  std::ostringstream text;
  for (const auto& entry : std::filesystem::directory_iterator(ZRK_SOURCE_DIR "/tests")) {
    const std::string path = entry.path().string();
    if (path.ends_with("_test.cpp")) text << std::ifstream(path).rdbuf();
  }
  return text.str();
}

TEST_F(Members, StandInATestOfTheirOwn) {
  const std::string tests = TextOfTests();
  std::set<std::string> names;
  for (const standin::Method& method : class_.methods()) names.insert(method.declaration.name);
  for (const standin::Property& property : class_.properties()) names.insert(property.name);
  for (const std::string& name : names) {
    EXPECT_TRUE(tests.find('"' + name + '"') != std::string::npos)
        << "no tests/*_test.cpp has " << name;
  }
}

}  // namespace
