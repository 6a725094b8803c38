#include "regex/match_walk.h"

#include <algorithm>
#include <cstdint>

#include "text/utf8.h"

namespace zrk {

MatchWalk::MatchWalk(RegExClassData& data, rbText& target)
    : call_(PrepareCall(data)), bytes_(target.UTF8().data()) {
  SetSubject(call_, &target.UTF8Subject(), 0);
  call_.vector_size = kVectorSize;
}

bool MatchWalk::Next() {
  if (at_end_) return false;
  ++calls_;
  call_.vector = vector_;  // a copied walk has its own
  if (RunEngine(call_) < 1) return false;
  Advance();
  return true;
}

void MatchWalk::Advance() {
  const Pair whole = match()[0];
  at_end_ = whole.end >= call_.length;
  if (at_end_) return;
  const std::int32_t searched_from = call_.start;
  call_.start = whole.end;
  if (whole.IsEmpty()) call_.start = AfterCharacter(whole.end);
  if (call_.start <= searched_from) call_.start = AfterCharacter(searched_from);
}

// A character that is cut off ends past the text, and the engine refuses to search from there. The
// text's own end may be the largest number of the type.
std::int32_t MatchWalk::AfterCharacter(std::int32_t offset) const {
  const std::int64_t end = std::int64_t{offset} + SequenceLength(bytes_[offset]);
  return static_cast<std::int32_t>(std::min<std::int64_t>(end, INT32_MAX));
}

}  // namespace zrk
