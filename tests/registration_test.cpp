// The class as the host receives it, word by word, in the layout that its version reads.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tests/session.h"

namespace {

using tests::Session;
using Lines = std::vector<std::string>;
using zrk::HostWord;

constexpr HostWord kDirect = -1;
constexpr std::size_t kWordBytes = sizeof(HostWord);

TEST(Registration, TheHostVersionDecidesControlVersionAndLayout) {
  struct Row {
    std::optional<double> host;
    int control;
  };
  const Row rows[] = {
      {2017.0, 13},      {2013.04, 13},     {2013.039999, 12},
      {2013.03, 12},     {2013.0299, 11},   {2013.0, 11},
      {2012.999, 10},    {2012.0, 10},      {2011.999, 9},
      {2011.0, 9},       {0.0, 9},          {-1.0, 9},
      {std::nullopt, 9}, {std::nan(""), 9}, {std::numeric_limits<double>::infinity(), 13},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(tests::NameOf({.version = row.host}));
    Session session({.version = row.host});
    EXPECT_EQ(session.host.plugin_version(), row.control);
    ASSERT_EQ(session.host.classes().size(), 1U);
    EXPECT_EQ(session.host.classes().front()->version(), row.control);
    // The class works in the layout it was announced in.
    EXPECT_TRUE(session.New().Call("Compile", {"a"}).Boolean());
  }
}

// What follows reads the registered words themselves and trusts nobody's idea of the records.
class Table {
 public:
  Table(HostWord first, HostWord count, std::size_t row_words)
      : words_(reinterpret_cast<const HostWord*>(first)),
        count_(static_cast<std::size_t>(count)),
        row_words_(row_words) {}

  std::size_t count() const { return count_; }
  const HostWord* Row(std::size_t index) const { return words_ + index * row_words_; }
  bool IsZero(std::size_t index, std::size_t from) const {
    const HostWord* const row = Row(index);
    return std::all_of(row + from, row + row_words_, [](HostWord word) { return word == 0; });
  }

 private:
  const HostWord* words_;
  std::size_t count_;
  std::size_t row_words_;
};

std::string Text(HostWord word) { return reinterpret_cast<const char*>(word); }

std::string Access(const char* verb, HostWord accessor) {
  if (accessor == 0) return "";
  return std::string(verb) + (accessor == kDirect ? " field" : " function");
}

// The tables as the lines of expected/class.txt, after a look at the words that do not show there.
Lines DescribeTables(const HostWord* words, bool old_layout) {
  const Table properties(words[7], words[8], old_layout ? 10 : 12);
  const Table methods(words[9], words[10], old_layout ? 4 : 6);
  const Table constants(words[18], words[19], old_layout ? 3 : 5);
  Lines lines = {"methods"};
  for (std::size_t i = 0; i < methods.count(); ++i) {
    const HostWord* const row = methods.Row(i);
    lines.push_back(Text(row[2]));
    EXPECT_TRUE(row[0] != 0 && row[1] == 0 && row[3] == 4 && methods.IsZero(i, 4)) << Text(row[2]);
  }
  lines.push_back("properties");
  for (std::size_t i = 0; i < properties.count(); ++i) {
    const HostWord* const row = properties.Row(i);
    const std::string write = Access(", write", row[5]);
    lines.push_back(Text(row[1]) + " as " + Text(row[2]) + ": " + Access("read", row[4]) + write);
    EXPECT_TRUE(row[0] == 0 && row[3] == 6 && properties.IsZero(i, 7)) << Text(row[1]);
    EXPECT_TRUE(row[4] == kDirect || row[6] == 0) << Text(row[1]);
  }
  lines.push_back("constants");
  for (std::size_t i = 0; i < constants.count(); ++i) {
    lines.push_back(Text(constants.Row(i)[0]));
    EXPECT_TRUE(constants.IsZero(i, 1)) << Text(constants.Row(i)[0]);
  }
  return lines;
}

Lines GoldenLines() {
  std::ifstream file(ZRK_SOURCE_DIR "/tests/expected/class.txt");
  Lines lines;
  for (std::string line; std::getline(file, line);) lines.push_back(line);
  return lines;
}

// Names the first line in which the tables and the golden file differ.
void ExpectGolden(const Lines& tables) {
  const Lines golden = GoldenLines();
  const auto [table, file] = std::ranges::mismatch(tables, golden);
  EXPECT_TRUE(table == tables.end() && file == golden.end())
      << "regex/tables.cpp registers: " << (table != tables.end() ? *table : "nothing more") << '\n'
      << "tests/expected/class.txt has: " << (file != golden.end() ? *file : "nothing more");
}

TEST(Registration, TheWordsAreAsDescribedInBothLayouts) {
  constexpr std::size_t kZeroWords[] = {2, 5, 11, 12, 13, 14, 15, 16, 17, 21, 22, 23, 24};
  for (const double version : {2011.0, 2012.0, 2013.0, 2013.03, 2013.04}) {
    SCOPED_TRACE(version);
    Session session({.version = version, .instance_offset = 48});
    const HostWord* const words = session.host.FindClass("RegExZRK")->words();
    EXPECT_EQ(Text(words[1]), "RegExZRK");
    EXPECT_EQ(words[3] % 16, 0);
    EXPECT_EQ(words[4], 48) << "the instance offset is the host's to write";
    EXPECT_NE(words[6], 0) << "the destructor";
    for (const std::size_t zero : kZeroWords) {
      EXPECT_EQ(words[zero], 0) << "word " << zero + 1;
    }
    EXPECT_EQ(words[20], 4) << "class flags";
    ExpectGolden(DescribeTables(words, version < 2012.0));
  }
}

// Nine 32-bit fields come first, pointers follow from the next whole word on.
constexpr std::size_t Pointer(std::size_t index) {
  return (9 * 4 + kWordBytes - 1) / kWordBytes * kWordBytes + index * kWordBytes;
}

TEST(Registration, FieldsLieWhereTheHostLooks) {
  const std::map<std::string, std::size_t> offsets = {
      {"Lasterror", 0},
      {"ErrorOffset", 8},
      {"Count", 12},
      {"CompileOptions", 20},
      {"ExecuteOptions", 24},
      {"MatchLimit", 28},
      {"MatchLimitRecursion", 32},
      {"Text", Pointer(0)},
      {"ErrorMessage", Pointer(1)},
      {"TextMemory", Pointer(2)},
      {"Handle", Pointer(5)},
      {"VectorSize", Pointer(8)},
  };
  Session session;
  const auto& info = *session.host.FindClass("RegExZRK");
  EXPECT_GE(info.data_size(), Pointer(9) + 2 * kWordBytes);
  for (const standin::Property& property : info.properties()) {
    if (!property.ReadsField()) continue;
    ASSERT_TRUE(offsets.contains(property.name)) << "no offset above for " << property.name;
    EXPECT_EQ(property.parameter, static_cast<HostWord>(offsets.at(property.name)))
        << property.name;
  }
}

TEST(Registration, WrittenFieldsTakeEffect) {
  Session session;
  const auto regex = session.New();
  for (const char* name :
       {"CompileOptions", "ExecuteOptions", "MatchLimit", "MatchLimitRecursion"}) {
    for (const std::int32_t value : {0x12345, INT32_MIN, -1, 0}) {
      regex.Set(name, value);
      EXPECT_EQ(regex.Get(name).Integer(), value) << name;
    }
  }
  regex.Set("CompileOptions", 1);
  EXPECT_TRUE(regex.Call("Compile", {"A"}).Boolean());
  EXPECT_EQ(regex.Call("Execute", {"xa"}).Integer(), 1);
}

}  // namespace
