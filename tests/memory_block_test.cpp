// Memory blocks as patterns and as subjects: read in place, and never past their end.
#include <gtest/gtest.h>
#include <pcre.h>

#include <cstdint>
#include <string>
#include <string_view>

#include "tests/calls.h"
#include "tests/session.h"

namespace {

using namespace std::string_literals;
using namespace tests;

TEST(MemoryBlock, PatternsAreReadWithinTheBlock) {
  struct Row {
    std::string block;
    int offset;
    const char* matches;  // a text that the pattern matches whole
  };
  const Row rows[] = {{"a+b\0"s, 0, "aab"},
                      {"a+b\0xyz"s, 0, "aab"},
                      {"xyz\0a+b\0"s, 4, "aab"},
                      {"a+b\0"s, 3, ""},
                      // No zero byte before the end: the end serves.
                      {"a+b", 0, "aab"},
                      {"a+b", 2, "b"}};
  OnEachHost([&](Session& session) {
    for (const Row& row : rows) {
      SCOPED_TRACE(testing::PrintToString(row.block) + " from " + std::to_string(row.offset));
      const Object regex = session.New();
      EXPECT_TRUE(
          regex.Call("CompileMemory", {session.host.MemoryBlock(row.block), row.offset}).Boolean());
      EXPECT_EQ(regex.Call("Execute", {row.matches}).Integer(), 1);
      EXPECT_EQ(regex.Call("Offset", {1}).Integer(),
                static_cast<int>(std::string_view(row.matches).size()));
    }
  });
}

// What each call answers, and whether the block is the object's subject afterwards. A compile
// leaves no pattern behind.
TEST(MemoryBlock, OddBlocksAndBoundsAreSeenOrRefused) {
  struct Row {
    const char* method;
    Value block;
    Values more;
    std::string answer;
    bool kept = false;
  };
  OnEachHost([](Session& session) {
    const Value nil = Value::Nil(Kind::kMemoryBlock);
    const Value three = session.host.MemoryBlock("abc");
    const Value minus_3 = session.host.MemoryBlockClaiming("abc", -3);
    const auto without_data = [&](int size) { return session.host.MemoryBlockWithoutData(size); };
    const auto too_long = [](int length, int size) {
      return "0 err=-99 " + OutOfBounds("ByteLength", "ExecuteMemory", length, size);
    };
    const auto not_in = [](int offset, int last) {
      return "false err=0 " + OutOfBounds("ByteOffset", "CompileMemory", offset, last);
    };
    const std::string no_text = "0 err=-99 NilObjectException: text Memoryblock is nil";
    const std::string no_pattern = "false err=0 NilObjectException: pattern Memoryblock is nil";
    const Row rows[] = {
        {"ExecuteMemory", nil, {}, no_text},
        {"ExecuteMemory", without_data(0), {}, "0 err=-2", true},
        {"ExecuteMemory", without_data(5), {0, 5}, "0 err=-2", true},
        {"ExecuteMemory", without_data(-5), {0, 5}, "0 err=-2", true},
        {"ExecuteMemory", minus_3, {}, "1 err=0", true},
        {"ExecuteMemory", minus_3, {0, 1}, too_long(1, 0)},
        {"ExecuteMemory", three, {0, 4}, too_long(4, 3)},
        {"ExecuteMemory", three, {0, INT32_MAX}, too_long(INT32_MAX, 3)},
        {"CompileMemory", nil, {0}, no_pattern},
        {"CompileMemory", without_data(0), {0}, no_pattern},
        {"CompileMemory", without_data(5), {0}, no_pattern},
        {"CompileMemory", three, {-1}, not_in(-1, 2)},
        {"CompileMemory", three, {3}, not_in(3, 2)},
        {"CompileMemory", three, {INT32_MAX}, not_in(INT32_MAX, 2)},
        {"CompileMemory", three, {INT32_MIN}, not_in(INT32_MIN, 2)},
        {"CompileMemory", session.host.MemoryBlock(""), {0}, not_in(0, -1)},
        {"CompileMemory", session.host.MemoryBlock("a(\0"s), {0}, "false err=0"},
    };
    for (const Row& row : rows) {
      SCOPED_TRACE(row.method + (' ' + row.block.Describe()) + " -> " + row.answer);
      const Object regex = session.Compiled("^$");
      EXPECT_EQ(regex.Call("ExecuteMemory", {session.host.MemoryBlock(""), 0}).Integer(), 1);
      Values arguments = {row.block};
      arguments.insert(arguments.end(), row.more.begin(), row.more.end());
      EXPECT_EQ(Show(regex, regex.TryCall(row.method, arguments)), row.answer);
      EXPECT_EQ(regex.Get("TextMemory").handle(), row.kept ? row.block.handle() : nullptr);
      EXPECT_EQ(regex.Get("Handle").Integer() == 0, row.method == "CompileMemory"s);
      if (!row.kept) {
        EXPECT_LE(regex.Call("Execute", {0}).Integer(), 0) << "no subject is kept";
      }
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

// Offset and length both count from the block's start; the engine judges the offset.
TEST(MemoryBlock, SubjectsAreThatMuchOfTheBlock) {
  const std::string bytes = "ab\0cab\xC3\xA4\xFF"s;
  const auto size = static_cast<int>(bytes.size());
  OnEachHost([&](Session& session) {
    const Value block = session.host.MemoryBlock(bytes);
    for (const char* pattern : {"ab", "(?<=a)b(?=.)", "\\0c", "$", ".*\\z", "c(.)"}) {
      const Object regex = session.New();
      regex.Set("CompileOptionUTF8", false);
      ASSERT_TRUE(regex.Call("Compile", {pattern}).Boolean());
      for (const int length : {-1, 0, 1, 4, 6, size}) {
        const std::string slice =
            bytes.substr(0, static_cast<std::size_t>(length < 1 ? size : length));
        for (const int offset : {0, 1, 3, 6, size, size + 1, -1}) {
          SCOPED_TRACE(testing::Message() << pattern << ' ' << offset << ' ' << length);
          const int count = regex.Call("ExecuteMemory", {block, offset, length}).Integer();
          // Codes are left to Lasterror; the result is 0.
          EXPECT_EQ(Describe(regex, count > 0 ? count : regex.Get("Lasterror").Integer()),
                    DescribeDirectly(pattern, slice, offset, PCRE_UNGREEDY));
          EXPECT_GE(count, 0);
          EXPECT_EQ(regex.Get("TextMemory").handle(), block.handle());
          EXPECT_TRUE(regex.Get("Text").IsNil());
        }
      }
    }
  });
}

// Every method that goes back to the kept bytes, where the block has moved or says another size. It
// is kept as long as it holds the subject.
TEST(MemoryBlock, IsLetGoWhereItLostTheSubject) {
  struct Row {
    const char* method;
    Value argument;
    const char *kept, *lost;
  };
  OnEachHost([](Session& session) {
    const Row rows[] = {
        {"Execute", 0, "2 err=0", "-2 err=-2"},
        {"ExecuteMT", 0, "2 err=0", "0 err=-2"},
        {"Substring", 0, "\"bbb\" err=0", "nil err=-7"},
        {"Substring", "g", "\"bbb\" err=0", "nil err=-7"},
        {"OffsetCharacters", 1, "5 err=0", "0 err=0"},
        {"Replace", "x", "\"aax\" err=0", "nil err=-99"},
        {"ReplaceSelection", "x\\1", "\"xbbb\" err=0", "\"x\" err=0"},
    };
    for (const Row& row : rows) {
      // The text is 5 of 7 bytes.
      for (const int size : {0, 2, 4, 5, 100, -1}) {
        for (const bool moves : {false, true}) {
          if (moves && size < 0) continue;
          SCOPED_TRACE(testing::Message() << row.method << ' ' << size << ' ' << moves);
          const Object regex = session.Compiled("(?<g>b+?)");
          Value block = session.host.MemoryBlock("aabbbcc");
          ASSERT_EQ(regex.Call("ExecuteMemory", {block, 0, 5}).Integer(), 2);
          if (moves) {
            block.Resize(static_cast<std::size_t>(size));
          } else {
            block.Claim(size);
          }
          const bool kept = !moves && size >= 5;
          EXPECT_EQ(Show(regex, regex.TryCall(row.method, {row.argument})),
                    kept ? row.kept : row.lost);
          EXPECT_EQ(regex.Get("TextMemory").IsNil(), !kept);
        }
      }
    }
  });
}

}  // namespace
