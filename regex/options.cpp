#include "regex/options.h"

#include "text/build_string.h"

namespace zrk {

// The text is the engine's own, such as "8.39 2016-06-14".
REALstringStruct* rb_pcre_version(RegExClassData& /*data*/) {
  const char* const version = pcre_version();
  return version != nullptr ? REALBuildUnicodeString(version, kEncodingASCII) : nullptr;
}

}  // namespace zrk
