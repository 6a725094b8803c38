#include "tests/session.h"

#include <gtest/gtest.h>

#include <sstream>

namespace tests {

namespace {

// Valgrind maps the main thread's stack only as a program uses it. The library asks for stack
// before it counts on it, and would else make every search on a deep stack there.
[[gnu::noinline]] bool UseSomeStack() {
  volatile char stack[1 << 20];
  for (std::size_t i = sizeof stack; i > 4096; i -= 4096) stack[i - 1] = 0;
  return stack[sizeof stack - 1] == 0;
}
const bool used_some_stack = UseSomeStack();

}  // namespace

Session::Session(standin::HostOptions options, const char* library_path)
    : host(std::move(options)), library(library_path, standin::Library::Copy::kPrivate) {
  library.Start(host);
}

Session::~Session() {
  if (!balances) return;
  for (const std::string& problem : host.Problems()) ADD_FAILURE() << problem;
}

Object Session::Compiled(const std::string& pattern) {
  Object regex = New();
  EXPECT_TRUE(regex.Call("Compile", {pattern}).Boolean())
      << pattern << ": " << regex.Get("ErrorMessage").UTF8();
  return regex;
}

std::vector<standin::HostOptions> HostKinds() {
  std::vector<standin::HostOptions> kinds;
  for (const double version : {2011.0, 2012.0, 2013.04, 2016.0, 2017.0}) {
    for (const bool direct_storage : {true, false}) {
      kinds.push_back({.version = version, .direct_storage = direct_storage});
    }
  }
  return kinds;
}

std::string NameOf(const standin::HostOptions& options) {
  if (!options.version) return "no version";
  std::ostringstream name;
  name << *options.version << (options.direct_storage ? "" : " without direct storage");
  return name.str();
}

void OnEachHost(const std::function<void(Session&)>& test) {
  for (const standin::HostOptions& options : HostKinds()) {
    SCOPED_TRACE(NameOf(options));
    Session session(options);
    test(session);
  }
}

std::string Describe(const Object& regex, int result) {
  std::ostringstream out;
  out << result << " err=" << regex.Get("Lasterror").Integer();
  if (regex.Get("Count").Integer() < 1) return out.str();
  const int groups = regex.Get("InfoCaptureCount").Integer();
  for (int group = 0; group <= groups; ++group) {
    out << oracle::DescribeGroup(group, regex.Call("Offset", {2 * group}).Integer(),
                                 regex.Call("Offset", {2 * group + 1}).Integer(),
                                 regex.Call("Substring", {group}).UTF8());
  }
  return out.str();
}

std::string Raised(const Outcome& outcome) {
  std::string lines;
  for (const standin::HostError& error : outcome.errors) {
    if (!lines.empty()) lines += '\n';
    lines += error.class_name + ": " + error.message;
  }
  return lines;
}

std::string OutOfBounds(const std::string& parameter, const std::string& method, int value,
                        int maximum) {
  return "OutOfBoundsException: Parameter " + parameter + " to method " + method + " is too " +
         (value < 0 ? "small" : "big") + ". Range is 0 to " + std::to_string(maximum) +
         ", but value is " + std::to_string(value) + ".";
}

}  // namespace tests
