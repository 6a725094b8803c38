#include "fuzz/session.h"

#include <sched.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <vector>

#include "fuzz/statics.h"
#include "standin/library.h"

// The library waits for its worker in naps of a millisecond; here a nap is one turn of the others.
extern "C" int nanosleep(const std::timespec*, std::timespec*) {
  sched_yield();
  return 0;
}

namespace fuzz {
namespace {

constexpr std::optional<double> kVersions[] = {2017.0,  2011.0,  2012.0, 2013.0,      2013.03,
                                               2013.04, 2016.04, 2021.0, std::nullopt};
constexpr std::size_t kOffsets[] = {32, 8, 16, 40};
constexpr const char* kExceptions[] = {"OutOfBoundsException", "NilObjectException",
                                       "RuntimeException"};
// Without these there is nothing to run, or a reference that cannot be taken or given back.
constexpr std::string_view kNeeded[] = {"PluginRegisterClass", "REALLockString",
                                        "REALUnlockString",    "REALLockObject",
                                        "REALUnlockObject",    "PluginDisposeStringData"};

void AddFault(Input& input, standin::HostOptions& options) {
  std::vector<std::string> names = standin::Host::ServiceNames();
  std::erase_if(names, [](const std::string& name) {
    return std::ranges::find(kNeeded, name) != std::end(kNeeded);
  });
  const std::string& name = names[input.Below(names.size())];
  const unsigned kind = input.Below(4);
  options.faults[name] = kind == 0 ? standin::Fault::Missing()
                                   : standin::Fault::AnswersNull(static_cast<int>(kind) - 1);
}

// What the host is given in the old layout is allocated, and is the host's for ever.
void FreeOldTables(const standin::ClassInfo& info) {
  if (!info.old_layout()) return;
  std::free(info.definition().Properties);
  std::free(info.definition().Methods);
  std::free(info.definition().Constants);
}

}  // namespace

standin::HostOptions WholeHost(Input& input) {
  standin::HostOptions options;
  options.version = input.Pick(kVersions);
  const unsigned bits = input.Byte();
  options.direct_storage = (bits & 1) == 0;
  options.terminate_string_data = (bits & 2) == 0;
  options.instance_offset = kOffsets[(bits >> 2) & 3];
  return options;
}

standin::HostOptions AnyHost(Input& input) {
  standin::HostOptions options = WholeHost(input);
  if (input.Below(4) == 3) {
    for (unsigned faults = 1 + input.Below(3); faults > 0; --faults) AddFault(input, options);
    if (input.Truth()) options.unknown_classes = {input.Pick(kExceptions)};
  }
  return options;
}

Session::Session(standin::HostOptions options) : host(std::move(options)) {
  if (PrintsLua()) PrintLua(LuaOf(host.options()));
  static standin::Library library(ZRK_LIBRARY_PATH);
  static Statics statics(ZRK_LIBRARY_PATH);
  statics.Restore();
  library.Start(host);
}

Session::~Session() {
  const std::vector<std::string> problems = host.Problems();
  for (const std::string& problem : problems) PrintLua("-- " + problem);
  Check(problems.empty(), "the accounts balance");
  for (const auto& info : host.classes()) FreeOldTables(*info);
}

bool Session::IsWhole() const {
  return host.options().faults.empty() && host.options().unknown_classes.empty();
}

std::string Session::Announce(const std::string& call) {
  std::string name = "r" + std::to_string(++objects_);
  if (PrintsLua()) PrintLua("local " + name + " = " + call);
  return name;
}

// The name comes first: whatever the constructor does, it is printed.
Regex::Regex(Session& session, std::int32_t vector_size)
    : name_(session.Announce("RegExZRK.new(" + std::to_string(vector_size) + ")")),
      object_(session.host.New("RegExZRK", {vector_size})) {}

Regex Regex::Unconstructed(Session& session) {
  return {session.Announce("RegExZRK.new() -- without its constructor"),
          session.host.NewUninitialised("RegExZRK")};
}

Outcome Regex::Call(std::string_view method, const Values& arguments) const {
  if (PrintsLua()) {
    PrintLua("pcall(" + name_ + "." + std::string(method) + ", " + name_ + LuaOf(arguments) + ")");
  }
  return object_.TryCall(method, arguments);
}

std::int32_t Regex::Ask(std::string_view method, const Values& arguments) const {
  return Call(method, arguments).value.Integer();
}

void Regex::Set(std::string_view property, const Value& value) const {
  if (PrintsLua()) PrintLua(name_ + "." + std::string(property) + " = " + LuaOf(value));
  object_.Set(property, value);
}

}  // namespace fuzz
