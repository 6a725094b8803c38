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

using zrk::RaiseException;
using zrk::RaiseOutOfBoundsException;

// These have no message of their own choice.
template <typename Base>
struct Explained : Base {
  const char* what() const noexcept override { return "why"; }
};

// What the one method of a class made for this test does.
std::function<void()> body;

void RunBody(zrk::REALobjectStruct* /*object*/) {
  try {
    body();
  } catch (...) {
    zrk::TranslateNativeException();
  }
}

zrk::REALmethodDefinition methods[] = {
    {reinterpret_cast<zrk::HostFunction>(&RunBody), 0, "Run", 4, {}}};
zrk::REALclassDefinition runner = {};

// What the host sees raised when a method of a plugin does this.
std::string RaisedBy(std::function<void()> work, standin::HostOptions options = {}) {
  standin::Host host(std::move(options));
  zrk::ConnectHost(&standin::Host::Resolve);
  runner.Version = 13;
  runner.Name = "Runner";
  runner.DataSize = 16;
  runner.Methods = methods;
  runner.MethodCount = 1;
  zrk::REALRegisterClass(&runner);
  body = std::move(work);
  const tests::Outcome outcome = host.NewUninitialised("Runner").TryCall("Run");
  EXPECT_EQ(host.Problems(), std::vector<std::string>{});
  for (const auto& error : outcome.errors) EXPECT_EQ(error.number, 0);
  return tests::Raised(outcome);
}

TEST(Exceptions, ReachTheHostWithClassAndMessage) {
  const std::string memory = "OutOfMemoryException: Failed to allocate memory.";
  const std::string bounds = "OutOfBoundsException: Parameter ";
  const std::string name(5000, 'p');
  const std::pair<std::function<void()>, std::string> rows[] = {
      {[] { throw std::bad_alloc(); }, memory},
      {[] { throw std::bad_array_new_length(); }, memory},
      {[] { throw std::range_error("range"); }, "OutOfBoundsException: range"},
      {[] { throw std::out_of_range("out"); }, "OutOfBoundsException: out"},
      {[] { throw std::overflow_error("over"); }, "OutOfBoundsException: over"},
      {[] { throw std::underflow_error("under"); }, "OutOfBoundsException: under"},
      {[] { throw std::logic_error("logic"); }, "RuntimeException: logic"},
      {[] { throw std::runtime_error("run"); }, "RuntimeException: run"},
      {[] { throw Explained<std::bad_cast>(); }, "IllegalCastException: why"},
      {[] { throw Explained<std::exception>(); }, "RuntimeException: why"},
      {[] { throw 5; }, "RuntimeException: Sorry, but there was an unnamed C++ Exception."},
      {[] { RaiseException("NilObjectException", "ä"); }, "NilObjectException: ä"},
      {[] { RaiseException("NilObjectException", nullptr); }, "NilObjectException: "},
      {[] { RaiseException("NoSuchException", "gone"); }, "RuntimeException: gone"},
      {[] { RaiseOutOfBoundsException(5, 0, 2, nullptr, nullptr); },
       bounds + "?  is too big. Range is 0 to 2, but value is 5."},
      {[] { RaiseOutOfBoundsException(5, 0, 2, "index", ""); },
       bounds + "index  is too big. Range is 0 to 2, but value is 5."},
      {[] { RaiseOutOfBoundsException(INT64_MAX, INT64_MIN, -7, "", "m"); },
       bounds + " to method m is too big. Range is -9223372036854775808 to -7, but value is "
                "9223372036854775807."},
      {[&] { RaiseOutOfBoundsException(1, 2, 3, name.c_str(), name.c_str()); },
       bounds + name + " to method " + name + " is too small. Range is 2 to 3, but value is 1."},
  };
  for (const auto& [work, raised] : rows) EXPECT_EQ(RaisedBy(work), raised);
  const auto raise = [] { RaiseException("NoSuchException", "gone"); };
  EXPECT_EQ(RaisedBy(raise, {.unknown_classes = {"RuntimeException"}}), "");
}

}  // namespace
