// The one way to the engine's matcher, and the limits that go with a match.
//
// The engine recurses on the machine's stack, a frame of known size a level, and a few thousand
// characters can be too deep for a thread: `(?:a|b)*c` takes two levels a character. Every match
// therefore runs under a recursion limit that the stack at hand can hold; a match that needs more
// is made again on a thread with a deep stack.
#ifndef ZRK_REGEX_ENGINE_H
#define ZRK_REGEX_ENGINE_H

#include <algorithm>

#include "regex/class_data.h"
#include "regex/stack_depth.h"

namespace zrk {

// What pcre_exec is called with. Lengths and offsets in bytes, vector_size in entries.
struct EngineCall {
  const pcre* code;
  // A copy: each run writes the recursion limit into it, and the study block stays as it is.
  pcre_extra extra;
  unsigned long recursion_limit;  // the script's, the study block's or the engine's own
  const unsigned char* subject;
  int length;
  int start = 0;
  int options;
  int* vector;
  int vector_size;
};

// The recursion limit that the engine has by itself.
extern const unsigned long kEngineRecursionLimit;

// A call with the object's pattern, execute options and study block, without the script's limits:
// as the threaded methods run it.
inline EngineCall PrepareUnlimitedCall(const RegExClassData& data) {
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

// A limit binds from 1 on. Flags that stay are not written again: the copy that follows would wait
// for them.
inline void WriteLimit(pcre_extra& study, unsigned long flag, std::int32_t limit,
                       unsigned long& field) {
  if (limit >= 1) {
    study.flags |= flag;
    field = static_cast<unsigned long>(limit);
  } else if ((study.flags & flag) != 0) {
    study.flags &= ~flag;
  }
}

// Writes the script's limits into the study block, where they stay.
inline void WriteLimits(pcre_extra& study, const RegExClassData& data) {
  WriteLimit(study, PCRE_EXTRA_MATCH_LIMIT, data.MatchLimit, study.match_limit);
  WriteLimit(study, PCRE_EXTRA_MATCH_LIMIT_RECURSION, data.MatchLimitRecursion,
             study.match_limit_recursion);
}

// The same under the script's limits, as the synchronous methods run it.
inline EngineCall PrepareCall(RegExClassData& data) {
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

// Runs the engine under that recursion limit instead of the call's own.
inline int RunWithLimit(EngineCall& call, unsigned long limit) {
  call.extra.flags |= PCRE_EXTRA_MATCH_LIMIT_RECURSION;
  call.extra.match_limit_recursion = limit;
  return pcre_exec(call.code, &call.extra, reinterpret_cast<const char*>(call.subject), call.length,
                   call.start, call.options, call.vector, call.vector_size);
}

// Runs a call again that the stack at hand cut off.
[[gnu::noinline]] int RunAgainDeep(EngineCall& call) noexcept;

// Runs the engine and answers its result: the number of pairs set, 0 where the vector is too small,
// or a negative code. The call's limits hold; PCRE_ERROR_RECURSIONLIMIT means that its recursion
// limit was reached, or that even the deep stack does not hold the match. [any thread]
inline int RunEngine(EngineCall& call) noexcept {
  const unsigned long levels = LevelsLeftOnStack();
  const int result = RunWithLimit(call, std::min(call.recursion_limit, levels));
  const bool cut_off = result == PCRE_ERROR_RECURSIONLIMIT && levels < call.recursion_limit;
  return cut_off ? RunAgainDeep(call) : result;
}

// The bytes to show the engine for a subject of unknown kind: its own, or, where the call would
// take them for UTF-8 without checking them and some could lead the engine astray, the copy that
// the notes keep. Throws std::bad_alloc.
[[gnu::noinline]] const unsigned char* SafeBytes(const EngineCall& call, const unsigned char* bytes,
                                                 std::int32_t length, SubjectNotes& notes);

// Points the call at a subject, in a form that is safe for it. Throws std::bad_alloc, on the first
// call for a subject only.
inline void SetSubject(EngineCall& call, const unsigned char* bytes, std::int32_t length,
                       SubjectNotes& notes) {
  call.subject = notes.AreKnownSafe() ? bytes : SafeBytes(call, bytes, length, notes);
  call.length = length;
}
inline void SetSubject(EngineCall& call, rbText& text) {
  SetSubject(call, text.UTF8Bytes(), text.UTF8Length(), text.notes());
}

}  // namespace zrk

#endif  // ZRK_REGEX_ENGINE_H
