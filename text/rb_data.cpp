#include "text/rb_data.h"

#include <algorithm>

#include "host/services.h"
#include "host/state.h"

namespace zrk {

namespace {

struct BlockBytes {
  const unsigned char* data;
  std::int32_t size;
};

BlockBytes ReadBlock(REALmemoryBlockStruct* block) {
  const bool ask = HostIsAtLeast(kHostHidesItsRecords);
  const std::int32_t size = ask ? REALMemoryBlockGetSize(block) : block->Size;
  const unsigned char* const data = ask ? REALMemoryBlockGetPtr(block) : block->Data;
  return {data, data != nullptr ? std::max(size, 0) : 0};
}

}  // namespace

rbData::rbData(REALmemoryBlockStruct* block, std::uint32_t /*offset*/,
               std::uint32_t /*length*/) noexcept
    : SourceBlock(BlockReference::Share(block)) {
  if (block == nullptr) return;
  const BlockBytes bytes = ReadBlock(block);
  BlockData = bytes.data;
  BlockSize = bytes.size;
}

rbData::~rbData() = default;

bool rbData::IsUnchanged() const {
  const BlockBytes bytes = ReadBlock(SourceBlock.get());
  return bytes.data == BlockData && bytes.size == BlockSize;
}

}  // namespace zrk
