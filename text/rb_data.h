// A host memory block as the engine reads it: its bytes in place, and their number.
#ifndef ZRK_TEXT_RB_DATA_H
#define ZRK_TEXT_RB_DATA_H

#include <cstdint>

#include "host/references.h"
#include "text/subject_notes.h"

namespace zrk {

class rbData {
 public:
  // Locks the block, which may be null, while the adapter lives. The whole block is covered; offset
  // and length are the callers' to apply.
  explicit rbData(REALmemoryBlockStruct* block, std::uint32_t offset = 0,
                  std::uint32_t length = 0) noexcept;

  [[gnu::noinline]] ~rbData();  // mostly there is no block to let go
  rbData(const rbData&) = delete;
  rbData& operator=(const rbData&) = delete;

  // The block's first byte; null where there is none.
  const unsigned char* data() const { return BlockData; }
  // In bytes, never negative; 0 where there are no bytes.
  std::int32_t size() const { return BlockSize; }

  // Whether the block still has those bytes where they were: a script may resize a block that is
  // kept as a subject.
  bool IsUnchanged() const;

  // Notes about the bytes, for a block that is kept as a subject.
  SubjectNotes& notes() { return Notes; }

 private:
  BlockReference SourceBlock;
  const unsigned char* BlockData = nullptr;
  std::int32_t BlockSize = 0;

  SubjectNotes Notes;
};

}  // namespace zrk

#endif  // ZRK_TEXT_RB_DATA_H
