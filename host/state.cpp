#include "host/state.h"

#include "host/services.h"

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

}  // namespace

void* AskHost(const char* name, const char* second_name) {
  void* const found = gResolver(name);
  return found != nullptr || second_name == nullptr ? found : gResolver(second_name);
}

void ConnectHost(HostResolver resolver) {
  gResolver = resolver;
  if (resolver != nullptr) {
    if (const auto get_version = FindStartupEntry<double()>("REALGetRBVersion")) {
      rbversion = get_version();
    }
  }
  CurrentREALControlVersion = ControlVersionOf(rbversion);
}

}  // namespace zrk
