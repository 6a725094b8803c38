#include "bench/rounds.h"

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <climits>
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
    std::int64_t agreed = kNothingFound;
    for (const Contender& contender : row_) Time(contender, agreed);
  }

  void RunRound(benchmark::State& state) {
    std::vector<double> seconds(row_.size());
    std::int64_t agreed = kNothingFound;
    for (int turn = 0; turn < row_.front().turns; ++turn, ++first_) {
      for (std::size_t i = 0; i < row_.size(); ++i) {
        const std::size_t next = (first_ + i) % row_.size();
        seconds[next] += Time(row_[next], agreed);
      }
    }
    for (std::size_t i = 0; i < row_.size(); ++i) {
      state.counters[row_[i].name] = seconds[i] * 1e9 / (row_[i].units * row_[i].turns);
    }
    state.SetIterationTime(std::accumulate(seconds.begin(), seconds.end(), 0.0));
  }

  // Seconds of one run; what it finds must be what the others found.
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
