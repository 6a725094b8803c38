#include "regex/engine.h"

#include <algorithm>
#include <functional>
#include <string_view>

#include "regex/stack_depth.h"

namespace zrk {

namespace {

const unsigned long kEngineRecursionLimit = [] {
  unsigned long limit = 0;
  pcre_config(PCRE_CONFIG_MATCH_LIMIT_RECURSION, &limit);
  return limit;
}();

// A limit binds from 1 on.
void WriteLimit(pcre_extra& extra, unsigned long flag, std::int32_t limit, unsigned long& field) {
  if (limit >= 1) {
    extra.flags |= flag;
    field = static_cast<unsigned long>(limit);
  } else if ((extra.flags & flag) != 0) {
    extra.flags &= ~flag;
  }
}

void WriteLimits(pcre_extra& extra, const RegExClassData& data) {
  WriteLimit(extra, PCRE_EXTRA_MATCH_LIMIT, data.MatchLimit, extra.match_limit);
  WriteLimit(extra, PCRE_EXTRA_MATCH_LIMIT_RECURSION, data.MatchLimitRecursion,
             extra.match_limit_recursion);
}

// Whether the pattern takes its subjects for UTF-8.
[[gnu::noinline]] bool ReadsUTF8(const pcre* code) {
  unsigned long compiled_with = 0;
  pcre_fullinfo(code, nullptr, PCRE_INFO_OPTIONS, &compiled_with);
  return (compiled_with & PCRE_UTF8) != 0;
}

// Runs the engine under that recursion limit instead of the call's own.
int RunWithLimit(EngineCall& call, unsigned long limit) {
  call.extra.flags |= PCRE_EXTRA_MATCH_LIMIT_RECURSION;
  call.extra.match_limit_recursion = limit;
  return pcre_exec(call.code, &call.extra, call.subject, call.length, call.start, call.options,
                   call.vector, call.vector_size);
}

// The levels that a match may have where stack is no matter: a pattern can begin with a limit of
// its own, `(*LIMIT_RECURSION=...)`, which can only lower the call's.
[[gnu::cold, gnu::noinline]] unsigned long LimitOf(const EngineCall& call) {
  std::uint32_t of_pattern = 0;
  const bool has_one =
      pcre_fullinfo(call.code, nullptr, PCRE_INFO_RECURSIONLIMIT, &of_pattern) == 0;
  return has_one ? std::min<unsigned long>(call.recursion_limit, of_pattern) : call.recursion_limit;
}

[[gnu::cold, gnu::noinline]] int RunAgainDeep(EngineCall& call) {
  std::fill_n(call.vector, call.vector_size, 0);  // captures of the first attempt
  int result = PCRE_ERROR_RECURSIONLIMIT;
  const auto run = [&](std::size_t stack_bytes) {
    result = RunWithLimit(call, std::min(call.recursion_limit, LevelsIn(stack_bytes)));
  };
  RunOnDeepStack(std::ref(run));
  return result;
}

}  // namespace

EngineCall PrepareUnlimitedCall(const RegExClassData& data) {
  EngineCall call;
  call.code = data.Handle;
  call.extra.flags = 0;  // the engine reads no field that they do not name (pcreapi, pcre_extra)
  call.recursion_limit = kEngineRecursionLimit;
  call.options = static_cast<int>(data.ExecuteOptions);
  call.vector = data.Vector;
  call.vector_size = data.VectorSize;
  if (data.StudyExtra != nullptr) {
    call.extra = *data.StudyExtra;
    const bool is_limited = (call.extra.flags & PCRE_EXTRA_MATCH_LIMIT_RECURSION) != 0;
    if (is_limited) call.recursion_limit = call.extra.match_limit_recursion;
  }
  return call;
}

EngineCall PrepareCall(RegExClassData& data) {
  if (data.StudyExtra != nullptr) WriteLimits(*data.StudyExtra, data);
  EngineCall call = PrepareUnlimitedCall(data);
  if (data.MatchLimit >= 1) {
    call.extra.flags |= PCRE_EXTRA_MATCH_LIMIT;
    call.extra.match_limit = static_cast<unsigned long>(data.MatchLimit);
  }
  if (data.MatchLimitRecursion >= 1) {
    call.recursion_limit = static_cast<unsigned long>(data.MatchLimitRecursion);
  }
  return call;
}

void SetSubject(EngineCall& call, SubjectBytes* subject, std::int32_t start) {
  std::string_view bytes;
  if (subject != nullptr) {
    // Asking the engine takes as long as looking through a hundred bytes, so short texts come
    // first; long ones are looked through only for patterns that have to know.
    const bool as_they_are = (call.options & PCRE_NO_UTF8_CHECK) == 0 ||
                             subject->ArePlainlySafe() || !ReadsUTF8(call.code);
    bytes = as_they_are ? subject->bytes() : subject->ForUncheckedEngine();
  }
  call.subject = bytes.data();
  call.length = static_cast<int>(bytes.size());
  call.start = start;
}

int RunEngine(EngineCall& call) noexcept {
  const unsigned long levels = LevelsIn(StackLeft());
  const int result = RunWithLimit(call, std::min(call.recursion_limit, levels));
  const bool cut_off = result == PCRE_ERROR_RECURSIONLIMIT && levels < LimitOf(call);
  return cut_off ? RunAgainDeep(call) : result;
}

}  // namespace zrk
