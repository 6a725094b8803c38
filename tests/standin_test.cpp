// The stand-in host as its users meet it: classes, calls, values, faults.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/records.h"
#include "standin/declaration.h"
#include "standin/encoding.h"
#include "standin/host.h"
#include "standin/library.h"
#include "tests/probe.h"

namespace {

using namespace probe;
using namespace standin;

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
  void SetUp() override { probe::Register(); }
  void TearDown() override { probe::run = nullptr; }
  Host host_;
};

TEST_F(Standin, ChoosesTheDeclarationAndFillsInDefaults) {
  const Object object = host_.New("Probe");
  EXPECT_EQ(object.Call("find").Integer(), 3);
  EXPECT_EQ(object.Call("Find", {-2147483647 - 1}).Integer(), -2147483647 - 1);
  EXPECT_EQ(object.Call("Find", {"ab"}).Integer(), 200 - 1 + 1000);
  EXPECT_EQ(object.Call("FIND", {Value::Nil(Kind::kString), 5, false}).Integer(), 5);
  EXPECT_EQ(object.Call("Keep", {Value()}).kind(), Kind::kStringArray);
  for (const Values& wrong : std::vector<Values>{{true}, {"a", "b"}, {"a", 1, true, 4}}) {
    const std::string refusal = Refusal([&] { object.Call("Find", wrong); });
    EXPECT_NE(refusal.find("fits no declaration: Find(start as integer = 3) as integer; Find(text"),
              std::string::npos)
        << refusal;
  }
  EXPECT_EQ(Refusal([&] { object.Call("Fnd"); }), "Probe has no method \"Fnd\"");
  EXPECT_EQ(Refusal([&] { object.Set("Odd", true); }), "Odd as Boolean is read-only");
  EXPECT_EQ(Refusal([&] { object.Set("Size", "x"); }), "Size as Integer takes no string");
}

TEST(StandinClass, ReadsBothLayouts) {
  for (const zrk::HostWord version : {9, 10, 13}) {
    SCOPED_TRACE(version);
    Host host({.instance_offset = 64});
    probe::Register(version);
    const standin::ClassInfo& info = *host.FindClass("probe");
    ASSERT_EQ(info.methods().size(), 4u);
    EXPECT_EQ(info.methods()[3].text,
              "Keep(text() as variant, inverse as boolean = false) as string()");
    EXPECT_EQ(std::get<std::int32_t>(info.FindConstant("LAST")->declaration.value), 7);
    const Object object = host.New("Probe");
    EXPECT_EQ(static_cast<char*>(object.InstanceData()),
              static_cast<char*>(object.value().handle()) + 64);
    EXPECT_TRUE(object.Get("Odd").Boolean());
    object.Set("Size", -5);
    EXPECT_EQ(object.Get("Size").Integer(), -5);
    std::int32_t field = 0;
    std::memcpy(&field, static_cast<char*>(object.InstanceData()) + 8, sizeof field);
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
  const Object object = host_.New("Probe");
  probe::run = [](String) {
    Raise("NilObjectException");
    Raise("OutOfBoundsException");
    return Build("result");
  };
  const standin::Outcome outcome = object.TryCall("Run", {"a"});
  EXPECT_EQ(outcome.value.Bytes(), "result");
  ASSERT_EQ(outcome.errors.size(), 2u);
  EXPECT_EQ(outcome.errors[1].class_name, "OutOfBoundsException");
  EXPECT_EQ(Refusal([&] { object.Call("Run", {"a"}); }), "NilObjectException: ");
}

TEST_F(Standin, RunsTasksWhileTheLibraryYields) {
  const Object object = host_.New("Probe");
  const Object other = host_.New("Probe");  // an object belongs to one task at a time
  std::string order;
  probe::run = [&](String) {
    for (int i = 0; i < 3; ++i) Service<void>("REALYieldToRB"), order += "y";
    Raise("NilObjectException");
    return nullptr;
  };
  // A task that calls the library has its own exceptions, and is not entered from its own yields.
  host_.AddTask([&, turns = 0]() mutable {
    order += "a";
    if (turns++ > 0) return false;
    EXPECT_EQ(other.TryCall("Run", {"inner"}).errors.size(), 1u);
    return true;
  });
  host_.AddTask([]() -> bool { throw std::runtime_error("broken"); });
  EXPECT_EQ(object.TryCall("Run", {"outer"}).errors.size(), 1u);
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
    EXPECT_EQ(ConvertText(row.bytes, row.encoding, zrk::kEncodingUTF8), "ä");
    EXPECT_EQ(ConvertText("ä", zrk::kEncodingUTF8, row.encoding), row.bytes);
  }
  EXPECT_EQ(ConvertText("a\xFF\xC3", zrk::kEncodingUTF8, zrk::kEncodingASCII), "a??");
  EXPECT_EQ(ConvertText("a\xE4z", zrk::kEncodingASCII, zrk::kEncodingUTF8), "a�z");
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
