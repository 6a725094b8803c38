// The class definition, and its conversion for hosts that read the old layout. [host thread]
#ifndef ZRK_HOST_REGISTRATION_H
#define ZRK_HOST_REGISTRATION_H

#include "host/records.h"

namespace zrk {

// Registers the definition in the layout that the host's control version asks for; a host without
// "PluginRegisterClass" gets no class. Changes the definition in place; it lives, with everything
// it points to, until the process ends.
void RegisterClass(REALclassDefinition& definition);

// A newly allocated copy of the property rows in the old layout (10 of 12 words), or null when the
// table is null, the count is 0 or memory is short. The host keeps it for ever.
REALproperty* FixProperties(const REALproperty* table, HostWord count);

// Replaces every table of the definition by its old-layout copy; the originals stay as they are,
// except that each event row's second word points to the row's copy afterwards.
void ConvertToOldLayout(REALclassDefinition& definition);

}  // namespace zrk

#endif  // ZRK_HOST_REGISTRATION_H
