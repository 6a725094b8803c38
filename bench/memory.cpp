// By how much a call raises the process's peak of memory. Each of these needs a process of its own
// (a peak does not come down again), so bench/run starts them one by one.
#include <benchmark/benchmark.h>

#include <fstream>
#include <functional>

#include "bench/bench_host.h"
#include "bench/settings.h"

namespace bench {

namespace {

// The highest number of resident bytes so far.
double PeakBytes() {
  std::ifstream status("/proc/self/status");
  std::string key;
  for (double kilobytes = 0; status >> key;) {
    if (key == "VmHWM:" && status >> kilobytes) return kilobytes * 1024;
  }
  Fail("no peak in /proc/self/status");
}

// Counters: `grown`, by which the peak went up during the call, and the sizes of what it read and
// of what it returned.
void AddMemoryRow(const char* name, const char* kind,
                  std::function<int(const RegEx&, const String&)> call) {
  benchmark::RegisterBenchmark(name, [=](benchmark::State& state) {
    const String& text = Text(kind, TheSettings().quick ? 10 : 100);
    const RegEx regex("[A-Z][a-z]+");
    for ([[maybe_unused]] auto _ : state) {
      const double before = PeakBytes();
      state.counters["result"] = call(regex, text);
      state.counters["grown"] = PeakBytes() - before;
      state.counters["subject"] = text.length();
    }
  })->Iterations(1);
}

int Execute(const RegEx& regex, const String& text) {
  if (regex.execute(text.get(), 0) < 1) Fail("no match");
  return 0;
}

int ExecuteMemory(const RegEx& regex, const String& text) {
  static MemoryBlock block(text);  // the object keeps it, longer than this call
  if (regex.execute_memory(block.handle(), 0, 0) < 1) Fail("no match");
  return 0;
}

int ReplaceAll(const RegEx& regex, const String& text) {
  const String replacement("[\\0]");
  return String::Adopt(regex.replace_all(text.get(), replacement.get())).length();
}

}  // namespace

void AddMemoryRows() {
  AddMemoryRow("memory/execute_ascii", "ascii", Execute);
  AddMemoryRow("memory/execute_mixed", "mixed", Execute);
  AddMemoryRow("memory/execute_block", "mixed", ExecuteMemory);
  AddMemoryRow("memory/replace", "mixed", ReplaceAll);
}

}  // namespace bench
