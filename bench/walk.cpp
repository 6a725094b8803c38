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
    {"short", "\\p{L}+", "mixed"},
};

// A walk in parts. `next` answers where the match found from a byte offset on ends, or -1.
template <typename Next>
Contender Walking(std::string name, const String& text, Next next) {
  const auto walk = [=, length = std::int64_t{text.length()}, at = 0](Part part) mutable {
    if (part.number == 0) at = 0;
    std::int64_t found = 0;
    for (; at >= 0 && at < part.EndIn(length); ++found) at = next(at);
    return found;
  };
  return InParts(Times(100), std::move(name), 1, walk);
}

Row MakeRow(const Walked& walked) {
  const auto engines = std::make_shared<Engines>(walked.pattern, walked.caseless);
  const String& text = Text(walked.kind, UsualSize());
  Row row{Walking("bare", text,
                  [=, &text](int start) {
                    Bare& bare = engines->bare;
                    return bare.Exec(text.view(), start) > 0 ? bare.vector[1] : -1;
                  }),
          Walking("zrk", text,
                  [=, &text](int start) { return NextMatch(engines->regex, text.get(), start); }),
          Walking("re2", text, [=, &text](int start) {
            re2::StringPiece match;
            const bool found = engines->re2.Match(text.view(), static_cast<std::size_t>(start),
                                                  text.view().size(), RE2::UNANCHORED, &match, 1);
            return found ? static_cast<int>(match.end() - text.view().data()) : -1;
          })};
  if (walked.kind == kASCII) {
    row.push_back(Walking("pcrecpp", text, [=, &text](int start) {
      pcrecpp::StringPiece rest = ForBinding(text.view().substr(static_cast<std::size_t>(start)));
      return engines->binding.FindAndConsume(&rest)
                 ? static_cast<int>(rest.data() - text.view().data())
                 : -1;
    }));
  }
  return row;
}

// Programs that name the text again at every step, as a string or as a block, beside one that names
// it once.
Row NamedAgain() {
  const String& text = Text("mixed", UsualSize());
  const auto engines = std::make_shared<Engines>("Linux");
  const auto block = std::make_shared<MemoryBlock>(text);
  const auto end = [](const RegEx& regex, int found) { return found > 0 ? regex.offset(1) : -1; };
  return {Walking("bare", text,
                  [=, &text](int start) {
                    Bare& bare = engines->bare;
                    return bare.Exec(text.view(), start) > 0 ? bare.vector[1] : -1;
                  }),
          Walking("once", text,
                  [=, &text](int start) { return NextMatch(engines->regex, text.get(), start); }),
          Walking("string", text,
                  [=, &text, regex = std::make_shared<RegEx>("Linux")](int start) {
                    return end(*regex, regex->execute(text.get(), start));
                  }),
          Walking("block", text, [=, regex = std::make_shared<RegEx>("Linux")](int start) {
            return end(*regex, regex->execute_memory(block->handle(), start, 0));
          })};
}

}  // namespace

void AddWalkRows() {
  for (const Walked& walked : kWalked) {
    AddRow(std::string("walk/") + walked.name, [&walked] { return InTurns(4, MakeRow(walked)); });
  }
  AddRow("walk/named_again", NamedAgain);
}

}  // namespace bench
