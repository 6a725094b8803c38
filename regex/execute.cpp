#include "regex/execute.h"

#include <memory>

#include "host/exceptions.h"
#include "host/threaded_runner.h"
#include "regex/engine.h"

namespace zrk {

namespace {

bool BeginMatch(RegExClassData& data) {
  if (!RequireVector(data)) return false;
  ResetMatch(data);
  return true;
}

void KeepText(RegExClassData& data, REALstringStruct* text) {
  auto adapter = std::make_unique<rbText>(text);
  data.TextPointer = adapter->UTF8Bytes();
  data.TextLength = adapter->UTF8Length();
  data.TextAdapter = adapter.release();
  data.Text = StringReference::Share(text).Take();
}

// Where the two families of methods name things differently.
struct MemoryTexts {
  const char* method;
  const char* nil_message;
};

bool RequireBlock(const REALmemoryBlockStruct* block, const MemoryTexts& texts) {
  if (block != nullptr) return true;
  RaiseException("NilObjectException", texts.nil_message);
  return false;
}

// False, with the exception raised and nothing kept, for a length past the block's end.
bool KeepMemory(RegExClassData& data, REALmemoryBlockStruct* block, HostInteger length,
                const MemoryTexts& texts) {
  auto adapter = std::make_unique<rbData>(block);
  if (adapter->data() != nullptr && length > adapter->size()) {
    RaiseOutOfBoundsException(length, 0, adapter->size(), "ByteLength", texts.method);
    return false;
  }
  data.TextPointer = adapter->data();
  data.TextLength = length >= 1 ? length : adapter->size();
  data.MemoryAdapter = adapter.release();
  data.TextMemory = BlockReference::Share(block).Take();
  return true;
}

void PointAtSubject(EngineCall& call, const RegExClassData& data, HostInteger start) {
  call.start = start;
  if (SubjectNotes* const notes = NotesOf(data)) {
    SetSubject(call, data.TextPointer, data.TextLength, *notes);
  } else {
    call.subject = nullptr;  // which the engine refuses
    call.length = data.TextLength;
  }
}

HostInteger Run(RegExClassData& data, HostInteger start) {
  EngineCall call = PrepareCall(data);
  PointAtSubject(call, data, start);
  const int result = RunEngine(call);
  StoreResult(data, result);
  return result;
}

// [worker] What the engine is shown was made ready on the host's thread, so nothing here allocates
// or asks the host.
void WorkExecute(void* object) {
  RegExClassData& data = DataOf(static_cast<REALobjectStruct*>(object));
  EngineCall call = PrepareUnlimitedCall(data);
  PointAtSubject(call, data, data.StartOffset);
  StoreResult(data, RunEngine(call));
}

HostInteger RunOnWorker(REALobjectStruct* object, RegExClassData& data, HostInteger start) {
  data.StartOffset = start;
  EngineCall made_ready = PrepareUnlimitedCall(data);
  PointAtSubject(made_ready, data, start);
  RunThreaded(object, WorkExecute, nullptr);
  return data.Count;
}

}  // namespace

// The two are flattened: in the calls that scripts make most, even a call within the library shows.
[[gnu::flatten]] HostInteger rb_pcre_exec(RegExClassData& data, REALstringStruct* text,
                                          HostInteger start) {
  ClearText(data);
  if (!BeginMatch(data) || data.Handle == nullptr) return 0;
  KeepText(data, text);
  return Run(data, start);
}

[[gnu::flatten]] HostInteger rb_pcre_execAgain(RegExClassData& data, HostInteger start) {
  data.Lasterror = kErrorPlugin;
  data.Count = 0;
  if (!BeginMatch(data) || data.Handle == nullptr) return 0;
  ForgetLostSubject(data);
  return Run(data, start);
}

HostInteger rb_pcre_execM(RegExClassData& data, REALmemoryBlockStruct* text, HostInteger ByteOffset,
                          HostInteger ByteLength) {
  constexpr MemoryTexts kTexts{"ExecuteMemory", "text Memoryblock is nil"};
  ClearText(data);
  if (!BeginMatch(data) || !RequireBlock(text, kTexts) || data.Handle == nullptr) return 0;
  if (!KeepMemory(data, text, ByteLength, kTexts)) return 0;
  Run(data, ByteOffset);
  return data.Count;
}

HostInteger rb_pcre_execMT(REALobjectStruct* object, REALstringStruct* text, HostInteger start) {
  RegExClassData& data = DataOf(object);
  ClearText(data);
  if (!BeginMatch(data) || data.Handle == nullptr) return 0;
  const auto kept_alive = ObjectReference::Share(object);
  KeepText(data, text);
  return RunOnWorker(object, data, start);
}

HostInteger rb_pcre_execAgainMT(REALobjectStruct* object, HostInteger start) {
  RegExClassData& data = DataOf(object);
  if (!BeginMatch(data) || data.Handle == nullptr) return 0;
  ForgetLostSubject(data);
  const auto kept_alive = ObjectReference::Share(object);
  return RunOnWorker(object, data, start);
}

HostInteger rb_pcre_execMMT(REALobjectStruct* object, REALmemoryBlockStruct* text,
                            HostInteger ByteOffset, HostInteger ByteLength) {
  constexpr MemoryTexts kTexts{"ExecuteMemoryMT", "Memoryblock is nil"};
  RegExClassData& data = DataOf(object);
  ClearText(data);
  if (!BeginMatch(data) || !RequireBlock(text, kTexts) || data.Handle == nullptr) return 0;
  if (!KeepMemory(data, text, ByteLength, kTexts)) return 0;
  const auto kept_alive = ObjectReference::Share(object);
  return RunOnWorker(object, data, ByteOffset);
}

}  // namespace zrk
