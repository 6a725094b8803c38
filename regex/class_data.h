// The instance record of RegExZRK, which the host keeps inside every object of the class.
//
// It arrives zero-filled and is plain data: what it owns is raw here. The fields from Text on that
// concern the subject change in regex/subject.h only. A null Vector means that the
// object is not initialised. Offsets are in bytes; Vector and VectorSize count 32-bit entries.
#ifndef ZRK_REGEX_CLASS_DATA_H
#define ZRK_REGEX_CLASS_DATA_H

#include <pcre.h>

#include <cstdint>

#include "host/exceptions.h"
#include "host/records.h"
#include "regex/tables.h"

namespace zrk {

class rbData;
class rbText;
template <typename Adapter>
struct Kept;

// Lasterror of an operation that never reached the engine; the engine's own codes are negative too,
// and 0 is success.
inline constexpr std::int32_t kErrorPlugin = -99;

struct RegExClassData {
  std::int32_t Lasterror;
  std::int32_t CompileErrorCode;  // of pcre_compile2
  std::int32_t ErrorOffset;       // in bytes of the UTF-8 or raw pattern
  std::int32_t Count;             // pairs set by the last match
  std::int32_t TextLength;
  std::uint32_t CompileOptions;
  std::uint32_t ExecuteOptions;
  std::int32_t MatchLimit;  // the limits bind from 1 on
  std::int32_t MatchLimitRecursion;
  REALstringStruct* Text;             // one reference
  REALstringStruct* ErrorMessage;     // one reference
  REALmemoryBlockStruct* TextMemory;  // one reference
  Kept<rbText>* TextAdapter;          // owned; the UTF-8 form of Text
  Kept<rbData>* MemoryAdapter;        // owned; the bytes of TextMemory
  pcre* Handle;                       // owned, freed through pcre_free
  pcre_extra* StudyExtra;             // owned, freed with pcre_free_study
  const char* TextPointer;            // the subject: into one of the adapters
  std::int32_t VectorSize;            // a multiple of 3
  std::int32_t* Vector;               // owned, freed with free
  std::int32_t StartOffset;           // of the last threaded search
  std::int32_t Reserved;              // keeps the record at its registered size
};

static_assert(kWord != 4 || sizeof(RegExClassData) == 21 * kWord);

// The record of an object. The host says at registration where it lies.
inline RegExClassData& DataOf(REALobjectStruct* object) {
  return *reinterpret_cast<RegExClassData*>(reinterpret_cast<unsigned char*>(object) +
                                            RegExClass.DataOffset);
}

// Whether the object has its vector; raises "NilObjectException" otherwise.
inline bool RequireVector(const RegExClassData& data) {
  if (data.Vector != nullptr) return true;
  RaiseException("NilObjectException", "RegEx class not initialized.");
  return false;
}

// Frees the compiled pattern and its study block.
void ClearPattern(RegExClassData& data);

// "Constructor(VecSize as integer = 0)" and the class's destructor.
void RegExConstructor(RegExClassData& data, HostInteger VecSize);
void RegExDestructor(RegExClassData& data);

}  // namespace zrk

#endif  // ZRK_REGEX_CLASS_DATA_H
