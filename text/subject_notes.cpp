#include "text/subject_notes.h"

namespace zrk {

const unsigned char* SubjectNotes::EngineBytes(const unsigned char* bytes, std::size_t length) {
  if (state_ == State::Unknown) {
    const bool unsafe = HasUnsafeBytes(bytes, length);
    if (unsafe) copy_ = CopyWithoutUnsafeBytes(bytes, length);
    state_ = unsafe ? State::Copied : State::Safe;
  }
  return state_ == State::Copied ? copy_.data() : bytes;
}

std::size_t SubjectNotes::CharactersBefore(const unsigned char* bytes, std::size_t offset) {
  if (state_ == State::ASCII) return offset;
  CharacterPosition from;
  for (const CharacterPosition& known : counted_) {
    if (known.position <= offset && known.position > from.position) from = known;
  }
  const CharacterPosition reached = WalkCharacters(bytes, from, offset);
  counted_[oldest_count_] = reached;
  oldest_count_ ^= 1;
  return reached.characters;
}

}  // namespace zrk
