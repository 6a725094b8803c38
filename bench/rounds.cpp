#include "bench/rounds.h"

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <ctime>
#include <memory>
#include <numeric>

#include "bench/bench_host.h"

namespace bench {

namespace {

double Now(Clock clock) {
  std::timespec now{};
  clock_gettime(clock == Clock::Wall ? CLOCK_MONOTONIC : CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

bool KeepFreedMemory() {
  return mallopt(M_MMAP_MAX, 0) != 0 && mallopt(M_TRIM_THRESHOLD, INT_MAX) != 0;
}

class Rounds {
 public:
  Rounds(std::function<Row()> make, Clock clock) : make_(std::move(make)), clock_(clock) {}

  void Run(benchmark::State& state) {
    static const bool kept = KeepFreedMemory();
    if (!kept) return state.SkipWithError("the allocator cannot be told to keep memory");
    if (row_.empty()) WarmUp();
    for ([[maybe_unused]] auto _ : state) RunRound(state);
  }

 private:
  // The first run of each is not counted: it touches memory that nobody used before.
  void WarmUp() {
    row_ = make_();
    RunTurn([](std::size_t, std::size_t, double) {});
  }

  void RunRound(benchmark::State& state) {
    const Contender& any = row_.front();
    std::vector<std::vector<double>> fastest(row_.size(), std::vector<double>(any.parts, HUGE_VAL));
    double in_all = 0;
    for (int turn = 0; turn < any.turns; ++turn) {
      RunTurn([&](std::size_t contender, std::size_t part, double seconds) {
        fastest[contender][part] = std::min(fastest[contender][part], seconds);
        in_all += seconds;
      });
    }
    for (std::size_t i = 0; i < row_.size(); ++i) {
      const double seconds = std::accumulate(fastest[i].begin(), fastest[i].end(), 0.0);
      state.counters[row_[i].name] = seconds * 1e9 / row_[i].units;
    }
    state.SetIterationTime(in_all);
  }

  // One run of every contender, part by part; hands on each part's seconds.
  template <typename Take>
  void RunTurn(Take take) {
    for (std::size_t part = 0; part < static_cast<std::size_t>(row_.front().parts); ++part) {
      std::int64_t agreed = kNothingFound;
      ++first_;
      for (std::size_t i = 0; i < row_.size(); ++i) {
        const std::size_t next = (first_ + i) % row_.size();
        take(next, part, Time(row_[next], agreed));
      }
    }
  }

  // Seconds of one part; what it finds must be what the others found.
  double Time(const Contender& contender, std::int64_t& agreed) const {
    if (contender.prepare) contender.prepare();
    const double start = Now(clock_);
    const std::int64_t found = contender.work();
    const double seconds = Now(clock_) - start;
    if (agreed == kNothingFound) agreed = found;
    if (found != kNothingFound && (found < 0 || found != agreed)) {
      Fail(contender.name + " found " + std::to_string(found) + ", another " +
           std::to_string(agreed));
    }
    return seconds;
  }

  std::function<Row()> make_;
  Clock clock_;
  Row row_;
  std::size_t first_ = 0;  // whose turn it is to begin
};

}  // namespace

void AddRow(const std::string& name, std::function<Row()> make, Clock clock) {
  const auto rounds = std::make_shared<Rounds>(std::move(make), clock);
  benchmark::RegisterBenchmark(name.c_str(),
                               [rounds](benchmark::State& state) { rounds->Run(state); })
      ->Iterations(1)
      ->UseManualTime()
      ->Unit(benchmark::kMillisecond);
}

}  // namespace bench
