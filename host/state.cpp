#include "host/state.h"

namespace zrk {

HostResolver gResolver = nullptr;
double rbversion = 0.0;
std::int32_t CurrentREALControlVersion = 0;

namespace {

struct ControlVersion {
  double since;
  std::int32_t number;
};

constexpr ControlVersion kControlVersions[] = {
    {2013.04, 13}, {2013.03, 12}, {2013.0, 11}, {2012.0, 10}};

std::int32_t ControlVersionOf(double host_version) {
  for (const ControlVersion& version : kControlVersions) {
    if (host_version >= version.since) return version.number;
  }
  return 9;
}

// An entry that is called once and not remembered; null where the host has none. Every host should
// have both, but without this look one that has not would jump to address zero as it starts.
template <typename Signature>
Signature* FindStartupEntry(const char* name) {
  return gResolver != nullptr ? reinterpret_cast<Signature*>(gResolver(name)) : nullptr;
}

}  // namespace

void ConnectHost(HostResolver resolver) {
  gResolver = resolver;
  if (const auto get_version = FindStartupEntry<double()>("REALGetRBVersion")) {
    rbversion = get_version();
  }
  CurrentREALControlVersion = ControlVersionOf(rbversion);
  if (const auto announce = FindStartupEntry<void(std::int32_t)>("RegisterPluginVersion")) {
    announce(CurrentREALControlVersion);
  }
}

}  // namespace zrk
