// The class as the host receives it, word by word, in the layout that its version reads.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "tests/command.h"
#include "tests/session.h"

namespace {

using tests::Session;
using zrk::HostWord;

TEST(Registration, TheHostVersionDecidesControlVersionAndLayout) {
  const std::pair<std::optional<double>, int> rows[] = {
      {2017.0, 13},      {2013.04, 13},     {2013.039999, 12},
      {2013.03, 12},     {2013.0299, 11},   {2013.0, 11},
      {2012.999, 10},    {2012.0, 10},      {2011.999, 9},
      {2011.0, 9},       {0.0, 9},          {-1.0, 9},
      {std::nullopt, 9}, {std::nan(""), 9}, {std::numeric_limits<double>::infinity(), 13},
  };
  for (const auto& [version, control] : rows) {
    SCOPED_TRACE(tests::NameOf({.version = version}));
    Session session({.version = version});
    EXPECT_EQ(session.host.plugin_version(), control);
    ASSERT_EQ(session.host.classes().size(), 1U);
    EXPECT_EQ(session.host.classes().front()->version(), control);
    // The class works in the layout it was announced in.
    EXPECT_TRUE(session.New().Call("Compile", {"a"}).Boolean());
  }
}

// What follows reads the registered words themselves and trusts nobody's idea of the records.
std::string Text(HostWord word) { return reinterpret_cast<const char*>(word); }

std::string Access(const char* verb, HostWord accessor) {
  if (accessor == 0) return "";
  constexpr HostWord kDirect = -1;
  return std::string(verb) + (accessor == kDirect ? " field" : " function");
}

std::string DescribeMethod(const HostWord* row) {
  EXPECT_TRUE(row[0] != 0 && row[1] == 0 && row[3] == 4) << Text(row[2]);
  return Text(row[2]);
}

std::string DescribeProperty(const HostWord* row) {
  EXPECT_TRUE(row[0] == 0 && row[3] == 6) << Text(row[1]);
  EXPECT_TRUE(Access("", row[4]) == " field" || row[6] == 0) << Text(row[1]);
  return Text(row[1]) + " as " + Text(row[2]) + ": " + Access("read", row[4]) +
         Access(", write", row[5]);
}

std::string DescribeConstant(const HostWord* row) { return Text(row[0]); }

struct Table {
  const char* title;
  std::size_t word;  // of the class: its rows, and then their number
  std::size_t row_words, old_row_words;
  std::size_t used_words;  // the others of a row are zero
  std::string (*describe)(const HostWord* row);
};
constexpr Table kTables[] = {
    {"methods", 9, 6, 4, 4, DescribeMethod},
    {"properties", 7, 12, 10, 7, DescribeProperty},
    {"constants", 18, 5, 3, 1, DescribeConstant},
};

// The tables as the lines of expected/class.txt.
std::string DescribeTables(const HostWord* words, bool old_layout) {
  std::string lines;
  for (const Table& table : kTables) {
    lines += std::string(table.title) + '\n';
    const auto* row = reinterpret_cast<const HostWord*>(words[table.word]);
    for (HostWord rows = words[table.word + 1]; rows > 0; --rows) {
      const HostWord* const end = row + (old_layout ? table.old_row_words : table.row_words);
      const std::string line = table.describe(row) + '\n';
      EXPECT_TRUE(std::all_of(row + table.used_words, end, [](HostWord word) { return word == 0; }))
          << line;
      lines += line;
      row = end;
    }
  }
  return lines;
}

TEST(Registration, TheWordsAreAsDescribedInBothLayouts) {
  const std::string expected = tests::ReadFile(ZRK_SOURCE_DIR "/tests/expected/class.txt");
  for (const double version : {2011.0, 2012.0, 2013.0, 2013.03, 2013.04}) {
    SCOPED_TRACE(version);
    Session session({.version = version, .instance_offset = 48});
    const HostWord* const words = session.host.FindClass("RegExZRK")->words();
    EXPECT_EQ(Text(words[1]), "RegExZRK");
    EXPECT_EQ(words[3] % 16, 0);
    EXPECT_EQ(words[4], 48) << "the instance offset is the host's to write";
    EXPECT_NE(words[6], 0) << "the destructor";
    for (const int zero : {2, 5, 11, 12, 13, 14, 15, 16, 17, 21, 22, 23, 24}) {
      EXPECT_EQ(words[zero], 0) << "word " << zero + 1;
    }
    EXPECT_EQ(words[20], 4) << "class flags";
    EXPECT_EQ(DescribeTables(words, version < 2012.0), expected)
        << "regex/tables.cpp and tests/expected/class.txt differ";
  }
}

// Nine 32-bit fields come first, pointers follow from the next whole word on.
TEST(Registration, FieldsLieWhereTheHostLooks) {
  constexpr HostWord kWordBytes = sizeof(HostWord);
  constexpr HostWord kPointers = (9 * 4 + kWordBytes - 1) / kWordBytes * kWordBytes;
  Session session;
  const auto& info = *session.host.FindClass("RegExZRK");
  std::map<HostWord, std::string> fields;
  for (const standin::Property& property : info.properties()) {
    if (property.ReadsField()) fields[property.parameter] = property.name;
  }
  std::string shown;
  for (const auto& [offset, name] : fields) {
    shown += offset < kPointers ? "byte " + std::to_string(offset)
                                : "pointer " + std::to_string((offset - kPointers) / kWordBytes);
    shown += ' ' + name + '\n';
  }
  EXPECT_EQ(shown,
            "byte 0 Lasterror\n"
            "byte 8 ErrorOffset\n"
            "byte 12 Count\n"
            "byte 20 CompileOptions\n"
            "byte 24 ExecuteOptions\n"
            "byte 28 MatchLimit\n"
            "byte 32 MatchLimitRecursion\n"
            "pointer 0 Text\n"
            "pointer 1 ErrorMessage\n"
            "pointer 2 TextMemory\n"
            "pointer 5 Handle\n"
            "pointer 8 VectorSize\n");
  EXPECT_GE(info.data_size(), static_cast<std::size_t>(kPointers + 11 * kWordBytes));
}

}  // namespace
