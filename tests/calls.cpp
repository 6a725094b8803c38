#include "tests/calls.h"

#include <utility>

namespace tests {

namespace {

using standin::Host;

// Arguments that need no host of their own, and those that begin with a thing of it.
template <typename... Arguments>
auto With(Arguments... arguments) {
  return [=](Host&) { return Values{arguments...}; };
}
template <typename... Arguments>
auto WithBlock(const char* bytes, Arguments... arguments) {
  return [=](Host& host) { return Values{host.MemoryBlock(bytes), arguments...}; };
}
Values Strings(Host& host) { return {host.StringArray({"bc", kSubject, "zz", Value()}), true}; }
Values Variants(Host& host) {
  return {host.VariantArray({"bc", kSubject, 5, true, Value()}), true};
}
Values Latin1(Host& host) { return {host.String("xbc\xE9", zrk::kEncodingISOLatin1)}; }

}  // namespace

std::string Show(const Value& value) {
  if (value.IsNil()) return "nil";
  const Kind kind = value.kind();
  if (kind == Kind::kInteger) return std::to_string(value.Integer());
  if (kind == Kind::kBoolean) return value.Boolean() ? "true" : "false";
  if (kind == Kind::kString) return '"' + value.Bytes() + '"';
  if (kind != Kind::kStringArray) return standin::KindName(kind);
  std::string list;
  for (const Value& element : value.Elements()) {
    list += (list.empty() ? "" : ", ") + (element.IsNil() ? "\"\"" : Show(element));
  }
  return '[' + list + ']';
}

std::string Show(const Object& object, const Outcome& outcome) {
  const std::string raised = Raised(outcome);
  return Show(outcome.value) + " err=" + std::to_string(object.Get("Lasterror").Integer()) +
         (raised.empty() ? "" : ' ' + raised);
}

std::string Try(const Object& object, const char* method, const Values& arguments) {
  return Show(object, object.TryCall(method, arguments));
}

const std::vector<CallRow>& CallRows() {
  static const std::vector<CallRow> rows = {
      {"match", "Match", With(kSubject)},
      {"match strings", "Match", Strings},
      {"match variants", "Match", Variants},
      {"name entry", "InfoNameEntry", With(2)},
      {"no such entry", "InfoNameEntry", With(3)},
      {"version", "Version", With()},
      {"compile", "Compile", With("b(é)")},
      {"compile another encoding", "Compile", Latin1},
      {"compile an error", "Compile", With("b(")},
      {"compile bytes", "CompileMemory", WithBlock("xb(c)(?#and a remark)", 1)},
      {"compile no bytes", "CompileMemory", With(Value::Nil(Kind::kMemoryBlock), 0)},
      {"study", "Study", With()},
      {"execute again", "Execute", With(1)},
      {"execute", "Execute", With(kSubject, 1)},
      {"execute another encoding", "Execute", Latin1},
      {"execute bytes", "ExecuteMemory", WithBlock(kSubject, 1)},
      {"execute no bytes", "ExecuteMemory", With(Value::Nil(Kind::kMemoryBlock))},
      {"execute threaded again", "ExecuteMT", With(1)},
      {"execute threaded", "ExecuteMT", With(kSubject, 1)},
      {"execute bytes threaded", "ExecuteMemoryMT", WithBlock(kSubject, 1)},
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
      {"replace all", "ReplaceAll", With(kSubject, "<\\1é>")},
      {"delete all", "ReplaceAll", With(kSubject)},
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

std::vector<Values> Combinations(const std::vector<Values>& choices) {
  std::vector<Values> all = {{}};
  for (const Values& values : choices) {
    std::vector<Values> longer;
    for (const Values& begun : all) {
      for (const Value& value : values) {
        longer.push_back(begun);
        longer.back().push_back(value);
      }
    }
    all = std::move(longer);
  }
  return all;
}

}  // namespace tests
