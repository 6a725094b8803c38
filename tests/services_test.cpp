// How the library finds its host's services, and that it lives with any of them missing.
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "tests/session.h"

namespace {

using standin::Fault;
using tests::Object;
using tests::Value;
using tests::Values;

// A host and the library without a session's check of the accounts: where a service that counts
// references is missing, they cannot balance.
struct Plugin {
  explicit Plugin(standin::HostOptions options)
      : host(std::move(options)), library(ZRK_LIBRARY_PATH, standin::Library::Copy::kPrivate) {
    library.Start(host);
  }
  standin::Host host;
  standin::Library library;
};

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

// Reaches every service that a program can reach; answers what was raised.
std::vector<standin::HostError> UseEverything(const Object& regex, const Things& things) {
  std::vector<standin::HostError> raised;
  const auto call = [&](const char* method, const Values& arguments) {
    for (auto& error : regex.TryCall(method, arguments).errors) raised.push_back(error);
  };
  call("Compile", {"b+"});
  for (const Value& text : things.texts) call("Execute", {text});
  call("Substring", {0});
  call("Offset", {-1});
  call("ExecuteMT", {0});
  call("ExecuteMemory", {things.block});
  call("Match", {things.strings});
  call("Match", {things.variants});
  return raised;
}

void UseEverythingTwice(Plugin& plugin) {
  const Things things(plugin.host);
  const Object regex = plugin.host.New("RegExZRK");
  for (int round = 0; round < 2; ++round) UseEverything(regex, things);
}

TEST(Services, AreAskedForOnceWhereTheHostHasThem) {
  for (const auto& options : tests::HostKinds()) {
    SCOPED_TRACE(tests::NameOf(options));
    Plugin plugin(options);
    UseEverythingTwice(plugin);
    EXPECT_GT(plugin.host.requests().size(), 15U);
    for (const auto& [name, times] : plugin.host.requests()) EXPECT_EQ(times, 1) << name;
  }
}

// Some services are asked for once for ever: one that is missing on first use stays missing.
TEST(Services, GuardedOnesStayMissing) {
  struct Row {
    const char* service;
    double host = 2017.0;
    const char* also_missing = nullptr;
  };
  const Row rows[] = {
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
  for (const Row& row : rows) {
    SCOPED_TRACE(row.service);
    standin::HostOptions options{.version = row.host};
    options.faults[row.service] = Fault::MissingUntilAsked(1);
    if (row.also_missing != nullptr) options.faults[row.also_missing] = Fault::Missing();
    Plugin plugin(options);
    UseEverythingTwice(plugin);
    ASSERT_TRUE(plugin.host.requests().contains(row.service));
    EXPECT_EQ(plugin.host.requests().at(row.service), 1);
    EXPECT_EQ(plugin.host.Calls(row.service), 0U);
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

TEST(Services, RetriedOnesAreFoundWhenTheyComeLater) {
  for (const RetriedRow& row : kRetried) {
    SCOPED_TRACE(row.first);
    standin::HostOptions options;
    options.faults[row.first] = Fault::MissingUntilAsked(1);
    if (row.second != nullptr) options.faults[row.second] = Fault::Missing();
    Plugin plugin(options);
    UseEverythingTwice(plugin);
    const auto& requests = plugin.host.requests();
    EXPECT_EQ(requests.at(row.first), 2);
    if (row.second != nullptr) {
      EXPECT_EQ(requests.at(row.second), 1) << "asked for though the first name was found";
    }
    EXPECT_GT(plugin.host.Calls(row.first), 0U);
  }
}

TEST(Services, ASecondNameServesWhereTheFirstIsMissing) {
  for (const RetriedRow& row : kRetried) {
    if (row.second == nullptr) continue;
    SCOPED_TRACE(row.second);
    standin::HostOptions options;
    options.faults[row.first] = Fault::Missing();
    Plugin plugin(options);
    UseEverythingTwice(plugin);
    EXPECT_EQ(plugin.host.requests().at(row.first), 1);
    EXPECT_EQ(plugin.host.requests().at(row.second), 1);
    EXPECT_GT(plugin.host.Calls(row.second), 0U);
  }
}

// Whatever is missing or fails, nothing breaks and nothing leaks.
TEST(Services, AnyOneMayBeMissingOrFail) {
  const std::set<std::string> counting = {"REALLockString", "REALUnlockString", "REALLockObject",
                                          "REALUnlockObject", "PluginDisposeStringData"};
  for (const std::string& service : standin::Host::ServiceNames()) {
    for (const double version : {2011.0, 2012.0, 2017.0}) {
      for (const Fault& fault : {Fault::Missing(), Fault::AnswersNull(), Fault::AnswersNull(2)}) {
        SCOPED_TRACE(service + (fault.missing ? " missing" : " failing") + " on a host " +
                     std::to_string(version));
        Plugin plugin({.version = version, .faults = {{service, fault}}});
        if (plugin.host.classes().empty()) {
          EXPECT_EQ(service, "PluginRegisterClass");
          continue;
        }
        UseEverythingTwice(plugin);
        if (counting.contains(service)) continue;
        EXPECT_EQ(plugin.host.Problems(), std::vector<std::string>{});
      }
    }
  }
}

}  // namespace
