#include "regex/options.h"

#include <type_traits>

#include "text/build_string.h"

namespace zrk {

namespace {

void SetOption(std::uint32_t& word, std::uint32_t option, HostBoolean value) {
  word = value != 0 ? word | option : word & ~option;
}

template <typename Value>
HostInteger ReadInfo(RegExClassData& data, int item) {
  data.Lasterror = kErrorPlugin;
  if (data.Handle == nullptr) return 0;
  Value value = 0;
  data.Lasterror = pcre_fullinfo(data.Handle, data.StudyExtra, item, &value);
  return data.Lasterror == 0 ? static_cast<HostInteger>(value) : 0;
}

template <typename Result, typename Value>
Result ReadConfig(RegExClassData& data, int item) {
  Value value = 0;
  data.Lasterror = pcre_config(item, &value);
  if constexpr (std::is_same_v<Result, HostBoolean>) {
    return value != 0;
  } else {
    return static_cast<Result>(value);
  }
}

}  // namespace

#define ZRK_DEFINE_OPTION(property, word, option)                                              \
  HostBoolean Get##word##option(RegExClassData& data, HostInteger /*parameter*/) {             \
    return (data.word##Options & std::uint32_t{option}) != 0;                                  \
  }                                                                                            \
  void Set##word##option(RegExClassData& data, HostInteger /*parameter*/, HostBoolean value) { \
    SetOption(data.word##Options, option, value);                                              \
  }
ZRK_OPTIONS(ZRK_DEFINE_OPTION)
#undef ZRK_DEFINE_OPTION

#define ZRK_DEFINE_INFO(property, getter, type, item)                   \
  HostInteger getter(RegExClassData& data, HostInteger /*parameter*/) { \
    return ReadInfo<type>(data, item);                                  \
  }
ZRK_INFOS(ZRK_DEFINE_INFO)
#undef ZRK_DEFINE_INFO

#define ZRK_DEFINE_CONFIG(method, result, declared, type, item) \
  result method(RegExClassData& data) { return ReadConfig<result, type>(data, item); }
ZRK_CONFIGS(ZRK_DEFINE_CONFIG)
#undef ZRK_DEFINE_CONFIG

REALstringStruct* rb_pcre_version(RegExClassData& /*data*/) {
  const char* const version = pcre_version();
  return version != nullptr ? REALBuildUnicodeString(version, kEncodingASCII) : nullptr;
}

}  // namespace zrk
