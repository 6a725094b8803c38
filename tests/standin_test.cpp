// The stand-in host itself: a check is worth something only if the host notices what is wrong.
//
// The library here is a class in this file, "Probe", whose methods do whatever a test tells them.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "host/records.h"
#include "standin/declaration.h"
#include "standin/encoding.h"
#include "standin/host.h"
#include "standin/library.h"

namespace {

using standin::CallError;
using standin::Host;
using standin::Kind;
using standin::Object;
using standin::Value;
using standin::Values;
using zrk::HostBoolean;
using zrk::REALobjectStruct;
using zrk::REALstringData;
using zrk::REALstringStruct;
using String = REALstringStruct*;

// What Probe.Run does with its text.
std::function<String(String)> run;
std::function<void()> destructor;

template <typename R, typename... A>
R Service(const char* name, A... arguments) {
  auto* service = reinterpret_cast<R (*)(A...)>(Host::Resolve(name));
  return service ? service(arguments...) : R();
}
void Lock(String text) { Service<void>("REALLockString", text); }
void Unlock(String text) { Service<void>("REALUnlockString", text); }
String Build(const char* text) {
  return Service<String>("REALBuildString", text, std::int32_t(std::strlen(text)));
}
void Fill(String text, REALstringData* data) {
  Service<unsigned char>("PluginGetStringData", text, std::uint32_t(zrk::kEncodingUTF8), data);
}
void Dispose(REALstringData* data) { Service<void>("PluginDisposeStringData", data); }
void Raise(const char* class_name) {
  auto* object = Service<REALobjectStruct*>("PluginNewInstance", class_name);
  Service<void>("RuntimeRaiseException", object);
  Service<void>("REALUnlockObject", object);
}

String RunText(REALobjectStruct*, String text) { return run(text); }
std::int32_t FindFrom(REALobjectStruct*, std::int32_t start) { return start; }
std::int32_t FindText(REALobjectStruct*, String text, std::int32_t start, HostBoolean deep) {
  return start + (deep ? 1000 : 0) + (text ? 100 * text->Length : 0);
}
void* Keep(REALobjectStruct*, zrk::_REALarrayObject*, HostBoolean) { return nullptr; }
HostBoolean GetOdd(REALobjectStruct*, std::intptr_t parameter) { return parameter % 2 ? -1 : 0; }
void Destroy(REALobjectStruct*) {
  if (destructor) destructor();
}

template <typename F>
zrk::HostFunction Function(F function) {
  return reinterpret_cast<zrk::HostFunction>(function);
}
const zrk::HostFunction kField = Function(zrk::HostWord(-1));

// Rows of the old layout are the first words of the current ones.
template <std::size_t kWords, typename Row, std::size_t kCount>
Row* OldRows(Row (&rows)[kCount]) {
  static zrk::HostWord old[kCount][kWords];
  for (std::size_t i = 0; i < kCount; ++i) std::memcpy(old[i], &rows[i], sizeof old[i]);
  return reinterpret_cast<Row*>(old);
}

void RegisterProbe(zrk::HostWord version) {
  static zrk::REALproperty properties[] = {
      {nullptr, "Size", "Integer", 6, kField, kField, 8, {}},
      {nullptr, "Odd", "Boolean", 6, Function(GetOdd), nullptr, 7, {}},
  };
  static zrk::REALmethodDefinition methods[] = {
      {Function(RunText), 0, "Run(text as string) as string", 4, {}},
      {Function(FindFrom), 0, "Find(start as integer = 3) as integer", 4, {}},
      {Function(FindText),
       0,
       "Find(text as string, start as integer = -1, deep as boolean = TRUE) as Integer",
       4,
       {}},
      {Function(Keep), 0, "Keep(text() as variant, inverse as boolean = false) as string()", 4, {}},
  };
  static zrk::REALconstant constants[] = {{"ErrorPlugin = -99", {}}, {"Last=7", {}}};
  static zrk::REALclassDefinition definition;
  const bool old = version < 10;
  definition = {};
  definition.Version = version;
  definition.Name = "Probe";
  definition.DataSize = 16;
  definition.Destructor = Function(Destroy);
  definition.Properties = old ? OldRows<10>(properties) : properties;
  definition.PropertyCount = std::ssize(properties);
  definition.Methods = old ? OldRows<4>(methods) : methods;
  definition.MethodCount = std::ssize(methods);
  definition.Constants = old ? OldRows<3>(constants) : constants;
  definition.ConstantCount = std::ssize(constants);
  Service<void>("PluginRegisterClass", &definition);
}

std::string Joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + "\n";
  return text;
}

// The refusal of a wrong call, or nothing where it is not refused.
template <typename F>
std::string Refusal(F call) {
  try {
    call();
  } catch (const std::exception& error) {
    return error.what();
  }
  return {};
}

class Standin : public testing::Test {
 protected:
  void SetUp() override { RegisterProbe(13); }
  void TearDown() override { run = nullptr, destructor = nullptr; }
  Host host_;
};

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
    RegisterProbe(13);
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

TEST_F(Standin, KeepsAnObjectAliveWhileTheLibraryHoldsIt) {
  int ends = 0;
  destructor = [&] { ++ends; };
  void* object = nullptr;
  {
    const Object probe = host_.New("Probe");
    object = probe.value().handle();
    Service<void>("REALLockObject", object);
  }
  EXPECT_EQ(ends, 0);
  EXPECT_EQ(host_.Problems().size(), 1u);
  Service<void>("REALUnlockObject", object);
  EXPECT_EQ(ends, 1);
  EXPECT_EQ(Joined(host_.Problems()), "");
}

TEST_F(Standin, ChoosesTheDeclarationAndFillsInDefaults) {
  const Object probe = host_.New("Probe");
  EXPECT_EQ(probe.Call("find").Integer(), 3);
  EXPECT_EQ(probe.Call("Find", {-2147483647 - 1}).Integer(), -2147483647 - 1);
  EXPECT_EQ(probe.Call("Find", {"ab"}).Integer(), 200 - 1 + 1000);
  EXPECT_EQ(probe.Call("FIND", {Value::Nil(Kind::kString), 5, false}).Integer(), 5);
  EXPECT_EQ(probe.Call("Keep", {Value()}).kind(), Kind::kStringArray);
  for (const Values& wrong : std::vector<Values>{{true}, {"a", "b"}, {"a", 1, true, 4}}) {
    const std::string refusal = Refusal([&] { probe.Call("Find", wrong); });
    EXPECT_NE(refusal.find("fits no declaration: Find(start as integer = 3) as integer; Find(text"),
              std::string::npos)
        << refusal;
  }
  EXPECT_EQ(Refusal([&] { probe.Call("Fnd"); }), "Probe has no method \"Fnd\"");
  EXPECT_EQ(Refusal([&] { probe.Set("Odd", true); }), "Odd as Boolean is read-only");
  EXPECT_EQ(Refusal([&] { probe.Set("Size", "x"); }), "Size as Integer takes no string");
}

TEST(StandinClass, ReadsBothLayouts) {
  for (const zrk::HostWord version : {9, 10, 13}) {
    SCOPED_TRACE(version);
    Host host({.instance_offset = 64});
    RegisterProbe(version);
    const standin::ClassInfo& info = *host.FindClass("probe");
    ASSERT_EQ(info.methods().size(), 4u);
    EXPECT_EQ(info.methods()[3].text,
              "Keep(text() as variant, inverse as boolean = false) as string()");
    EXPECT_EQ(std::get<std::int32_t>(info.FindConstant("LAST")->declaration.value), 7);
    const Object probe = host.New("Probe");
    EXPECT_EQ(static_cast<char*>(probe.InstanceData()),
              static_cast<char*>(probe.value().handle()) + 64);
    EXPECT_TRUE(probe.Get("Odd").Boolean());
    probe.Set("Size", -5);
    EXPECT_EQ(probe.Get("Size").Integer(), -5);
    std::int32_t field = 0;
    std::memcpy(&field, static_cast<char*>(probe.InstanceData()) + 8, sizeof field);
    EXPECT_EQ(field, -5);
  }
}

TEST(StandinDeclaration, RefusesWhatItCannotRead) {
  for (const char* text : {"", "Find(", "Find(a)", "Find(a as )", "Find(a as integer = )",
                           "Find(a as integer = 99999999999)", "Find(a as string = \"x)",
                           "Find as integer extra", "Find(a as integer,) as string"}) {
    EXPECT_THROW(standin::ParseMethod(text), std::invalid_argument) << text;
  }
  const auto method =
      standin::ParseMethod("Put ( A( ) As String , b as string=\"say \"\"x\"\"\" )");
  EXPECT_EQ(method.parameters[0].type.kind, Kind::kStringArray);
  EXPECT_EQ(std::get<std::string>(*method.parameters[1].fallback), "say \"x\"");
  EXPECT_EQ(method.Required(), 1u);
  EXPECT_EQ(method.result.kind, Kind::kNil);
}

TEST_F(Standin, GivesBackTheResultAndEverythingRaised) {
  const Object probe = host_.New("Probe");
  run = [](String) {
    Raise("NilObjectException");
    Raise("OutOfBoundsException");
    return Build("result");
  };
  const standin::Outcome outcome = probe.TryCall("Run", {"a"});
  EXPECT_EQ(outcome.value.Bytes(), "result");
  ASSERT_EQ(outcome.errors.size(), 2u);
  EXPECT_EQ(outcome.errors[1].class_name, "OutOfBoundsException");
  EXPECT_EQ(Refusal([&] { probe.Call("Run", {"a"}); }), "NilObjectException: ");
}

TEST_F(Standin, RunsTasksWhileTheLibraryYields) {
  const Object probe = host_.New("Probe");
  std::string order;
  run = [&](String) {
    for (int i = 0; i < 3; ++i) Service<void>("REALYieldToRB"), order += "y";
    Raise("NilObjectException");
    return nullptr;
  };
  // A task that calls the library has its own exceptions, and is not entered from its own yields.
  host_.AddTask([&, turns = 0]() mutable {
    order += "a";
    if (turns++ > 0) return false;
    EXPECT_EQ(probe.TryCall("Run", {"inner"}).errors.size(), 1u);
    return true;
  });
  host_.AddTask([]() -> bool { throw std::runtime_error("broken"); });
  EXPECT_EQ(probe.TryCall("Run", {"outer"}).errors.size(), 1u);
  EXPECT_EQ(order, "ayyyyayy");
  EXPECT_FALSE(host_.HasTasks());
  EXPECT_NE(Joined(host_.Problems()).find("a task ended with an error: broken"), std::string::npos);
}

TEST(StandinFaults, TakeServicesAway) {
  using standin::Fault;
  Host host({.version = std::nullopt,
             .faults = {{"REALLockString", Fault::MissingUntilAsked(2)},
                        {"REALSetPropValueInteger", Fault::Missing()},
                        {"RuntimeUBound", Fault::AnswersNull(2)}}});
  EXPECT_EQ(Host::Resolve("REALGetRBVersion"), nullptr);
  EXPECT_EQ(Host::Resolve("REALLockString"), nullptr);
  EXPECT_EQ(Host::Resolve("REALLockString"), nullptr);
  EXPECT_NE(Host::Resolve("REALLockString"), nullptr);
  EXPECT_EQ(host.requests().find("REALLockString")->second, 3);
  EXPECT_EQ(Host::Resolve("REALSetPropValueInteger"), nullptr);
  EXPECT_NE(Host::Resolve("REALSetPropValueInt"), nullptr);
  const Value array = host.StringArray({"a", Value()});
  for (const int bound : {1, -1, 1}) {
    EXPECT_EQ(Service<std::int32_t>("RuntimeUBound", array.handle()), bound);
  }
  EXPECT_EQ(host.Calls("RuntimeUBound"), 3u);
  EXPECT_THROW(host.SetFault("REALLokString", Fault::Missing()), std::invalid_argument);
}

TEST(StandinArrays, AreReadAndExtendedUnderBothNames) {
  using Getter = void* (*)(void*, std::int32_t);
  using Inserter = void (*)(void*, std::int32_t, void*);
  for (const bool direct : {false, true}) {
    Host host({.direct_storage = direct});
    const Value strings = host.StringArray({"a", Value(), "c"});
    const Value variants = host.VariantArray({5, true, 1.5, "text", Value()});
    EXPECT_EQ(*static_cast<void**>(strings.handle()) != nullptr, direct);
    auto* read = Service<Getter>("RuntimeArrayDirectGetGetProc", variants.handle());
    std::string texts;
    for (std::int32_t i = 0; i < 4; ++i) {
      void* variant = read(variants.handle(), i);
      const String text = Service<String>("VariantToString", variant);
      texts += Value(Kind::kString, standin::Reference::Share(text)).Bytes() + " ";
      Unlock(text);
      Service<void>("REALUnlockObject", variant);
    }
    EXPECT_EQ(texts, "5 True 1.5 text ");
    const Value added = "d";
    auto* insert = Service<Inserter>("PluginStringArrayInsertProc", strings.handle());
    insert(strings.handle(), 3, added.handle());
    EXPECT_EQ(strings.At(3).Bytes(), "d");
    EXPECT_EQ(Joined(host.Problems()), "");
    read = Service<Getter>("PluginStringArrayGetProc", strings.handle());
    EXPECT_EQ(read(strings.handle(), 4), nullptr);
    EXPECT_NE(Joined(host.Problems()).find("index 4"), std::string::npos);
  }
}

TEST(StandinText, ConvertsBetweenTheHostsEncodings) {
  using standin::ConvertText;
  struct Row {
    std::uint32_t encoding;
    std::string bytes;
  };
  const std::u16string utf16 = u"\u00E4";
  const std::u32string utf32 = U"\u00E4";
  for (const Row& row :
       std::vector<Row>{{zrk::kEncodingMacRoman, "\x8A"},
                        {zrk::kEncodingISOLatin1, "\xE4"},
                        {zrk::kEncodingWindowsLatin1, "\xE4"},
                        {zrk::kEncodingUTF16, {reinterpret_cast<const char*>(utf16.data()), 2}},
                        {zrk::kEncodingUTF32, {reinterpret_cast<const char*>(utf32.data()), 4}}}) {
    EXPECT_EQ(ConvertText(row.bytes, row.encoding, zrk::kEncodingUTF8), "\xC3\xA4");
    EXPECT_EQ(ConvertText("\xC3\xA4", zrk::kEncodingUTF8, row.encoding), row.bytes);
  }
  EXPECT_EQ(ConvertText("a\xFF\xC3", zrk::kEncodingUTF8, zrk::kEncodingASCII), "a??");
  EXPECT_EQ(ConvertText("a\xE4z", zrk::kEncodingASCII, zrk::kEncodingUTF8), "a\xEF\xBF\xBDz");
  EXPECT_EQ(ConvertText("\xFF", zrk::kEncodingUTF8, zrk::kEncodingUTF8), "\xFF");
  EXPECT_EQ(ConvertText("a", zrk::kEncodingUnknown, zrk::kEncodingUTF8), std::nullopt);
}

TEST(StandinLibrary, LoadsPrivateCopiesAndNamesWhatIsNone) {
  EXPECT_EQ(Refusal([] { standin::Library("/nowhere/lib.so"); }), "/nowhere/lib.so: no such file");
  EXPECT_NE(Refusal([] { standin::Library(__FILE__); }).find("cannot be loaded"),
            std::string::npos);
  for (const double version : {2011.0, 2013.04}) {
    Host host({.version = version});
    standin::Library library(ZRK_LIBRARY_PATH, standin::Library::Copy::kPrivate);
    library.Start(host);
    ASSERT_EQ(host.classes().size(), 1u);
    EXPECT_EQ(host.classes()[0]->version(), version < 2012.0 ? 9 : 13);
    EXPECT_EQ(Joined(host.Problems()), "");
  }
}

}  // namespace
