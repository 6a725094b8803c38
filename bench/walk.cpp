// Walks all matches of a text: Execute(text), then Execute(start) from the end of each match.
#include <pcrecpp.h>
#include <re2/re2.h>

#include <memory>

#include "bench/bare.h"
#include "bench/rounds.h"
#include "bench/settings.h"

namespace bench {

namespace {

struct Walked {
  const char* name;
  const char* pattern;
  const char* kind;
  bool caseless = false;
};

constexpr Walked kWalked[] = {
    {"literal", "software", "ascii"},
    {"caseless", "copyright", "ascii", true},
    {"alternatives", "GNU|Perl|Unix|POSIX|Artistic", "ascii"},
    {"address", "https?://[^\\s>]+", "ascii"},
    {"capitals", "[A-Z][a-z]+ [A-Z][a-z]+", "ascii"},
    {"groups", "(\\w+)\\s*=>\\s*(\\w+)", "ascii"},
    {"words", "\\w+", "ascii"},
    {"letters", "\\p{Lu}\\p{L}+", "mixed"},
};

// The binding checks the whole text's UTF-8 at every call, so that UTF-8 walks would take for ever;
// it runs on ASCII text, without that mode.
Contender WalkWithBinding(const Walked& walked, const String& text) {
  pcrecpp::RE_Options options;
  options.set_caseless(walked.caseless);
  const auto regex = std::make_shared<pcrecpp::RE>(walked.pattern, options);
  return {"pcrecpp", 1, [regex, &text] {
            pcrecpp::StringPiece rest(text.data(), text.length());
            std::int64_t matches = 0;
            while (regex->FindAndConsume(&rest)) ++matches;
            return matches;
          }};
}

Contender WalkWithRE2(const Walked& walked, const String& text) {
  RE2::Options options;
  options.set_case_sensitive(!walked.caseless);
  const auto regex = std::make_shared<RE2>(walked.pattern, options);
  return {"re2", 1, [regex, &text] {
            const re2::StringPiece whole(text.data(), static_cast<std::size_t>(text.length()));
            re2::StringPiece match;
            std::int64_t matches = 0;
            std::size_t start = 0;
            while (regex->Match(whole, start, whole.size(), RE2::UNANCHORED, &match, 1)) {
              start = static_cast<std::size_t>(match.end() - whole.begin());
              ++matches;
            }
            return matches;
          }};
}

Row MakeRow(const Walked& walked) {
  const int options = kCompileOptions | (walked.caseless ? PCRE_CASELESS : 0);
  const String& text = Text(walked.kind, UsualSize());
  const auto regex = std::make_shared<RegEx>(walked.pattern, options);
  const auto bare = std::make_shared<Bare>(walked.pattern, options);
  Row row{{"bare", 1, [bare, &text] { return bare->Walk(text.view()); }},
          {"zrk", 1, [regex, &text] { return Walk(*regex, text.get()); }}};
  if (std::string_view(walked.kind) == "ascii") row.push_back(WalkWithBinding(walked, text));
  row.push_back(WalkWithRE2(walked, text));
  return row;
}

}  // namespace

void AddWalkRows() {
  for (const Walked& walked : kWalked) {
    AddRow(std::string("walk/") + walked.name, [&walked] { return MakeRow(walked); });
  }
}

}  // namespace bench
