// Questions that the engine refuses to answer. It has no reason to, so this program stands in front
// of it: the functions below are found by the library in the engine's place. That takes a library
// with the engine outside.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <pcre.h>

#include <string>

#include "tests/session.h"

namespace {

using namespace tests;

// What is refused while a test runs; kNothing otherwise.
constexpr int kNothing = -1;
int refused_info = kNothing;
bool has_version = true;
bool studies = true;

template <typename Function>
Function* Original(const char* name, Function* /*same type*/) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" {

[[gnu::visibility("default")]] int pcre_fullinfo(const pcre* code, const pcre_extra* extra,
                                                 int what, void* where) {
  if (what == refused_info) return PCRE_ERROR_BADMAGIC;
  static auto* const original = Original("pcre_fullinfo", &pcre_fullinfo);
  return original(code, extra, what, where);
}

[[gnu::visibility("default")]] const char* pcre_version() {
  static auto* const original = Original("pcre_version", &pcre_version);
  return has_version ? original() : nullptr;
}

[[gnu::visibility("default")]] pcre_extra* pcre_study(const pcre* code, int options,
                                                      const char** error) {
  static auto* const original = Original("pcre_study", &pcre_study);
  if (studies) return original(code, options, error);
  *error = "no study today";
  return nullptr;
}
}

namespace {

TEST(EngineFaults, ALockedNameTableGivesNoNames) {
  Session session({}, ZRK_LIBRARY_WITH_SYSTEM_ENGINE);
  const Object regex = session.Compiled("(?<first>a)");
  EXPECT_EQ(regex.Call("InfoNameEntry", {1}).UTF8(), "first");
  for (const int item : {PCRE_INFO_CAPTURECOUNT, PCRE_INFO_NAMECOUNT, PCRE_INFO_NAMEENTRYSIZE,
                         PCRE_INFO_NAMETABLE}) {
    refused_info = item;
    EXPECT_TRUE(regex.Call("InfoNameEntry", {1}).IsNil()) << item;
  }
  refused_info = kNothing;
  EXPECT_EQ(regex.Call("InfoNameEntry", {1}).UTF8(), "first");
}

TEST(EngineFaults, ARefusedInfoIsZeroWithTheCode) {
  Session session({}, ZRK_LIBRARY_WITH_SYSTEM_ENGINE);
  const Object regex = session.Compiled("(a)(b)");
  EXPECT_EQ(regex.Get("InfoCaptureCount").Integer(), 2);
  refused_info = PCRE_INFO_CAPTURECOUNT;
  EXPECT_EQ(regex.Get("InfoCaptureCount").Integer(), 0);
  EXPECT_EQ(regex.Get("Lasterror").Integer(), PCRE_ERROR_BADMAGIC);
  refused_info = kNothing;
}

TEST(EngineFaults, AnEngineMayHaveNoVersion) {
  Session session({}, ZRK_LIBRARY_WITH_SYSTEM_ENGINE);
  const Object regex = session.New();
  EXPECT_FALSE(regex.Call("Version").IsNil());
  has_version = false;
  EXPECT_TRUE(regex.Call("Version").IsNil());
  has_version = true;
}

// The message is the engine's, and the study block that was there is gone.
TEST(EngineFaults, AFailedStudySaysWhy) {
  Session session({}, ZRK_LIBRARY_WITH_SYSTEM_ENGINE);
  const Object regex = session.Compiled("abc|def");
  ASSERT_TRUE(regex.Call("Study").Boolean());
  studies = false;
  EXPECT_FALSE(regex.Call("Study").Boolean());
  studies = true;
  EXPECT_EQ(regex.Get("ErrorMessage").UTF8(), "no study today");
  EXPECT_EQ(regex.Call("Execute", {"xdef"}).Integer(), 1) << "the pattern is as good as before";
}

}  // namespace
