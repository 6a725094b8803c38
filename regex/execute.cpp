// Every search takes the same steps: take the earlier subject out, make the object ready, keep the
// new subject, run the engine, store what it answered. What was taken out is given back last.
#include "regex/execute.h"

#include <algorithm>
#include <functional>
#include <optional>

#include "host/exceptions.h"
#include "host/threaded_runner.h"
#include "regex/engine.h"

namespace zrk {

namespace {

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

// Runs the engine over the kept subject and stores what it answered.
HostInteger RunHere(RegExClassData& data, HostInteger start) {
  EngineCall call = PrepareCall(data);
  SetSubject(call, SubjectOf(data), start);
  const int result = RunEngine(call);
  StoreResult(data, result);
  return result;
}

// [worker] The call was made ready on the host's thread: nothing here allocates, asks the host or
// reads the object, so what the program changes meanwhile does not reach it.
void WorkExecute(EngineCall& call, std::optional<int>& result) { result = RunEngine(call); }

// The same on another thread, without the script's limits; answers Count.
HostInteger RunOnWorker(RegExClassData& data, HostInteger start) {
  data.StartOffset = start;
  EngineCall call = PrepareUnlimitedCall(data);
  SetSubject(call, SubjectOf(data), start);
  std::optional<int> result;  // stays empty where no thread could be had
  const auto work = [&] { WorkExecute(call, result); };
  RunThreaded(std::ref(work), nullptr);
  if (result) StoreResult(data, *result);
  return data.Count;
}

}  // namespace

bool BeginMatch(RegExClassData& data, StringReference& earlier_message) {
  if (!RequireVector(data)) return false;
  data.Lasterror = kErrorPlugin;
  data.Count = 0;
  std::fill_n(data.Vector, data.VectorSize, 0);
  earlier_message = ClearErrorMessage(data);
  return true;
}

// The engine marks a search without a match in its vector; a script finds the zeros of a new one.
void StoreResult(RegExClassData& data, int result) {
  if (result == PCRE_ERROR_NOMATCH) std::fill_n(data.Vector, data.VectorSize, 0);
  data.Count = std::max(result, 0);
  data.Lasterror = std::min(result, 0);
}

// Execute and Match are flattened: of the 19 and 16 ns that they take beyond the engine, calls
// within the library would be another 4 and 2.
[[gnu::flatten]] HostInteger rb_pcre_exec(RegExClassData& data, REALstringStruct* text,
                                          HostInteger start) {
  rbText::Holdings former;
  Released earlier = ClearText(data);
  StringReference message;
  if (!BeginMatch(data, message) || data.Handle == nullptr) return 0;
  KeepText(data, text, earlier, former);
  return RunHere(data, start);
}

[[gnu::flatten]] HostInteger rb_pcre_execAgain(RegExClassData& data, HostInteger start) {
  data.Lasterror = kErrorPlugin;
  data.Count = 0;
  const auto lost = ClearLostSubject(data);
  StringReference message;
  if (!BeginMatch(data, message) || data.Handle == nullptr) return 0;
  return RunHere(data, start);
}

// ByteOffset only moves the place where the search begins; what lies before it can be looked at.
HostInteger rb_pcre_execM(RegExClassData& data, REALmemoryBlockStruct* text, HostInteger ByteOffset,
                          HostInteger ByteLength) {
  constexpr MemoryTexts kTexts{"ExecuteMemory", "text Memoryblock is nil"};
  Released earlier = ClearText(data);
  StringReference message;
  if (!BeginMatch(data, message) || !RequireBlock(text, kTexts) || data.Handle == nullptr) return 0;
  if (!KeepMemory(data, text, ByteLength, kTexts.method)) return 0;
  return std::max(RunHere(data, ByteOffset), 0);
}

// From here on the engine runs on a worker. The object is referenced meanwhile, since a yield may
// run a program that lets go of it.
HostInteger rb_pcre_execMT(REALobjectStruct* object, REALstringStruct* text, HostInteger start) {
  RegExClassData& data = DataOf(object);
  rbText::Holdings former;
  Released earlier = ClearText(data);
  StringReference message;
  if (!BeginMatch(data, message) || data.Handle == nullptr) return 0;
  const auto kept_alive = ObjectReference::Share(object);
  KeepText(data, text, earlier, former);
  return RunOnWorker(data, start);
}

HostInteger rb_pcre_execAgainMT(REALobjectStruct* object, HostInteger start) {
  RegExClassData& data = DataOf(object);
  const auto lost = ClearLostSubject(data);
  StringReference message;
  if (!BeginMatch(data, message) || data.Handle == nullptr) return 0;
  const auto kept_alive = ObjectReference::Share(object);
  return RunOnWorker(data, start);
}

HostInteger rb_pcre_execMMT(REALobjectStruct* object, REALmemoryBlockStruct* text,
                            HostInteger ByteOffset, HostInteger ByteLength) {
  constexpr MemoryTexts kTexts{"ExecuteMemoryMT", "Memoryblock is nil"};
  RegExClassData& data = DataOf(object);
  Released earlier = ClearText(data);
  StringReference message;
  if (!BeginMatch(data, message) || !RequireBlock(text, kTexts) || data.Handle == nullptr) return 0;
  if (!KeepMemory(data, text, ByteLength, kTexts.method)) return 0;
  const auto kept_alive = ObjectReference::Share(object);
  return RunOnWorker(data, ByteOffset);
}

}  // namespace zrk
