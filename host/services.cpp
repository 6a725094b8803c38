#include "host/services.h"

#include "host/state.h"

namespace zrk {

// Newer hosts renamed some entries; the older name is only asked for where the newer one is
// missing.
HostFunction AskHost(const char* name, const char* second_name) {
  const HostFunction found = gResolver(name);
  return found != nullptr || second_name == nullptr ? found : gResolver(second_name);
}

}  // namespace zrk
