#include "fuzz/invariants.h"

#include "tests/oracle/plain_text.h"

namespace fuzz {
namespace {

std::size_t SizeOf(const Session& session, const Value& text) {
  constexpr std::size_t kMostGrowth = 3;  // a byte becomes U+FFFD, at most
  return session.IsWhole() ? oracle::ReadAs(session.host.options(), text).size()
                           : kMostGrowth * (text.Bytes().size() + 1);
}

}  // namespace

std::size_t SubjectSize(const Session& session, const Regex& regex) {
  const Value memory = regex.Get("TextMemory");
  return memory.IsNil() ? SizeOf(session, regex.Get("Text")) : memory.Bytes().size();
}

void CheckMatch(const Regex& regex, std::int32_t result, std::size_t subject_size) {
  const std::int32_t count = regex.Number("Count");
  const std::int32_t error = regex.Number("Lasterror");
  Check(count == 0 || (count == result && error == 0), "Count is what was answered");
  Check(count != 0 || (error <= 0 && (result == 0 || result == error)), "Lasterror says why");
  Check(3 * count <= regex.Number("VectorSize"), "the vector holds the pairs");
  const auto size = static_cast<std::int64_t>(subject_size);
  for (std::int32_t i = 0; i < count; ++i) {
    const std::int32_t start = regex.Ask("Offset", {2 * i});
    const std::int32_t end = regex.Ask("Offset", {2 * i + 1});
    const bool unset = start == -1 && end == -1;
    Check(unset || (start >= 0 && start <= size && end >= 0 && end <= size), "pairs lie within");
    Check(unset || i == 0 || start <= end, "a group starts before its end");
  }
}

void CheckOutcome(const Session& session, const Regex& regex, const Values& arguments,
                  const Outcome& outcome) {
  if (!outcome.errors.empty()) return;
  const std::string& name = outcome.method->declaration.name;
  const Value& result = outcome.value;
  if (name.starts_with("Execute")) {
    CheckMatch(regex, result.Integer(), SubjectSize(session, regex));
  } else if (name == "Match" && result.kind() == Kind::kBoolean) {
    Check(result.Boolean() == (regex.Number("Count") > 0), "Match is true where Count is above 0");
    CheckMatch(regex, regex.Number("Count"), SizeOf(session, arguments[0]));
  } else if (name == "OffsetCharacters") {
    const auto most = static_cast<std::int64_t>(SubjectSize(session, regex));
    Check(result.Integer() >= 0 && result.Integer() <= most, "characters lie within");
  } else if (name == "Substring") {
    Check(result.Bytes().size() <= SubjectSize(session, regex), "groups lie within");
  }
}

}  // namespace fuzz
