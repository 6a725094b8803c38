// The library's one exported function.
#include "host/registration.h"
#include "host/state.h"
#include "regex/tables.h"

// Called once by the host, on its own thread, before it uses the class. A null resolver (a process
// that is no host) registers nothing.
extern "C" [[gnu::visibility("default")]] void REALPluginMain(zrk::HostResolver resolver) {
  zrk::ConnectHost(resolver);
  if (resolver != nullptr) zrk::RegisterClass(zrk::RegExClass);
}
