#include "text/rb_data.h"

#include <algorithm>

#include "host/services.h"
#include "host/state.h"

namespace zrk {

rbData::rbData(REALmemoryBlockStruct* block, std::uint32_t /*offset*/,
               std::uint32_t /*length*/) noexcept
    : SourceBlock(ObjectReference::Share(AsObject(block))) {
  if (block == nullptr) return;
  const bool ask = HostIsAtLeast(kHostHidesItsRecords);
  const std::int32_t size = ask ? REALMemoryBlockGetSize(block) : block->Size;
  BlockData = ask ? REALMemoryBlockGetPtr(block) : block->Data;
  if (BlockData != nullptr) BlockSize = std::max(size, 0);
}

}  // namespace zrk
