// What a single call costs: short subjects, so that the engine has next to nothing to do.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>

#include "bench/engines.h"
#include "bench/rounds.h"
#include "bench/settings.h"
#include "regex/stack_depth.h"

namespace bench {

namespace {

constexpr int kCalls = 1'000'000;

// Twenty characters with one pattern to find there. Calls take turns with two such texts: what the
// object knows about the text that it kept is of no use to the next call.
class Turns {
 public:
  Turns(std::string_view one, std::string_view other)
      : texts_(std::make_shared<std::array<String, 2>>(
            std::array<String, 2>{String(one), String(other)})) {}
  const String& Next() { return (*texts_)[at_ ^= 1]; }

 private:
  std::shared_ptr<std::array<String, 2>> texts_;
  std::size_t at_ = 0;
};

Turns ASCIITexts() { return {"to be, or not to be:", "to be, or not to be;"}; }
Turns OtherTexts() { return {"to bé, or nöt to be:", "to bé, or nöt to be;"}; }

template <typename Call>
Contender CallInTurns(const char* name, Turns texts, Call call) {
  return Repeated(name, Times(kCalls), [=]() mutable { return call(texts.Next()); });
}

Row NoMatch() {
  const auto engines = std::make_shared<Engines>("(\\d+)-(\\d+)");
  const auto bare = [=](const String& text) { return engines->bare.Exec(text.view()) > 0; };
  const auto zrk = [=](const String& text) { return engines->regex.execute(text.get(), 0) > 0; };
  return {CallInTurns("bare", ASCIITexts(), bare),
          CallInTurns("zrk", ASCIITexts(), zrk),
          CallInTurns("bare_not_ascii", OtherTexts(), bare),
          CallInTurns("zrk_not_ascii", OtherTexts(), zrk),
          CallInTurns("pcrecpp", ASCIITexts(),
                      [=](const String& text) {
                        return engines->binding.PartialMatch(ForBinding(text.view()));
                      }),
          CallInTurns("re2", ASCIITexts(), [=](const String& text) {
            return RE2::PartialMatch(text.view(), engines->re2);
          })};
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
  return {CallInTurns("bare", ASCIITexts(),
                      [=](const String& text) {
                        if (engines->bare.Exec(text.view()) < 1) return 0;
                        const int* const pairs = engines->bare.vector;
                        return pairs[3] - pairs[2] + pairs[5] - pairs[4] + pairs[7] - pairs[6];
                      }),
          CallInTurns("zrk", ASCIITexts(),
                      [=](const String& text) {
                        const RegEx& regex = engines->regex;
                        regex.execute(text.get(), 0);
                        return ReadGroup(regex, 1) + ReadGroup(regex, 2) + ReadGroup(regex, 3);
                      }),
          CallInTurns("pcrecpp", ASCIITexts(),
                      [=](const String& text) {
                        return ReadThree([&](auto... group) {
                          engines->binding.PartialMatch(ForBinding(text.view()), group...);
                        });
                      }),
          CallInTurns("re2", ASCIITexts(), [=](const String& text) {
            return ReadThree(
                [&](auto... group) { RE2::PartialMatch(text.view(), engines->re2, group...); });
          })};
}

// Each of 20 groups by its name, a letter or two, and by its number.
Row Names() {
  constexpr int kNames = 20;
  std::string pattern;
  const auto names = std::make_shared<std::vector<String>>();
  for (int i = 0; i < kNames; ++i) {
    const std::string name = "name_" + std::string(1, static_cast<char>('a' + i));
    names->emplace_back(name);
    pattern += "(?<" + name + ">.)";
  }
  const auto regex = std::make_shared<RegEx>(pattern.c_str());
  static const String kText("to be, or not to be:");
  regex->execute(kText.get(), 0);
  const int rounds = Times(kCalls) / kNames;
  const auto each = [rounds](std::string contender, auto read) {
    Contender repeated = Repeated(std::move(contender), rounds, [read] {
      std::int64_t length = 0;
      for (int i = 0; i < kNames; ++i) length += read(i);
      return length;
    });
    repeated.units *= kNames;
    return repeated;
  };
  return {each("by_number", [=](int i) { return ReadGroup(*regex, i + 1); }),
          each("zrk", [=](int i) {
            return String::Adopt(regex->substring_named((*names)[std::size_t(i)].get())).length();
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
  static const String text("to be, or not to be:");
  // A tenth of a second in one turn: the fastest of single calls would be one that hardly waited.
  constexpr int kCallsInAll = 100;
  const auto execute = [=] { return regex->execute(text.get(), 0); };
  const auto execute_mt = [=] { return regex->execute_mt(text.get(), 0); };
  return {Repeated("execute", kCallsInAll, execute, 1),
          Repeated("zrk", kCallsInAll, execute_mt, 1)};
}

std::string_view View(const REALstringStruct* line) {
  return {reinterpret_cast<const char*>(line->Buffer) + 1, static_cast<std::size_t>(line->Length)};
}

// One call a line. All contenders read the lines through the same records.
Row Lines(std::string_view kind) {
  const auto engines = std::make_shared<Engines>("file(?:name|handle)s?");
  const auto lines = std::make_shared<Array>(
      LinesOf(Text(kind, TheSettings().quick ? 10 : 100), std::size_t(Times(1'000'000))));
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
  AddRow("call/names", Names);
  AddRow("call/limits", Limits);
  AddRow("call/threaded", Threaded, Clock::Wall);
  for (const std::string kind : {"ascii", "mixed"}) {
    AddRow("call/lines_" + kind, [kind] { return Lines(kind); });
  }
}

}  // namespace bench
