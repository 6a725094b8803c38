// ReplaceAll against one walk of the bare engine over the same matches, and against the others'
// GlobalReplace, which is given its copy of the target before the clock starts.
#include "bench/engines.h"
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

Contender ReplaceWithClass(std::string name, const Replaced& replaced, int options,
                           const String& target) {
  const auto regex = std::make_shared<RegEx>(replaced.pattern, options);
  const auto replacement = std::make_shared<String>(replaced.replacement);
  return {std::move(name), 1, [=, &target] {
            return std::int64_t{
                String::Adopt(regex->replace_all(target.get(), replacement->get())).length()};
          }};
}

void RequireSameResult(const Engines& engines, const Replaced& replaced, const String& target) {
  std::string expected(target.view());
  RE2::GlobalReplace(&expected, engines.re2, replaced.replacement);
  const String replacement(replaced.replacement);
  const String result = String::Adopt(engines.regex.replace_all(target.get(), replacement.get()));
  if (result.view() != expected) Fail("ReplaceAll and RE2 differ on " + engines.re2.pattern());
}

// The class runs beside the binding in the binding's mode as well.
Row MakeRow(const Replaced& replaced) {
  const String& target = Text("ascii", UsualSize());
  const auto engines = std::make_shared<Engines>(replaced.pattern);
  const char* const rewrite = replaced.replacement;
  RequireSameResult(*engines, replaced, target);
  return {{"bare", 1,
           [=, &target] { return engines->bare.Walk(target.view()) > 0 ? kNothingFound : 0; }},
          ReplaceWithClass("zrk", replaced, kCompileOptions, target),
          ReplaceWithClass("zrk_bytes", replaced, 0, target),
          ReplaceInPlace("pcrecpp", target,
                         [=](std::string* text) { engines->binding.GlobalReplace(rewrite, text); }),
          ReplaceInPlace("re2", target, [=](std::string* text) {
            RE2::GlobalReplace(text, engines->re2, rewrite);
          })};
}

}  // namespace

void AddReplaceRows() {
  for (const Replaced& replaced : kReplaced) {
    AddRow(std::string("replace/") + replaced.name,
           [&replaced] { return InTurns(4, MakeRow(replaced)); });
  }
}

}  // namespace bench
