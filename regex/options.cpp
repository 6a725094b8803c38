#include "regex/options.h"

#include "text/build_string.h"

namespace zrk {

REALstringStruct* rb_pcre_version(RegExClassData& /*data*/) {
  const char* const version = pcre_version();
  return version != nullptr ? REALBuildUnicodeString(version, kEncodingASCII) : nullptr;
}

}  // namespace zrk
