#include "bench/rounds.h"

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <climits>
#include <ctime>
#include <memory>

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
    if (row_.empty()) row_ = make_();
    for ([[maybe_unused]] auto _ : state) RunRound(state);
  }

 private:
  void RunRound(benchmark::State& state) {
    std::int64_t agreed = kNothingFound;
    double total = 0;
    for (std::size_t turn = 0; turn < row_.size(); ++turn) {
      const Contender& contender = row_[(round_ + turn) % row_.size()];
      if (contender.prepare) contender.prepare();
      const double start = Now(clock_);
      const std::int64_t found = contender.work();
      const double seconds = Now(clock_) - start;
      total += seconds;
      state.counters[contender.name] = seconds * 1e9 / contender.units;
      if (agreed == kNothingFound) agreed = found;
      if (found != kNothingFound && (found < 0 || found != agreed)) {
        Fail(contender.name + " found " + std::to_string(found) + ", another " +
             std::to_string(agreed));
      }
    }
    ++round_;
    state.SetIterationTime(total);
  }

  std::function<Row()> make_;
  Clock clock_;
  Row row_;
  std::size_t round_ = 0;
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
