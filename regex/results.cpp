#include "regex/results.h"

#include <algorithm>
#include <cstring>
#include <optional>

#include "host/exceptions.h"
#include "regex/match.h"

namespace zrk {

namespace {

// One entry of the engine's name table (pcreapi, PCRE_INFO_NAMETABLE): the group's number in two
// bytes, the high one first, and its zero-terminated name.
struct NameEntry {
  const unsigned char* bytes;

  HostInteger number() const { return (bytes[0] << 8) + bytes[1]; }
  const char* name() const { return reinterpret_cast<const char*>(bytes) + 2; }
};

std::optional<std::int32_t> EntryAt(const RegExClassData& data, HostInteger index,
                                    const char* method) {
  if (!CheckIndex(index, data.VectorSize, method) || !RequireVector(data)) return std::nullopt;
  return data.Vector[index];
}

// Whether a Substring method can go on: raises, or leaves ErrorPlugin, where it cannot.
bool BeginSubstring(RegExClassData& data) {
  if (!RequireVector(data)) return false;
  data.Lasterror = kErrorPlugin;
  ForgetLostSubject(data);
  return data.Handle != nullptr;
}

// From a third of the vector on its entries are pairs no more; those below its size read as empty.
REALstringStruct* BuildSubstring(RegExClassData& data, HostInteger index) {
  const MatchResult match = LastMatch(data);
  data.Lasterror = PCRE_ERROR_NOSUBSTRING;
  if (index < 0 || index >= data.VectorSize) return nullptr;
  if (index >= match.pairs || match[index].IsEmpty()) {
    data.Lasterror = 0;
    return nullptr;
  }
  const Bytes text = match.Text(index);
  if (text.length == 0) return nullptr;
  data.Lasterror = 0;
  const void* const nul = std::memchr(text.data, 0, static_cast<std::size_t>(text.length));
  if (nul == nullptr) return BuildUTF8(text);
  return BuildUTF8({text.data, static_cast<const unsigned char*>(nul) - text.data});
}

// The group of that name, or a negative code. Of several groups with the name it is the first that
// is set, or else the first.
int FindGroup(const RegExClassData& data, const char* name) {
  char* first = nullptr;
  char* last = nullptr;
  const int entry_size = pcre_get_stringtable_entries(data.Handle, name, &first, &last);
  if (entry_size <= 0) return entry_size;
  const MatchResult match = LastMatch(data);
  for (const char* entry = first; entry <= last; entry += entry_size) {
    const int number = NameEntry{reinterpret_cast<const unsigned char*>(entry)}.number();
    if (number < match.pairs && match[number].start >= 0) return number;
  }
  return NameEntry{reinterpret_cast<const unsigned char*>(first)}.number();
}

template <typename Value>
bool ReadInfo(const RegExClassData& data, int item, Value& value) {
  return pcre_fullinfo(data.Handle, data.StudyExtra, item, &value) == 0;
}

}  // namespace

HostInteger GetOffset(RegExClassData& data, HostInteger index) {
  return EntryAt(data, index, "Offset").value_or(0);
}

HostInteger GetOffsetChar(RegExClassData& data, HostInteger index) {
  const std::int32_t offset = EntryAt(data, index, "OffsetCharacters").value_or(0);
  ForgetLostSubject(data);
  SubjectNotes* const notes = NotesOf(data);
  if (offset < 1 || notes == nullptr) return 0;
  return static_cast<HostInteger>(notes->CharactersBefore(
      data.TextPointer, static_cast<std::size_t>(std::min(offset, data.TextLength))));
}

REALstringStruct* rb_pcre_get_substringI(RegExClassData& data, HostInteger index) {
  return BeginSubstring(data) ? BuildSubstring(data, index) : nullptr;
}

REALstringStruct* rb_pcre_get_substringN(RegExClassData& data, REALstringStruct* name) {
  if (!BeginSubstring(data)) return nullptr;
  rbText text(name);
  const int group = FindGroup(data, text.UTF8Text());
  if (group >= 0) return BuildSubstring(data, group);
  data.Lasterror = group;
  return nullptr;
}

HostInteger rbpcre_get_stringnumber(RegExClassData& data, REALstringStruct* name) {
  data.Lasterror = kErrorPlugin;
  if (data.Handle == nullptr) return 0;
  rbText text(name);
  const int group = pcre_get_stringnumber(data.Handle, text.UTF8Text());
  data.Lasterror = std::min(group, 0);
  return std::max(group, 0);
}

REALstringStruct* InfoNameEntry(RegExClassData& data, HostInteger Index) {
  if (data.Handle == nullptr) return nullptr;
  int groups = 0;
  int names = 0;
  int entry_size = 0;
  const unsigned char* table = nullptr;
  if (!ReadInfo(data, PCRE_INFO_CAPTURECOUNT, groups) ||
      !ReadInfo(data, PCRE_INFO_NAMECOUNT, names) ||
      !ReadInfo(data, PCRE_INFO_NAMEENTRYSIZE, entry_size) ||
      !ReadInfo(data, PCRE_INFO_NAMETABLE, table)) {
    return nullptr;
  }
  if (!CheckIndex(Index, std::int64_t{groups} + 1, "InfoNameEntry")) return nullptr;
  for (int i = 0; i < names; ++i) {
    const NameEntry entry{table + i * entry_size};
    if (entry.number() != Index) continue;
    return REALBuildUnicodeString(entry.name(), kEncodingUTF8);
  }
  return nullptr;
}

}  // namespace zrk
