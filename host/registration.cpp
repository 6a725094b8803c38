// Older hosts read shorter rows. A row is a run of words, and its old form is the first words of
// it: a property row of 12 words becomes one of 10, a method row of 6 becomes 4, a constant row 5
// to 3.
#include "host/registration.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "host/services.h"
#include "host/state.h"

namespace zrk {

namespace {

constexpr std::size_t kOldPropertyWords = 10;
constexpr std::size_t kOldMethodWords = 4;
constexpr std::size_t kOldConstantWords = 3;
constexpr std::size_t kOldEventWords = 2;
constexpr std::int32_t kFirstCurrentLayout = 10;

// The first `words` words of each row, as a new table; null for none, for 2 GiB and more, and
// without memory.
template <typename Row>
Row* ShortenRows(const Row* table, HostWord count, std::size_t words) {
  const std::size_t old_bytes = words * kWord;
  if (table == nullptr || count < 1) return nullptr;
  const auto rows = static_cast<std::size_t>(count);
  if (rows > INT32_MAX / old_bytes) return nullptr;
  auto* const copy = static_cast<HostWord*>(std::calloc(rows, old_bytes));
  if (copy == nullptr) return nullptr;
  for (std::size_t i = 0; i < rows; ++i) std::memcpy(copy + i * words, table + i, old_bytes);
  return reinterpret_cast<Row*>(copy);
}

REALevent* FixEvents(REALevent* table, HostWord count) {
  REALevent* const fixed = ShortenRows(table, count, kOldEventWords);
  if (fixed == nullptr) return nullptr;
  auto* row = reinterpret_cast<HostWord*>(fixed);
  for (HostWord i = 0; i < count; ++i, row += kOldEventWords) {
    table[i].Words[1] = reinterpret_cast<HostWord>(row);
  }
  return fixed;
}

}  // namespace

REALproperty* FixProperties(const REALproperty* table, HostWord count) {
  return ShortenRows(table, count, kOldPropertyWords);
}

void ConvertToOldLayout(REALclassDefinition& definition) {
  definition.Properties = FixProperties(definition.Properties, definition.PropertyCount);
  definition.Methods = ShortenRows(definition.Methods, definition.MethodCount, kOldMethodWords);
  definition.Events = FixEvents(definition.Events, definition.EventCount);
  definition.FurtherTable = nullptr;
  definition.FurtherCount = 0;
  definition.Constants =
      ShortenRows(definition.Constants, definition.ConstantCount, kOldConstantWords);
  definition.SharedProperties =
      FixProperties(definition.SharedProperties, definition.SharedPropertyCount);
  definition.SharedMethods =
      ShortenRows(definition.SharedMethods, definition.SharedMethodCount, kOldMethodWords);
}

void RegisterClass(REALclassDefinition& definition) {
  constexpr HostWord kDataAlignment = 16;
  definition.DataSize = (definition.DataSize + kDataAlignment - 1) & -kDataAlignment;
  definition.Version = CurrentREALControlVersion;
  if (CurrentREALControlVersion < kFirstCurrentLayout) ConvertToOldLayout(definition);
  REALRegisterClass(&definition);
}

}  // namespace zrk
