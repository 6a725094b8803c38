// What each service does, once a call of it has been let through. The declarations come from the
// list of services, so a definition with another signature does not compile.
#ifndef ZRK_STANDIN_SERVICES_H
#define ZRK_STANDIN_SERVICES_H

#include <cstdint>

#include "host/records.h"
#include "host/service_list.h"

namespace standin {

using namespace zrk;  // the list names the records without their namespace

struct Services {
#define STANDIN_DECLARE(wrapper, binding, result, arguments, name, second, neutral) \
  static result wrapper arguments;
  ZRK_HOST_SERVICES(STANDIN_DECLARE)
#undef STANDIN_DECLARE

  static double HostVersion();
  static void RegisterPluginVersion(std::int32_t version);
};

}  // namespace standin

#endif  // ZRK_STANDIN_SERVICES_H
