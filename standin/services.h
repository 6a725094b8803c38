// What each service does, once a call of it has been let through. The declarations come from the
// list of services, so a definition with another signature does not compile.
#ifndef ZRK_STANDIN_SERVICES_H
#define ZRK_STANDIN_SERVICES_H

#include <cstdint>
#include <string>

#include "host/records.h"
#include "host/service_list.h"
#include "standin/host.h"

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

inline Accounts& TheAccounts() { return Host::Current()->accounts(); }

// The thing behind a handle as the wanted sort. Unlike a string, it has to be there: null is
// reported, and so is a thing of another sort.
template <typename T>
T* FindAs(const void* handle, const char* wanted) {
  Thing* thing = TheAccounts().Find(handle);
  auto* found = dynamic_cast<T*>(thing);
  if (!handle) TheAccounts().Report("was handed null");
  if (thing && !found) {
    TheAccounts().Report("was handed " + thing->Describe() + " where " + wanted + " belongs");
  }
  return found;
}

}  // namespace standin

#endif  // ZRK_STANDIN_SERVICES_H
