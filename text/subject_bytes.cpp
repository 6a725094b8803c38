#include "text/subject_bytes.h"

namespace zrk {

std::string_view SubjectBytes::FindSafeBytes() {
  if (safety_ == Safety::kUnknown) {
    const bool unsafe = HasUnsafeBytes(bytes_);
    if (unsafe) safe_copy_ = CopyWithoutUnsafeBytes(bytes_);
    safety_ = unsafe ? Safety::kCopied : Safety::kSafe;
  }
  if (safety_ != Safety::kCopied) return bytes_;
  return {safe_copy_.data(), safe_copy_.size()};
}

std::size_t SubjectBytes::CharactersBefore(std::size_t offset) {
  if (safety_ == Safety::kASCII) return offset;
  CharacterPosition from;
  for (const CharacterPosition& known : counted_) {
    if (known.position <= offset && known.position > from.position) from = known;
  }
  const CharacterPosition reached = WalkCharacters(bytes_, from, offset);
  counted_[oldest_count_] = reached;
  oldest_count_ ^= 1;
  return reached.characters;
}

}  // namespace zrk
