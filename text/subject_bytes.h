// The bytes that a search reads, with what has been found out about them: whether the engine may
// read them unchecked, and how far their characters have been counted.
//
// A walk over all matches asks the same questions of the same bytes at every step. Each answer is
// worked out once, or from the last one on, so that a walk takes time in step with the text.
#ifndef ZRK_TEXT_SUBJECT_BYTES_H
#define ZRK_TEXT_SUBJECT_BYTES_H

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

#include "text/utf8.h"

namespace zrk {

class SubjectBytes {
 public:
  SubjectBytes() = default;
  // Does not own the bytes, which must stay as they are while this lives. Null data is kept apart
  // from an empty text: the engine refuses it.
  explicit SubjectBytes(std::string_view bytes) : bytes_(bytes) {}
  // Names the bytes where there are none yet. That they are ASCII answers every question at once.
  void Set(std::string_view bytes, bool are_ascii) {
    bytes_ = bytes;
    safety_ = are_ascii ? Safety::kASCII : Safety::kUnknown;
  }

  std::string_view bytes() const { return bytes_; }

  // Whether an engine that does not check its UTF-8 may be shown the bytes themselves, as far as
  // that is known or seen at a glance.
  bool ArePlainlySafe() {
    constexpr std::size_t kGlance = 128;
    return bytes_.size() <= kGlance ? AreSafe()
                                    : safety_ == Safety::kASCII || safety_ == Safety::kSafe;
  }
  // What to show such an engine: the bytes, or where they are not safe a copy of the same length
  // without unsafe bytes, owned here. The first call may throw std::bad_alloc.
  std::string_view ForUncheckedEngine() { return AreSafe() ? bytes_ : CopyForUncheckedEngine(); }

  // The number of characters that begin before a byte offset, which is at most the bytes' number.
  // The first call counts up to there, later ones from a place nearby.
  std::size_t CharactersBefore(std::size_t offset);

 private:
  enum class Safety : unsigned char { kUnknown, kASCII, kSafe, kUnsafe };

  bool AreSafe() {
    if (safety_ == Safety::kUnknown) LookForUnsafeBytes();
    return safety_ != Safety::kUnsafe;
  }
  void LookForUnsafeBytes();
  std::string_view CopyForUncheckedEngine();
  CharacterPosition LastKnown(std::size_t offset) const;

  std::string_view bytes_;
  Safety safety_ = Safety::kUnknown;
  unsigned char oldest_count_ = 0;
  std::vector<char> safe_copy_;
  // The last two places asked for: scripts ask for the start and the end of a match in any order.
  CharacterPosition counted_[2];
  // Places that lie a fixed distance apart, for scripts that jump.
  std::unique_ptr<CharacterPosition[]> marks_;
  std::size_t mark_count_ = 0;
};

}  // namespace zrk

#endif  // ZRK_TEXT_SUBJECT_BYTES_H
