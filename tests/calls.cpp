#include "tests/calls.h"

namespace tests {

namespace {

using standin::Host;

const std::string kText = "aébc\xF5 bx bc";

Values Strings(Host& host, bool inverse) {
  return {host.StringArray({"bc", kText, "zz", Value()}), inverse};
}

Values Variants(Host& host, bool inverse) {
  return {host.VariantArray({"bc", kText, 5, true, Value()}), inverse};
}

// Arguments that need no host of their own.
template <typename... Arguments>
auto With(Arguments... arguments) {
  return [=](Host&) { return Values{arguments...}; };
}

}  // namespace

std::string Show(const Value& value) {
  if (value.IsNil()) return "nil";
  switch (value.kind()) {
    case Kind::kInteger:
      return std::to_string(value.Integer());
    case Kind::kBoolean:
      return value.Boolean() ? "true" : "false";
    case Kind::kString:
      return '"' + value.Bytes() + '"';
    case Kind::kStringArray: {
      std::string list;
      for (const Value& element : value.Elements()) {
        list += (list.empty() ? "" : ", ") + (element.IsNil() ? "\"\"" : Show(element));
      }
      return '[' + list + ']';
    }
    default:
      return standin::KindName(value.kind());
  }
}

std::string Show(const Object& object, const Outcome& outcome) {
  const std::string raised = Raised(outcome);
  return Show(outcome.value) + " err=" + std::to_string(object.Get("Lasterror").Integer()) +
         (raised.empty() ? "" : ' ' + raised);
}

const std::vector<CallRow>& CallRows() {
  static const std::vector<CallRow> rows = {
      {"match", "Match", With(kText)},
      {"match strings", "Match", [](Host& host) { return Strings(host, false); }},
      {"match strings inverse", "Match", [](Host& host) { return Strings(host, true); }},
      {"match variants", "Match", [](Host& host) { return Variants(host, false); }},
      {"match variants inverse", "Match", [](Host& host) { return Variants(host, true); }},
      {"name entry", "InfoNameEntry", With(2)},
      {"no such entry", "InfoNameEntry", With(3)},
      {"version", "Version", With()},
      {"compile", "Compile", With("b(é)")},
      {"compile an error", "Compile", With("b(")},
      {"compile bytes", "CompileMemory",
       [](Host& host) -> Values {
         return {host.MemoryBlock("xb(c)(?#and a remark)"), 1};
       }},
      {"compile no bytes", "CompileMemory", With(Value::Nil(Kind::kMemoryBlock), 0)},
      {"study", "Study", With()},
      {"execute again", "Execute", With(1)},
      {"execute", "Execute", With(kText, 1)},
      {"execute bytes", "ExecuteMemory",
       [](Host& host) -> Values {
         return {host.MemoryBlock(kText), 1};
       }},
      {"execute no bytes", "ExecuteMemory", With(Value::Nil(Kind::kMemoryBlock))},
      {"execute threaded again", "ExecuteMT", With(1)},
      {"execute threaded", "ExecuteMT", With(kText, 1)},
      {"execute bytes threaded", "ExecuteMemoryMT",
       [](Host& host) -> Values {
         return {host.MemoryBlock(kText), 1};
       }},
      {"offset", "Offset", With(3)},
      {"no such offset", "Offset", With(-1)},
      {"character", "OffsetCharacters", With(1)},
      {"group", "Substring", With(1)},
      {"named group", "Substring", With("n")},
      {"group number", "StringNumber", With("n")},
      {"utf-8", "ConfigUTF8", With()},
      {"properties", "ConfigUnicodeProperties", With()},
      {"newline", "ConfigNewLine", With()},
      {"bsr", "ConfigBSR", With()},
      {"link size", "ConfigLinkSize", With()},
      {"threshold", "ConfigMallocThreshold", With()},
      {"limit", "ConfigMatchLimit", With()},
      {"recursion", "ConfigMatchLimitRecursion", With()},
      {"stack", "ConfigStackRecurse", With()},
      {"replace", "Replace", With("<\\1é>")},
      {"replace selection", "ReplaceSelection", With("<\\2>")},
      {"replace all", "ReplaceAll", With(kText, "<\\1é>")},
      {"delete all", "ReplaceAll", With(kText)},
      {"escape", "Escape", With("a.é((((((((((")},
      {"unescape", "Unescape", With("a\\.é and some more")},
  };
  return rows;
}

void Prepare(const Object& object, const Value& subject) {
  object.Call("Compile", {"(b)(?<n>c|x)"});
  object.Call("Study");
  object.Call("Execute", {subject, 0});
}

Object Prepared(Session& session, const Value& subject) {
  Object object = session.New();
  Prepare(object, subject);
  return object;
}

Outcome Run(Session& session, const Object& object, const CallRow& row) {
  return object.TryCall(row.method, row.arguments(session.host));
}

}  // namespace tests
