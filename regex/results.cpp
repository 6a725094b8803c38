// Everything here reads the vector and the kept subject as the last search left them. With
// "(?<y>\d+)-" over "on 2024-", the vector begins 3, 8, 3, 7: the whole match, then the group "y".
#include "regex/results.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include "host/exceptions.h"
#include "regex/name_table.h"
#include "regex/subject.h"
#include "text/build_string.h"

namespace zrk {

namespace {

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

// The pattern's names. They are read once for a kept subject: a compile lets go of that too.
NameTable NamesOf(const RegExClassData& data) {
  const auto read_once = [&](std::optional<NameTable>& names) {
    if (!names) names.emplace(data.Handle);
    return *names;
  };
  if (data.TextAdapter != nullptr) return read_once(data.TextAdapter->names);
  if (data.MemoryAdapter != nullptr) return read_once(data.MemoryAdapter->names);
  return NameTable(data.Handle);
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

// Both are flattened: of the 11 and 28 ns that they take, calls within the library would be another
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
  const int group = NamesOf(data).Find(bytes, LastMatch(data));
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

REALstringStruct* InfoNameEntry(RegExClassData& data, HostInteger Index) {
  if (data.Handle == nullptr) return nullptr;
  int groups = 0;
  if (pcre_fullinfo(data.Handle, nullptr, PCRE_INFO_CAPTURECOUNT, &groups) != 0) return nullptr;
  if (!CheckIndex(Index, std::int64_t{groups} + 1, "InfoNameEntry")) return nullptr;
  const char* const name = NameTable(data.Handle).NameOf(Index);
  return name != nullptr ? BuildUTF8(name) : nullptr;
}

}  // namespace zrk
