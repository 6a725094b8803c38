#include "regex/engine.h"

#include <algorithm>

#include "regex/stack_depth.h"

namespace zrk {

namespace {

// Carries the script's limits for patterns without a study block; nothing else is ever set in it.
// Host thread only.
pcre_extra extra;

const char* AsChars(const unsigned char* bytes) { return reinterpret_cast<const char*>(bytes); }

// The recursion limit the engine would use by itself.
unsigned long OwnRecursionLimit(const pcre_extra* extra) {
  static const unsigned long engine_default = [] {
    unsigned long limit = 0;
    pcre_config(PCRE_CONFIG_MATCH_LIMIT_RECURSION, &limit);
    return limit;
  }();
  const bool is_set = extra != nullptr && (extra->flags & PCRE_EXTRA_MATCH_LIMIT_RECURSION) != 0;
  return is_set ? extra->match_limit_recursion : engine_default;
}

// The limit goes into a copy of the extra block, so that what the script and the study set stays.
int RunWithLimit(const EngineCall& call, unsigned long limit) {
  pcre_extra limited = call.extra != nullptr ? *call.extra : pcre_extra{};
  limited.flags |= PCRE_EXTRA_MATCH_LIMIT_RECURSION;
  limited.match_limit_recursion = limit;
  return pcre_exec(call.code, &limited, AsChars(call.subject), call.length, call.start,
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
  const EngineCall& call;
  unsigned long own_limit;
  int result;
};

void RunDeep(void* data, unsigned long levels) {
  auto& deep = *static_cast<DeepCall*>(data);
  deep.result = RunWithLimit(deep.call, std::min(deep.own_limit, levels));
}

void SetLimit(pcre_extra& block, unsigned long flag, std::int32_t limit, unsigned long& field) {
  if (limit >= 1) {
    block.flags |= flag;
    field = static_cast<unsigned long>(limit);
  } else {
    block.flags &= ~flag;
  }
}

}  // namespace

int RunEngine(const EngineCall& call) noexcept {
  const unsigned long own_limit = OwnRecursionLimit(call.extra);
  const unsigned long levels = LevelsLeftOnStack();
  const int result = RunWithLimit(call, std::min(own_limit, levels));
  if (result != PCRE_ERROR_RECURSIONLIMIT || levels >= own_limit) return result;
  std::fill_n(call.vector, call.vector_size, 0);  // captures of the attempt that was cut off
  DeepCall deep{call, own_limit, result};
  RunOnDeepStack(RunDeep, &deep);
  return deep.result;
}

EngineCall PrepareCall(RegExClassData& data) {
  EngineCall call = PrepareUnlimitedCall(data);
  pcre_extra& block = data.StudyExtra != nullptr ? *data.StudyExtra : extra;
  SetLimit(block, PCRE_EXTRA_MATCH_LIMIT, data.MatchLimit, block.match_limit);
  SetLimit(block, PCRE_EXTRA_MATCH_LIMIT_RECURSION, data.MatchLimitRecursion,
           block.match_limit_recursion);
  call.extra = &block;
  return call;
}

EngineCall PrepareUnlimitedCall(const RegExClassData& data) {
  return {.code = data.Handle,
          .extra = data.StudyExtra,
          .subject = nullptr,
          .length = 0,
          .start = 0,
          .options = static_cast<int>(data.ExecuteOptions),
          .vector = data.Vector,
          .vector_size = data.VectorSize};
}

void SetSubject(EngineCall& call, const unsigned char* bytes, std::int32_t length,
                SubjectNotes& notes) {
  const bool as_it_is = notes.AreKnownSafe() || !ReadsUnchecked(call);
  call.subject = as_it_is ? bytes : notes.EngineBytes(bytes, static_cast<std::size_t>(length));
  call.length = length;
}

void SetSubject(EngineCall& call, rbText& text) {
  SetSubject(call, text.UTF8Bytes(), text.UTF8Length(), text.notes());
}

}  // namespace zrk
