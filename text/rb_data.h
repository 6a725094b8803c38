// A host memory block as the engine reads it: its bytes in place.
#ifndef ZRK_TEXT_RB_DATA_H
#define ZRK_TEXT_RB_DATA_H

#include <cstddef>
#include <string_view>

#include "host/references.h"
#include "text/subject_bytes.h"

namespace zrk {

class rbData {
 public:
  // Locks the block, which may be null, while the adapter lives.
  explicit rbData(REALmemoryBlockStruct* block);
  rbData(const rbData&) = delete;
  rbData& operator=(const rbData&) = delete;

  // The whole block's bytes as they were when the adapter was made; null data where there are none.
  std::string_view bytes() const { return bytes_; }

  // Makes the first `length` bytes, at most all, the subject of a search.
  void SelectSubject(std::size_t length) { subject_ = SubjectBytes(bytes_.substr(0, length)); }
  SubjectBytes& subject() { return subject_; }

  // Whether the subject's bytes are still where they were: a script may resize a block that is
  // kept. A block that grew, or shrank behind the subject, still holds it.
  bool HoldsSubject() const;

 private:
  BlockReference block_;
  std::string_view bytes_;
  SubjectBytes subject_;
};

}  // namespace zrk

#endif  // ZRK_TEXT_RB_DATA_H
