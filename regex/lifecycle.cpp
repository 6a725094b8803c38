#include <algorithm>
#include <cstdlib>
#include <utility>

#include "host/exceptions.h"
#include "regex/subject.h"

namespace zrk {

namespace {

constexpr HostInteger kSmallestVector = 51;
constexpr HostInteger kLargestVector = 65535;
// The engine uses the last third of its vector as a work area (pcreapi, pcre_exec).
constexpr HostInteger kEntriesPerPair = 3;

}  // namespace

void RegExConstructor(RegExClassData& data, HostInteger VecSize) {
  const HostInteger clamped = std::clamp(VecSize, kSmallestVector, kLargestVector);
  const HostInteger entries = clamped - clamped % kEntriesPerPair;
  data.CompileOptions = PCRE_UNGREEDY | PCRE_UTF8 | PCRE_NO_UTF8_CHECK;
  data.ExecuteOptions = PCRE_NO_UTF8_CHECK;
  data.Lasterror = 0;
  data.Vector = static_cast<std::int32_t*>(
      std::calloc(static_cast<std::size_t>(entries), sizeof *data.Vector));
  if (data.Vector == nullptr) {
    return RaiseException("OutOfMemoryException", "Failed to allocate vector array.");
  }
  data.VectorSize = entries;
}

void RegExDestructor(RegExClassData& data) {
  Released released = ClearText(data);
  ClearErrorMessage(data, released);
  ClearPattern(data);
  std::free(std::exchange(data.Vector, nullptr));
  data.VectorSize = 0;
}

void ClearPattern(RegExClassData& data) {
  if (data.StudyExtra != nullptr) pcre_free_study(std::exchange(data.StudyExtra, nullptr));
  if (data.Handle != nullptr) pcre_free(std::exchange(data.Handle, nullptr));
}

}  // namespace zrk
