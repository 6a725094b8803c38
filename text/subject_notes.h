// What is worth remembering about a subject's bytes for as long as they are kept: whether the
// engine may read them unchecked, and how far characters have been counted.
//
// Walking all matches of a text asks the same questions of the same bytes at every step; each
// answer is worked out once, or from the last one on, so that a walk takes time in step with the
// text.
#ifndef ZRK_TEXT_SUBJECT_NOTES_H
#define ZRK_TEXT_SUBJECT_NOTES_H

#include <cstddef>
#include <vector>

#include "text/utf8.h"

namespace zrk {

class SubjectNotes {
 public:
  // Notes that the bytes are ASCII, which answers every question at once.
  void SetASCII() { state_ = State::ASCII; }

  // Whether the subject's own bytes are known to be safe for an engine that does not check them.
  bool AreKnownSafe() const { return state_ == State::ASCII || state_ == State::Safe; }

  // The bytes to show an engine that does not check its UTF-8: the subject itself, or a copy of the
  // same length without unsafe bytes, owned by these notes. Throws std::bad_alloc.
  const unsigned char* EngineBytes(const unsigned char* bytes, std::size_t length);

  // The number of characters that begin before a byte offset of at most the subject's length.
  std::size_t CharactersBefore(const unsigned char* bytes, std::size_t offset);

 private:
  enum class State : unsigned char { Unknown, ASCII, Safe, Copied };

  State state_ = State::Unknown;
  unsigned char oldest_count_ = 0;
  std::vector<unsigned char> copy_;
  // The last two places asked for: scripts ask for the start and the end of a match in any order.
  CharacterPosition counted_[2];
};

}  // namespace zrk

#endif  // ZRK_TEXT_SUBJECT_NOTES_H
