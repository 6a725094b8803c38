// Texts on their way in and out. For any bytes in any encoding:
//
//  1. On a host where nothing is wrong, the engine sees what a plain conversion makes of the text:
//     all of it, in UTF-8; Escape gives back the same with its backslashes.
//  2. Walking a text in any order, by string or by memory block, OffsetCharacters counts what a
//     plain count does, and the texts of groups are the bytes at their offsets, marked as UTF-8.
//  3. On any other host no result lies outside the subject.
//  4. The accounts balance, and no sanitizer has anything to say.
#include "fuzz/invariants.h"
#include "fuzz/session.h"
#include "fuzz/values.h"
#include "tests/oracle/plain_text.h"

namespace {

using namespace fuzz;

constexpr const char* kPatterns[] = {
    ".",       "(?s)(.)(.*)", "\\X",        "\\p{L}+",   "(?<=..).",
    "(.)\\1",  "(?i)(.)\\1",  "[^a-z]+",    "\\b",       "(?<a>\\w+)|(?<b>\\W+)",
    "\\x{E4}", "(?:.|\\n)*",  "(*UCP)\\w+", "(?s).\\K.", "\\C",
};
constexpr int kMostMatches = 12;

void CheckReading(Session& session, const Value& text) {
  const Regex regex(session);
  regex.Set("CompileOptionUTF8", false);
  regex.Call("Compile", {"(?s)\\A.*\\z"});
  const std::int32_t result = regex.Ask("Execute", {text});
  CheckMatch(regex, result, SubjectSize(session, regex));
  const Value escaped = regex.Call("Escape", {text}).value;
  if (!session.IsWhole()) return;
  const std::string expected = oracle::ReadAs(session.host.options(), text);
  Check(regex.Ask("Offset", {1}) == static_cast<std::int32_t>(expected.size()), "all is read");
  Check(regex.Call("Substring", {0}).value.Bytes() == expected.c_str(), "it is read as UTF-8");
  Check(escaped.Bytes() == oracle::Escaped(expected), "all is escaped");
  Check(regex.Call("Unescape", {escaped}).value.Bytes() == expected, "and back");
}

void CheckGroup(const Regex& regex, const std::string& subject, std::int32_t group) {
  for (const std::int32_t entry : {2 * group + 1, 2 * group}) {
    const auto offset = static_cast<std::size_t>(std::max(regex.Ask("Offset", {entry}), 0));
    const auto counted = static_cast<std::size_t>(regex.Ask("OffsetCharacters", {entry}));
    Check(counted == oracle::CharactersBefore(subject, offset), "characters are counted");
  }
  const std::int32_t start = regex.Ask("Offset", {2 * group});
  const std::int32_t size = regex.Ask("Offset", {2 * group + 1}) - start;
  const Value text = regex.Call("Substring", {group}).value;
  if (start < 0 || size <= 0) return Check(text.Bytes().empty(), "no text for no group");
  const std::string bytes =
      subject.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(size)).c_str();
  Check(text.Bytes() == bytes, "groups are the bytes at their offsets");
  Check(bytes.empty() || text.Encoding() == zrk::kEncodingUTF8, "groups are UTF-8");
}

void CheckWalk(Input& input, Session& session, const Value& subject) {
  const bool memory = subject.kind() == Kind::kMemoryBlock;
  const std::string bytes =
      memory ? subject.Bytes() : oracle::ReadAs(session.host.options(), subject);
  const Regex regex(session);
  regex.Call("Compile", {input.Pick(kPatterns)});
  std::int32_t result = regex.Ask(memory ? "ExecuteMemory" : "Execute", {subject});
  for (int step = 0; step < kMostMatches && !input.IsUsedUp(); ++step) {
    CheckMatch(regex, result, SubjectSize(session, regex));
    for (std::int32_t group = 0; group < 3 && session.IsWhole(); ++group) {
      CheckGroup(regex, bytes, group);
    }
    const auto places = static_cast<std::int32_t>(bytes.size()) + 1;
    const std::int32_t end = regex.Ask("Offset", {1});
    const auto jump = static_cast<std::int32_t>(input.Byte());
    result = regex.Ask("Execute", {jump < 0x80 ? end : (jump * 7) % places});
  }
}

void Run(Input& input) {
  Session session(AnyHost(input));
  const Value text = AnyString(input, session.host);
  CheckReading(session, text);
  CheckWalk(input, session, input.Truth() ? text : session.host.MemoryBlock(text.Bytes()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  Run(input);
  return 0;
}
