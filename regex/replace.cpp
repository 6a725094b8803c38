#include "regex/replace.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <optional>
#include <string_view>
#include <utility>

#include "regex/match_walk.h"
#include "regex/replacement.h"
#include "regex/subject.h"
#include "text/build_string.h"

namespace zrk {

namespace {

constexpr std::int64_t kLargestResult = INT32_MAX - 5;

// The memory that a result is put together in. A short one needs no allocation.
class Room {
 public:
  char* data() { return long_ != nullptr ? long_.get() : short_; }
  std::int64_t size() const { return size_; }

  // Makes it hold so many bytes, besides what Append may write past them; its first `used` bytes
  // stay. False past the largest result and where memory ends.
  bool Grow(std::int64_t size, std::size_t used = 0) {
    if (size > kLargestResult) return false;
    if (size <= size_) return true;
    std::unique_ptr<char[]> larger(
        new (std::nothrow) char[static_cast<std::size_t>(size + kCopyWidth)]);
    if (larger == nullptr) return false;
    std::memcpy(larger.get(), data(), used);
    long_ = std::move(larger);
    size_ = size;
    return true;
  }

 private:
  char short_[1024 + kCopyWidth];
  std::unique_ptr<char[]> long_;
  std::int64_t size_ = sizeof short_ - kCopyWidth;
};

std::string_view Between(const char* begin, const char* end) {
  return {begin, static_cast<std::size_t>(end - begin)};
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
  Room room;
  const std::int64_t replacement_length = replacement.LengthFor(match);
  if (!room.Grow(length + replacement_length)) return nullptr;
  const char* const subject_end = match.subject + match.length;
  char* end = Append(around.before, subject_end, room.data());
  end = replacement.WriteFor(match, end, replacement_length);
  end = Append(around.after, subject_end, end);
  const std::string_view text = Between(room.data(), end);
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
    const auto lost = ClearLostSubject(data);
    const MatchResult match = LastMatch(data);
    const auto around = selection_only ? Surroundings{} : Around(match);
    return around ? BuildReplacement(match, bytes, *around) : nullptr;
  });
}

// The result of ReplaceAll as it is put together. No byte of the target is copied twice, also where
// a match begins before the last one ended or after its own end.
class Builder {
 public:
  explicit Builder(std::string_view target)
      : target_(target), size_(static_cast<std::int64_t>(target.size())) {}

  // The length of the target and all replacements so far, which the result cannot exceed.
  std::int64_t size() const { return size_; }
  // Makes room for a result of that size. False past the largest one and where memory ends.
  bool MakeRoom(std::int64_t size) {
    const std::string_view built = Built();
    if (!room_.Grow(size, built.size())) return false;
    end_ = room_.data() + built.size();
    return true;
  }

  // False where there is no room for the replacement; it can be put in later then.
  bool Replace(const MatchResult& match, const Replacement& replacement) {
    const std::int64_t left = room_.size() - size_;
    if (left < 0) return false;
    Delete(match);
    char* const end = replacement.WriteFor(match, end_, left);
    if (end == nullptr) return false;
    size_ += end - end_;
    end_ = end;
    return true;
  }
  void Delete(const MatchResult& match) {
    CopyTo(match[0].start);
    copied_ = std::max(copied_, match[0].end);
  }
  // Adds the rest of the target and answers the result.
  std::string_view Finish() {
    CopyTo(static_cast<std::int32_t>(target_.size()));
    return Built();
  }

 private:
  std::string_view Built() { return Between(room_.data(), end_); }
  void CopyTo(std::int32_t offset) {
    if (offset <= copied_) return;
    const auto length = static_cast<std::size_t>(offset - copied_);
    end_ = Append({target_.data() + copied_, length}, target_.data() + target_.size(), end_);
    copied_ = offset;
  }

  std::string_view target_;
  std::int64_t size_;
  std::int32_t copied_ = 0;
  Room room_;
  char* end_ = room_.data();
};

// The length of the replacements from a walk's match on. Stops where no host string holds that
// much, before the sum leaves its type.
[[gnu::cold, gnu::noinline]] std::int64_t LengthOfRest(const MatchWalk& reached,
                                                       const Replacement& replacement) {
  MatchWalk walk = reached;
  std::int64_t length = 0;
  do length += replacement.LengthFor(walk.match());
  while (length <= kLargestResult && walk.Next());
  return length;
}

// How many groups the pattern has besides group 0.
std::int32_t GroupsOf(const RegExClassData& data) {
  int groups = 0;
  pcre_fullinfo(data.Handle, nullptr, PCRE_INFO_CAPTURECOUNT, &groups);
  return groups;
}

REALstringStruct* DeleteMatches(RegExClassData& data, rbText& target) {
  const std::string_view bytes = target.UTF8();
  Builder builder(bytes);
  if (!builder.MakeRoom(builder.size())) return nullptr;
  MatchWalk walk(data, target);
  while (walk.Next()) builder.Delete(walk.match());
  data.Count = walk.calls();
  return BuildUTF8(builder.Finish());
}

// Most results find room in a multiple of the target, of which only what is written costs memory.
// Where one does not, or there is no such memory, the rest is walked through for its size first.
REALstringStruct* ReplaceMatches(RegExClassData& data, rbText& target, std::string_view new_text) {
  constexpr std::int64_t kUsualGrowth = 64 << 20;
  const std::string_view bytes = target.UTF8();
  MatchWalk walk(data, target);
  if (!walk.Next()) {
    data.Count = walk.calls();
    return BuildUTF8(bytes);
  }
  const Replacement replacement(new_text, GroupsOf(data) + 1);
  Builder builder(bytes);
  const std::int64_t size = builder.size();
  builder.MakeRoom(std::min(size + std::min(7 * size, kUsualGrowth), kLargestResult));
  do {
    if (builder.Replace(walk.match(), replacement)) continue;
    if (!builder.MakeRoom(builder.size() + LengthOfRest(walk, replacement))) return nullptr;
    builder.Replace(walk.match(), replacement);
  } while (walk.Next());
  data.Count = walk.calls();
  return BuildUTF8(builder.Finish());
}

}  // namespace

REALstringStruct* Replace(RegExClassData& data, REALstringStruct* NewText) {
  return ReplaceMatch(data, NewText, false);
}

REALstringStruct* ReplaceSelection(RegExClassData& data, REALstringStruct* NewText) {
  return ReplaceMatch(data, NewText, true);
}

// Flattened as Execute and Match are: calls within the library would be 1.5 ns a match.
[[gnu::flatten]] REALstringStruct* ReplaceAll(RegExClassData& data, REALstringStruct* Target,
                                              REALstringStruct* NewText) {
  return RunReplace(data, [&] {
    rbText target(Target);
    rbText text(NewText);
    const std::string_view new_text = text.UTF8();
    return new_text.empty() ? DeleteMatches(data, target) : ReplaceMatches(data, target, new_text);
  });
}

}  // namespace zrk
