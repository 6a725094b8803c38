#include "host/strings.h"

#include "host/references.h"
#include "host/services.h"

namespace zrk {

// Two steps, since hosts before 2012.0 have no way to build a marked string.
REALstringStruct* BuildThenMark(std::string_view bytes, std::uint32_t encoding) {
  if (bytes.empty() || bytes.size() > INT32_MAX) return nullptr;
  auto string = StringReference::Adopt(originalREALBuildString(bytes.data(), LengthOf(bytes)));
  if (string.get() != nullptr) REALSetStringEncoding(string.get(), encoding);
  return string.Take();
}

}  // namespace zrk
