// The walk over all matches of a text that ReplaceAll makes.
#ifndef ZRK_REGEX_MATCH_WALK_H
#define ZRK_REGEX_MATCH_WALK_H

#include <cstdint>

#include "regex/engine.h"
#include "regex/match_result.h"
#include "text/rb_text.h"

namespace zrk {

// Finds one match after the other. Each search begins where the last match ended, or one character
// further when that would not take it past the place where the last search began: an empty match,
// or \K inside an assertion.
class MatchWalk {
 public:
  // The object's pattern and limits over a text, which must outlive the walk; the walk keeps a
  // vector of its own. Throws std::bad_alloc.
  MatchWalk(RegExClassData& data, rbText& target);

  // Goes on to the next match. False when there is none, which includes every engine failure, or
  // when the last match reached the text's end; the walk is over then.
  bool Next();

  // The match that Next found, over the text's own bytes. Groups that the pattern does not have
  // must not be read: their pairs were never written.
  MatchResult match() const { return {bytes_, call_.length, vector_, PairsOf(kVectorSize)}; }

  // Engine calls made so far.
  std::int32_t calls() const { return calls_; }

 private:
  // Room for all groups that a replacement text can name, and the engine's work area.
  static constexpr std::int32_t kVectorSize = 303;

  void Advance();
  std::int32_t AfterCharacter(std::int32_t offset) const;

  EngineCall call_;
  const char* bytes_;
  std::int32_t calls_ = 0;
  bool at_end_ = false;
  std::int32_t vector_[kVectorSize];
};

}  // namespace zrk

#endif  // ZRK_REGEX_MATCH_WALK_H
