// What the rows of options, facts about the pattern and facts about the engine call. Nothing here
// raises an exception. An accessor takes its row's parameter, which it does not need.
#ifndef ZRK_REGEX_OPTIONS_H
#define ZRK_REGEX_OPTIONS_H

#include <type_traits>

#include "regex/class_data.h"

namespace zrk {

// Whether any bit of an option is set in its word. The setter below sets or clears all of them, so
// the two differ for the newline options of several bits: after "CompileOptionNewLineCR = true" the
// property "CompileOptionNewLineCRLF" reads true as well.
template <auto kWord, std::uint32_t kOption>
HostBoolean GetOption(RegExClassData& data, HostInteger /*parameter*/) {
  return (data.*kWord & kOption) != 0;
}

template <auto kWord, std::uint32_t kOption>
void SetOption(RegExClassData& data, HostInteger /*parameter*/, HostBoolean value) {
  std::uint32_t& word = data.*kWord;
  word = value != 0 ? word | kOption : word & ~kOption;
}

// A fact about the compiled pattern, which the engine knows as a Value. 0 without a pattern, with
// ErrorPlugin in Lasterror; the engine's code is there otherwise.
template <int kItem, typename Value>
HostInteger GetInfo(RegExClassData& data, HostInteger /*parameter*/) {
  data.Lasterror = kErrorPlugin;
  if (data.Handle == nullptr) return 0;
  Value value = 0;
  data.Lasterror = pcre_fullinfo(data.Handle, data.StudyExtra, kItem, &value);
  return data.Lasterror == 0 ? static_cast<HostInteger>(value) : 0;
}

// How the engine was built. Lasterror takes the engine's code.
template <typename Result, int kItem, typename Value>
Result GetConfig(RegExClassData& data) {
  Value value = 0;
  data.Lasterror = pcre_config(kItem, &value);
  if constexpr (std::is_same_v<Result, HostBoolean>) {
    return value != 0;
  } else {
    return static_cast<Result>(value);
  }
}

// "Version as string": the engine's release and date.
REALstringStruct* rb_pcre_version(RegExClassData& data);

}  // namespace zrk

#endif  // ZRK_REGEX_OPTIONS_H
