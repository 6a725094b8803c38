// Services that are missing, that answer nothing, or that answer nothing once: every method still
// answers, what could not be read or built reads as empty, and the accounts balance.
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "tests/calls.h"
#include "tests/session.h"

// A host that cannot take a reference back loses what it belongs to, here as in life; what the
// library does wrong, the accounts tell.
extern "C" const char* __asan_default_options();  // NOLINT(bugprone-reserved-identifier)
const char* __asan_default_options() { return "detect_leaks=0"; }

namespace {

using standin::Fault;
using namespace tests;

// What a row may come to.
struct Answers {
  std::set<std::string> values = {"nil", "0", "false", "[]"};
  std::set<std::string> elements = {"nil"};
  std::set<std::string> classes = {"RuntimeException"};
  std::set<std::string> messages = {""};

  void Add(const Outcome& outcome) {
    values.insert(tests::Show(outcome.value));
    for (const Value& element : outcome.value.Elements()) elements.insert(tests::Show(element));
    for (const standin::HostError& error : outcome.errors) {
      classes.insert(error.class_name);
      messages.insert(error.message);
    }
  }
  void Expect(const Outcome& outcome) const {
    if (outcome.value.kind() == Kind::kStringArray) {
      for (const Value& element : outcome.value.Elements()) {
        EXPECT_TRUE(elements.contains(tests::Show(element))) << tests::Show(element);
      }
    } else {
      EXPECT_TRUE(values.contains(tests::Show(outcome.value))) << tests::Show(outcome.value);
    }
    for (const standin::HostError& error : outcome.errors) {
      EXPECT_TRUE(classes.contains(error.class_name)) << error.class_name;
      EXPECT_TRUE(messages.contains(error.message)) << error.message;
    }
  }
};

// What an argument may turn into where the host cannot read it. An array is filtered both ways, and
// a block can be left without bytes or without a size.
Values Variants(Session& session, const Value& argument) {
  switch (argument.kind()) {
    case Kind::kString:
      return {argument, Value::Nil(Kind::kString)};
    case Kind::kBoolean:
      return {argument, !argument.Boolean()};
    case Kind::kMemoryBlock:
      return {argument, session.host.MemoryBlockWithoutData(0), session.host.MemoryBlock("")};
    default:
      return {argument};
  }
}

std::vector<Values> Variations(Session& session, const Values& arguments) {
  std::vector<Values> all = {{}};
  for (const Value& argument : arguments) {
    std::vector<Values> longer;
    for (const Values& begun : all) {
      for (const Value& variant : Variants(session, argument)) {
        longer.push_back(begun);
        longer.back().push_back(variant);
      }
    }
    all = std::move(longer);
  }
  return all;
}

// By the rows' labels, worked out on a whole host; with and without a subject and a pattern.
std::map<std::string, Answers> AllAnswers(const standin::HostOptions& kind) {
  Session session(kind);
  std::map<std::string, Answers> all;
  for (const CallRow& row : tests::CallRows()) {
    for (const Values& arguments : Variations(session, row.arguments(session.host))) {
      for (const char* subject : {tests::kSubject, ""}) {
        const Object regex = tests::Prepared(session);
        regex.Call("Execute", {subject, 0});
        all[row.label].Add(regex.TryCall(row.method, arguments));
      }
    }
  }
  return all;
}

// Every service of the host, but those that count references: where one of them does nothing, the
// accounts cannot balance.
std::vector<std::string> Services() {
  std::vector<std::string> names = standin::Host::ServiceNames();
  std::erase_if(names, [](const std::string& name) {
    return name.find("Lock") != std::string::npos || name.find("Unlock") != std::string::npos ||
           name == "PluginDisposeStringData";
  });
  return names;
}

class ServiceFaults : public testing::TestWithParam<std::size_t> {
 protected:
  const standin::HostOptions kind_ = tests::HostKinds().at(GetParam());
  const std::map<std::string, Answers> answers_ = AllAnswers(kind_);
};
INSTANTIATE_TEST_SUITE_P(Kinds, ServiceFaults,
                         testing::Range(std::size_t{0}, tests::HostKinds().size()));

TEST_P(ServiceFaults, OfAMissingServiceLeaveEveryMethodItsAnswer) {
  for (const std::string& service : Services()) {
    auto options = kind_;
    options.faults[service] = Fault::Missing();
    Session session(options);
    if (service == "PluginRegisterClass") {
      EXPECT_EQ(session.host.FindClass("RegExZRK"), nullptr);
      continue;
    }
    for (const CallRow& row : tests::CallRows()) {
      SCOPED_TRACE(service + " missing: " + row.label);
      const Object regex = tests::Prepared(session);
      answers_.at(row.label).Expect(tests::Run(session, regex, row));
    }
    EXPECT_EQ(session.host.Problems(), std::vector<std::string>()) << service << " missing";
    if (HasFailure()) return;
  }
}

// The n-th call of the service that a method makes, for each n; 0 stands for every call.
TEST_P(ServiceFaults, OfAServiceThatAnswersNothingLeaveEveryMethodItsAnswer) {
  Session session(kind_);
  for (const std::string& service : Services()) {
    for (const CallRow& row : tests::CallRows()) {
      for (int failing = 0; failing >= 0;) {
        SCOPED_TRACE(service + " call " + std::to_string(failing) + ": " + row.label);
        const Object regex = tests::Prepared(session);
        const Values arguments = row.arguments(session.host);
        const auto calls = session.host.Calls(service);
        session.host.SetFault(service, Fault::AnswersNull(failing));
        answers_.at(row.label).Expect(regex.TryCall(row.method, arguments));
        session.host.SetFault(service, {});
        const bool more = session.host.Calls(service) - calls > static_cast<unsigned>(failing);
        failing = more ? failing + 1 : -1;
        if (HasFailure()) return;
      }
    }
    EXPECT_EQ(session.host.Problems(), std::vector<std::string>()) << service;
  }
}

// Hosts that do not count references, and so keep every text, or that never take anything back.
TEST_P(ServiceFaults, OfServicesThatCountLeaveEveryMethodItsAnswer) {
  const std::vector<std::vector<const char*>> groups = {
      {"REALLockString", "REALUnlockString"},
      {"REALLockObject", "REALUnlockObject"},
      {"REALLockString", "REALUnlockString", "REALLockObject", "REALUnlockObject"},
      {"REALUnlockString"},
      {"REALUnlockObject"},
      {"PluginDisposeStringData"},
  };
  for (const auto& group : groups) {
    auto options = kind_;
    for (const char* service : group) options.faults[service] = Fault::Missing();
    Session session(options);
    session.balances = false;
    const Value subject = tests::kSubject;
    for (const CallRow& row : tests::CallRows()) {
      SCOPED_TRACE(std::string(group.front()) + " and so on missing: " + row.label);
      const Object regex = tests::Prepared(session, subject);
      answers_.at(row.label).Expect(tests::Run(session, regex, row));
    }
  }
}

}  // namespace
