// What a single call costs: short subjects, so that the engine has next to nothing to do.
#include <benchmark/benchmark.h>

#include <algorithm>

#include "bench/engines.h"
#include "bench/rounds.h"
#include "bench/settings.h"
#include "regex/stack_depth.h"

namespace bench {

namespace {

constexpr int kCalls = 1'000'000;

const String& TwentyBytes() {
  static const String text("to be, or not to be:");
  return text;
}

Row NoMatch() {
  const auto engines = std::make_shared<Engines>("(\\d+)-(\\d+)");
  const String& text = TwentyBytes();
  const int calls = Times(kCalls);
  return {
      Repeated("bare", calls, [=, &text] { return engines->bare.Exec(text.view()) > 0; }),
      Repeated("zrk", calls, [=, &text] { return engines->regex.execute(text.get(), 0) > 0; }),
      Repeated("pcrecpp", calls,
               [=, &text] { return engines->binding.PartialMatch(ForBinding(text.view())); }),
      Repeated("re2", calls, [=, &text] { return RE2::PartialMatch(text.view(), engines->re2); })};
}

std::int64_t ReadGroup(const RegEx& regex, int group) {
  return String::Adopt(regex.substring(group)).length();
}

// For the others, three strings filled by the call itself.
template <typename Match>
std::int64_t ReadThree(Match match) {
  std::string one, two, three;
  match(&one, &two, &three);
  return static_cast<std::int64_t>(one.size() + two.size() + three.size());
}

Row Substrings() {
  const auto engines = std::make_shared<Engines>("(\\w+), (\\w+) (\\w+)");
  const String& text = TwentyBytes();
  const int calls = Times(kCalls);
  return {Repeated("bare", calls,
                   [=, &text] {
                     if (engines->bare.Exec(text.view()) < 1) return 0;
                     const int* const pairs = engines->bare.vector;
                     return pairs[3] - pairs[2] + pairs[5] - pairs[4] + pairs[7] - pairs[6];
                   }),
          Repeated("zrk", calls,
                   [=, &text] {
                     const RegEx& regex = engines->regex;
                     regex.execute(text.get(), 0);
                     return ReadGroup(regex, 1) + ReadGroup(regex, 2) + ReadGroup(regex, 3);
                   }),
          Repeated("pcrecpp", calls,
                   [=, &text] {
                     return ReadThree([&](auto... group) {
                       engines->binding.PartialMatch(ForBinding(text.view()), group...);
                     });
                   }),
          Repeated("re2", calls, [=, &text] {
            return ReadThree(
                [&](auto... group) { RE2::PartialMatch(text.view(), engines->re2, group...); });
          })};
}

// What an engine call pays for a recursion limit of its own: the levels that the stack holds, the
// lesser of two limits, and its place in the extra block. The library's own function is linked in.
Row Limits() {
  static pcre_extra extra{};
  static volatile unsigned long own_limit = 10'000'000;
  const int calls = Times(2'000'000);
  const auto put = [](unsigned long limit) {
    extra.match_limit_recursion = limit;
    benchmark::DoNotOptimize(extra);
    return 1;
  };
  return {Repeated("without", calls, [=] { return put(own_limit); }), Repeated("zrk", calls, [=] {
            const unsigned long own = own_limit;
            return put(std::min(own, zrk::LevelsIn(zrk::StackLeft())));
          })};
}

Row Threaded() {
  const auto regex = std::make_shared<RegEx>("be");
  const String& text = TwentyBytes();
  // A tenth of a second in one turn: the fastest of single calls would be one that hardly waited.
  constexpr int kCallsInAll = 100;
  const auto execute = [=, &text] { return regex->execute(text.get(), 0); };
  const auto execute_mt = [=, &text] { return regex->execute_mt(text.get(), 0); };
  return {Repeated("execute", kCallsInAll, execute, 1),
          Repeated("zrk", kCallsInAll, execute_mt, 1)};
}

std::string_view View(const REALstringStruct* line) {
  return {reinterpret_cast<const char*>(line->Buffer) + 1, static_cast<std::size_t>(line->Length)};
}

// One call a line. All contenders read the lines through the same records.
Row Lines() {
  const auto engines = std::make_shared<Engines>("file(?:name|handle)s?");
  const auto lines = std::make_shared<Array>(
      LinesOf(Text("ascii", TheSettings().quick ? 10 : 100), std::size_t(Times(1'000'000))));
  const auto count_lines = [lines](std::string name, auto matches) {
    const std::int64_t all = std::ssize(lines->elements);
    const auto count = [=](Part part) {
      const auto first = lines->elements.begin();
      return std::count_if(first + part.BeginIn(all), first + part.EndIn(all), matches);
    };
    return InParts(Times(100), std::move(name), static_cast<double>(all), count);
  };
  return InTurns(
      10, {count_lines("bare", [=](auto* line) { return engines->bare.Exec(View(line)) > 0; }),
           count_lines("zrk", [=](auto* line) { return engines->regex.match(line) != 0; }),
           count_lines(
               "pcrecpp",
               [=](auto* line) { return engines->binding.PartialMatch(ForBinding(View(line))); }),
           count_lines("re2",
                       [=](auto* line) { return RE2::PartialMatch(View(line), engines->re2); })});
}

}  // namespace

void AddCallRows() {
  AddRow("call/no_match", NoMatch);
  AddRow("call/substrings", Substrings);
  AddRow("call/limits", Limits);
  AddRow("call/threaded", Threaded, Clock::Wall);
  AddRow("call/lines", Lines);
}

}  // namespace bench
