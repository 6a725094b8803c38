#include "regex/name_table.h"

#include <cstddef>
#include <cstring>

namespace zrk {

namespace {

// False, and nothing read, where the engine refuses to tell (pcreapi, pcre_fullinfo).
template <typename Value>
bool ReadInfo(const pcre* code, int item, Value& value) {
  return pcre_fullinfo(code, nullptr, item, &value) == 0;
}

}  // namespace

// Without one of the answers there are no names.
NameTable::NameTable(const pcre* code) {
  if (!ReadInfo(code, PCRE_INFO_NAMETABLE, entries_) ||
      !ReadInfo(code, PCRE_INFO_NAMEENTRYSIZE, entry_size_)) {
    return;
  }
  ReadInfo(code, PCRE_INFO_NAMECOUNT, count_);
}

// An entry is the group's number in two bytes, the high one first, and the zero-terminated name.
std::int32_t NameTable::NumberAt(int index) const {
  const char* const entry = entries_ + std::ptrdiff_t{index} * entry_size_;
  return static_cast<unsigned char>(entry[0]) << 8 | static_cast<unsigned char>(entry[1]);
}
const char* NameTable::NameAt(int index) const {
  return entries_ + std::ptrdiff_t{index} * entry_size_ + 2;
}

// False where there is no such entry.
bool NameTable::HasName(int index, const char* name) const {
  return index >= 0 && index < count_ && std::strcmp(NameAt(index), name) == 0;
}

// The group of an entry or, where others stand beside it with its name, the first set one of all.
std::int32_t NameTable::GroupAt(int index, const MatchResult& match) const {
  const char* const name = NameAt(index);
  int first = index;
  int end = index + 1;
  while (HasName(first - 1, name)) --first;
  while (HasName(end, name)) ++end;
  if (end - first == 1) return NumberAt(index);
  for (int i = first; i < end; ++i) {
    const std::int32_t group = NumberAt(i);
    if (group < match.pairs && match[group].start >= 0) return group;
  }
  return PCRE_ERROR_NOSUBSTRING;
}

// The engine's own call asks for the table anew each time, which takes as long as the search. Where
// no group with the name is set, it answers with the next name of its table.
std::int32_t NameTable::Find(const char* name, const MatchResult& match) const {
  int low = 0;
  int high = count_;
  while (low < high) {
    const int middle = (low + high) / 2;
    const int order = std::strcmp(name, NameAt(middle));
    if (order == 0) return GroupAt(middle, match);
    if (order < 0) {
      high = middle;
    } else {
      low = middle + 1;
    }
  }
  return PCRE_ERROR_NOSUBSTRING;
}

const char* NameTable::NameOf(std::int32_t group) const {
  for (int i = 0; i < count_; ++i) {
    if (NumberAt(i) == group) return NameAt(i);
  }
  return nullptr;
}

}  // namespace zrk
