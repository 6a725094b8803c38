// Everything here reads the vector and the kept subject as the last search left them. With
// "(?<y>\d+)-" over "on 2024-", the vector begins 3, 8, 3, 7: the whole match, then the group "y".
#include "regex/results.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include "host/exceptions.h"
#include "regex/subject.h"
#include "text/build_string.h"

namespace zrk {

namespace {

// One entry of the engine's name table (pcreapi, PCRE_INFO_NAMETABLE): the group's number in two
// bytes, the high one first, and its zero-terminated name.
class NameEntry {
 public:
  explicit NameEntry(const char* entry) : entry_(entry) {}
  HostInteger number() const {
    return static_cast<unsigned char>(entry_[0]) << 8 | static_cast<unsigned char>(entry_[1]);
  }
  const char* name() const { return entry_ + 2; }

 private:
  const char* entry_;
};

// The engine's entry at an index of the vector; nothing, with the exception raised, where there is
// none.
std::optional<std::int32_t> EntryAt(const RegExClassData& data, HostInteger index,
                                    const char* method) {
  if (!CheckIndex(index, data.VectorSize, method) || !RequireVector(data)) return std::nullopt;
  return data.Vector[index];
}

// Whether a Substring method can go on: raises, or leaves ErrorPlugin, where it cannot.
bool BeginSubstring(RegExClassData& data) {
  if (!RequireVector(data)) return false;
  data.Lasterror = kErrorPlugin;
  return data.Handle != nullptr;
}

// From a third of the vector on its entries are the engine's work area and no pairs: an index there
// reads as an empty group, one past the vector as a group that cannot be.
REALstringStruct* BuildSubstring(RegExClassData& data, HostInteger index) {
  const MatchResult match = LastMatch(data);
  data.Lasterror = PCRE_ERROR_NOSUBSTRING;
  if (index < 0 || index >= data.VectorSize) return nullptr;
  if (index >= match.pairs || match[index].IsEmpty()) {
    data.Lasterror = 0;
    return nullptr;
  }
  const std::string_view text = match.Text(index);
  if (text.empty()) return nullptr;
  data.Lasterror = 0;
  return BuildUTF8(text.substr(0, text.find('\0')));
}

// The group of that name, or a negative code. Of several groups with the name it is the first that
// is set, and PCRE_ERROR_NOSUBSTRING when none is (pcreapi, "Duplicate subpattern names"). The
// engine's own call is not used: where none is set, it answers with the next name of its table.
int FindGroup(const RegExClassData& data, const char* name) {
  char* first = nullptr;
  char* last = nullptr;
  const int entry_size = pcre_get_stringtable_entries(data.Handle, name, &first, &last);
  if (entry_size <= 0) return entry_size;
  if (first == last) return NameEntry(first).number();
  const MatchResult match = LastMatch(data);
  for (const char* entry = first; entry <= last; entry += entry_size) {
    const int number = NameEntry(entry).number();
    if (number < match.pairs && match[number].start >= 0) return number;
  }
  return PCRE_ERROR_NOSUBSTRING;
}

template <typename Value>
bool ReadInfo(const RegExClassData& data, int item, Value& value) {
  return pcre_fullinfo(data.Handle, data.StudyExtra, item, &value) == 0;
}

}  // namespace

// An unset group reads as -1, as the engine has it.
HostInteger GetOffset(RegExClassData& data, HostInteger index) {
  return EntryAt(data, index, "Offset").value_or(0);
}

// Entry 0 and unset groups need no subject, so nothing is asked of the host for them.
HostInteger GetOffsetChar(RegExClassData& data, HostInteger index) {
  const std::optional<std::int32_t> offset = EntryAt(data, index, "OffsetCharacters");
  if (offset.value_or(0) < 1) return 0;
  const auto lost = ClearLostSubject(data);
  SubjectBytes* const subject = SubjectOf(data);
  if (subject == nullptr || data.TextPointer == nullptr) return 0;
  return static_cast<HostInteger>(
      subject->CharactersBefore(static_cast<std::size_t>(std::min(*offset, data.TextLength))));
}

// Both are flattened: of the 11 and 41 ns that they take, calls within the library would be another
// 2 and 4.
[[gnu::flatten]] REALstringStruct* rb_pcre_get_substringI(RegExClassData& data, HostInteger index) {
  if (!BeginSubstring(data)) return nullptr;
  const auto lost = ClearLostSubject(data);
  return BuildSubstring(data, index);
}

[[gnu::flatten]] REALstringStruct* rb_pcre_get_substringN(RegExClassData& data,
                                                          REALstringStruct* name) {
  if (!BeginSubstring(data)) return nullptr;
  rbText text(name);
  const char* const bytes = text.UTF8().data();
  const auto lost = ClearLostSubject(data);
  const int group = FindGroup(data, bytes);
  if (group >= 0) return BuildSubstring(data, group);
  data.Lasterror = group;
  return nullptr;
}

HostInteger rbpcre_get_stringnumber(RegExClassData& data, REALstringStruct* name) {
  data.Lasterror = kErrorPlugin;
  if (data.Handle == nullptr) return 0;
  rbText text(name);
  const int group = pcre_get_stringnumber(data.Handle, text.UTF8().data());
  data.Lasterror = std::min(group, 0);
  return std::max(group, 0);
}

// The table is in alphabetical order, so a group's name has to be looked for.
REALstringStruct* InfoNameEntry(RegExClassData& data, HostInteger Index) {
  if (data.Handle == nullptr) return nullptr;
  int groups = 0;
  int names = 0;
  int entry_size = 0;
  const char* table = nullptr;
  if (!ReadInfo(data, PCRE_INFO_CAPTURECOUNT, groups) ||
      !ReadInfo(data, PCRE_INFO_NAMECOUNT, names) ||
      !ReadInfo(data, PCRE_INFO_NAMEENTRYSIZE, entry_size) ||
      !ReadInfo(data, PCRE_INFO_NAMETABLE, table)) {
    return nullptr;
  }
  if (!CheckIndex(Index, std::int64_t{groups} + 1, "InfoNameEntry")) return nullptr;
  for (int i = 0; i < names; ++i) {
    const NameEntry entry(table + i * entry_size);
    if (entry.number() == Index) return BuildUTF8(entry.name());
  }
  return nullptr;
}

}  // namespace zrk
