// How the library finds its host's services.
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "tests/session.h"

namespace {

using standin::Fault;
using namespace tests;

// What the calls below use; it outlives them, so that a host that cannot lock loses nothing.
struct Things {
  explicit Things(standin::Host& host)
      : texts{host.String("b\xFC", zrk::kEncodingWindowsLatin1),
              host.String("b\x9F", zrk::kEncodingUnknown), host.String("abb")},
        block(host.MemoryBlock("abb")),
        strings(host.StringArray({"ab", "c"})),
        variants(host.VariantArray({"ab", 5, "c"})) {}
  Values texts;
  Value block;
  Value strings;
  Value variants;
};

// Reaches every service that a program can reach.
void UseEverything(const Object& regex, const Things& things) {
  regex.TryCall("Compile", {"b+"});
  for (const Value& text : things.texts) regex.TryCall("Execute", {text});
  regex.TryCall("Substring", {0});
  regex.TryCall("Offset", {-1});
  regex.TryCall("ExecuteMT", {0});
  regex.TryCall("ExecuteMemory", {things.block});
  regex.TryCall("Match", {things.strings});
  regex.TryCall("Match", {things.variants});
}

// What a program does, twice. Where a service that counts references fails, accounts cannot
// balance.
void UseEverythingTwice(Session& session) {
  for (const char* counting : {"REALLockString", "REALUnlockString", "REALLockObject",
                               "REALUnlockObject", "PluginDisposeStringData"}) {
    if (session.host.options().faults.contains(counting)) session.balances = false;
  }
  const Things things(session.host);
  const Object regex = session.host.New("RegExZRK");
  for (int round = 0; round < 2; ++round) UseEverything(regex, things);
  // Where the library cannot unlock the object it would never end; its host steps in.
  if (!session.host.options().faults.contains("REALUnlockObject")) return;
  standin::Accounts& accounts = session.host.accounts();
  standin::Thing* const thing = accounts.Look(regex.value().handle());
  while (thing->references(standin::Side::kLibrary) > 0) {
    accounts.TakeBack(*thing, standin::Side::kLibrary);
  }
}

TEST(Services, AreAskedForOnceWhereTheHostHasThem) {
  for (const auto& options : tests::HostKinds()) {
    SCOPED_TRACE(tests::NameOf(options));
    Session session(options);
    UseEverythingTwice(session);
    EXPECT_GT(session.host.requests().size(), 15U);
    for (const auto& [name, times] : session.host.requests()) EXPECT_EQ(times, 1) << name;
  }
}

struct GuardedRow {
  const char* service;
  double host = 2017.0;
  const char* also_missing = nullptr;
};
constexpr GuardedRow kGuarded[] = {
    {"PluginNewInstance"},
    {"RuntimeRaiseException"},
    {"REALLockObject"},
    {"REALUnlockObject"},
    {"REALLockString"},
    {"REALUnlockString"},
    {"REALGetStringEncoding"},
    {"REALConvertString", 2011.0},
    {"REALSetStringEncoding"},
    {"PluginGetStringData"},
    {"PluginDisposeStringData"},
    {"REALBuildString"},
    {"memoryBlockGetPtr"},
    {"memoryBlockGetSize"},
    {"RuntimeArrayCreateSingleDimBoundedArray"},
    {"RuntimeUBound"},
    {"REALYieldToRB"},
    {"REALGetPropValueString", 2017.0, "VariantToString"},
};

// Some services are asked for once for ever: one that is missing on first use stays missing.
TEST(Services, GuardedOnesStayMissing) {
  for (const GuardedRow& row : kGuarded) {
    SCOPED_TRACE(row.service);
    standin::HostOptions options{.version = row.host};
    options.faults[row.service] = Fault::MissingUntilAsked(1);
    if (row.also_missing != nullptr) options.faults[row.also_missing] = Fault::Missing();
    Session session(options);
    UseEverythingTwice(session);
    ASSERT_TRUE(session.host.requests().contains(row.service));
    EXPECT_EQ(session.host.requests().at(row.service), 1);
    EXPECT_EQ(session.host.Calls(row.service), 0U);
  }
}

struct RetriedRow {
  const char* first;
  const char* second = nullptr;
};
constexpr RetriedRow kRetried[] = {
    {"REALSetPropValueString"},
    {"REALSetPropValueInteger", "REALSetPropValueInt"},
    {"VariantToString"},
    {"PluginStringArrayGetProc", "RuntimeArrayDirectGetGetProc"},
    {"PluginObjectArrayGetProc", "RuntimeArrayDirectGetGetProc"},
    {"PluginStringArrayInsertProc", "RuntimeArrayDirectGetInsertProc"},
};

// Three are asked for before a program runs, and no method builds from UTF-16 or UTF-32.
TEST(Services, AreAllListedAbove) {
  std::set<std::string> listed = {"REALGetRBVersion", "RegisterPluginVersion",
                                  "PluginRegisterClass", "REALBuildStringWithEncoding"};
  for (const GuardedRow& row : kGuarded) listed.insert(row.service);
  for (const RetriedRow& row : kRetried) {
    listed.insert(row.first);
    if (row.second != nullptr) listed.insert(row.second);
  }
  for (const std::string& name : standin::Host::ServiceNames()) {
    EXPECT_TRUE(listed.contains(name)) << "no row above for " << name;
  }
}

TEST(Services, RetriedOnesAreFoundWhenTheyComeLater) {
  for (const RetriedRow& row : kRetried) {
    SCOPED_TRACE(row.first);
    standin::HostOptions options;
    options.faults[row.first] = Fault::MissingUntilAsked(1);
    if (row.second != nullptr) options.faults[row.second] = Fault::Missing();
    Session session(options);
    UseEverythingTwice(session);
    const auto& requests = session.host.requests();
    EXPECT_EQ(requests.at(row.first), 2);
    if (row.second != nullptr) {
      EXPECT_EQ(requests.at(row.second), 1) << "asked for though the first name was found";
    }
    EXPECT_GT(session.host.Calls(row.first), 0U);
  }
}

TEST(Services, ASecondNameServesWhereTheFirstIsMissing) {
  for (const RetriedRow& row : kRetried) {
    if (row.second == nullptr) continue;
    SCOPED_TRACE(row.second);
    standin::HostOptions options;
    options.faults[row.first] = Fault::Missing();
    Session session(options);
    UseEverythingTwice(session);
    EXPECT_EQ(session.host.requests().at(row.first), 1);
    EXPECT_EQ(session.host.requests().at(row.second), 1);
    EXPECT_GT(session.host.Calls(row.second), 0U);
  }
}

}  // namespace
