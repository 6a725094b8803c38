// The record is plain data that the host keeps, so what it owns goes in by release() and Take() and
// comes out into Released, which owns it again.
#include "regex/subject.h"

#include <string_view>
#include <utility>

#include "host/exceptions.h"

namespace zrk {

namespace {

// What is searched, and what results are read from; null for no subject.
void PointAt(RegExClassData& data, std::string_view bytes) {
  data.TextPointer = bytes.data();
  data.TextLength = static_cast<std::int32_t>(bytes.size());
}

// Reading what the host holds may run the program as well, and that may have kept a subject since.
std::optional<Released> ClearKeptMeanwhile(RegExClassData& data) {
  if (data.TextAdapter == nullptr && data.MemoryAdapter == nullptr) return std::nullopt;
  return ClearText(data);
}

}  // namespace

Released ClearText(RegExClassData& data) {
  Released released;
  released.text = StringReference::Adopt(std::exchange(data.Text, nullptr));
  released.memory = BlockReference::Adopt(std::exchange(data.TextMemory, nullptr));
  released.text_adapter.reset(std::exchange(data.TextAdapter, nullptr));
  released.memory_adapter.reset(std::exchange(data.MemoryAdapter, nullptr));
  PointAt(data, {});
  return released;
}

// Asking where the block is may run the program, too.
std::optional<Released> ClearLostSubject(RegExClassData& data) {
  const Kept<rbData>* const adapter = data.MemoryAdapter;
  if (adapter == nullptr || adapter->HoldsSubject() || data.MemoryAdapter != adapter) return {};
  return ClearText(data);
}

StringReference ClearErrorMessage(RegExClassData& data) {
  return StringReference::Adopt(std::exchange(data.ErrorMessage, nullptr));
}

// The adapter holds a reference of its own, and the one in Text is what the script sees: both are
// part of what the host expects.
void KeepText(RegExClassData& data, REALstringStruct* text, Released& earlier,
              rbText::Holdings& former) {
  std::unique_ptr<Kept<rbText>> adapter = std::move(earlier.text_adapter);
  StringReference kept;
  if (text != nullptr && text == earlier.text.get() && adapter->StillReads(text)) {
    kept = std::move(earlier.text);
  } else {
    if (adapter == nullptr) {
      adapter = std::make_unique<Kept<rbText>>(text);
    } else {
      adapter->GoOverTo(text, former);
    }
    kept = StringReference::Share(text);
  }
  const std::string_view bytes = adapter->UTF8();
  const auto meanwhile = ClearKeptMeanwhile(data);
  PointAt(data, bytes);
  adapter->names.reset();  // the program may have compiled another pattern
  data.TextAdapter = adapter.release();
  data.Text = kept.Take();
}

// A block without memory is kept as well: the engine answers for it that there is no subject.
bool KeepMemory(RegExClassData& data, REALmemoryBlockStruct* block, std::int32_t length,
                const char* method) {
  auto adapter = std::make_unique<Kept<rbData>>(block);
  const std::string_view bytes = adapter->bytes();
  const auto size = static_cast<std::int32_t>(bytes.size());
  if (bytes.data() != nullptr && length > size) {
    RaiseOutOfBoundsException(length, 0, size, "ByteLength", method);
    return false;
  }
  adapter->SelectSubject(static_cast<std::size_t>(length >= 1 ? length : size));
  auto kept = BlockReference::Share(block);
  const auto meanwhile = ClearKeptMeanwhile(data);
  PointAt(data, adapter->subject().bytes());
  data.MemoryAdapter = adapter.release();
  data.TextMemory = kept.Take();
  return true;
}

}  // namespace zrk
