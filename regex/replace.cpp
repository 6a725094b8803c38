#include "regex/replace.h"

#include <algorithm>
#include <memory>
#include <new>
#include <optional>
#include <stdexcept>
#include <string_view>

#include "regex/match_record.h"
#include "regex/match_walk.h"
#include "regex/replacement.h"
#include "regex/subject.h"
#include "text/build_string.h"

namespace zrk {

namespace {

using Buffer = std::unique_ptr<char[]>;

// Room for that many bytes and what Append may write past them; null past the largest host string.
// Throws std::bad_alloc.
Buffer MakeBuffer(std::int64_t size) {
  constexpr std::int64_t kSpareBytes = 5;
  if (size + kSpareBytes > INT32_MAX) return nullptr;
  return Buffer(new char[static_cast<std::size_t>(size + kCopyWidth)]);
}

std::string_view Written(const Buffer& buffer, const char* end) {
  return {buffer.get(), static_cast<std::size_t>(end - buffer.get())};
}

// Runs a replace method: the object must be initialised and have a pattern, and Lasterror is 0 only
// where text was built. Memory that cannot be had is no exception here.
template <typename Body>
REALstringStruct* RunReplace(RegExClassData& data, Body body) {
  if (!RequireVector(data)) return nullptr;
  data.Lasterror = kErrorPlugin;
  if (data.Handle == nullptr) return nullptr;
  try {
    REALstringStruct* const result = body();
    if (result != nullptr) data.Lasterror = 0;
    return result;
  } catch (const std::bad_alloc&) {
    return nullptr;
  } catch (const std::length_error&) {  // in 32 bits a text can hold more groups than a vector
    return nullptr;
  }
}

// The text around a match. With \K in a lookahead a match starts past its end, and what lies
// between is then part of both.
struct Surroundings {
  std::string_view before;
  std::string_view after;
};

// Nothing where the match does not lie within a kept subject.
std::optional<Surroundings> Around(const MatchResult& match) {
  const Pair whole = match[0];
  if (match.subject == nullptr || !whole.LiesWithin(match.length)) return std::nullopt;
  return Surroundings{match.Between(0, whole.start), match.Between(whole.end, match.length)};
}

// The text for the object's last match, up to its first NUL byte.
REALstringStruct* BuildReplacement(const MatchResult& match, std::string_view new_text,
                                   const Surroundings& around) {
  const Replacement replacement(new_text, match.pairs - 1);
  const auto length = static_cast<std::int64_t>(around.before.size() + around.after.size());
  const Buffer buffer = MakeBuffer(length + replacement.LengthFor(match));
  if (buffer == nullptr) return nullptr;
  const char* const subject_end = match.subject + match.length;
  char* end = Append(around.before, subject_end, buffer.get());
  end = replacement.WriteFor(match, end);
  end = Append(around.after, subject_end, end);
  const std::string_view text = Written(buffer, end);
  return BuildUTF8(text.substr(0, text.find('\0')));
}

// The replacement alone copies nothing around the match, so it needs no kept subject.
REALstringStruct* ReplaceMatch(RegExClassData& data, REALstringStruct* new_text,
                               bool selection_only) {
  return RunReplace(data, [&]() -> REALstringStruct* {
    rbText text(new_text);
    const std::string_view bytes = text.UTF8();
    if (data.Count < 1) {
      data.Lasterror = 0;
      return nullptr;
    }
    const Released lost = ClearLostSubject(data);
    const MatchResult match = LastMatch(data);
    const auto around = selection_only ? Surroundings{} : Around(match);
    return around ? BuildReplacement(match, bytes, *around) : nullptr;
  });
}

// The result of ReplaceAll as it is put together. No byte of the target is copied twice, also where
// a match begins before the last one ended or after its own end.
class Builder {
 public:
  Builder(char* out, std::string_view target) : end_(out), target_(target) {}

  void Replace(const MatchResult& match, const Replacement& replacement) {
    CopyTo(match[0].start);
    end_ = replacement.WriteFor(match, end_);
    copied_ = std::max(copied_, match[0].end);
  }
  void Delete(const MatchResult& match) {
    CopyTo(match[0].start);
    copied_ = std::max(copied_, match[0].end);
  }
  // Adds the rest of the target and answers where the result ends.
  const char* Finish() {
    CopyTo(static_cast<std::int32_t>(target_.size()));
    return end_;
  }

 private:
  void CopyTo(std::int32_t offset) {
    if (offset <= copied_) return;
    const auto length = static_cast<std::size_t>(offset - copied_);
    end_ = Append({target_.data() + copied_, length}, target_.data() + target_.size(), end_);
    copied_ = offset;
  }

  char* end_;
  std::string_view target_;
  std::int32_t copied_ = 0;
};

// The sizing pass, from the match on that the walk has found: adds up what the matches need and
// records them. Where the record ends, `unrecorded` takes a copy of the walk as it stands at the
// first match left out. Stops where no host string holds that much, before the sum leaves its type.
std::int64_t MeasureMatches(MatchWalk& walk, const Replacement& replacement, MatchRecord& record,
                            std::optional<MatchWalk>& unrecorded) {
  std::int64_t size = 0;
  do {
    size += replacement.LengthFor(walk.match());
    if (!unrecorded && !record.Add(walk.match())) unrecorded = walk;
  } while (size <= INT32_MAX && walk.Next());
  return size;
}

// How many groups the pattern has besides group 0.
std::int32_t GroupsOf(const RegExClassData& data) {
  int groups = 0;
  pcre_fullinfo(data.Handle, nullptr, PCRE_INFO_CAPTURECOUNT, &groups);
  return groups;
}

REALstringStruct* DeleteMatches(RegExClassData& data, rbText& target) {
  const std::string_view bytes = target.UTF8();
  const Buffer buffer = MakeBuffer(static_cast<std::int64_t>(bytes.size()));
  if (buffer == nullptr) return nullptr;
  Builder builder(buffer.get(), bytes);
  MatchWalk walk(data, target);
  while (walk.Next()) builder.Delete(walk.match());
  data.Count = walk.calls();
  return BuildUTF8(Written(buffer, builder.Finish()));
}

REALstringStruct* ReplaceMatches(RegExClassData& data, rbText& target, std::string_view new_text) {
  const std::string_view bytes = target.UTF8();
  MatchWalk walk(data, target);
  if (!walk.Next()) {
    data.Count = walk.calls();
    return BuildUTF8(bytes);
  }
  const Replacement replacement(new_text, GroupsOf(data) + 1);
  MatchRecord record(replacement.groups(), bytes.size());
  std::optional<MatchWalk> unrecorded;
  const auto length = static_cast<std::int64_t>(bytes.size());
  const Buffer buffer = MakeBuffer(length + MeasureMatches(walk, replacement, record, unrecorded));
  if (buffer == nullptr) return nullptr;

  Builder builder(buffer.get(), bytes);
  MatchRecord::Reader recorded(record);
  while (recorded.Next()) builder.Replace(recorded.Over(walk.match()), replacement);
  if (unrecorded) {
    // A match that the first pass had no stack for may be found now, but there is no room for it.
    do builder.Replace(unrecorded->match(), replacement);
    while (unrecorded->matches() < walk.matches() && unrecorded->Next());
  }
  data.Count = walk.calls();
  return BuildUTF8(Written(buffer, builder.Finish()));
}

}  // namespace

REALstringStruct* Replace(RegExClassData& data, REALstringStruct* NewText) {
  return ReplaceMatch(data, NewText, false);
}

REALstringStruct* ReplaceSelection(RegExClassData& data, REALstringStruct* NewText) {
  return ReplaceMatch(data, NewText, true);
}

REALstringStruct* ReplaceAll(RegExClassData& data, REALstringStruct* Target,
                             REALstringStruct* NewText) {
  return RunReplace(data, [&] {
    rbText target(Target);
    rbText text(NewText);
    const std::string_view new_text = text.UTF8();
    return new_text.empty() ? DeleteMatches(data, target) : ReplaceMatches(data, target, new_text);
  });
}

}  // namespace zrk
