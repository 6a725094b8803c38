// An object from its constructor to its end, and one that never had a constructor.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "tests/session.h"

namespace {

using namespace tests;

TEST(Lifecycle, TheConstructorSizesTheVector) {
  struct Row {
    Values arguments;
    int size;
  };
  OnEachHost([](Session& session) {
    const Row rows[] = {
        {{}, 51},
        {{0}, 51},
        {{50}, 51},
        {{-1}, 51},
        {{52}, 51},
        {{53}, 51},
        {{54}, 54},
        {{100}, 99},
        {{1000}, 999},
        {{65534}, 65532},
        {{65535}, 65535},
        {{1000000}, 65535},
        {{INT32_MAX}, 65535},
        {{INT32_MIN}, 51},
    };
    for (const Row& row : rows) {
      const Object regex = session.New(row.arguments);
      EXPECT_EQ(regex.Get("VectorSize").Integer(), row.size);
      EXPECT_EQ(regex.Call("Offset", {row.size - 1}).Integer(), 0);
    }
  });
}

TEST(Lifecycle, ANewObjectHasItsDefaults) {
  OnEachHost([](Session& session) {
    const Object regex = session.New();
    for (const auto& property : regex.class_info().properties()) {
      const std::string& name = property.name;
      const Value value = regex.Get(name);
      if (name == "VectorSize") continue;
      if (name == "CompileOptions") {
        EXPECT_EQ(value.Integer(), 10752);
      } else if (name == "ExecuteOptions") {
        EXPECT_EQ(value.Integer(), 8192);
      } else if (name == "Lasterror") {
        EXPECT_EQ(value.Integer(), -99) << "the Info properties were asked before";
      } else if (value.kind() == Kind::kBoolean) {
        const bool on = name == "CompileOptionUngreedy" || name == "CompileOptionUTF8" ||
                        name == "CompileOptionNoUTF8Check" || name == "ExecuteOptionNoUTF8Check";
        EXPECT_EQ(value.Boolean(), on) << name;
      } else {
        EXPECT_TRUE(value.Integer() == 0 && (value.kind() == Kind::kInteger || value.IsNil()))
            << name;
      }
    }
    EXPECT_EQ(session.New().Get("Lasterror").Integer(), 0);
  });
}

// Every method that needs the vector says so; the others answer as for a new object.
TEST(Lifecycle, AnObjectWithoutItsConstructorSaysSo) {
  const std::string uninitialised = "NilObjectException: RegEx class not initialized.";
  struct Row {
    const char* method;
    Values arguments;
    std::string raised;
  };
  OnEachHost([&](Session& session) {
    const Value block = session.host.MemoryBlock("a");
    const Row rows[] = {
        {"Execute", {"a"}, uninitialised},
        {"Execute", {0}, uninitialised},
        {"ExecuteMemory", {block}, uninitialised},
        {"ExecuteMemory", {Value::Nil(Kind::kMemoryBlock)}, uninitialised},
        {"Substring", {0}, uninitialised},
        {"Substring", {"n"}, uninitialised},
        {"Offset", {0}, tests::OutOfBounds("index", "Offset", 0, -1)},
        {"OffsetCharacters", {0}, tests::OutOfBounds("index", "OffsetCharacters", 0, -1)},
        {"StringNumber", {"n"}, ""},
        {"Version", {}, ""},
        {"ConfigUTF8", {}, ""},
        {"Study", {}, ""},
    };
    for (const bool compiled : {false, true}) {
      const Object regex = session.host.NewUninitialised("RegExZRK");
      if (compiled) {
        EXPECT_TRUE(regex.Call("Compile", {"(?<n>a)"}).Boolean());
      }
      for (const Row& row : rows) {
        const auto outcome = regex.TryCall(row.method, row.arguments);
        EXPECT_EQ(Raised(outcome), row.raised) << row.method;
        EXPECT_TRUE(row.raised.empty() || outcome.value.Integer() == 0) << row.method;
      }
      EXPECT_TRUE(regex.Get("Text").IsNil());
      EXPECT_TRUE(regex.Get("TextMemory").IsNil());
      EXPECT_EQ(regex.Get("VectorSize").Integer(), 0);
    }
  });
}

TEST(Lifecycle, ObjectsGiveUpTheirSubjectsWhenTheyEnd) {
  OnEachHost([](Session& session) {
    const std::size_t living = session.host.accounts().Living();
    {
      const Object text = session.Compiled("a");
      const Object block = session.Compiled("a");
      const Object failed = session.New();
      text.Call("Execute", {session.host.String("a\xE4", zrk::kEncodingISOLatin1)});
      text.Call("Execute", {"another"});
      block.Call("ExecuteMemory", {session.host.MemoryBlock("a")});
      block.Call("ExecuteMemory", {session.host.MemoryBlock("xa")});
      block.Call("Study");
      failed.Call("Compile", {"("});
      EXPECT_EQ(text.Get("Text").UTF8(), "another");
      EXPECT_EQ(block.Get("TextMemory").Bytes(), "xa");
      EXPECT_TRUE(block.Get("Text").IsNil());
      // One kind of subject replaces the other.
      block.Call("Execute", {"a"});
      EXPECT_TRUE(block.Get("TextMemory").IsNil());
      EXPECT_EQ(session.host.accounts().Living(), living + 6) << "three objects, what they hold";
    }
    EXPECT_EQ(session.host.accounts().Living(), living);
  });
}

}  // namespace
