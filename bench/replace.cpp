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
    {"each_word", "\\w+", "[\\0]"},
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

// Twenty bytes with one match or none. The binding replaces in a copy, which is part of its work.
Row Short(const char* pattern) {
  static const String kTarget("to be, or not to be:");
  static const String kReplacement("[\\0]");
  const int calls = Times(1'000'000);
  const auto with_class = [=](const char* name, int options) {
    return Repeated(name, calls, [regex = std::make_shared<RegEx>(pattern, options)] {
      return String::Adopt(regex->replace_all(kTarget.get(), kReplacement.get())).length();
    });
  };
  const auto in_copy = [=](const char* name, auto replace) {
    return Repeated(name, calls, [replace] {
      std::string text(kTarget.view());
      replace(&text);
      return static_cast<std::int64_t>(text.size());
    });
  };
  const auto engines = std::make_shared<Engines>(pattern);
  return {
      with_class("zrk", kCompileOptions), with_class("zrk_bytes", 0),
      in_copy("pcrecpp", [=](std::string* text) { engines->binding.GlobalReplace("[\\0]", text); }),
      in_copy("re2", [=](std::string* text) { RE2::GlobalReplace(text, engines->re2, "[\\0]"); })};
}

}  // namespace

void AddReplaceRows() {
  for (const Replaced& replaced : kReplaced) {
    AddRow(std::string("replace/") + replaced.name,
           [&replaced] { return InTurns(4, MakeRow(replaced)); });
  }
  AddRow("replace/short", [] { return Short("not"); });
  AddRow("replace/short_none", [] { return Short("\\d+"); });
}

}  // namespace bench
