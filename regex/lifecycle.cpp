// An object's life: the host hands over a zero-filled record, the constructor gives it a vector and
// the default options, and the destructor gives back everything that the record has come to own.
#include <algorithm>
#include <cstdlib>
#include <utility>

#include "host/exceptions.h"
#include "regex/subject.h"

namespace zrk {

namespace {

// In entries. The smallest vector has room for the whole match and 16 groups.
constexpr HostInteger kSmallestVector = 51;
constexpr HostInteger kLargestVector = 65535;
// The engine uses the last third of its vector as a work area (pcreapi, pcre_exec).
constexpr HostInteger kEntriesPerPair = 3;

}  // namespace

// Lazy quantifiers are the class's default on purpose. The engine's UTF-8 check is off, since hosts
// convert text themselves; bytes that it must not see are kept from it (SubjectBytes).
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

// The references go last, when the record is empty.
void RegExDestructor(RegExClassData& data) {
  const Released subject = ClearText(data);
  const StringReference message = ClearErrorMessage(data);
  ClearPattern(data);
  std::free(std::exchange(data.Vector, nullptr));
  data.VectorSize = 0;
}

void ClearPattern(RegExClassData& data) {
  if (data.StudyExtra != nullptr) pcre_free_study(std::exchange(data.StudyExtra, nullptr));
  if (data.Handle != nullptr) pcre_free(std::exchange(data.Handle, nullptr));
}

}  // namespace zrk
