// The names of a pattern's groups, as the engine keeps them: in alphabetical order, each with its
// group's number. With "(?<year>\d+)-(?<day>\d+)" the table says day 2, year 1.
#ifndef ZRK_REGEX_NAME_TABLE_H
#define ZRK_REGEX_NAME_TABLE_H

#include <pcre.h>

#include <cstdint>

#include "regex/match_result.h"

namespace zrk {

// Reads the pattern's own memory: not to be used after the pattern has gone. Without a pattern
// there are no names.
class NameTable {
 public:
  explicit NameTable(const pcre* code);

  // The group of that name, set or not, or PCRE_ERROR_NOSUBSTRING. Of several groups with the name
  // it is the first that is set in the match, and PCRE_ERROR_NOSUBSTRING when none is (pcreapi,
  // "Duplicate subpattern names").
  std::int32_t Find(const char* name, const MatchResult& match) const;
  // The name of a group, or null: the table has to be gone through for it.
  const char* NameOf(std::int32_t group) const;

 private:
  std::int32_t NumberAt(int index) const;
  const char* NameAt(int index) const;
  bool HasName(int index, const char* name) const;
  std::int32_t GroupAt(int index, const MatchResult& match) const;

  const char* entries_ = nullptr;
  int count_ = 0;
  int entry_size_ = 0;
};

}  // namespace zrk

#endif  // ZRK_REGEX_NAME_TABLE_H
