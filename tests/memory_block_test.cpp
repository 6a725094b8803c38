// Memory blocks as patterns and as subjects: read in place, and never past their end.
#include <gtest/gtest.h>
#include <pcre.h>

#include <cstdint>
#include <string>
#include <string_view>

#include "tests/session.h"

namespace {

using namespace std::string_literals;
using namespace tests;

constexpr const char* kNil = "NilObjectException: ";

TEST(MemoryBlock, PatternsAreReadWithinTheBlock) {
  struct Row {
    std::string block;
    int offset;
    const char* matches;  // a text that the pattern matches whole; null for a refusal
    std::string raised = "";
  };
  const Row rows[] = {
      {"a+b\0"s, 0, "aab"},
      {"a+b\0xyz"s, 0, "aab"},
      {"xyz\0a+b\0"s, 4, "aab"},
      {"a+b\0"s, 3, ""},
      // No zero byte before the end: the end serves.
      {"a+b", 0, "aab"},
      {"a+b", 2, "b"},
      {"a+b\0"s, -1, nullptr, OutOfBounds("ByteOffset", "CompileMemory", -1, 3)},
      {"a+b\0"s, 4, nullptr, OutOfBounds("ByteOffset", "CompileMemory", 4, 3)},
      {"a+b", INT32_MAX, nullptr, OutOfBounds("ByteOffset", "CompileMemory", INT32_MAX, 2)},
      {"a+b", INT32_MIN, nullptr, OutOfBounds("ByteOffset", "CompileMemory", INT32_MIN, 2)},
      {"", 0, nullptr, OutOfBounds("ByteOffset", "CompileMemory", 0, -1)},
      {"a(\0"s, 0, nullptr},  // the engine's refusal raises nothing
  };
  OnEachHost([&](Session& session) {
    for (const Row& row : rows) {
      SCOPED_TRACE(testing::PrintToString(row.block) + " from " + std::to_string(row.offset));
      const Object regex = session.Compiled("old");
      const auto outcome =
          regex.TryCall("CompileMemory", {session.host.MemoryBlock(row.block), row.offset});
      EXPECT_EQ(Raised(outcome), row.raised);
      EXPECT_EQ(outcome.value.Boolean(), row.matches != nullptr);
      EXPECT_EQ(regex.Get("Handle").Integer() != 0, row.matches != nullptr)
          << "a refusal leaves no pattern behind";
      if (row.matches == nullptr) continue;
      EXPECT_EQ(regex.Call("Execute", {row.matches}).Integer(), 1);
      EXPECT_EQ(regex.Call("Offset", {1}).Integer(),
                static_cast<int>(std::string_view(row.matches).size()));
    }
  });
}

TEST(MemoryBlock, ARefusalKeepsTheLastCompileError) {
  Session session;
  const Object regex = session.New();
  EXPECT_FALSE(regex.Call("CompileMemory", {session.host.MemoryBlock("ab(\0"s), 0}).Boolean());
  EXPECT_EQ(regex.Get("ErrorMessage").UTF8(), "missing )");
  regex.TryCall("CompileMemory", {session.host.MemoryBlock("ab"), 2});
  EXPECT_EQ(regex.Get("ErrorOffset").Integer(), 3);
  EXPECT_TRUE(regex.Get("ErrorMessage").IsNil());
}

// A block that is nil, or has no data whatever its size says.
TEST(MemoryBlock, NothingToReadIsANilObject) {
  OnEachHost([](Session& session) {
    const Object regex = session.Compiled("a");
    const Value nil = Value::Nil(Kind::kMemoryBlock);
    const auto execute = regex.TryCall("ExecuteMemory", {nil});
    EXPECT_EQ(Raised(execute), kNil + "text Memoryblock is nil"s);
    EXPECT_EQ(Describe(regex, execute.value.Integer()), "0 err=-99");
    for (const int size : {0, 5, -5}) {
      const Value block = session.host.MemoryBlockWithoutData(size);
      for (const int length : {0, 5}) {
        EXPECT_EQ(regex.Call("ExecuteMemory", {block, 0, length}).Integer(), 0);
        EXPECT_EQ(regex.Get("Lasterror").Integer(), PCRE_ERROR_NULL);
        EXPECT_EQ(regex.Get("TextMemory").handle(), block.handle());
      }
      const auto compile = session.Compiled("a").TryCall("CompileMemory", {block, 0});
      EXPECT_EQ(Raised(compile), kNil + "pattern Memoryblock is nil"s);
    }
    const auto compile = regex.TryCall("CompileMemory", {nil, 0});
    EXPECT_EQ(Raised(compile), kNil + "pattern Memoryblock is nil"s);
    EXPECT_FALSE(compile.value.Boolean());
    EXPECT_EQ(regex.Get("Handle").Integer(), 0);
  });
}

TEST(MemoryBlock, ANegativeSizeIsNone) {
  OnEachHost([](Session& session) {
    const Object regex = session.Compiled("^$");
    const Value block = session.host.MemoryBlockClaiming("abc", -3);
    EXPECT_EQ(regex.Call("ExecuteMemory", {block}).Integer(), 1);
    EXPECT_EQ(Raised(regex.TryCall("ExecuteMemory", {block, 0, 1})),
              OutOfBounds("ByteLength", "ExecuteMemory", 1, 0));
  });
}

// Offset and length both count from the block's start; the engine judges the offset.
TEST(MemoryBlock, SubjectsAreThatMuchOfTheBlock) {
  const std::string bytes = "ab\0cab\xC3\xA4\xFF"s;
  const char* const patterns[] = {"ab", "(?<=a)b(?=.)", "\\0c", "$", ".*\\z", "c(.)"};
  OnEachHost([&](Session& session) {
    const Value block = session.host.MemoryBlock(bytes);
    const auto size = static_cast<int>(bytes.size());
    for (const char* pattern : patterns) {
      const Object regex = session.New();
      regex.Set("CompileOptionUTF8", false);
      ASSERT_TRUE(regex.Call("Compile", {pattern}).Boolean());
      for (const int length : {-1, 0, 1, 4, 6, size}) {
        for (const int offset : {0, 1, 3, 6, size, size + 1, -1}) {
          SCOPED_TRACE(testing::Message() << pattern << ' ' << offset << ' ' << length);
          const int result = regex.Call("ExecuteMemory", {block, offset, length}).Integer();
          const std::string slice =
              bytes.substr(0, static_cast<std::size_t>(length < 1 ? size : length));
          std::string direct = DescribeDirectly(pattern, slice, offset, PCRE_UNGREEDY);
          // Codes are left to Lasterror; the result is 0.
          if (direct.front() == '-') direct.replace(0, direct.find(' '), "0");
          EXPECT_EQ(Describe(regex, result), direct);
          EXPECT_EQ(regex.Get("TextMemory").handle(), block.handle());
          EXPECT_TRUE(regex.Get("Text").IsNil());
        }
      }
    }
  });
}

TEST(MemoryBlock, ALengthPastTheEndIsRefused) {
  OnEachHost([](Session& session) {
    const Object regex = session.Compiled("a");
    const Value block = session.host.MemoryBlock("aaaa");
    for (const int length : {5, INT32_MAX}) {
      EXPECT_EQ(regex.Call("ExecuteMemory", {block}).Integer(), 1);
      const auto outcome = regex.TryCall("ExecuteMemory", {block, 0, length});
      EXPECT_EQ(Raised(outcome), OutOfBounds("ByteLength", "ExecuteMemory", length, 4));
      EXPECT_EQ(Describe(regex, outcome.value.Integer()), "0 err=-99");
      EXPECT_TRUE(regex.Get("TextMemory").IsNil()) << "no subject is kept";
      EXPECT_EQ(regex.Call("Execute", {0}).Integer(), PCRE_ERROR_NULL);
    }
  });
}

// Every method that goes back to the kept bytes, after the block has moved.
TEST(MemoryBlock, ABlockThatMovedIsLetGo) {
  struct Row {
    const char* method;
    Value argument;
    std::string result;
    int lasterror;
  };
  OnEachHost([](Session& session) {
    const Row rows[] = {
        {"Execute", 0, "-2", PCRE_ERROR_NULL},
        {"ExecuteMT", 0, "0", PCRE_ERROR_NULL},
        {"Substring", 0, "", PCRE_ERROR_NOSUBSTRING},
        {"Substring", "g", "", PCRE_ERROR_NOSUBSTRING},
        {"OffsetCharacters", 1, "0", 0},
        {"Replace", "x", "", -99},
        {"ReplaceSelection", "x\\1", "x", 0},
    };
    for (const Row& row : rows) {
      for (const std::size_t size : {0U, 2U, 100U}) {
        SCOPED_TRACE(testing::Message() << row.method << ' ' << size);
        const Object regex = session.Compiled("(?<g>b+?)c");
        Value block = session.host.MemoryBlock("aabbbcc");
        ASSERT_EQ(regex.Call("ExecuteMemory", {block}).Integer(), 2);
        block.Resize(size);
        const Value result = regex.Call(row.method, {row.argument});
        EXPECT_EQ(result.kind() == Kind::kString ? result.UTF8() : std::to_string(result.Integer()),
                  row.result);
        EXPECT_EQ(regex.Get("Lasterror").Integer(), row.lasterror);
        EXPECT_TRUE(regex.Get("TextMemory").IsNil());
      }
    }
  });
}

// A block that grew where it is, or lost bytes behind the subject, still holds the subject.
TEST(MemoryBlock, IsKeptWhileItHoldsTheSubject) {
  struct Row {
    int length, size;
    bool kept;
  };
  const Row rows[] = {{0, 100, true}, {0, 7, true}, {0, 6, false},
                      {0, -1, false}, {5, 5, true}, {5, 4, false}};
  OnEachHost([&](Session& session) {
    for (const Row& row : rows) {
      SCOPED_TRACE(testing::Message() << row.length << ' ' << row.size);
      const Object regex = session.Compiled("(?<g>b+?)");
      Value block = session.host.MemoryBlock("aabbbcc");
      ASSERT_EQ(regex.Call("ExecuteMemory", {block, 0, row.length}).Integer(), 2);
      block.Claim(row.size);
      EXPECT_EQ(regex.Call("Substring", {"g"}).UTF8(), row.kept ? "bbb" : "");
      EXPECT_EQ(regex.Call("OffsetCharacters", {1}).Integer(), row.kept ? 5 : 0);
      EXPECT_EQ(regex.Get("TextMemory").IsNil(), !row.kept);
    }
  });
}

}  // namespace
