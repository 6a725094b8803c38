// The old layout of tables that the library's own class does not have.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <numeric>
#include <vector>

#include "host/registration.h"

namespace {

using zrk::HostWord;
using Words = std::vector<HostWord>;

// A table whose words are numbered through, so that each can be told from every other.
template <typename Row>
std::vector<Row> Numbered(std::size_t rows) {
  Words words(rows * sizeof(Row) / sizeof(HostWord));
  std::iota(words.begin(), words.end(), HostWord{1});
  std::vector<Row> table(rows);
  std::memcpy(static_cast<void*>(table.data()), words.data(), words.size() * sizeof(HostWord));
  return table;
}

// The words of a converted table, which ends here.
Words Taken(void* table, std::size_t words) {
  const auto* const begin = static_cast<const HostWord*>(table);
  const Words taken(begin, begin + (table != nullptr ? words : 0));
  std::free(table);
  return taken;
}

TEST(OldLayout, KeepsTheFirstWordsOfEveryRow) {
  auto properties = Numbered<zrk::REALproperty>(2);
  auto methods = Numbered<zrk::REALmethodDefinition>(2);
  auto events = Numbered<zrk::REALevent>(3);
  HostWord further = 7;
  zrk::REALclassDefinition definition = {};
  definition.SharedProperties = properties.data();
  definition.SharedPropertyCount = 2;
  definition.SharedMethods = methods.data();
  definition.SharedMethodCount = 2;
  definition.Events = events.data();
  definition.EventCount = 3;
  definition.FurtherTable = &further;
  definition.FurtherCount = 1;
  zrk::ConvertToOldLayout(definition);

  for (std::size_t i = 0; i < events.size(); ++i) {
    const auto* const copy = reinterpret_cast<const HostWord*>(definition.Events) + 2 * i;
    EXPECT_EQ(events[i].Words[1], reinterpret_cast<HostWord>(copy)) << "the way to the copy";
  }
  EXPECT_EQ(Taken(definition.SharedProperties, 20),
            Words({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22}));
  EXPECT_EQ(Taken(definition.SharedMethods, 8), Words({1, 2, 3, 4, 7, 8, 9, 10}));
  EXPECT_EQ(Taken(definition.Events, 6), Words({1, 2, 5, 6, 9, 10}));
  EXPECT_EQ(definition.FurtherTable, nullptr);
  EXPECT_EQ(definition.FurtherCount, 0);
  EXPECT_EQ(properties[1].Unused[4], 24) << "the original stays as it was";
}

TEST(OldLayout, NothingComesOfNothing) {
  auto properties = Numbered<zrk::REALproperty>(1);
  EXPECT_EQ(zrk::FixProperties(nullptr, 5), nullptr);
  for (const HostWord count : {0, -1, INT32_MAX}) {
    EXPECT_EQ(zrk::FixProperties(properties.data(), count), nullptr) << count;
  }
  zrk::REALclassDefinition definition = {};
  definition.EventCount = 3;
  zrk::ConvertToOldLayout(definition);
  EXPECT_EQ(definition.Events, nullptr);
  EXPECT_EQ(definition.EventCount, 3) << "counts are copied either way";
}

}  // namespace
