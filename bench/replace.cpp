// ReplaceAll against one walk of the bare engine over the same matches, and against the others'
// GlobalReplace, which is given its copy of the target before the clock starts.
#include <pcrecpp.h>
#include <re2/re2.h>

#include <memory>

#include "bench/bare.h"
#include "bench/rounds.h"
#include "bench/settings.h"

namespace bench {

namespace {

struct Replaced {
  const char* name;
  const char* pattern;
  const char* replacement;
};

constexpr Replaced kReplaced[] = {
    {"pairs", "(\\w+)\\s*=>\\s*(\\w+)", "\\2 <= \\1"},
    {"capitals", "([A-Z])([a-z]+)", "\\2\\1"},
    {"words", "(\\w+) (\\w+)", "\\2 \\1"},
    {"delete", "[A-Z][a-z]+ [A-Z][a-z]+", ""},
};

// Replaces in a std::string that is filled with the target anew for each round.
template <typename Replace>
Contender ReplaceInPlace(std::string name, const String& target, Replace replace) {
  const auto text = std::make_shared<std::string>();
  return {std::move(name), 1,
          [text, replace] {
            replace(text.get());
            return static_cast<std::int64_t>(text->size());
          },
          [text, &target] { text->assign(target.view()); }};
}

void RequireSameResult(const RegEx& regex, const RE2& re2, const String& target,
                       const String& replacement) {
  std::string expected(target.view());
  RE2::GlobalReplace(&expected, re2, replacement.view());
  const String result = String::Adopt(regex.replace_all(target.get(), replacement.get()));
  if (result.view() != expected) Fail("ReplaceAll and RE2 differ on " + re2.pattern());
}

Row MakeRow(const Replaced& replaced) {
  const String& target = Text("ascii", UsualSize());
  const auto replacement = std::make_shared<String>(replaced.replacement);
  const auto regex = std::make_shared<RegEx>(replaced.pattern);
  const auto bare = std::make_shared<Bare>(replaced.pattern);
  const auto binding = std::make_shared<pcrecpp::RE>(replaced.pattern);
  const auto re2 = std::make_shared<RE2>(replaced.pattern);
  RequireSameResult(*regex, *re2, target, *replacement);
  return {
      {"bare", 1, [=, &target] { return bare->Walk(target.view()) > 0 ? kNothingFound : 0; }},
      {"zrk", 1,
       [=, &target] {
         const String result = String::Adopt(regex->replace_all(target.get(), replacement->get()));
         return std::int64_t{result.length()};
       }},
      ReplaceInPlace("pcrecpp", target,
                     [=](std::string* text) {
                       binding->GlobalReplace({replacement->data(), replacement->length()}, text);
                     }),
      ReplaceInPlace("re2", target, [=](std::string* text) {
        RE2::GlobalReplace(text, *re2, replacement->view());
      })};
}

}  // namespace

void AddReplaceRows() {
  for (const Replaced& replaced : kReplaced) {
    AddRow(std::string("replace/") + replaced.name, [&replaced] { return MakeRow(replaced); });
  }
}

}  // namespace bench
