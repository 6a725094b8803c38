// Whatever a script passes, in whatever state the object is: an answer, or one of two exceptions.
//
// The methods and properties are taken from the class as it is registered, and every combination
// of unkind arguments that fits a declaration is tried.
#include <gtest/gtest.h>

#include <climits>
#include <iterator>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tests/calls.h"

namespace {

using namespace std::string_view_literals;
using standin::Host;
using namespace tests;

Values Strings(Host& host) {
  return {Value::Nil(Kind::kString),
          "ab",
          "\xF5\x80\xE2\x82",
          "",
          "(b)\\1[",
          host.String("\xD8", zrk::kEncodingUTF16),
          host.String("b\xE9", zrk::kEncodingUnknown),
          host.String("b\xE9", 0x12345678),
          std::string(9000, 'b')};
}

// The unkindest first.
Values ArgumentsOf(Host& host, Kind kind) {
  if (kind == Kind::kInteger) return {0, -1, INT_MAX, 1, 50, 51, 65536, INT_MIN};
  if (kind == Kind::kBoolean) return {false, true};
  if (kind == Kind::kString) return Strings(host);
  if (kind == Kind::kMemoryBlock) {
    return {Value::Nil(kind), host.MemoryBlock("ab\0\xF4"sv), host.MemoryBlockWithoutData(5),
            host.MemoryBlock(""), host.MemoryBlockClaiming("ab", -5)};
  }
  if (kind == Kind::kStringArray) {
    return {Value::Nil(kind), host.StringArray({}), host.StringArray(Strings(host))};
  }
  EXPECT_EQ(kind, Kind::kVariantArray) << "no values are known for such a parameter";
  const Value unlike = host.VariantArray({Value(), "\xF5", 5, -0.5, true});
  return {Value::Nil(kind), host.VariantArray({}), unlike};
}

// Threaded calls, which take a millisecond, get only the unkindest.
std::vector<Values> ArgumentsOf(Host& host, const standin::MethodDeclaration& method) {
  std::vector<Values> choices;
  for (const standin::Parameter& parameter : method.parameters) {
    choices.push_back(ArgumentsOf(host, parameter.type.kind));
    if (method.name.ends_with("MT") && choices.back().size() > 3) choices.back().resize(3);
  }
  return Combinations(choices);
}

// An object after its properties were set and its methods called like this.
struct State {
  const char* name;
  std::vector<std::pair<const char*, Values>> steps;
  bool constructed = true;
};

std::vector<State> States(Host& host) {
  const std::pair<const char*, Values> compile = {"Compile", {"(?<n>b)(x)?"}};
  const std::pair<const char*, Values> execute = {"Execute", {"abé"}};
  const Values block = {host.MemoryBlock("zzb\xF4")};
  return {
      {"uninitialised", {}, false},
      {"new", {}},
      {"compiled", {compile}},
      {"refused", {compile, execute, {"Compile", {"("}}}},
      {"matched", {compile, execute}},
      {"matched a block", {compile, execute, {"Study", {}}, {"ExecuteMemory", block}}},
      {"failed to match", {compile, execute, {"Execute", {"zzz"}}, {"ReplaceAll", {"bbb", "x"}}}},
      {"subject gone", {compile, execute, {"Match", {"zzzzzzzzb"}}}},
      {"all options", {compile, execute, {"CompileOptions", {-1}}, {"ExecuteOptions", {-1}}}},
      {"some options",
       {{"ExecuteOptionPartialHard", {true}},
        {"ExecuteOptionNotEmpty", {true}},
        {"CompileOptionAutoCallOut", {true}},
        {"CompileOptionUnicodeCodePoints", {true}},
        {"MatchLimit", {INT_MIN}},
        {"MatchLimitRecursion", {INT_MAX}},
        compile,
        execute}},
  };
}

Object InState(Session& session, const State& state) {
  Object regex = state.constructed ? session.New() : session.host.NewUninitialised("RegExZRK");
  for (const auto& [member, values] : state.steps) {
    if (regex.class_info().FindProperty(member) != nullptr) {
      regex.Set(member, values.front());
    } else {
      regex.Call(member, values);
    }
  }
  return regex;
}

void ExpectSound(const Object& regex, const Outcome& outcome) {
  static const std::set<std::string> kKnown = {"NilObjectException", "OutOfBoundsException"};
  static const std::set<std::string> kNeutral = {"nil", "0", "false"};
  for (const standin::HostError& error : outcome.errors) {
    EXPECT_TRUE(kKnown.contains(error.class_name)) << error.class_name << ": " << error.message;
    EXPECT_NE(error.message, "");
    EXPECT_EQ(error.number, 0);
    EXPECT_TRUE(kNeutral.contains(Show(outcome.value))) << Show(outcome.value);
  }
  EXPECT_LE(outcome.errors.size(), 1U);
  EXPECT_GE(regex.Get("Count").Integer(), 0);
  const int error = regex.Get("Lasterror").Integer();
  EXPECT_TRUE((error <= 0 && error >= -28) || error == -99) << error;
  const int size = regex.Get("VectorSize").Integer();
  for (const int index : {0, 1, size - 1}) {
    if (size > 0) regex.Call("Offset", {index});
  }
  regex.TryCall("Substring", {0});
  regex.TryCall("Replace", {"<\\0>"});
}

std::string Text(const Values& arguments) {
  std::string text;
  for (const Value& argument : arguments) text += argument.Describe().substr(0, 60) + ' ';
  return text;
}

// One host of every way in which texts, blocks and arrays are read.
const standin::HostOptions kKinds[] = {
    {.version = 2011.0},
    {.version = 2012.0, .direct_storage = false},
    {.version = 2016.0, .terminate_string_data = false},
    {.version = 2017.0, .terminate_string_data = false},
};

class HostileCalls : public testing::TestWithParam<std::size_t> {
 protected:
  Session session_{kKinds[GetParam()]};
  const standin::ClassInfo& class_ = *session_.host.FindClass("RegExZRK");
  const std::vector<State> states_ = States(session_.host);
};
INSTANTIATE_TEST_SUITE_P(Kinds, HostileCalls, testing::Range(std::size_t{0}, std::size(kKinds)));

TEST_P(HostileCalls, OfEveryMethodAnswerOrRaise) {
  for (const standin::Method& method : class_.methods()) {
    for (const State& state : states_) {
      // The constructor runs once in an object's life.
      if (state.constructed && method.declaration.name == "Constructor") continue;
      SCOPED_TRACE(method.text + ", " + state.name);
      for (const Values& arguments : ArgumentsOf(session_.host, method.declaration)) {
        const Object regex = InState(session_, state);
        const Outcome outcome = regex.TryCall(method.declaration.name, arguments);
        EXPECT_EQ(outcome.method, &method);
        ExpectSound(regex, outcome);
        if (HasFailure()) FAIL() << Text(arguments);
      }
      ASSERT_EQ(session_.host.Problems(), std::vector<std::string>());
    }
  }
}

TEST_P(HostileCalls, OfPropertiesAnswerWhatWasSet) {
  for (const State& state : states_) {
    for (const standin::Property& property : class_.properties()) {
      SCOPED_TRACE(property.name + ", " + state.name);
      const Object regex = InState(session_, state);
      EXPECT_EQ(regex.Get(property.name).kind(), property.type.kind);
      if (property.setter == nullptr) continue;
      for (const Value& value : ArgumentsOf(session_.host, property.type.kind)) {
        regex.Set(property.name, value);
        EXPECT_EQ(Show(regex.Get(property.name)), Show(value));
        ExpectSound(regex, regex.TryCall("Compile", {"(a+)+b"}));
        ExpectSound(regex, regex.TryCall("Execute", {"aab", 0}));
        ExpectSound(regex, regex.TryCall("ReplaceAll", {"aab", "x"}));
      }
    }
  }
}

}  // namespace
