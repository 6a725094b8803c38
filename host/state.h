// What the library knows about its host: set once in REALPluginMain, only read afterwards.
#ifndef ZRK_HOST_STATE_H
#define ZRK_HOST_STATE_H

#include <cstdint>

#include "host/records.h"

namespace zrk {

// Answers the address of the host entry of that name, or null where the host has none.
using HostResolver = HostFunction (*)(const char* name);

extern HostResolver gResolver;

// The host's version as a year number, such as 2013.04; 0.0 when it does not say.
extern double rbversion;

// Selects the layout of the registered class: 9 is the old one, 10 to 13 the current one.
extern std::int32_t CurrentREALControlVersion;

// From these versions on the host offers, or insists on, the newer way.
inline constexpr double kHostConvertsOnRequest = 2012.0;  // "PluginGetStringData", UTF-16 strings
inline constexpr double kHostBuildsUTF32 = 2013.0;        // strings built from UTF-32
inline constexpr double kHostHidesItsRecords = 2017.0;    // fields are read through services only

inline bool HostIsAtLeast(double version) { return rbversion >= version; }

// Stores the resolver (may be null), asks for the host's version, derives the control version and
// announces it to the host.
void ConnectHost(HostResolver resolver);

}  // namespace zrk

#endif  // ZRK_HOST_STATE_H
