// The one way to the engine's matcher, and the limits that go with a match.
//
// The engine recurses on the machine's stack, a frame of known size a level, and a few thousand
// characters can be too deep for a thread: `(?:a|b)*c` takes two levels a character. Every match
// therefore runs under a recursion limit that the stack at hand can hold; a match that needs more
// is made again on a thread with a deep stack.
#ifndef ZRK_REGEX_ENGINE_H
#define ZRK_REGEX_ENGINE_H

#include "regex/class_data.h"

namespace zrk {

// What pcre_exec is called with. Lengths and offsets in bytes, vector_size in entries.
struct EngineCall {
  const pcre* code;
  // A copy: each run writes the recursion limit into it, and the study block stays as it is.
  pcre_extra extra;
  unsigned long recursion_limit;  // the script's, the study block's or the engine's own
  const unsigned char* subject = nullptr;
  int length = 0;
  int start = 0;
  int options;
  int* vector;
  int vector_size;
};

// Runs the engine and answers its result: the number of pairs set, 0 where the vector is too small,
// or a negative code. The call's limits hold; PCRE_ERROR_RECURSIONLIMIT means that its recursion
// limit was reached, or that even the deep stack does not hold the match. [any thread]
int RunEngine(EngineCall& call) noexcept;

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

// Writes the script's limits into the study block, where they stay.
void WriteLimits(pcre_extra& study, const RegExClassData& data);

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

// The bytes to show the engine for a subject of unknown kind: its own, or, where the call would
// take them for UTF-8 without checking them and some could lead the engine astray, the copy that
// the notes keep. Throws std::bad_alloc.
const unsigned char* SafeBytes(const EngineCall& call, const unsigned char* bytes,
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
