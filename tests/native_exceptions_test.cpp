// A native exception of the host's, from whatever it is asked, becomes a host exception or nothing:
// it ends no process, and the object can be used afterwards.
#include <gtest/gtest.h>

#include <string>

#include "tests/calls.h"
#include "tests/session.h"

// A service that throws has not taken its reference back, so what it was for stays alive. That is
// no leak of the library's, and this program's accounts and leaks are not looked at.
extern "C" const char* __asan_default_options() { return "detect_leaks=0"; }

namespace {

using namespace tests;

TEST(NativeExceptions, OfEveryServiceAreOutlived) {
  for (const standin::HostOptions& kind : HostKinds()) {
    SCOPED_TRACE(NameOf(kind));
    Session session(kind);
    session.balances = false;
    for (const std::string& service : standin::Host::ServiceNames()) {
      if (service == "RuntimeRaiseException") continue;  // there is no way to tell the host then
      for (const CallRow& row : CallRows()) {
        const Object regex = Prepared(session);
        const Values arguments = row.arguments(session.host);
        session.host.SetFault(service, {.before = [] { throw standin::NativeException(); }});
        regex.TryCall(row.method, arguments);
        session.host.SetFault(service, {});
        Prepare(regex);
        EXPECT_EQ(regex.Call("Substring", {0}).UTF8(), "bc") << service << " in " << row.label;
      }
    }
  }
}

}  // namespace
