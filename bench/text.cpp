// What the class does with text without the engine: escaping, counting characters, and looking for
// bytes that the engine must not be shown.
#include <algorithm>

#include "bench/engines.h"
#include "bench/rounds.h"
#include "bench/settings.h"

namespace bench {

namespace {

Row Escape() {
  const String& text = Text("ascii", UsualSize());
  const auto regex = std::make_shared<RegEx>("");
  const double bytes = text.length();
  const auto size_of = [](const std::string& result) { return result.empty() ? 0 : kNothingFound; };
  const auto specials = std::ranges::count_if(text.view(), [](char byte) {
    return std::string_view("$()*+.?[\\]^{|}").find(byte) != std::string_view::npos;
  });
  const auto escaped = text.length() + specials;
  return {{"zrk", bytes,
           [=, &text] {
             const String result = String::Adopt(regex->escape(text.get()));
             return std::int64_t{result.length() == escaped ? kNothingFound : result.length()};
           }},
          {"pcrecpp", bytes,
           [=, &text] { return size_of(pcrecpp::RE::QuoteMeta(ForBinding(text.view()))); }},
          {"re2", bytes, [=, &text] { return size_of(RE2::QuoteMeta(text.view())); }}};
}

// The plain way to count: from lead byte to lead byte.
std::int64_t CountByLeadBytes(std::string_view text) {
  std::int64_t characters = 0;
  for (std::size_t at = 0; at < text.size(); ++characters) {
    const auto lead = static_cast<unsigned char>(text[at]);
    at += lead < 0xC0 ? 1U : lead < 0xE0 ? 2U : lead < 0xF0 ? 3U : 4U;
  }
  return characters;
}

// A memory block, because of a string the library may know that it is ASCII. Each round has a new
// subject, so that nothing is remembered, and a match at its very end.
Row Characters(std::string_view kind) {
  const String& text = Text(kind, UsualSize());
  const auto block = std::make_shared<MemoryBlock>(text);
  const auto regex = std::make_shared<RegEx>("$");
  const double bytes = text.length();
  return {{"zrk", bytes, [=] { return regex->offset_characters(0); },
           [=, &text] { regex->execute_memory(block->handle(), text.length(), 0); }},
          {"lead_bytes", bytes, [&text] { return CountByLeadBytes(text.view()); }}};
}

constexpr const char* kFewMatches = "Linux";

std::int64_t WalkCharacters(const RegEx& regex, const String& text) {
  std::int64_t matches = 0;
  std::int64_t last = 0;
  for (int at = 0; (at = NextMatch(regex, text.get(), at)) >= 0;) {
    const int character = regex.offset_characters(0);
    if (character <= last) Fail("character offsets go backwards");
    last = character;
    ++matches;
  }
  return matches;
}

Row CharactersWhileWalking() {
  const String& text = Text("mixed", UsualSize());
  const auto regex = std::make_shared<RegEx>(kFewMatches);
  const double bytes = text.length();
  return {{"without", bytes, [=, &text] { return Walk(*regex, text.get()); }},
          {"zrk", bytes, [=, &text] { return WalkCharacters(*regex, text); }}};
}

// Matches found first, then asked for from the last one to the first: a unit is a call.
Row CharactersOutOfOrder() {
  const String& text = Text("mixed", UsualSize());
  const auto regex = std::make_shared<RegEx>(kFewMatches);
  std::vector<int> starts;
  for (int at = 0; (at = NextMatch(*regex, text.get(), at)) >= 0;)
    starts.push_back(regex->offset(0));
  const auto each = [&](const char* name, auto ask) {
    return Contender{name, static_cast<double>(starts.size()), [=, &text] {
                       regex->execute(text.get(), 0);
                       for (auto start = starts.rbegin(); start != starts.rend(); ++start) {
                         regex->execute_again(*start);
                         ask();
                       }
                       return kNothingFound;
                     }};
  };
  return {each("without", [] {}), each("zrk", [=] { regex->offset_characters(0); })};
}

// Both calls keep a new subject and match at its end, where the engine has nothing to do. A pattern
// that is not UTF-8 needs no scan, so that the difference is the scan's.
Row UnsafeBytes(std::string_view kind) {
  const String& text = Text(kind, UsualSize());
  const auto block = std::make_shared<MemoryBlock>(text);
  const auto scanning = std::make_shared<RegEx>("$");
  const auto plain = std::make_shared<RegEx>("$", 0);
  const auto bare = std::make_shared<Bare>("$");
  const double bytes = text.length();
  const auto execute = [=, &text](const std::shared_ptr<RegEx>& regex) {
    return [=, &text] { return regex->execute_memory(block->handle(), text.length(), 0); };
  };
  return {{"zrk", bytes, execute(scanning)},
          {"without", bytes, execute(plain)},
          {"engine_check", bytes,
           [=, &text] { return bare->Exec(text.view(), text.length(), nullptr, 0); }}};
}

// The calls after the first, over the same kept subject.
Row UnsafeBytesAgain() {
  const String& text = Text("mixed", UsualSize());
  const auto block = std::make_shared<MemoryBlock>(text);
  const auto regex = std::make_shared<RegEx>("$");
  regex->execute_memory(block->handle(), 0, 0);
  return {Repeated("zrk", Times(200'000), [=, &text] {
    return block != nullptr && regex->execute_again(text.length()) == 1;
  })};
}

}  // namespace

void AddTextRows() {
  constexpr int kTurns = 10;
  AddRow("text/escape", [] { return InTurns(kTurns, Escape()); });
  for (const std::string kind : {"ascii", "mixed"}) {
    AddRow("text/characters_" + kind, [kind] { return InTurns(kTurns, Characters(kind)); });
    AddRow("text/unsafe_" + kind, [kind] { return InTurns(kTurns, UnsafeBytes(kind)); });
  }
  AddRow("text/characters_walking", [] { return InTurns(kTurns, CharactersWhileWalking()); });
  AddRow("text/characters_out_of_order", CharactersOutOfOrder);
  AddRow("text/unsafe_again", UnsafeBytesAgain);
}

}  // namespace bench
