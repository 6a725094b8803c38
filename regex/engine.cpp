#include "regex/engine.h"

#include <algorithm>

#include "regex/stack_depth.h"

namespace zrk {

const unsigned long kEngineRecursionLimit = [] {
  unsigned long limit = 0;
  pcre_config(PCRE_CONFIG_MATCH_LIMIT_RECURSION, &limit);
  return limit;
}();

namespace {

const char* AsChars(const unsigned char* bytes) { return reinterpret_cast<const char*>(bytes); }

int RunWithLimit(EngineCall& call, unsigned long limit) {
  call.extra.flags |= PCRE_EXTRA_MATCH_LIMIT_RECURSION;
  call.extra.match_limit_recursion = limit;
  return pcre_exec(call.code, &call.extra, AsChars(call.subject), call.length, call.start,
                   call.options, call.vector, call.vector_size);
}

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

// The attempt on the stack at hand was cut off by its limit.
[[gnu::noinline]] int RunAgainDeep(EngineCall& call) {
  std::fill_n(call.vector, call.vector_size, 0);  // captures of that attempt
  DeepCall deep{call, PCRE_ERROR_RECURSIONLIMIT};
  RunOnDeepStack(RunDeep, &deep);
  return deep.result;
}

// A limit binds from 1 on.
void WriteLimit(pcre_extra& study, unsigned long flag, std::int32_t limit, unsigned long& field) {
  if (limit >= 1) {
    study.flags |= flag;
    field = static_cast<unsigned long>(limit);
  } else {
    study.flags &= ~flag;
  }
}

}  // namespace

int RunEngine(EngineCall& call) noexcept {
  const unsigned long levels = LevelsLeftOnStack();
  const int result = RunWithLimit(call, std::min(call.recursion_limit, levels));
  const bool cut_off = result == PCRE_ERROR_RECURSIONLIMIT && levels < call.recursion_limit;
  return cut_off ? RunAgainDeep(call) : result;
}

void WriteLimits(pcre_extra& study, const RegExClassData& data) {
  WriteLimit(study, PCRE_EXTRA_MATCH_LIMIT, data.MatchLimit, study.match_limit);
  WriteLimit(study, PCRE_EXTRA_MATCH_LIMIT_RECURSION, data.MatchLimitRecursion,
             study.match_limit_recursion);
}

const unsigned char* SafeBytes(const EngineCall& call, const unsigned char* bytes,
                               std::int32_t length, SubjectNotes& notes) {
  return ReadsUnchecked(call) ? notes.EngineBytes(bytes, static_cast<std::size_t>(length)) : bytes;
}

}  // namespace zrk
