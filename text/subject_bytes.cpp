#include "text/subject_bytes.h"

#include <algorithm>
#include <new>

namespace zrk {

namespace {

// Some 20 microseconds of counting.
constexpr std::size_t kMarkDistance = 64 << 10;

}  // namespace

void SubjectBytes::LookForUnsafeBytes() {
  safety_ = HasUnsafeBytes(bytes_) ? Safety::kUnsafe : Safety::kSafe;
}

std::string_view SubjectBytes::CopyForUncheckedEngine() {
  if (safe_copy_.empty()) safe_copy_ = CopyWithoutUnsafeBytes(bytes_);
  return {safe_copy_.data(), safe_copy_.size()};
}

// The last place at or before the offset up to which characters were counted.
CharacterPosition SubjectBytes::LastKnown(std::size_t offset) const {
  CharacterPosition last;
  const auto consider = [&](const CharacterPosition& known) {
    if (known.position <= offset && known.position > last.position) last = known;
  };
  consider(counted_[0]);
  consider(counted_[1]);
  // A mark lies behind its place where that is within a character: the one before it counts too.
  const std::size_t marks = std::min(mark_count_, offset / kMarkDistance);
  if (marks > 0) consider(marks_[marks - 1]);
  if (marks > 1) consider(marks_[marks - 2]);
  return last;
}

std::size_t SubjectBytes::CharactersBefore(std::size_t offset) {
  if (safety_ == Safety::kASCII) return offset;
  CharacterPosition reached = LastKnown(offset);
  if (marks_ == nullptr && offset >= kMarkDistance) {
    // Without memory for them, every count begins at one of the last places.
    marks_.reset(new (std::nothrow) CharacterPosition[bytes_.size() / kMarkDistance]);
  }
  for (; marks_ != nullptr && (mark_count_ + 1) * kMarkDistance <= offset; ++mark_count_) {
    reached = WalkCharacters(bytes_, reached, (mark_count_ + 1) * kMarkDistance);
    marks_[mark_count_] = reached;
  }
  reached = WalkCharacters(bytes_, reached, offset);
  counted_[oldest_count_] = reached;
  oldest_count_ ^= 1;
  return reached.characters;
}

}  // namespace zrk
