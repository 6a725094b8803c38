// A row of the benchmarks: several ways of doing the same work, timed in turns.
//
// Each repetition of a Google Benchmark run is one round, in which the contenders run right after
// each other and in another order each time; what disturbs the machine disturbs them all. A round
// may be several turns at the same work, of which each contender's fastest counts: where other
// machines share the processor, they slow it down for milliseconds at a time. Long work is timed in
// parts for the same reason. The counters of the row are nanoseconds per unit of work, by
// contender.
//
// The allocator keeps what was freed. Otherwise large results would cost each contender the
// kernel's clearing of new pages, which depends on where the allocator's thresholds lie and not on
// the work.
#ifndef ZRK_BENCH_ROUNDS_H
#define ZRK_BENCH_ROUNDS_H

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace bench {

// What `work` answers when there is nothing to compare.
inline constexpr std::int64_t kNothingFound = INT64_MIN;

struct Contender {
  std::string name;
  double units;  // of one run of the work: calls, matches, bytes; what its time is divided by
  // Does the next part of the run, and begins anew after the last. Answers what it found, never a
  // negative number. All contenders of a row that answer must agree on every part.
  std::function<std::int64_t()> work;
  std::function<void()> prepare = nullptr;  // before each part, not timed
  // The same for all contenders of a row.
  int turns = 1;  // runs in a round
  int parts = 1;  // calls of the work that make a run
};

enum class Clock {
  Processor,  // of the whole process: other programs on the machine do not count
  Wall,       // where waiting is what is measured
};

using Row = std::vector<Contender>;

// Adds a row. It is made at its first round and kept for the later ones.
void AddRow(const std::string& name, std::function<Row()> make, Clock clock = Clock::Processor);

// The row with each contender at work that many times a round.
inline Row InTurns(int turns, Row row) {
  for (Contender& contender : row) contender.turns = turns;
  return row;
}

// One of the parts of a run, and where its share of `all` items begins and ends.
struct Part {
  int number;
  int of;
  std::int64_t BeginIn(std::int64_t all) const { return all * number / of; }
  std::int64_t EndIn(std::int64_t all) const { return all * (number + 1) / of; }
};

// Work that is done in parts: work(Part) is called with each in its order.
template <typename Work>
Contender InParts(int parts, std::string name, double units, Work work) {
  return {.name = std::move(name),
          .units = units,
          .work =
              [=, number = -1]() mutable {
                number = (number + 1) % parts;
                return work(Part{number, parts});
              },
          .parts = parts};
}

// The same work a number of times, for calls too short to be timed singly.
template <typename Work>
Contender Repeated(std::string name, std::int64_t times, Work work, int turns = 200) {
  times /= turns;
  return {.name = std::move(name),
          .units = static_cast<double>(times),
          .work =
              [times, work]() mutable {
                std::int64_t found = 0;
                for (std::int64_t i = 0; i < times; ++i) found += work();
                return found;
              },
          .turns = turns};
}

}  // namespace bench

#endif  // ZRK_BENCH_ROUNDS_H
