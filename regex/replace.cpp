#include "regex/replace.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <optional>

#include "regex/match.h"
#include "regex/match_record.h"
#include "regex/match_walk.h"
#include "regex/replacement.h"

namespace zrk {

namespace {

using Buffer = std::unique_ptr<unsigned char[]>;

constexpr std::int64_t kSpareBytes = 5;

// Room for that many bytes and what Append may write past them; null past the largest host string,
// or without memory.
Buffer MakeBuffer(std::int64_t size) {
  if (size + kSpareBytes > INT32_MAX) return nullptr;
  return Buffer(new (std::nothrow) unsigned char[static_cast<std::size_t>(size + kAtOnce)]);
}

// The text around a match. With \K in a lookahead a match starts past its end, and what lies
// between is then part of both.
struct Surroundings {
  Bytes before;
  Bytes after;
};

Surroundings Around(const MatchResult& match) {
  const Pair whole = match[0];
  return {{match.subject, whole.start}, {match.subject + whole.end, match.length - whole.end}};
}

REALstringStruct* BuildUpToNul(const unsigned char* begin, unsigned char* end) {
  *end = 0;
  const char* const text = reinterpret_cast<const char*>(begin);
  return BuildUTF8({begin, static_cast<std::int64_t>(std::strlen(text))});
}

REALstringStruct* Replaces(RegExClassData& data, REALstringStruct* new_text, bool selection_only) {
  if (!RequireVector(data)) return nullptr;
  data.Lasterror = kErrorPlugin;
  if (data.Handle == nullptr) return nullptr;
  rbText text(new_text);
  if (data.Count < 1) {
    data.Lasterror = 0;
    return nullptr;
  }
  ForgetLostSubject(data);
  const MatchResult match = LastMatch(data);
  if (match.subject == nullptr || !match[0].LiesWithin(match.length)) return nullptr;

  const Replacement replacement({text.UTF8Bytes(), text.UTF8Length()}, match.pairs - 1);
  if (!replacement.IsValid()) return nullptr;
  const Surroundings around = selection_only ? Surroundings{} : Around(match);
  const Buffer buffer =
      MakeBuffer(around.before.length + replacement.LengthFor(match) + around.after.length);
  if (buffer == nullptr) return nullptr;
  const unsigned char* const subject_end = match.subject + match.length;
  unsigned char* end = Append(around.before, subject_end, buffer.get());
  end = replacement.WriteFor(match, end);
  end = Append(around.after, subject_end, end);
  REALstringStruct* const result = BuildUpToNul(buffer.get(), end);
  if (result != nullptr) data.Lasterror = 0;
  return result;
}

// The result of ReplaceAll as it is put together. No byte of the target is copied twice, also where
// a match begins before the last one ended or after its own end.
class Builder {
 public:
  Builder(unsigned char* out, Bytes target) : begin_(out), end_(out), target_(target) {}

  void Replace(const MatchResult& match, const Replacement& replacement) {
    CopyTo(match[0].start);
    end_ = replacement.WriteFor(match, end_);
    copied_ = std::max(copied_, match[0].end);
  }
  void Delete(const MatchResult& match) {
    CopyTo(match[0].start);
    copied_ = std::max(copied_, match[0].end);
  }
  void AddRest() { CopyTo(static_cast<std::int32_t>(target_.length)); }

  Bytes result() const { return {begin_, end_ - begin_}; }

 private:
  void CopyTo(std::int32_t offset) {
    if (offset <= copied_) return;
    end_ = Append({target_.data + copied_, offset - copied_}, target_.data + target_.length, end_);
    copied_ = offset;
  }

  unsigned char* begin_;
  unsigned char* end_;
  Bytes target_;
  std::int32_t copied_ = 0;
};

// The sizing pass: adds up what the matches need and records them. Where the record ends,
// `unrecorded` takes a copy of the walk as it stands at the first match left out.
std::int64_t MeasureMatches(MatchWalk& walk, const Replacement& replacement, MatchRecord& record,
                            std::optional<MatchWalk>& unrecorded) {
  std::int64_t size = 0;
  while (walk.Next()) {
    size += replacement.LengthFor(walk.match());
    if (!unrecorded && !record.Add(walk.match())) unrecorded = walk;
  }
  return size;
}

REALstringStruct* DeleteMatches(RegExClassData& data, rbText& target) {
  const Bytes bytes{target.UTF8Bytes(), target.UTF8Length()};
  const Buffer buffer = MakeBuffer(bytes.length);
  if (buffer == nullptr) return nullptr;
  Builder builder(buffer.get(), bytes);
  MatchWalk walk(data, target);
  while (walk.Next()) builder.Delete(walk.match());
  builder.AddRest();
  data.Count = walk.calls();
  return BuildUTF8(builder.result());
}

REALstringStruct* ReplaceMatches(RegExClassData& data, rbText& target, Bytes new_text) {
  const Bytes bytes{target.UTF8Bytes(), target.UTF8Length()};
  const Replacement replacement(new_text, Replacement::kNamableGroups);
  if (!replacement.IsValid()) return nullptr;
  MatchWalk walk(data, target);
  MatchRecord record(replacement.groups(), static_cast<std::size_t>(bytes.length));
  std::optional<MatchWalk> unrecorded;
  const std::int64_t size = bytes.length + MeasureMatches(walk, replacement, record, unrecorded);
  const Buffer buffer = MakeBuffer(size);
  if (buffer == nullptr) return nullptr;

  Builder builder(buffer.get(), bytes);
  MatchRecord::Reader recorded(record);
  while (recorded.Next()) builder.Replace(recorded.Over(walk.match()), replacement);
  if (unrecorded) {
    // A match that the first pass had no stack for may be found now, but there is no room for it.
    do builder.Replace(unrecorded->match(), replacement);
    while (unrecorded->matches() < walk.matches() && unrecorded->Next());
  }
  builder.AddRest();
  data.Count = walk.calls();
  return BuildUTF8(builder.result());
}

}  // namespace

REALstringStruct* Replace(RegExClassData& data, REALstringStruct* NewText) {
  return Replaces(data, NewText, false);
}

REALstringStruct* ReplaceSelection(RegExClassData& data, REALstringStruct* NewText) {
  return Replaces(data, NewText, true);
}

REALstringStruct* ReplaceAll(RegExClassData& data, REALstringStruct* Target,
                             REALstringStruct* NewText) {
  if (!RequireVector(data)) return nullptr;
  data.Lasterror = kErrorPlugin;
  if (data.Handle == nullptr) return nullptr;
  rbText target(Target);
  rbText text(NewText);
  try {
    const Bytes new_text{text.UTF8Bytes(), text.UTF8Length()};
    REALstringStruct* const result =
        new_text.length > 0 ? ReplaceMatches(data, target, new_text) : DeleteMatches(data, target);
    if (result != nullptr) data.Lasterror = 0;
    return result;
  } catch (const std::bad_alloc&) {
    return nullptr;  // as for every other piece of memory that a replace method cannot have
  }
}

}  // namespace zrk
