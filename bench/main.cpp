// zrk_bench [--host=VERSION] [--quick] [Google Benchmark's options]
//
// Reads build/bench/*.txt from the current directory. bench/run calls it as it should be called.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <map>
#include <string_view>

#include "bench/settings.h"

namespace bench {

namespace {

Settings settings;

// Takes the options that are not Google Benchmark's out of the command line.
int TakeOptions(int count, char** arguments) {
  constexpr std::string_view kHost = "--host=";
  int kept = 1;
  for (int i = 1; i < count; ++i) {
    const std::string_view argument = arguments[i];
    if (argument == "--quick") {
      settings.quick = true;
    } else if (argument.starts_with(kHost)) {
      settings.version = std::atof(arguments[i] + kHost.size());
    } else {
      arguments[kept++] = arguments[i];
    }
  }
  return kept;
}

}  // namespace

const Settings& TheSettings() { return settings; }

const String& Text(std::string_view kind, int megabytes) {
  static std::map<std::string, String> texts;
  const std::string path =
      "build/bench/" + std::string(kind) + "-" + std::to_string(megabytes) + ".txt";
  const auto found = texts.find(path);
  return found != texts.end() ? found->second
                              : texts.emplace(path, String::FromFile(path)).first->second;
}

Array LinesOf(const String& text, std::size_t most) {
  Array lines;
  std::string_view rest = text.view();
  while (!rest.empty() && lines.elements.size() < most) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    lines.Append(String(line).get());
    rest.remove_prefix(std::min(line.size() + 1, rest.size()));
  }
  return lines;
}

}  // namespace bench

int main(int count, char** arguments) {
  count = bench::TakeOptions(count, arguments);
  benchmark::Initialize(&count, arguments);
  if (benchmark::ReportUnrecognizedArguments(count, arguments)) return 2;
  bench::Start(bench::TheSettings().version);
  benchmark::AddCustomContext("engine", pcre_version());
  benchmark::AddCustomContext("compiler", ZRK_COMPILER);
  bench::AddWalkRows();
  bench::AddCallRows();
  bench::AddReplaceRows();
  bench::AddTextRows();
  bench::AddGrowthRows();
  bench::AddMemoryRows();
  if (benchmark::RunSpecifiedBenchmarks() == 0) bench::Fail("no such benchmark");
  return 0;
}
