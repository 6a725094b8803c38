// No call takes the host down: every registered method with null, empty, huge and negative
// arguments, in every state an object can be in, on every host.
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "tests/session.h"

namespace {

using tests::Kind;
using tests::Object;
using tests::Session;
using tests::Value;
using tests::Values;

struct State {
  const char* name;
  std::function<Object(Session&)> make;
};

Object Matched(Session& session) {
  Object regex = session.Compiled("(?<n>b)|(c)");
  regex.Call("Execute", {"a\xC3\xA4"
                         "bc"});
  return regex;
}

const std::vector<State> kStates = {
    {"not initialised", [](Session& session) { return session.host.NewUninitialised("RegExZRK"); }},
    {"new", [](Session& session) { return session.New(); }},
    {"compiled", [](Session& session) { return session.Compiled("(b)?"); }},
    {"refused a pattern",
     [](Session& session) {
       Object regex = Matched(session);
       regex.Call("Compile", {"("});
       return regex;
     }},
    {"matched", Matched},
    {"without its subject",
     [](Session& session) {
       Object regex = Matched(session);
       regex.Call("Compile", {"(b)(c)"});
       return regex;
     }},
};

Values Candidates(standin::Host& host, Kind kind) {
  switch (kind) {
    case Kind::kInteger:
      return {0, -1, 50, INT32_MAX, INT32_MIN};
    case Kind::kBoolean:
      return {true, false};
    case Kind::kString:
      return {Value::Nil(kind), "", "n", "\\1$&\\", "\xF8\x88", std::string(3000, 'b')};
    case Kind::kMemoryBlock:
      return {Value::Nil(kind), host.MemoryBlock(""), host.MemoryBlock("abc"),
              host.MemoryBlockWithoutData(7), host.MemoryBlockClaiming("abc", -1)};
    case Kind::kStringArray:
      return {Value::Nil(kind), host.StringArray({}), host.StringArray({Value(), "b", ""})};
    case Kind::kVariantArray:
      return {Value::Nil(kind), host.VariantArray({}), host.VariantArray({Value(), "b", -1, 0.5})};
    default:
      ADD_FAILURE() << "a parameter of a kind that no list covers";
      return {};
  }
}

// Calls `use` with every combination of the candidates for these parameters.
void ForArguments(const std::vector<Values>& candidates, Values& chosen,
                  const std::function<void(const Values&)>& use) {
  if (chosen.size() == candidates.size()) return use(chosen);
  for (const Value& value : candidates[chosen.size()]) {
    chosen.push_back(value);
    ForArguments(candidates, chosen, use);
    chosen.pop_back();
  }
}

// What may be raised, and that a call that raises answers nothing.
void Check(const standin::Outcome& outcome) {
  static const std::set<std::string> allowed = {"NilObjectException", "OutOfBoundsException"};
  EXPECT_LE(outcome.errors.size(), 1U);
  for (const auto& error : outcome.errors) {
    EXPECT_TRUE(allowed.contains(error.class_name)) << error.class_name << ": " << error.message;
    EXPECT_FALSE(error.message.empty());
    EXPECT_EQ(error.number, 0);
    EXPECT_TRUE(!outcome.value.Boolean() && outcome.value.Integer() == 0 &&
                outcome.value.handle() == nullptr);
  }
}

void UseProperties(const Object& regex) {
  for (const auto& property : regex.class_info().properties()) {
    const Value value = regex.Get(property.name);
    if (property.setter != nullptr) regex.Set(property.name, value);
  }
}

TEST(AnyCall, LeavesTheHostStandingAndTheAccountsEven) {
  tests::OnEachHost([](Session& session) {
    const auto& methods = session.host.FindClass("RegExZRK")->methods();
    for (const State& state : kStates) {
      for (const auto& method : methods) {
        if (method.declaration.name == "Constructor") continue;
        SCOPED_TRACE(method.text + ", " + state.name);
        std::vector<Values> candidates;
        for (const auto& parameter : method.declaration.parameters) {
          candidates.push_back(Candidates(session.host, parameter.type.kind));
        }
        const Object regex = state.make(session);
        Values chosen;
        ForArguments(candidates, chosen, [&](const Values& arguments) {
          Check(regex.TryCall(method.declaration.name, arguments));
        });
        UseProperties(regex);
      }
    }
  });
}

}  // namespace
