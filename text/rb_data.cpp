#include "text/rb_data.h"

#include <algorithm>
#include <cstdint>

#include "host/services.h"
#include "host/state.h"

namespace zrk {

namespace {

// Asked anew each time: a script may resize a block that it holds as well.
std::string_view BytesOf(REALmemoryBlockStruct* block) {
  const bool ask = HostIsAtLeast(kHostHidesItsRecords);
  const std::int32_t size = ask ? REALMemoryBlockGetSize(block) : block->Size;
  const unsigned char* const data = ask ? REALMemoryBlockGetPtr(block) : block->Data;
  if (data == nullptr) return {};
  return {reinterpret_cast<const char*>(data), static_cast<std::size_t>(std::max(size, 0))};
}

}  // namespace

rbData::rbData(REALmemoryBlockStruct* block) : block_(BlockReference::Share(block)) {
  if (block != nullptr) bytes_ = BytesOf(block);
}

// Read first: a host that runs the program when it is asked may end this adapter.
bool rbData::HoldsSubject() const {
  const std::string_view subject = subject_.bytes();
  const std::string_view now = BytesOf(block_.get());
  return now.data() == subject.data() && now.size() >= subject.size();
}

}  // namespace zrk
