// What the stand-in host notices: the other tests are worth something only if it reports each
// mistake of a library, and lets services fail as it is told.
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <thread>

#include "host/records.h"
#include "standin/declaration.h"
#include "standin/host.h"

namespace {

using namespace standin;
using String = zrk::REALstringStruct*;
using zrk::REALstringData;

// The services as a library calls them.
template <typename R = void, typename... A>
R Call(const char* service, A... arguments) {
  return reinterpret_cast<R (*)(A...)>(Host::Resolve(service))(arguments...);
}
void Lock(String text) { Call("REALLockString", text); }
void Unlock(String text) { Call("REALUnlockString", text); }
String Build() { return Call<String>("REALBuildString", "new", std::int32_t{3}); }
REALstringData Filled(String text) {
  REALstringData data{};
  Call<unsigned char>("PluginGetStringData", text, std::uint32_t{zrk::kEncodingUTF8}, &data);
  return data;
}
void Dispose(REALstringData data) { Call("PluginDisposeStringData", &data); }

// What the one method of a library's class does with its text, and answers.
using Deed = std::function<String(String)>;
Deed deed;
String Run(zrk::REALobjectStruct*, String text) { return deed(text); }

// Registers that class and calls its method with "text".
void Do(Host& host, const Deed& what) {
  static zrk::REALmethodDefinition method = {
      reinterpret_cast<zrk::HostFunction>(Run), 0, "Run(text as string) as string", 4, {}};
  static zrk::REALclassDefinition definition;
  definition.Version = 13;
  definition.Name = "Doer";
  definition.Methods = &method;
  definition.MethodCount = 1;
  Call("PluginRegisterClass", &definition);
  deed = what;
  host.NewUninitialised("Doer").Call("Run", {"text"});
}

TEST(StandIn, ReportsEachMistake) {
  const struct {
    const char* name;
    Deed deed;
    const char* report;
  } rows[] = {
      {"unlocks an argument", [](String text) { return Unlock(text), nullptr; },
       "REALUnlockString (call 2, in Run): gave back a reference on string #2 \"text\" that the "
       "library does not hold"},
      {"returns what has ended",
       [](String) {
         const String text = Build();
         return Unlock(text), text;
       },
       "Run: was handed string #3 \"new\", which has ended; its calls: REALBuildString (call 2, in "
       "Run), REALUnlockString (call 3, in Run)"},
      {"keeps what it built", [](String) { return Build(), nullptr; },
       "string #3 \"new\": 1 reference was never given back; its calls: REALBuildString (call 2"},
      {"keeps two locks", [](String text) { return Lock(text), Lock(text), nullptr; },
       "2 references were never given back"},
      {"keeps an exception",
       [](String) {
         return Call<zrk::REALobjectStruct*>("PluginNewInstance", "NilObjectException"), nullptr;
       },
       "1 reference was never given back"},
      {"returns what it does not hold", [](String text) { return text; },
       "without a reference of its own"},
      {"returns what is no string",
       [](String) {
         static zrk::REALstringStruct mine;
         return &mine;
       },
       "which is nothing of this host's"},
      {"never disposes", [](String text) { return Filled(text), nullptr; },
       "string data #3 \"text\": 1 reference was never given back"},
      {"disposes twice",
       [](String text) {
         const REALstringData data = Filled(text);
         return Dispose(data), Dispose(data), nullptr;
       },
       "PluginDisposeStringData (call 4, in Run): was handed string data #3 \"text\", which has"},
      {"disposes what was not filled", [](String) { return Dispose({}), nullptr; }, "never filled"},
      {"marks the host's string",
       [](String text) {
         return Call("REALSetStringEncoding", text, std::uint32_t{zrk::kEncodingASCII}), nullptr;
       },
       "changed the encoding of string #2"},
      {"takes a string for an object",
       [](String text) { return Call("REALLockObject", text), nullptr; },
       "where an object belongs"},
      {"takes an array for a string",
       [](String) {
         const Value array = Host::Current()->StringArray({});
         return Lock(static_cast<String>(array.handle())), nullptr;
       },
       "where a string belongs"},
      {"reads behind an array's end",
       [](String) {
         const Value array = Host::Current()->StringArray({"a"});
         auto* strings = static_cast<zrk::_REALarrayString*>(array.handle());
         return Call<zrk::StringArrayGetter>("PluginStringArrayGetProc", strings)(strings, 1);
       },
       "string array getter (call 3, in Run): was handed index 1 of string array"},
      {"calls on a foreign thread",
       [](String text) {
         auto* lock = reinterpret_cast<void (*)(String)>(Host::Resolve("REALLockString"));
         return std::thread(lock, text).join(), nullptr;
       },
       "another thread: called REALLockString"},
      {"asks on a foreign thread",
       [](String) { return std::thread(Host::Resolve, "REALLockString").join(), nullptr; },
       "another thread: asked for the service REALLockString"},
  };
  for (const auto& row : rows) {
    Host host;
    Do(host, row.deed);
    std::string problems;
    for (const std::string& problem : host.Problems()) problems += problem + "\n";
    EXPECT_NE(problems.find(row.report), std::string::npos) << row.name << ": " << problems;
  }
}

TEST(StandIn, LetsTheCallFailThatItIsTold) {
  Host host({.faults = {{"RuntimeUBound", Fault::AnswersNull(2)}}});
  const Value array = host.StringArray({"a", Value()});
  for (const int bound : {1, -1, 1}) {
    EXPECT_EQ(Call<std::int32_t>("RuntimeUBound", array.handle()), bound);
  }
}

TEST(StandIn, RefusesDeclarationsThatItCannotRead) {
  for (const char* text : {"", "Find(", "Find(a)", "Find(a as )", "Find(a as integer = )",
                           "Find(a as integer = 99999999999)", "Find(a as string = \"x)",
                           "Find as integer extra", "Find(a as integer,) as string"}) {
    EXPECT_THROW(ParseMethod(text), std::invalid_argument) << text;
  }
}

}  // namespace
