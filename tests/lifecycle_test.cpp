// An object from its constructor to its end, and one that never had a constructor.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "tests/calls.h"
#include "tests/session.h"

namespace {

using namespace tests;

TEST(Lifecycle, TheConstructorSizesTheVector) {
  struct Row {
    int wanted, size;
  };
  constexpr Row kRows[] = {{INT32_MIN, 51},  {-1, 51},         {0, 51},
                           {50, 51},         {52, 51},         {53, 51},
                           {54, 54},         {1000, 999},      {65'534, 65'532},
                           {65'535, 65'535}, {65'536, 65'535}, {INT32_MAX, 65'535}};
  Session session;
  for (const Row& row : kRows) {
    const Object regex = session.New({row.wanted});
    EXPECT_EQ(regex.Get("VectorSize").Integer(), row.size) << row.wanted;
    EXPECT_EQ(regex.Call("Offset", {row.size - 1}).Integer(), 0) << row.wanted;
  }
}

// What is not named here is 0, false or nil.
TEST(Lifecycle, ANewObjectHasItsDefaults) {
  OnEachHost([](Session& session) {
    const Object regex = session.host.NewUninitialised("RegExZRK");
    regex.Get("InfoSize");
    EXPECT_EQ(regex.Get("Lasterror").Integer(), -99);
    regex.Call("Constructor");
    EXPECT_EQ(regex.Get("Lasterror").Integer(), 0) << "whatever went before";
    std::string defaults;
    for (const standin::Property& property : regex.class_info().properties()) {
      const std::string shown = Show(regex.Get(property.name));
      const bool is_zero = shown == "0" || shown == "false" || shown == "nil";
      if (!is_zero) defaults += property.name + '=' + shown + '\n';
    }
    // The Info properties come before Lasterror and have no pattern to ask.
    EXPECT_EQ(defaults,
              "VectorSize=51\nLasterror=-99\nCompileOptions=10752\nExecuteOptions=8192\n"
              "CompileOptionUngreedy=true\nCompileOptionUTF8=true\n"
              "CompileOptionNoUTF8Check=true\nExecuteOptionNoUTF8Check=true\n");
  });
}

// Every method that needs the vector says so, before it looks for a pattern.
TEST(Lifecycle, AnObjectWithoutItsConstructorSaysSo) {
  struct Row {
    const char* method;
    Values arguments;
    std::string expected;
  };
  const std::string uninitialised = " NilObjectException: RegEx class not initialized.";
  OnEachHost([&](Session& session) {
    const Row rows[] = {
        {"Execute", {"a"}, "0 err=0" + uninitialised},
        {"Execute", {0}, "0 err=-99" + uninitialised},
        {"ExecuteMemory", {session.host.MemoryBlock("a")}, "0 err=0" + uninitialised},
        {"ExecuteMemory", {Value::Nil(Kind::kMemoryBlock)}, "0 err=0" + uninitialised},
        {"Match", {"a"}, "false err=0" + uninitialised},
        {"Match", {session.host.StringArray({"a"})}, "nil err=0" + uninitialised},
        {"Match", {session.host.VariantArray({"a"})}, "nil err=0" + uninitialised},
        {"Substring", {0}, "nil err=0" + uninitialised},
        {"Substring", {"n"}, "nil err=0" + uninitialised},
        {"Offset", {0}, "0 err=0 " + OutOfBounds("index", "Offset", 0, -1)},
        {"OffsetCharacters", {0}, "0 err=0 " + OutOfBounds("index", "OffsetCharacters", 0, -1)},
    };
    for (const bool compiled : {false, true}) {
      for (const Row& row : rows) {
        SCOPED_TRACE(row.method + (" of " + row.arguments.front().Describe()));
        const Object regex = session.host.NewUninitialised("RegExZRK");
        EXPECT_EQ(regex.Call("Compile", {compiled ? "(?<n>a)" : "("}).Boolean(), compiled);
        EXPECT_EQ(Try(regex, row.method, row.arguments), row.expected);
        EXPECT_EQ(Try(regex, "StringNumber", {"n"}), compiled ? "1 err=0" : "0 err=-99");
        EXPECT_TRUE(regex.Get("Text").IsNil() && regex.Get("TextMemory").IsNil());
      }
    }
  });
}

}  // namespace
