// Services that are missing, that come late, or that answer nothing, always or once: every method
// still answers, what could not be read or built reads as empty, and the accounts balance. Services
// that throw: the process goes on, and so does the object.
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "tests/calls.h"

// Where a host cannot take a reference back, what it belongs to is never freed, and that is no leak
// of the library's. What the library does wrong, the accounts tell.
extern "C" const char* __asan_default_options();  // NOLINT(bugprone-reserved-identifier)
const char* __asan_default_options() { return "detect_leaks=0"; }

namespace {

using standin::Fault;
using namespace tests;
using Texts = std::set<std::string>;

// What an outcome is made of: the value, or an array's elements, and what was raised.
Texts Parts(const Outcome& outcome) {
  Texts parts;
  for (const standin::HostError& error : outcome.errors) {
    parts.insert({"raised " + error.class_name, "saying " + error.message});
  }
  for (const Value& element : outcome.value.Elements()) parts.insert(Show(element));
  if (outcome.value.kind() != Kind::kStringArray) parts.insert(Show(outcome.value));
  return parts;
}

// What any call may come to.
const Texts kNothing = {"nil", "0", "false", "raised RuntimeException", "saying "};

// What an argument may turn into where the host cannot read it. An array is filtered both ways, and
// a block can be left without bytes or without a size.
Values Unread(Session& session, const Value& argument) {
  const Kind kind = argument.kind();
  if (kind == Kind::kString) return {argument, Value::Nil(kind)};
  if (kind == Kind::kBoolean) return {argument, !argument.Boolean()};
  if (kind != Kind::kMemoryBlock) return {argument};
  return {argument, session.host.MemoryBlockWithoutData(0), session.host.MemoryBlock("")};
}

// A whole host: the parts that each row of calls may come to, by its label, with and without what
// can be read, and the services that it takes.
struct WholeHost {
  explicit WholeHost(const standin::HostOptions& kind) {
    Session session(kind);
    for (const CallRow& row : CallRows()) {
      Texts& parts = answers[row.label] = kNothing;
      std::vector<Values> choices;
      for (const Value& argument : row.arguments(session.host)) {
        choices.push_back(Unread(session, argument));
      }
      for (const Values& arguments : Combinations(choices)) {
        for (const char* subject : {kSubject, ""}) {
          parts.merge(Parts(Prepared(session, subject).TryCall(row.method, arguments)));
        }
      }
    }
    for (const std::string& name : standin::Host::ServiceNames()) {
      if (session.host.Calls(name) > 0) services.insert(name);
    }
    for (const auto& [name, times] : session.host.requests()) EXPECT_EQ(times, 1) << name;
  }

  std::map<std::string, Texts> answers;
  Texts services;
};

// No method builds from UTF-16 or UTF-32, and variants have a service of their own.
TEST(Services, AreAllReachedByCalls) {
  Texts reached = {"REALBuildStringWithEncoding", "REALGetPropValueString"};
  for (const standin::HostOptions& kind : HostKinds()) reached.merge(WholeHost(kind).services);
  for (const std::string& name : standin::Host::ServiceNames()) {
    EXPECT_TRUE(reached.contains(name)) << "no row of tests/calls.cpp takes " << name;
  }
}

// Where one of these does nothing, the accounts cannot balance.
bool CountsReferences(const std::string& service) {
  return service.ends_with("ockString") || service.ends_with("ockObject") ||
         service == "PluginDisposeStringData";
}

// Services that a host lacks together: how often it is asked for the last one, and whether the
// library gets that after all, late or by its other name.
struct LackRow {
  std::vector<std::string> services;
  std::string asked;
  Fault fault = Fault::Missing();
};
const LackRow kLacks[] = {
    {{"REALSetPropValueString"}, "again"},
    {{"REALSetPropValueString"}, "again and called", Fault::MissingUntilAsked(1)},
    {{"REALSetPropValueInteger"}, "once and called"},
    {{"REALSetPropValueInt", "REALSetPropValueInteger"}, "again"},
    {{"VariantToString"}, "again"},
    {{"VariantToString", "REALGetPropValueString"}, "once"},
    {{"RuntimeArrayDirectGetGetProc", "PluginStringArrayGetProc"}, "again"},
    {{"RuntimeArrayDirectGetGetProc", "PluginObjectArrayGetProc"}, "again"},
    {{"RuntimeArrayDirectGetInsertProc", "PluginStringArrayInsertProc"}, "again"},
    // Hosts that never take a text back, or do not count references and so keep every text.
    {{"REALUnlockString"}, "once"},
    {{"REALUnlockObject"}, "once"},
    {{"REALUnlockString", "REALLockString"}, "once"},
    {{"REALUnlockObject", "REALLockObject"}, "once"},
    {{"REALUnlockString", "REALLockString", "REALUnlockObject", "REALLockObject"}, "once"},
};

// Every other service is asked for once for ever.
std::vector<LackRow> AllLacks() {
  std::vector<LackRow> rows(std::begin(kLacks), std::end(kLacks));
  Texts listed;
  for (const LackRow& row : rows) listed.insert(row.services.begin(), row.services.end());
  for (const std::string& name : standin::Host::ServiceNames()) {
    if (!listed.contains(name)) rows.push_back({{name}, "once", Fault::MissingUntilAsked(1)});
  }
  return rows;
}

std::string Asked(const standin::Host& host, const std::string& service) {
  return std::string(host.requests().at(service) > 1 ? "again" : "once") +
         (host.Calls(service) > 0 ? " and called" : "");
}

class ServiceFaults : public testing::TestWithParam<std::size_t> {
 protected:
  void Expect(const Outcome& outcome, const CallRow& row) const {
    for (const std::string& part : Parts(outcome)) {
      EXPECT_TRUE(whole_.answers.at(row.label).contains(part)) << row.label << ": " << part;
    }
  }

  const standin::HostOptions kind_ = HostKinds().at(GetParam());
  const WholeHost whole_{kind_};
};
INSTANTIATE_TEST_SUITE_P(Kinds, ServiceFaults, testing::Range(std::size_t{0}, HostKinds().size()));

TEST_P(ServiceFaults, OfAMissingServiceLeaveEveryMethodItsAnswer) {
  for (const LackRow& lack : AllLacks()) {
    SCOPED_TRACE(testing::PrintToString(lack.services) + " missing");
    auto options = kind_;
    for (const std::string& service : lack.services) options.faults[service] = lack.fault;
    Session session(options);
    session.balances = std::ranges::none_of(lack.services, CountsReferences);
    const Value subject = kSubject;
    for (const CallRow& row : CallRows()) {
      if (session.host.classes().empty()) break;
      const Object regex = Prepared(session, subject);
      Expect(regex.TryCall(row.method, row.arguments(session.host)), row);
    }
    EXPECT_EQ(session.host.classes().empty(), lack.services.back() == "PluginRegisterClass");
    if (whole_.services.contains(lack.services.front())) {
      EXPECT_EQ(Asked(session.host, lack.services.back()), lack.asked);
    }
    if (HasFailure()) return;
  }
}

// The n-th call of the service that a method makes, for each n; 0 stands for every call.
TEST_P(ServiceFaults, OfAServiceThatAnswersNothingLeaveEveryMethodItsAnswer) {
  Session session(kind_);
  for (const std::string& service : standin::Host::ServiceNames()) {
    if (CountsReferences(service)) continue;
    for (const CallRow& row : CallRows()) {
      for (int failing = 0; failing >= 0;) {
        SCOPED_TRACE(service + " call " + std::to_string(failing));
        const Object regex = Prepared(session);
        const Values arguments = row.arguments(session.host);
        const auto calls = session.host.Calls(service);
        session.host.SetFault(service, Fault::AnswersNull(failing));
        Expect(regex.TryCall(row.method, arguments), row);
        session.host.SetFault(service, {});
        const bool more = session.host.Calls(service) - calls > static_cast<unsigned>(failing);
        failing = more ? failing + 1 : -1;
        if (HasFailure()) return;
      }
    }
    EXPECT_EQ(session.host.Problems(), std::vector<std::string>()) << service;
  }
}

// A service that throws has not taken its reference back, so the accounts cannot balance.
TEST_P(ServiceFaults, OfNativeExceptionsAreOutlived) {
  Session session(kind_);
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

}  // namespace
