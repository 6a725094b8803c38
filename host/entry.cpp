// The library's one exported function.
#include "host/registration.h"
#include "host/services.h"
#include "host/state.h"

// Called once by the host, on its own thread, before it uses the class. A null resolver (a process
// that is no host) registers nothing.
extern "C" [[gnu::visibility("default")]] void REALPluginMain(zrk::HostResolver resolver) {
  zrk::ConnectHost(resolver);
  if (resolver == nullptr) return;
  if (const auto announce = zrk::FindStartupEntry<void(std::int32_t)>("RegisterPluginVersion")) {
    announce(zrk::CurrentREALControlVersion);
  }
  zrk::RegisterClass(zrk::RegExClass);
}
