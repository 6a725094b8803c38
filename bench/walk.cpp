// Walks all matches of a text: Execute(text), then Execute(start) from the end of each match.
#include "bench/engines.h"
#include "bench/rounds.h"
#include "bench/settings.h"

namespace bench {

namespace {

constexpr std::string_view kASCII = "ascii";

struct Walked {
  const char* name;
  const char* pattern;
  std::string_view kind;
  bool caseless = false;
};

constexpr Walked kWalked[] = {
    {"literal", "software", kASCII},
    {"caseless", "copyright", kASCII, true},
    {"alternatives", "GNU|Perl|Unix|POSIX|Artistic", kASCII},
    {"address", "https?://[^\\s>]+", kASCII},
    {"capitals", "[A-Z][a-z]+ [A-Z][a-z]+", kASCII},
    {"groups", "(\\w+)\\s*=>\\s*(\\w+)", kASCII},
    {"words", "\\w+", kASCII},
    {"letters", "\\p{Lu}\\p{L}+", "mixed"},
};

std::int64_t WalkWithBinding(const pcrecpp::RE& regex, std::string_view text) {
  pcrecpp::StringPiece rest = ForBinding(text);
  std::int64_t matches = 0;
  while (regex.FindAndConsume(&rest)) ++matches;
  return matches;
}

std::int64_t WalkWithRE2(const RE2& regex, std::string_view text) {
  re2::StringPiece match;
  std::int64_t matches = 0;
  for (std::size_t start = 0; regex.Match(text, start, text.size(), RE2::UNANCHORED, &match, 1);
       ++matches) {
    start = static_cast<std::size_t>(match.data() - text.data()) + match.size();
  }
  return matches;
}

Row MakeRow(const Walked& walked) {
  const auto engines = std::make_shared<Engines>(walked.pattern, walked.caseless);
  const String& text = Text(walked.kind, UsualSize());
  Row row{{"bare", 1, [=, &text] { return engines->bare.Walk(text.view()); }},
          {"zrk", 1, [=, &text] { return Walk(engines->regex, text.get()); }},
          {"re2", 1, [=, &text] { return WalkWithRE2(engines->re2, text.view()); }}};
  if (walked.kind == kASCII) {
    row.push_back(
        {"pcrecpp", 1, [=, &text] { return WalkWithBinding(engines->binding, text.view()); }});
  }
  return row;
}

}  // namespace

void AddWalkRows() {
  for (const Walked& walked : kWalked) {
    AddRow(std::string("walk/") + walked.name, [&walked] { return InTurns(4, MakeRow(walked)); });
  }
}

}  // namespace bench
