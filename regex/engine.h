// The one way to the engine's matcher, and the limits that go with a match.
//
// The engine recurses on the machine's stack, a frame of known size a level, and a few thousand
// characters can be too deep for a thread: `(?:a|b)*c` takes two levels a character. Every match
// therefore runs under a recursion limit that the stack at hand can hold; a match that needs more
// is made again on a thread with a deep stack.
#ifndef ZRK_REGEX_ENGINE_H
#define ZRK_REGEX_ENGINE_H

#include <cstdint>

#include "regex/class_data.h"
#include "text/subject_bytes.h"

namespace zrk {

// What pcre_exec is called with. Lengths and offsets in bytes, vector_size in entries.
struct EngineCall {
  const pcre* code;
  // A copy: each run writes the recursion limit into it, and the study block stays as it is.
  pcre_extra extra;
  unsigned long recursion_limit;  // the script's, the study block's or the engine's own
  const char* subject;
  int length;
  int start = 0;
  int options;
  int* vector;
  int vector_size;
};

// A call with the object's pattern, execute options and study block, without the script's limits:
// as the threaded methods run it.
EngineCall PrepareUnlimitedCall(const RegExClassData& data);

// The same under the script's limits, as the synchronous methods run it. They are written into the
// study block as well, where they stay.
EngineCall PrepareCall(RegExClassData& data);

// Points the call at a subject and a start in it, both in bytes. Where the call would take the
// bytes for UTF-8 without checking them, it is shown a form that is safe for it, which lives as
// long as the subject. A null subject is one that the engine refuses. Throws std::bad_alloc, on the
// first call for a subject only.
void SetSubject(EngineCall& call, SubjectBytes* subject, std::int32_t start);

// Runs the engine and answers its result: the number of pairs set, 0 where the vector is too small,
// or a negative code. The call's limits hold; PCRE_ERROR_RECURSIONLIMIT means that its recursion
// limit was reached, or that even the deep stack does not hold the match. [any thread]
int RunEngine(EngineCall& call) noexcept;

}  // namespace zrk

#endif  // ZRK_REGEX_ENGINE_H
