// The subject of an object: the text or the memory block that its last search named, kept so that
// the next search and the results can read it.
//
// Six fields of the record are one thing and change together, here only: Text or TextMemory is what
// the script sees, TextAdapter or MemoryAdapter holds the bytes, TextPointer and TextLength say
// which of them are searched. A subject is kept also when nothing matched.
#ifndef ZRK_REGEX_SUBJECT_H
#define ZRK_REGEX_SUBJECT_H

#include <cstdint>
#include <memory>
#include <optional>

#include "host/references.h"
#include "regex/class_data.h"
#include "regex/match_result.h"
#include "regex/name_table.h"
#include "text/rb_data.h"
#include "text/rb_text.h"

namespace zrk {

// A kept subject's adapter, and what is known about the pattern as long as both are kept.
template <typename Adapter>
struct Kept : Adapter {
  using Adapter::Adapter;
  std::optional<NameTable> names;
};

// What a call takes out of a record, to be given back when the call ends. Giving back the last
// reference can run the program (a destructor in the host), which may use the same object: by then
// its record is in its new state.
struct Released {
  std::unique_ptr<Kept<rbData>> memory_adapter;
  std::unique_ptr<Kept<rbText>> text_adapter;
  BlockReference memory;
  StringReference text;
};

// Leaves the record without a subject. Numbers of the last match, the pattern and its study block
// stay.
[[nodiscard]] Released ClearText(RegExClassData& data);

// The same for a memory block that no longer holds the subject's bytes where they were, and for no
// other subject. Called before a kept subject is used again.
[[nodiscard]] std::optional<Released> ClearLostSubject(RegExClassData& data);

// Takes the error message out of the record.
[[nodiscard]] StringReference ClearErrorMessage(RegExClassData& data);

// Keeps a text as the subject of a record that has none. Where it is the very string that was kept
// before, its adapter goes on, with all that is known about the bytes: programs walk through a text
// by naming it at every step. Otherwise the adapter goes over to the new text, which saves 7 ns
// of allocation; what it held is in `former` then. Throws std::bad_alloc, and keeps nothing.
void KeepText(RegExClassData& data, REALstringStruct* text, Released& earlier,
              rbText::Holdings& former);

// Keeps the first `length` bytes of a block, or all of it for a length below 1. False, with
// "OutOfBoundsException" raised for that method and nothing kept, where the block is shorter.
// Throws std::bad_alloc, and keeps nothing.
bool KeepMemory(RegExClassData& data, REALmemoryBlockStruct* block, std::int32_t length,
                const char* method);

// The kept subject's bytes, or null where none is kept.
inline SubjectBytes* SubjectOf(const RegExClassData& data) {
  if (data.TextAdapter != nullptr) return &data.TextAdapter->UTF8Subject();
  return data.MemoryAdapter != nullptr ? &data.MemoryAdapter->subject() : nullptr;
}

// The object's last match over its kept subject. The object must have its vector.
inline MatchResult LastMatch(const RegExClassData& data) {
  return {data.TextPointer, data.TextLength, data.Vector, PairsOf(data.VectorSize)};
}

}  // namespace zrk

#endif  // ZRK_REGEX_SUBJECT_H
