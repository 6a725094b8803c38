// Giving back a last reference may run the program, in a destructor, as may a host that converts a
// text, and the program may use the very object whose method is at work. Whatever it does there,
// the object has one subject afterwards, and every reference is given back once.
#include <gtest/gtest.h>

#include <iterator>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "tests/calls.h"
#include "tests/session.h"

namespace {

using namespace tests;

// What the program does with the object there.
const std::set<std::string> kInner = {"execute", "execute bytes", "compile",    "compile an error",
                                      "match",   "study",         "replace all"};

// Where a host runs the program.
const std::vector<const char*> kServices[] = {{"REALUnlockObject", "REALUnlockString"},
                                              {"REALGetStringEncoding"},
                                              {"PluginGetStringData"},
                                              {"REALSetStringEncoding"}};

// The subject that is given back: a block that the call moved away from, an ASCII or another text.
Value SubjectOf(standin::Host& host, int kind) {
  if (kind == 0) return host.MemoryBlock("abc b");
  return host.String(kind == 1 ? "abc b" : "ab\xC3\xA9 b");
}

// At the n-th call of such a service that the method makes, the program runs. False where the
// method makes fewer.
bool RunWithin(Session& session, const CallRow& inner, const CallRow& row,
               const std::vector<const char*>& services, int kind, int at) {
  Object regex = Prepared(session);
  regex.Call(kind == 0 ? "ExecuteMemory" : "Execute", {SubjectOf(session.host, kind)});
  const Values arguments = row.arguments(session.host);
  int calls = 0;
  bool within = false;
  const standin::Fault run_program{.before = [&] {
    if (within || ++calls != at) return;
    within = true;
    regex.TryCall(inner.method, inner.arguments(session.host));
    within = false;
  }};
  for (const char* service : services) session.host.SetFault(service, run_program);
  regex.TryCall(row.method, arguments);
  for (const char* service : services) session.host.SetFault(service, {});
  EXPECT_TRUE(regex.Get("Text").IsNil() || regex.Get("TextMemory").IsNil());
  Prepare(regex);
  EXPECT_EQ(regex.Call("Substring", {0}).UTF8(), "bc");
  return calls >= at;
}

TEST(Reentry, LeavesOneSubjectAndNothingLost) {
  Session session;
  std::map<std::string, int> runs;
  for (const CallRow& inner : CallRows()) {
    if (!kInner.contains(inner.label)) continue;
    for (const CallRow& row : CallRows()) {
      for (const auto& services : kServices) {
        for (int kind = 0; kind < 3; ++kind) {
          SCOPED_TRACE(testing::Message() << inner.label << " in " << row.label << ", subject "
                                          << kind << ", " << services[0]);
          for (int at = 1; RunWithin(session, inner, row, services, kind, at); ++at) {
            ++runs[std::string(services[0]) + " runs " + inner.label];
          }
        }
      }
    }
  }
  EXPECT_EQ(runs.size(), kInner.size() * std::size(kServices)) << testing::PrintToString(runs);
}

// What the program finds by a group's name, in the midst of it and afterwards.
TEST(Reentry, FindsTheNamesOfThePatternThatIsThere) {
  struct Row {
    const char* method;
    const char* argument;
    const char* afterwards;
  };
  const Row rows[] = {{"Execute", "éb", "\"b\" err=0"}, {"Compile", "(é)?(?<o>b)", "nil err=-7"}};
  for (const auto& [method, argument, afterwards] : rows) {
    SCOPED_TRACE(method);
    Session session;
    const Object regex = Prepared(session);
    regex.Call("Substring", {"n"});
    std::string within;
    const standin::Fault run_program{.before = [&] {
      session.host.SetFault("PluginGetStringData", {});
      regex.Call("Compile", {"(?<m>c)|(?<o>b)"});
      regex.Call("Execute", {"b"});
      within = Try(regex, "Substring", {"o"});
    }};
    session.host.SetFault("PluginGetStringData", run_program);
    regex.Call(method, {argument});
    EXPECT_EQ(within, "\"b\" err=0");
    EXPECT_EQ(regex.Get("Text").IsNil(), std::string("Compile") == method)
        << "a compile lets go of it";
    EXPECT_EQ(Try(regex, "Substring", {"o"}), afterwards);
    EXPECT_EQ(Try(regex, "Substring", {"n"}), "nil err=-7");
  }
}

TEST(Reentry, AskingForABlockLeavesTheSubjectThatTheProgramKeptThere) {
  for (const char* const service : {"memoryBlockGetSize", "memoryBlockGetPtr"}) {
    SCOPED_TRACE(service);
    Session session;
    const Object regex = Prepared(session);
    const Value block = session.host.MemoryBlock("abc b");
    regex.Call("ExecuteMemory", {block});
    const standin::Fault run_program{.before = [&] {
      session.host.SetFault(service, {});
      regex.Call("Execute", {"xbx"});
    }};
    session.host.SetFault(service, run_program);
    EXPECT_EQ(Try(regex, "Substring", {"n"}), "\"x\" err=0");
    EXPECT_EQ(regex.Get("Text").UTF8(), "xbx");
  }
}

}  // namespace
