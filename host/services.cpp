#include "host/services.h"

#include "host/state.h"

namespace zrk {

HostFunction AskHost(const char* name, const char* second_name) {
  const HostFunction found = gResolver(name);
  return found != nullptr || second_name == nullptr ? found : gResolver(second_name);
}

}  // namespace zrk
