// The matches that a sizing pass met, so that the building pass need not ask the engine for them
// again.
//
// A match is a few small numbers, written as zigzag varints (seven bits to a byte): how far it
// starts from the last one's end, its length, and for each group of interest its place from the
// match's start and its length. "17-20, group 1 at 18-20" after a match that ended at 15 is 2, 3,
// 1, 2 (four bytes).
#ifndef ZRK_REGEX_MATCH_RECORD_H
#define ZRK_REGEX_MATCH_RECORD_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "regex/match_result.h"

namespace zrk {

class MatchRecord {
 public:
  // Records the given groups of each match besides group 0, in at most `bound` bytes of heap,
  // or in a few that need none. The groups must outlive the record.
  MatchRecord(std::span<const std::int32_t> groups, std::size_t bound)
      : groups_(groups), bound_(bound) {}

  // Adds a match at the end; false, and nothing added, where the bound or memory ends.
  bool Add(const MatchResult& match);

  // The recorded matches in order. In them, only the groups of interest may be read.
  class Reader {
   public:
    explicit Reader(const MatchRecord& record) : record_(record), at_(record.bytes()) {
      vector_[1] = 0;
    }
    // False after the last one.
    bool Next();
    MatchResult Over(const MatchResult& subject) const {
      return {subject.subject, subject.length, vector_, kPairs};
    }

   private:
    static constexpr std::int32_t kPairs = 100;

    const MatchRecord& record_;
    const unsigned char* at_;
    std::int32_t vector_[2 * kPairs];
  };

 private:
  bool MakeRoom(std::size_t more);
  unsigned char* bytes() { return heap_ != nullptr ? heap_.get() : inline_bytes_; }
  const unsigned char* bytes() const { return heap_ != nullptr ? heap_.get() : inline_bytes_; }

  std::span<const std::int32_t> groups_;
  std::size_t bound_;
  unsigned char inline_bytes_[256];
  std::unique_ptr<unsigned char[]> heap_;
  std::size_t capacity_ = sizeof inline_bytes_;
  std::size_t used_ = 0;
  std::int32_t last_end_ = 0;
};

}  // namespace zrk

#endif  // ZRK_REGEX_MATCH_RECORD_H
