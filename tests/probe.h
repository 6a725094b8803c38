// A library for tests of the stand-in host itself: the class "Probe", whose methods do whatever a
// test tells them, and the services as such a library calls them.
#ifndef ZRK_TESTS_PROBE_H
#define ZRK_TESTS_PROBE_H

#include <functional>
#include <string>
#include <vector>

#include "host/records.h"
#include "standin/host.h"

namespace probe {

using String = zrk::REALstringStruct*;

// What Probe.Run does with its text, and what its destructor does (nothing where it is empty).
extern std::function<String(String)> run;
extern std::function<void()> destructor;

// Registers Probe with the current host, in the layout of this version.
void Register(zrk::HostWord version = 13);

// Looks a service up and calls it; a missing one answers null, 0 or nothing.
template <typename R, typename... A>
R Service(const char* name, A... arguments) {
  auto* service = reinterpret_cast<R (*)(A...)>(standin::Host::Resolve(name));
  return service ? service(arguments...) : R();
}
void Lock(String text);
void Unlock(String text);
String Build(const char* text);
void Fill(String text, zrk::REALstringData* data);
void Dispose(zrk::REALstringData* data);
void Raise(const char* class_name);

// Each line with its end.
std::string Joined(const std::vector<std::string>& lines);

}  // namespace probe

#endif  // ZRK_TESTS_PROBE_H
