#include "regex/engine.h"

#include <algorithm>

namespace zrk {

const unsigned long kEngineRecursionLimit = [] {
  unsigned long limit = 0;
  pcre_config(PCRE_CONFIG_MATCH_LIMIT_RECURSION, &limit);
  return limit;
}();

namespace {

// Whether the engine would take the call's subject for UTF-8 without checking it.
bool ReadsUnchecked(const EngineCall& call) {
  if ((call.options & PCRE_NO_UTF8_CHECK) == 0) return false;
  unsigned long compiled_with = 0;
  pcre_fullinfo(call.code, nullptr, PCRE_INFO_OPTIONS, &compiled_with);
  return (compiled_with & PCRE_UTF8) != 0;
}

struct DeepCall {
  EngineCall& call;
  int result;
};

void RunDeep(void* data, unsigned long levels) {
  auto& deep = *static_cast<DeepCall*>(data);
  deep.result = RunWithLimit(deep.call, std::min(deep.call.recursion_limit, levels));
}

}  // namespace

int RunAgainDeep(EngineCall& call) noexcept {
  std::fill_n(call.vector, call.vector_size, 0);  // captures of the first attempt
  DeepCall deep{call, PCRE_ERROR_RECURSIONLIMIT};
  RunOnDeepStack(RunDeep, &deep);
  return deep.result;
}

const unsigned char* SafeBytes(const EngineCall& call, const unsigned char* bytes,
                               std::int32_t length, SubjectNotes& notes) {
  return ReadsUnchecked(call) ? notes.EngineBytes(bytes, static_cast<std::size_t>(length)) : bytes;
}

}  // namespace zrk
