// The old layout of tables that the library's own class does not have.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <numeric>
#include <vector>

#include "host/registration.h"

namespace {

using zrk::HostWord;

// Rows whose words are numbered through, so that each can be told from every other.
template <typename Row>
std::vector<Row> Numbered(std::size_t rows) {
  std::vector<HostWord> words(rows * sizeof(Row) / sizeof(HostWord));
  std::iota(words.begin(), words.end(), HostWord{1});
  std::vector<Row> table(rows);
  std::memcpy(static_cast<void*>(table.data()), words.data(), words.size() * sizeof(HostWord));
  return table;
}

// Whether each short row holds the first words of its long one.
testing::AssertionResult Shortened(const void* rows, std::size_t count, std::size_t from,
                                   std::size_t to) {
  const auto* const words = static_cast<const HostWord*>(rows);
  if (words == nullptr) return testing::AssertionFailure() << "no table";
  for (std::size_t i = 0; i < count * to; ++i) {
    const auto expected = static_cast<HostWord>(i / to * from + i % to + 1);
    if (words[i] != expected) return testing::AssertionFailure() << "word " << i;
  }
  return testing::AssertionSuccess();
}

TEST(OldLayout, ShortensEveryTable) {
  auto properties = Numbered<zrk::REALproperty>(3);
  auto methods = Numbered<zrk::REALmethodDefinition>(2);
  auto constants = Numbered<zrk::REALconstant>(4);
  auto events = Numbered<zrk::REALevent>(3);
  HostWord further = 7;
  zrk::REALclassDefinition definition = {};
  definition.DataOffset = 40;
  definition.Properties = definition.SharedProperties = properties.data();
  definition.PropertyCount = 3;
  definition.SharedPropertyCount = 1;
  definition.Methods = definition.SharedMethods = methods.data();
  definition.MethodCount = 2;
  definition.SharedMethodCount = 1;
  definition.Constants = constants.data();
  definition.ConstantCount = 4;
  definition.Events = events.data();
  definition.EventCount = 3;
  definition.Unused[1] = 5;
  definition.FurtherTable = &further;
  definition.FurtherCount = 1;
  definition.Flags = 6;
  zrk::ConvertToOldLayout(definition);

  EXPECT_TRUE(Shortened(definition.Properties, 3, 12, 10));
  EXPECT_TRUE(Shortened(definition.SharedProperties, 1, 12, 10));
  EXPECT_TRUE(Shortened(definition.Methods, 2, 6, 4));
  EXPECT_TRUE(Shortened(definition.SharedMethods, 1, 6, 4));
  EXPECT_TRUE(Shortened(definition.Constants, 4, 5, 3));
  EXPECT_TRUE(Shortened(definition.Events, 3, 4, 2));
  for (std::size_t i = 0; i < events.size(); ++i) {
    const auto* const copy = reinterpret_cast<const HostWord*>(definition.Events) + 2 * i;
    EXPECT_EQ(events[i].Words[1], reinterpret_cast<HostWord>(copy)) << "the way to the copy";
  }
  EXPECT_EQ(definition.FurtherTable, nullptr);
  EXPECT_EQ(definition.FurtherCount, 0);
  EXPECT_EQ(definition.Unused[1], 5);
  EXPECT_EQ(definition.Flags, 6);
  EXPECT_EQ(definition.DataOffset, 40);
  EXPECT_EQ(properties[2].Unused[4], 36) << "the original stays as it was";

  for (const void* copy : std::initializer_list<const void*>{
           definition.Properties, definition.SharedProperties, definition.Methods,
           definition.SharedMethods, definition.Constants, definition.Events}) {
    std::free(const_cast<void*>(copy));
  }
}

TEST(OldLayout, NothingComesOfNothing) {
  auto properties = Numbered<zrk::REALproperty>(1);
  EXPECT_EQ(zrk::FixProperties(nullptr, 5), nullptr);
  EXPECT_EQ(zrk::FixProperties(properties.data(), 0), nullptr);
  EXPECT_EQ(zrk::FixProperties(properties.data(), -1), nullptr);
  EXPECT_EQ(zrk::FixProperties(properties.data(), INT32_MAX), nullptr) << "2 GiB and more";

  zrk::REALclassDefinition definition = {};
  definition.MethodCount = 3;
  zrk::ConvertToOldLayout(definition);
  EXPECT_EQ(definition.Methods, nullptr);
  EXPECT_EQ(definition.MethodCount, 3) << "counts are copied either way";
  EXPECT_EQ(definition.Events, nullptr);
}

}  // namespace
