// Questions that the engine refuses to answer. It has no reason to, so this program stands in front
// of it: the functions below are found by the library in the engine's place. That takes a library
// with the engine outside.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <pcre.h>

#include <string>
#include <utility>

#include "tests/calls.h"
#include "tests/session.h"

namespace {

using namespace tests;

// What is refused: an item of pcre_fullinfo or one of these.
enum { kNothing = -1, kVersion = -2, kStudy = -3 };
int refused = kNothing;

template <typename Function>
Function* Original(const char* name, Function* /*same type*/) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" {

int pcre_fullinfo(const pcre* code, const pcre_extra* extra, int what, void* where) {
  if (what == refused) return PCRE_ERROR_BADMAGIC;
  static auto* const original = Original("pcre_fullinfo", &pcre_fullinfo);
  return original(code, extra, what, where);
}

const char* pcre_version() {
  static auto* const original = Original("pcre_version", &pcre_version);
  return refused != kVersion ? original() : nullptr;
}

pcre_extra* pcre_study(const pcre* code, int options, const char** error) {
  static auto* const original = Original("pcre_study", &pcre_study);
  if (refused != kStudy) return original(code, options, error);
  *error = "no study today";
  return nullptr;
}
}

namespace {

TEST(EngineFaults, LeaveNamesAndFactsOut) {
  Session session({}, ZRK_LIBRARY_WITH_SYSTEM_ENGINE);
  const Object regex = session.Compiled("(?<first>a)");
  const std::string version = Show(pcre_version());
  const std::pair<int, std::string> rows[] = {
      {kNothing, "\"first\", \"a\" err=0, 1 err=0, " + version},
      {PCRE_INFO_CAPTURECOUNT, "nil, \"a\" err=0, 0 err=-4, " + version},
      {PCRE_INFO_NAMECOUNT, "nil, nil err=-7, 1 err=0, " + version},
      {PCRE_INFO_NAMEENTRYSIZE, "nil, nil err=-7, 1 err=0, " + version},
      {PCRE_INFO_NAMETABLE, "nil, nil err=-7, 1 err=0, " + version},
      {kVersion, "\"first\", \"a\" err=0, 1 err=0, nil"},
  };
  for (const auto& [what, answers] : rows) {
    SCOPED_TRACE(testing::Message() << "refused: " << what);
    refused = what;
    regex.Call("Execute", {"a"});
    const Value name = regex.Call("InfoNameEntry", {1});
    const std::string group = Try(regex, "Substring", {"first"});
    const Outcome count{regex.Get("InfoCaptureCount"), {}};
    EXPECT_EQ(
        Show(name) + ", " + group + ", " + Show(regex, count) + ", " + Show(regex.Call("Version")),
        answers);
  }
  refused = kNothing;
}

// The message is the engine's, and the study block that was there is gone.
TEST(EngineFaults, OfAStudySayWhy) {
  Session session({}, ZRK_LIBRARY_WITH_SYSTEM_ENGINE);
  const Object regex = session.Compiled("abc|def");
  EXPECT_TRUE(regex.Call("Study").Boolean());
  EXPECT_GT(regex.Get("InfoStudySize").Integer(), 0);
  refused = kStudy;
  EXPECT_FALSE(regex.Call("Study").Boolean());
  refused = kNothing;
  EXPECT_EQ(regex.Get("ErrorMessage").UTF8(), "no study today");
  EXPECT_EQ(regex.Get("InfoStudySize").Integer(), 0);
  EXPECT_EQ(regex.Call("Execute", {"xdef"}).Integer(), 1) << "the pattern is as good as before";
}

}  // namespace
