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
  const pcre_extra* extra;  // may be null
  const unsigned char* subject;
  int length;
  int start;
  int options;
  int* vector;
  int vector_size;
};

// Runs the engine and answers its result: the number of pairs set, 0 where the vector is too small,
// or a negative code. Limits in `extra` hold; PCRE_ERROR_RECURSIONLIMIT means that such a limit was
// reached, or that even the deep stack does not hold the match. Never throws. [any thread]
int RunEngine(const EngineCall& call) noexcept;

// A call with the object's pattern, execute options and study block, which a synchronous match runs
// under the script's limits: they are written into the study block, or into one block that all
// objects share where there is none. [host thread]
EngineCall PrepareCall(RegExClassData& data);

// The same without the script's limits, as the threaded methods run it.
EngineCall PrepareUnlimitedCall(const RegExClassData& data);

// Points the call at a subject: at its own bytes, or, where the engine would take bytes for UTF-8
// without checking them that could lead it astray, at the copy that the notes keep. Throws
// std::bad_alloc, on the first call for a subject only.
void SetSubject(EngineCall& call, const unsigned char* bytes, std::int32_t length,
                SubjectNotes& notes);
void SetSubject(EngineCall& call, rbText& text);

}  // namespace zrk

#endif  // ZRK_REGEX_ENGINE_H
