// What the tests stand on: a host of some kind with the built library in it, and its accounts,
// which must balance when the session ends.
//
//   Session session({.version = 2013.04});
//   const auto regex = session.New();
//   EXPECT_TRUE(regex.Call("Compile", {"a+"}).Boolean());
#ifndef ZRK_TESTS_SESSION_H
#define ZRK_TESTS_SESSION_H

#include <functional>
#include <string>
#include <vector>

#include "standin/host.h"
#include "standin/library.h"
#include "tests/oracle/plain_regex.h"

namespace tests {

using oracle::DescribeDirectly;
using standin::Kind;
using standin::Object;
using standin::Outcome;
using standin::Value;
using standin::Values;

// A host with its own copy of the library, so that services are bound anew. Objects and values made
// in it end before it does. One session at a time.
class Session {
 public:
  explicit Session(standin::HostOptions options = {}, const char* library_path = ZRK_LIBRARY_PATH);
  ~Session();  // fails the test for whatever the accounts hold against the library
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  // A RegExZRK object after its constructor; with a pattern, which must compile.
  Object New(const Values& constructor_arguments = {}) {
    return host.New("RegExZRK", constructor_arguments);
  }
  Object Compiled(const std::string& pattern);

  standin::Host host;
  standin::Library library;
  bool balances = true;  // false where a fault of the host leaves references behind
};

// The kinds of host that behave differently: every version at which something changes, each with
// and without direct storage where that is read.
std::vector<standin::HostOptions> HostKinds();
// "2013.04", or "2013.04 without direct storage", for SCOPED_TRACE.
std::string NameOf(const standin::HostOptions& options);

// Runs a test on a host of every kind; its failures name the host.
void OnEachHost(const std::function<void(Session&)>& test);

// The state after a match as one line: `1 err=0 0-3 "abc" 1:unset 2:1-2 "b"`, the result first, the
// groups as far as the pattern has them. DescribeDirectly answers what it should be.
std::string Describe(const Object& regex, int result);

// What was raised, as "Class: message" lines; empty for nothing.
std::string Raised(const Outcome& outcome);

// What Raised shows for a parameter outside 0 to maximum.
std::string OutOfBounds(const std::string& parameter, const std::string& method, int value,
                        int maximum);

}  // namespace tests

#endif  // ZRK_TESTS_SESSION_H
