// Host exceptions that no method can be brought to raise: unknown classes, odd texts, and native
// exceptions on their way out.
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <new>
#include <stdexcept>
#include <string>
#include <typeinfo>
#include <utility>
#include <vector>

#include "host/exceptions.h"
#include "host/services.h"
#include "host/state.h"
#include "tests/session.h"

namespace {

// What the one method of a class made for this test does.
std::function<void()> body;

void RunBody(zrk::REALobjectStruct* /*object*/) { body(); }

zrk::REALmethodDefinition methods[] = {
    {reinterpret_cast<zrk::HostFunction>(&RunBody), 0, "Run", 4, {}}};
zrk::REALclassDefinition runner = {};

// What the host sees raised when a method of a plugin does this; `errors` alike.
tests::Outcome OutcomeOf(std::function<void()> work, standin::HostOptions options = {}) {
  standin::Host host(std::move(options));
  zrk::ConnectHost(&standin::Host::Resolve);
  runner.Version = 13;
  runner.Name = "Runner";
  runner.DataSize = 16;
  runner.Methods = methods;
  runner.MethodCount = 1;
  zrk::REALRegisterClass(&runner);
  body = std::move(work);
  auto outcome = host.NewUninitialised("Runner").TryCall("Run");
  EXPECT_EQ(host.Problems(), std::vector<std::string>{});
  for (const auto& error : outcome.errors) EXPECT_EQ(error.number, 0);
  return outcome;
}

template <typename Exception>
std::string Translated(const Exception& exception) {
  return tests::Raised(OutcomeOf([&] {
    try {
      throw exception;
    } catch (...) {
      zrk::TranslateNativeException();
    }
  }));
}

struct OtherException : std::exception {
  const char* what() const noexcept override { return "why"; }
};
struct CastException : std::bad_cast {
  const char* what() const noexcept override { return "why"; }
};

TEST(Exceptions, NativeOnesBecomeTheHostsKind) {
  const std::string bounds = "OutOfBoundsException: why";
  const std::string runtime = "RuntimeException: why";
  const std::string memory = "OutOfMemoryException: Failed to allocate memory.";
  EXPECT_EQ(Translated(std::bad_alloc()), memory);
  EXPECT_EQ(Translated(std::bad_array_new_length()), memory);
  EXPECT_EQ(Translated(std::range_error("why")), bounds);
  EXPECT_EQ(Translated(std::out_of_range("why")), bounds);
  EXPECT_EQ(Translated(std::overflow_error("why")), bounds);
  EXPECT_EQ(Translated(std::underflow_error("why")), bounds);
  EXPECT_EQ(Translated(std::logic_error("why")), runtime);
  EXPECT_EQ(Translated(std::length_error("why")), runtime);
  EXPECT_EQ(Translated(std::runtime_error("why")), runtime);
  EXPECT_EQ(Translated(CastException()), "IllegalCastException: why");
  EXPECT_EQ(Translated(OtherException()), runtime);
  EXPECT_EQ(Translated(5), "RuntimeException: Sorry, but there was an unnamed C++ Exception.");
}

std::string Raise(const char* class_name, const char* message,
                  const standin::HostOptions& options = {}) {
  return tests::Raised(OutcomeOf([&] { zrk::RaiseException(class_name, message); }, options));
}

TEST(Exceptions, AnUnknownClassBecomesTheRuntimes) {
  EXPECT_EQ(Raise("NilObjectException", "gone"), "NilObjectException: gone");
  EXPECT_EQ(Raise("NoSuchException", "gone"), "RuntimeException: gone");
  EXPECT_EQ(Raise("NoSuchException", "gone", {.unknown_classes = {"RuntimeException"}}), "");
  EXPECT_EQ(Raise("NilObjectException", nullptr), "NilObjectException: ");
  EXPECT_EQ(Raise("NilObjectException", ""), "NilObjectException: ");
  EXPECT_EQ(Raise("NilObjectException", "ä"), "NilObjectException: ä");
}

std::string RaiseOutOfBounds(std::int64_t value, std::int64_t minimum, std::int64_t maximum,
                             const char* parameter, const char* method) {
  return tests::Raised(OutcomeOf(
      [&] { zrk::RaiseOutOfBoundsException(value, minimum, maximum, parameter, method); }));
}

TEST(Exceptions, OutOfBoundsNamesRangeAndValue) {
  const std::string start = "OutOfBoundsException: Parameter ";
  EXPECT_EQ(RaiseOutOfBounds(5, 0, 2, "index", "Offset"),
            start + "index to method Offset is too big. Range is 0 to 2, but value is 5.");
  EXPECT_EQ(RaiseOutOfBounds(-1, 0, 4, "index", "Offset"),
            start + "index to method Offset is too small. Range is 0 to 4, but value is -1.");
  EXPECT_EQ(RaiseOutOfBounds(5, 0, 2, nullptr, nullptr),
            start + "?  is too big. Range is 0 to 2, but value is 5.");
  EXPECT_EQ(RaiseOutOfBounds(5, 0, 2, "index", ""),
            start + "index  is too big. Range is 0 to 2, but value is 5.");
  EXPECT_EQ(RaiseOutOfBounds(INT64_MAX, INT64_MIN, -7, "", "m"),
            start +
                " to method m is too big. Range is -9223372036854775808 to -7, but value is "
                "9223372036854775807.");
  const std::string name(5000, 'p');
  EXPECT_EQ(
      RaiseOutOfBounds(1, 2, 3, name.c_str(), name.c_str()),
      start + name + " to method " + name + " is too small. Range is 2 to 3, but value is 1.");
}

}  // namespace
