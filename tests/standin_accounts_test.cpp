// The stand-in host's accounts: a check is worth something only if the host notices what is wrong.
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <thread>

#include "standin/host.h"
#include "tests/probe.h"

namespace {

using namespace standin;
using zrk::REALstringData;
using namespace probe;

struct Deed {
  const char* name;
  std::function<String(String)> run;
  const char* report;  // null: nothing to report
};

const Deed kDeeds[] = {
    {"locks and unlocks", [](String text) { return Lock(text), Unlock(text), nullptr; }, nullptr},
    {"returns what it built", [](String) { return Build("new"); }, nullptr},
    {"returns its argument, locked", [](String text) { return Lock(text), text; }, nullptr},
    {"fills and disposes",
     [](String text) {
       REALstringData data{};
       return Fill(text, &data), Dispose(&data), nullptr;
     },
     nullptr},
    {"unlocks an argument", [](String text) { return Unlock(text), nullptr; },
     "REALUnlockString (call 2, in Run): gave back a reference on string #2 \"text\" that the "
     "library does not hold"},
    {"unlocks twice",
     [](String) {
       const String text = Build("new");
       return Unlock(text), Unlock(text), nullptr;
     },
     "which has ended; its calls: REALBuildString (call 2, in Run), REALUnlockString (call 3"},
    {"keeps what it built", [](String) { return Build("new"), nullptr; },
     "string #3 \"new\": 1 reference was never given back; its calls: REALBuildString (call 2"},
    {"keeps two locks", [](String text) { return Lock(text), Lock(text), nullptr; },
     "2 references were never given back"},
    {"returns what it does not hold", [](String text) { return text; },
     "without a reference of its own"},
    {"returns what has ended",
     [](String) {
       const String text = Build("new");
       return Unlock(text), text;
     },
     "Run: was handed string #3 \"new\", which has ended"},
    {"returns what is no string",
     [](String) {
       static zrk::REALstringStruct mine;
       return &mine;
     },
     "which is nothing of this host's"},
    {"never disposes",
     [](String text) {
       REALstringData data{};
       return Fill(text, &data), nullptr;
     },
     "string data #3 \"text\": 1 reference was never given back"},
    {"disposes twice",
     [](String text) {
       REALstringData data{};
       return Fill(text, &data), Dispose(&data), Dispose(&data), nullptr;
     },
     "PluginDisposeStringData (call 4, in Run): was handed string data #3 \"text\", which has"},
    {"disposes what was not filled",
     [](String) {
       REALstringData data{};
       return Dispose(&data), nullptr;
     },
     "never filled"},
    {"marks the host's string",
     [](String text) {
       Service<void>("REALSetStringEncoding", text, std::uint32_t(zrk::kEncodingASCII));
       return nullptr;
     },
     "changed the encoding of string #2"},
    {"takes a string for an object",
     [](String text) { return Service<void>("REALLockObject", text), nullptr; },
     "where an object belongs"},
    {"calls on a foreign thread",
     [](String text) {
       auto* lock = reinterpret_cast<void (*)(String)>(Host::Resolve("REALLockString"));
       return std::thread(lock, text).join(), nullptr;
     },
     "another thread: called REALLockString"},
    {"asks on a foreign thread",
     [](String text) { return std::thread(Lock, text).join(), nullptr; },
     "another thread: asked for the service REALLockString"},
};

TEST(StandinAccounts, NoticeEachDeed) {
  for (const Deed& deed : kDeeds) {
    SCOPED_TRACE(deed.name);
    Host host;
    Register();
    run = deed.run;
    host.NewUninitialised("Probe").Call("Run", {"text"});
    const std::string problems = Joined(host.Problems());
    if (deed.report) {
      EXPECT_NE(problems.find(deed.report), std::string::npos) << problems;
    } else {
      EXPECT_EQ(problems, "");
    }
  }
}

TEST(StandinAccounts, KeepAnObjectAliveWhileTheLibraryHoldsIt) {
  Host host;
  Register();
  int ends = 0;
  probe::destructor = [&] { ++ends; };
  void* handle = nullptr;
  {
    const Object object = host.New("Probe");
    handle = object.value().handle();
    Service<void>("REALLockObject", handle);
  }
  EXPECT_EQ(ends, 0);
  EXPECT_EQ(host.Problems().size(), 1u);
  Service<void>("REALUnlockObject", handle);
  EXPECT_EQ(ends, 1);
  EXPECT_EQ(Joined(host.Problems()), "");
  probe::destructor = nullptr;
}

}  // namespace
