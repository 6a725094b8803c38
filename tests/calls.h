// Calls of every registered method as a script makes them, and their outcomes as short text, for
// tests that let something go wrong in each of them.
#ifndef ZRK_TESTS_CALLS_H
#define ZRK_TESTS_CALLS_H

#include <functional>
#include <string>
#include <vector>

#include "tests/session.h"

namespace tests {

// `nil`, `5`, `true`, `"abc"`, `["a", ""]`; other values by their kind.
std::string Show(const Value& value);
// The result, Lasterror and what was raised: `nil err=-99 NilObjectException: text is nil`.
std::string Show(const Object& object, const Outcome& outcome);
// Calls a method and shows its outcome so.
std::string Try(const Object& object, const char* method, const Values& arguments = {});

// A multi-byte text with bytes that the engine must not see unchecked.
inline constexpr const char* kSubject = "aébc\xF5 bx bc";

struct CallRow {
  const char* label;
  const char* method;
  std::function<Values(standin::Host&)> arguments;
};

// At least one call of every method, the constructor's apart.
const std::vector<CallRow>& CallRows();

// Gives the object a studied pattern of two groups, the second one named "n", and a match of it
// over a kept text.
void Prepare(const Object& object, const Value& subject = kSubject);
Object Prepared(Session& session, const Value& subject = kSubject);

// Every way of taking one value from each of the choices.
std::vector<Values> Combinations(const std::vector<Values>& choices);

}  // namespace tests

#endif  // ZRK_TESTS_CALLS_H
