// The old layout of tables that the library's own class does not have.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <numeric>
#include <vector>

#include "host/registration.h"

namespace {

using zrk::HostWord;
using Words = std::vector<HostWord>;

// The words of a table, numbered through so that each can be told from every other.
Words Numbered(std::size_t words) {
  Words numbered(words);
  std::iota(numbered.begin(), numbered.end(), 1);
  return numbered;
}

// The words of a converted table, which ends here.
Words Taken(void* table, std::size_t words) {
  const auto* const begin = static_cast<const HostWord*>(table);
  const Words taken(begin, begin + (table != nullptr ? words : 0));
  std::free(table);
  return taken;
}

TEST(OldLayout, KeepsTheFirstWordsOfEveryRow) {
  Words properties = Numbered(2 * 12), methods = Numbered(2 * 6), events = Numbered(3 * 4);
  zrk::REALclassDefinition definition = {};
  definition.SharedProperties = reinterpret_cast<zrk::REALproperty*>(properties.data());
  definition.SharedPropertyCount = 2;
  definition.SharedMethods = reinterpret_cast<zrk::REALmethodDefinition*>(methods.data());
  definition.SharedMethodCount = 2;
  definition.Events = reinterpret_cast<zrk::REALevent*>(events.data());
  definition.EventCount = 3;
  definition.FurtherTable = properties.data();
  definition.FurtherCount = 1;
  zrk::ConvertToOldLayout(definition);

  for (const std::size_t row : {0U, 1U, 2U}) {
    const auto* const copy = reinterpret_cast<const HostWord*>(definition.Events) + 2 * row;
    EXPECT_EQ(events[4 * row + 1], reinterpret_cast<HostWord>(copy)) << "the way to the copy";
  }
  EXPECT_EQ(Taken(definition.SharedProperties, 20),
            Words({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22}));
  EXPECT_EQ(Taken(definition.SharedMethods, 8), Words({1, 2, 3, 4, 7, 8, 9, 10}));
  EXPECT_EQ(Taken(definition.Events, 6), Words({1, 2, 5, 6, 9, 10}));
  EXPECT_EQ(definition.FurtherTable, nullptr);
  EXPECT_EQ(definition.FurtherCount, 0);
  EXPECT_EQ(properties, Numbered(2 * 12)) << "the original stays as it was";
}

TEST(OldLayout, NothingComesOfNothing) {
  Words words = Numbered(12);
  const auto* const row = reinterpret_cast<zrk::REALproperty*>(words.data());
  EXPECT_EQ(zrk::FixProperties(nullptr, 5), nullptr);
  constexpr HostWord kTooMany = INT32_MAX / (10 * sizeof(HostWord)) + 1;  // for 2 GiB
  for (const HostWord count : {HostWord{0}, HostWord{-1}, kTooMany}) {
    EXPECT_EQ(zrk::FixProperties(row, count), nullptr) << count;
  }
  zrk::REALclassDefinition definition = {};
  definition.EventCount = 3;
  zrk::ConvertToOldLayout(definition);
  EXPECT_EQ(definition.Events, nullptr);
  EXPECT_EQ(definition.EventCount, 3) << "counts are copied either way";
}

}  // namespace
