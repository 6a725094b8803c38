// Replacement texts against a loop over the engine that does the same the plain way. For any
// pattern, options, subject and replacement text:
//
//  1. ReplaceAll answers what the loop does, and Count is the number of its engine calls.
//  2. Replace and ReplaceSelection answer the subject with its match replaced, and the replacement
//     alone, each up to its first NUL byte.
//  3. Lasterror is -99 after an empty result, and 0 otherwise.
//  4. The accounts balance, and no sanitizer has anything to say.
#include "fuzz/session.h"
#include "fuzz/values.h"
#include "tests/oracle/plain_regex.h"

namespace {

using namespace fuzz;

constexpr std::uint32_t kCompileOptions[] = {
    PCRE_UNGREEDY,       PCRE_UTF8,      PCRE_NO_UTF8_CHECK,   PCRE_UCP,
    PCRE_CASELESS,       PCRE_MULTILINE, PCRE_DOTALL,          PCRE_EXTENDED,
    PCRE_ANCHORED,       PCRE_FIRSTLINE, PCRE_NO_AUTO_CAPTURE, PCRE_JAVASCRIPT_COMPAT,
    PCRE_DOLLAR_ENDONLY, PCRE_DUPNAMES,  PCRE_NEWLINE_ANY,     PCRE_NEWLINE_CRLF};
constexpr std::uint32_t kExecuteOptions[] = {
    PCRE_NO_UTF8_CHECK, PCRE_ANCHORED,         PCRE_NOTBOL,
    PCRE_NOTEOL,        PCRE_NOTEMPTY,         PCRE_PARTIAL,
    PCRE_PARTIAL_HARD,  PCRE_NOTEMPTY_ATSTART, PCRE_NO_START_OPTIMIZE};
// Switches up to three options and answers them all.
template <std::size_t kRows>
std::uint32_t Switch(Input& input, const Regex& regex, const char* property,
                     const std::uint32_t (&options)[kRows]) {
  auto word = static_cast<std::uint32_t>(regex.Number(property));
  for (unsigned count = input.Below(4); count > 0; --count) word ^= input.Pick(options);
  regex.Set(property, static_cast<std::int32_t>(word));
  return word;
}

void CheckResult(const Regex& regex, const Outcome& outcome, const std::string& expected) {
  Check(outcome.errors.empty() && outcome.value.Bytes() == expected, "the text is the loop's");
  Check(regex.Number("Lasterror") == (expected.empty() ? -99 : 0), "Lasterror fits the result");
}

void Run(Input& input) {
  Session session(WholeHost(input));
  const Regex regex(session, static_cast<std::int32_t>(input.Below(100)));
  const std::uint32_t compile_options = Switch(input, regex, "CompileOptions", kCompileOptions);
  const std::uint32_t execute_options = Switch(input, regex, "ExecuteOptions", kExecuteOptions);
  const std::string pattern = std::string(kBounded) + input.Bytes(80);
  oracle::PlainRegex plain(pattern, compile_options, execute_options);
  const bool compiled = regex.Call("Compile", {pattern}).value.Boolean();
  Check(compiled == (plain.error() == nullptr), "the same patterns compile");
  if (!compiled) return;
  if (input.Truth()) {
    regex.Call("Study");
    plain.Study();
  }
  const std::string new_text = input.Bytes(40);
  const std::string subject = AnyText(input);

  const oracle::Replaced all = oracle::ReplaceAll(plain, subject, new_text);
  CheckResult(regex, regex.Call("ReplaceAll", {subject, new_text}), all.text);
  Check(regex.Number("Count") == all.engine_calls, "Count is the number of engine calls");

  const oracle::PlainMatch match =
      plain.Match(plain.Shown(subject), 0, static_cast<std::size_t>(regex.Number("VectorSize")));
  Check(regex.Ask("Execute", {subject}) == match.result, "a match is the engine's");
  if (match.result < 1) return;
  const oracle::ReplacedMatch one = oracle::ReplaceMatch(match, subject, new_text);
  CheckResult(regex, regex.Call("Replace", {new_text}), one.whole);
  CheckResult(regex, regex.Call("ReplaceSelection", {new_text}), one.selection);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  Run(input);
  return 0;
}
