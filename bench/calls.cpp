// What a single call costs: short subjects, so that the engine has next to nothing to do.
#include <pcrecpp.h>
#include <re2/re2.h>

#include <memory>

#include "bench/bare.h"
#include "bench/rounds.h"
#include "bench/settings.h"

namespace bench {

namespace {

constexpr int kCalls = 200'000;
constexpr std::string_view kTwentyBytes = "to be, or not to be:";

Row NoMatch() {
  constexpr const char* kPattern = "(\\d+)-(\\d+)";
  const auto text = std::make_shared<String>(kTwentyBytes);
  const auto regex = std::make_shared<RegEx>(kPattern);
  const auto bare = std::make_shared<Bare>(kPattern);
  const auto binding = std::make_shared<pcrecpp::RE>(kPattern);
  const auto re2 = std::make_shared<RE2>(kPattern);
  const int calls = Times(kCalls);
  return {Repeated("bare", calls, [=] { return bare->Exec(text->view()) > 0; }),
          Repeated("zrk", calls, [=] { return regex->execute(text->get(), 0) > 0; }),
          Repeated("pcrecpp", calls,
                   [=] {
                     return binding->PartialMatch({text->data(), text->length()});
                   }),
          Repeated("re2", calls, [=] { return RE2::PartialMatch(text->view(), *re2); })};
}

std::int64_t ReadGroup(const RegEx& regex, int group) {
  return String::Adopt(regex.substring(group)).length();
}

Row Substrings() {
  constexpr const char* kPattern = "(\\w+), (\\w+) (\\w+)";
  const auto text = std::make_shared<String>(kTwentyBytes);
  const auto regex = std::make_shared<RegEx>(kPattern);
  const auto bare = std::make_shared<Bare>(kPattern);
  const auto binding = std::make_shared<pcrecpp::RE>(kPattern);
  const auto re2 = std::make_shared<RE2>(kPattern);
  const auto calls = Times(kCalls);
  return {Repeated("bare", calls,
                   [=] {
                     const int* const pairs = bare->Exec(text->view()) > 0 ? bare->vector : nullptr;
                     return pairs[3] - pairs[2] + pairs[5] - pairs[4] + pairs[7] - pairs[6];
                   }),
          Repeated("zrk", calls,
                   [=] {
                     regex->execute(text->get(), 0);
                     return ReadGroup(*regex, 1) + ReadGroup(*regex, 2) + ReadGroup(*regex, 3);
                   }),
          Repeated("pcrecpp", calls,
                   [=] {
                     std::string one, two, three;
                     binding->PartialMatch({text->data(), text->length()}, &one, &two, &three);
                     return one.size() + two.size() + three.size();
                   }),
          Repeated("re2", calls, [=] {
            std::string one, two, three;
            RE2::PartialMatch(text->view(), *re2, &one, &two, &three);
            return one.size() + two.size() + three.size();
          })};
}

// What Execute(start) does around the engine is what it does without a pattern, which ends just
// before, and what it does for the call itself: the limits and the result. The engine gets an extra
// block in either case.
Row Limits() {
  constexpr const char* kPattern = "(\\d+)-(\\d+)";
  const auto text = std::make_shared<String>(kTwentyBytes);
  const auto regex = std::make_shared<RegEx>(kPattern);
  const auto empty = std::make_shared<RegEx>(nullptr);
  const auto bare = std::make_shared<Bare>(kPattern);
  regex->execute(text->get(), 0);
  pcre_extra limited{};
  limited.flags = PCRE_EXTRA_MATCH_LIMIT_RECURSION;
  limited.match_limit_recursion = 10'000;
  const auto calls = Times(kCalls);
  return {Repeated("bare", calls, [=] { return bare->Exec(text->view(), 0, &limited) > 0; }),
          Repeated("zrk", calls, [=] { return regex->execute_again(0) > 0; }),
          Repeated("no_pattern", calls, [=] { return empty->execute_again(0) > 0; })};
}

Row Threaded() {
  const auto text = std::make_shared<String>(kTwentyBytes);
  const auto regex = std::make_shared<RegEx>("be");
  const auto calls = Times(100);
  return {Repeated("execute", calls, [=] { return regex->execute(text->get(), 0); }),
          Repeated("zrk", calls, [=] { return regex->execute_mt(text->get(), 0); })};
}

// One call a line. All contenders read the lines through the same records.
Row Lines() {
  constexpr const char* kPattern = "file(?:name|handle)s?";
  const auto lines = std::make_shared<Array>(
      LinesOf(Text("ascii", TheSettings().quick ? 10 : 100), Times(1'000'000)));
  const auto regex = std::make_shared<RegEx>(kPattern);
  const auto bare = std::make_shared<Bare>(kPattern);
  const auto binding = std::make_shared<pcrecpp::RE>(kPattern);
  const auto re2 = std::make_shared<RE2>(kPattern);
  const auto count_lines = [lines](std::string name, auto matches) {
    return Contender{std::move(name), static_cast<double>(lines->elements.size()), [=] {
                       std::int64_t matching = 0;
                       for (REALstringStruct* line : lines->elements) matching += matches(line);
                       return matching;
                     }};
  };
  const auto view = [](const REALstringStruct* line) {
    return std::string_view(reinterpret_cast<const char*>(line->Buffer) + 1,
                            static_cast<std::size_t>(line->Length));
  };
  return {count_lines("bare", [=](REALstringStruct* line) { return bare->Exec(view(line)) > 0; }),
          count_lines("zrk", [=](REALstringStruct* line) { return regex->match(line) != 0; }),
          count_lines("pcrecpp",
                      [=](REALstringStruct* line) {
                        return binding->PartialMatch({view(line).data(), line->Length});
                      }),
          count_lines("re2",
                      [=](REALstringStruct* line) { return RE2::PartialMatch(view(line), *re2); })};
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
