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

Values None(Host&) { return {}; }

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
      {"match", "Match", [](Host&) -> Values { return {kText}; }},
      {"match strings", "Match", [](Host& host) { return Strings(host, false); }},
      {"match strings inverse", "Match", [](Host& host) { return Strings(host, true); }},
      {"match variants", "Match", [](Host& host) { return Variants(host, false); }},
      {"match variants inverse", "Match", [](Host& host) { return Variants(host, true); }},
      {"name entry", "InfoNameEntry", [](Host&) -> Values { return {2}; }},
      {"no such entry", "InfoNameEntry", [](Host&) -> Values { return {3}; }},
      {"version", "Version", None},
      {"compile", "Compile", [](Host&) -> Values { return {"b(é)"}; }},
      {"compile an error", "Compile", [](Host&) -> Values { return {"b("}; }},
      {"compile bytes", "CompileMemory",
       [](Host& host) -> Values {
         return {host.MemoryBlock("xb(c)(?#and a remark)"), 1};
       }},
      {"compile no bytes", "CompileMemory",
       [](Host&) -> Values {
         return {Value::Nil(Kind::kMemoryBlock), 0};
       }},
      {"study", "Study", None},
      {"execute again", "Execute", [](Host&) -> Values { return {1}; }},
      {"execute", "Execute",
       [](Host&) -> Values {
         return {kText, 1};
       }},
      {"execute bytes", "ExecuteMemory",
       [](Host& host) -> Values {
         return {host.MemoryBlock(kText), 1};
       }},
      {"execute no bytes", "ExecuteMemory",
       [](Host&) -> Values { return {Value::Nil(Kind::kMemoryBlock)}; }},
      {"execute threaded again", "ExecuteMT", [](Host&) -> Values { return {1}; }},
      {"execute threaded", "ExecuteMT",
       [](Host&) -> Values {
         return {kText, 1};
       }},
      {"execute bytes threaded", "ExecuteMemoryMT",
       [](Host& host) -> Values {
         return {host.MemoryBlock(kText), 1};
       }},
      {"offset", "Offset", [](Host&) -> Values { return {3}; }},
      {"no such offset", "Offset", [](Host&) -> Values { return {-1}; }},
      {"character", "OffsetCharacters", [](Host&) -> Values { return {1}; }},
      {"group", "Substring", [](Host&) -> Values { return {1}; }},
      {"named group", "Substring", [](Host&) -> Values { return {"n"}; }},
      {"group number", "StringNumber", [](Host&) -> Values { return {"n"}; }},
      {"utf-8", "ConfigUTF8", None},
      {"properties", "ConfigUnicodeProperties", None},
      {"newline", "ConfigNewLine", None},
      {"bsr", "ConfigBSR", None},
      {"link size", "ConfigLinkSize", None},
      {"threshold", "ConfigMallocThreshold", None},
      {"limit", "ConfigMatchLimit", None},
      {"recursion", "ConfigMatchLimitRecursion", None},
      {"stack", "ConfigStackRecurse", None},
      {"replace", "Replace", [](Host&) -> Values { return {"<\\1é>"}; }},
      {"replace selection", "ReplaceSelection", [](Host&) -> Values { return {"<\\2>"}; }},
      {"replace all", "ReplaceAll",
       [](Host&) -> Values {
         return {kText, "<\\1é>"};
       }},
      {"delete all", "ReplaceAll", [](Host&) -> Values { return {kText}; }},
      {"escape", "Escape", [](Host&) -> Values { return {"a.é(((((((((("}; }},
      {"unescape", "Unescape", [](Host&) -> Values { return {"a\\.é and some more"}; }},
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
