// Whatever a script passes, in whatever state the object is: an answer, or one of two exceptions.
//
// The methods and properties are taken from the class as it is registered, and every combination
// of unkind arguments that fits a declaration is tried.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <iterator>
#include <set>
#include <string>

#include "tests/calls.h"
#include "tests/session.h"

namespace {

using namespace std::string_view_literals;
using standin::Host;
using namespace tests;

constexpr int kIntegers[] = {0, -1, INT_MAX, 1, 50, 51, 65536, INT_MIN};

Values Strings(Host& host) {
  return {
      Value::Nil(Kind::kString),
      "ab",
      "\xF5\x80\xE2\x82",
      "",
      "(b)\\1[",
      host.String("\xD8", zrk::kEncodingUTF16),
      host.String("b\xE9", zrk::kEncodingUnknown),
      host.String("b\xE9", 0x12345678),
      std::string(9000, 'b'),
  };
}

Values Blocks(Host& host) {
  return {
      Value::Nil(Kind::kMemoryBlock),     host.MemoryBlock("ab\0\xF4"sv),
      host.MemoryBlockWithoutData(5),     host.MemoryBlock(""),
      host.MemoryBlockClaiming("ab", -5),
  };
}

// The unkindest first; threaded calls, which take a millisecond, get only those.
Values ArgumentsFor(Host& host, Kind kind, bool few) {
  Values values;
  switch (kind) {
    case Kind::kInteger:
      values.assign(std::begin(kIntegers), std::end(kIntegers));
      break;
    case Kind::kBoolean:
      return {false, true};
    case Kind::kString:
      values = Strings(host);
      break;
    case Kind::kMemoryBlock:
      values = Blocks(host);
      break;
    case Kind::kStringArray:
      return {Value::Nil(kind), host.StringArray({}), host.StringArray(Strings(host))};
    case Kind::kVariantArray:
      return {Value::Nil(kind), host.VariantArray({}),
              host.VariantArray({Value(), "\xF5", 5, -0.5, true})};
    default:
      ADD_FAILURE() << "a parameter of a kind that no value is known for";
  }
  if (few && values.size() > 3) values.resize(3);
  return values;
}

std::vector<Values> Combinations(Host& host, const standin::MethodDeclaration& method) {
  const bool few = method.name.ends_with("MT");
  std::vector<Values> all = {{}};
  for (const standin::Parameter& parameter : method.parameters) {
    std::vector<Values> longer;
    for (const Values& begun : all) {
      for (const Value& value : ArgumentsFor(host, parameter.type.kind, few)) {
        longer.push_back(begun);
        longer.back().push_back(value);
      }
    }
    all = std::move(longer);
  }
  return all;
}

struct State {
  const char* name;
  void (*prepare)(Session&, const Object&);
};

void CompileAndMatch(const Object& regex) {
  regex.Call("Compile", {"(?<n>b)(x)?"});
  regex.Call("Execute", {"abé"});
}

const State kStates[] = {
    {"new", [](Session&, const Object&) {}},
    {"compiled", [](Session&, const Object& regex) { regex.Call("Compile", {"(?<n>b)(x)?"}); }},
    {"refused",
     [](Session&, const Object& regex) {
       CompileAndMatch(regex);
       regex.Call("Compile", {"("});
     }},
    {"matched", [](Session&, const Object& regex) { CompileAndMatch(regex); }},
    {"matched a block",
     [](Session& session, const Object& regex) {
       CompileAndMatch(regex);
       regex.Call("Study");
       regex.Call("ExecuteMemory", {session.host.MemoryBlock("zzb\xF4")});
     }},
    {"failed to match",
     [](Session&, const Object& regex) {
       CompileAndMatch(regex);
       regex.Call("Execute", {"zzz"});
       regex.Call("ReplaceAll", {"bbb", "x"});
     }},
    {"subject gone",
     [](Session&, const Object& regex) {
       CompileAndMatch(regex);
       regex.Call("Match", {"zzzzzzzzb"});
     }},
    {"all options",
     [](Session&, const Object& regex) {
       CompileAndMatch(regex);
       regex.Set("CompileOptions", -1);
       regex.Set("ExecuteOptions", -1);
     }},
    {"some options",
     [](Session&, const Object& regex) {
       for (const char* option : {"ExecuteOptionPartialHard", "ExecuteOptionNotEmpty",
                                  "CompileOptionAutoCallOut", "CompileOptionUnicodeCodePoints"}) {
         regex.Set(option, true);
       }
       regex.Set("MatchLimit", INT_MIN);
       regex.Set("MatchLimitRecursion", INT_MAX);
       CompileAndMatch(regex);
     }},
};

bool IsNeutral(const Value& value) {
  const std::string shown = tests::Show(value);
  return shown == "nil" || shown == "0" || shown == "false";
}

void ExpectSound(const Object& regex, const Outcome& outcome) {
  static const std::set<std::string> known = {"NilObjectException", "OutOfBoundsException"};
  for (const standin::HostError& error : outcome.errors) {
    EXPECT_TRUE(known.contains(error.class_name)) << error.class_name << ": " << error.message;
    EXPECT_NE(error.message, "");
    EXPECT_EQ(error.number, 0);
    EXPECT_TRUE(IsNeutral(outcome.value));
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

// Calls one method in one state with everything; the constructor runs once in an object's life.
template <typename MakeObject>
void TryEverything(Session& session, const standin::Method& method, MakeObject make) {
  for (const Values& arguments : Combinations(session.host, method.declaration)) {
    const Object regex = make();
    const Outcome outcome = regex.TryCall(method.declaration.name, arguments);
    EXPECT_EQ(outcome.method, &method);
    ExpectSound(regex, outcome);
    if (testing::Test::HasFailure()) FAIL() << Text(arguments);
  }
  ASSERT_EQ(session.host.Problems(), std::vector<std::string>());
}

// One host of every way in which texts, blocks and arrays are read.
const standin::HostOptions kKinds[] = {
    {.version = 2011.0},
    {.version = 2012.0, .direct_storage = false},
    {.version = 2016.0, .terminate_string_data = false},
    {.version = 2017.0, .terminate_string_data = false},
};

class HostileCalls : public testing::TestWithParam<std::size_t> {};
INSTANTIATE_TEST_SUITE_P(Kinds, HostileCalls, testing::Range(std::size_t{0}, std::size(kKinds)));

TEST_P(HostileCalls, OfAnUninitialisedObjectAnswerOrRaise) {
  Session session(kKinds[GetParam()]);
  for (const standin::Method& method : session.host.FindClass("RegExZRK")->methods()) {
    SCOPED_TRACE(method.text);
    TryEverything(session, method, [&] { return session.host.NewUninitialised("RegExZRK"); });
    if (HasFatalFailure()) return;
  }
}

TEST_P(HostileCalls, InEveryStateAnswerOrRaise) {
  Session session(kKinds[GetParam()]);
  for (const standin::Method& method : session.host.FindClass("RegExZRK")->methods()) {
    if (method.declaration.name == "Constructor") continue;
    for (const State& state : kStates) {
      SCOPED_TRACE(method.text + ", " + state.name);
      TryEverything(session, method, [&] {
        Object regex = session.New();
        state.prepare(session, regex);
        return regex;
      });
      if (HasFatalFailure()) return;
    }
  }
}

TEST_P(HostileCalls, PropertiesTakeAndAnswerAnything) {
  Session session(kKinds[GetParam()]);
  for (const State& state : kStates) {
    for (const standin::Property& property : session.host.FindClass("RegExZRK")->properties()) {
      SCOPED_TRACE(property.name + ", " + state.name);
      const Object regex = session.New();
      state.prepare(session, regex);
      EXPECT_EQ(regex.Get(property.name).kind(), property.type.kind);
      EXPECT_NO_THROW(session.host.NewUninitialised("RegExZRK").Get(property.name));
      if (property.setter == nullptr) continue;
      for (const Value& value : ArgumentsFor(session.host, property.type.kind, false)) {
        regex.Set(property.name, value);
        if (property.type.kind == Kind::kBoolean) {
          EXPECT_EQ(regex.Get(property.name).Boolean(), value.Boolean());
        } else {
          EXPECT_EQ(regex.Get(property.name).Integer(), value.Integer());
        }
        ExpectSound(regex, regex.TryCall("Compile", {"(a+)+b"}));
        ExpectSound(regex, regex.TryCall("Execute", {"aab", 0}));
        ExpectSound(regex, regex.TryCall("ReplaceAll", {"aab", "x"}));
      }
    }
  }
}

}  // namespace
