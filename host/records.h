// The host's records and handles, as the library reads them and as it registers its class.
//
// A host record is a run of machine words: 32-bit words are the host's own interface, on a 64-bit
// machine every word of a registered record is pointer-wide and the order stays the same.
//
// The rules of the boundary, to which the other headers refer by number:
//  1. A null string handle is the empty string, in arguments and in results.
//  2. A Boolean is one signed byte; zero is false, everything else is true.
//  3. A reference that a service or a getter hands out is unlocked once by whoever received it;
//     a string or array that a method returns belongs to the host.
//  4. A service that the host lacks answers null, 0 or false, and the caller goes on.
//  5. No native exception leaves a function that the host calls.
#ifndef ZRK_HOST_RECORDS_H
#define ZRK_HOST_RECORDS_H

#include <cstddef>
#include <cstdint>

namespace zrk {

// The host language's Integer and Boolean. A host with a wider Integer changes these two lines.
using HostInteger = std::int32_t;
using HostBoolean = signed char;

// One word of a registered record.
using HostWord = std::intptr_t;

// The text encodings by the host's own numbers. Strings may carry other values as well.
enum HostEncoding : std::uint32_t {
  kEncodingMacRoman = 0x00000000,
  kEncodingUTF16 = 0x00000100,
  kEncodingISOLatin1 = 0x00000201,
  kEncodingWindowsLatin1 = 0x00000500,
  kEncodingASCII = 0x00000600,
  kEncodingUnknown = 0x0000FFFF,
  kEncodingUTF8 = 0x08000100,
  kEncodingUTF32 = 0x0C000100,
};

// An instance of any host class. Only its address means something to the library.
struct REALobjectStruct {};

// A reference-counted, immutable host string. The text begins at Buffer + 1, is Length bytes long
// and is followed by a zero byte.
struct REALstringStruct {
  unsigned char* Buffer;
  std::int32_t Length;
  std::uint32_t Encoding;
};

// A host memory block: Size bytes at Data. Read directly on hosts older than 2017.0 only.
struct REALmemoryBlockStruct : REALobjectStruct {
  unsigned char* Data;
  std::int32_t Size;
};

// Host arrays. Elements is null where the array has no direct storage; read directly on hosts
// older than 2017.0 only.
struct _REALarrayString : REALobjectStruct {
  REALstringStruct** Elements;
};
struct _REALarrayObject : REALobjectStruct {
  REALobjectStruct** Elements;
};

// The bytes of a string in a wanted encoding, filled by "PluginGetStringData" and handed back to
// "PluginDisposeStringData" once. Length is in bytes; no zero byte is promised after the text.
struct REALstringData {
  const char* Data;
  std::int32_t Length;
  void* HostWords[3];
};

// Any function pointer, as a table stores it and the host hands it out.
using HostFunction = void (*)();

// One property. A Getter or Setter of all ones makes the host read or write the field of the
// instance record that lies Parameter bytes from its start; null means there is none.
struct REALproperty {
  const char* Group;
  const char* Name;
  const char* Type;
  HostWord Flags;
  HostFunction Getter;
  HostFunction Setter;
  HostWord Parameter;
  HostWord Unused[5];
};

// One method: its function and its declaration in the host's language.
struct REALmethodDefinition {
  HostFunction Function;
  HostWord Unused;
  const char* Declaration;
  HostWord Flags;
  HostWord Unused2[2];
};

// One class constant, declared as "Name = value".
struct REALconstant {
  const char* Declaration;
  HostWord Unused[4];
};

// One event. The library defines none; the row's shape is part of the host's layout.
struct REALevent {
  HostWord Words[4];
};

// A class as it is registered. Every table is followed by its row count.
struct REALclassDefinition {
  HostWord Version;
  const char* Name;
  const char* SuperName;
  HostWord DataSize;
  HostWord DataOffset;  // filled by the host: where the instance record starts in an object
  HostFunction Constructor;
  HostFunction Destructor;
  REALproperty* Properties;
  HostWord PropertyCount;
  REALmethodDefinition* Methods;
  HostWord MethodCount;
  REALevent* Events;
  HostWord EventCount;
  HostWord Unused[3];
  HostWord* FurtherTable;
  HostWord FurtherCount;
  REALconstant* Constants;
  HostWord ConstantCount;
  HostWord Flags;
  REALproperty* SharedProperties;
  HostWord SharedPropertyCount;
  REALmethodDefinition* SharedMethods;
  HostWord SharedMethodCount;
};

inline constexpr std::size_t kWord = sizeof(HostWord);
static_assert(sizeof(REALproperty) == 12 * kWord);
static_assert(sizeof(REALmethodDefinition) == 6 * kWord);
static_assert(sizeof(REALconstant) == 5 * kWord);
static_assert(sizeof(REALevent) == 4 * kWord);
static_assert(sizeof(REALclassDefinition) == 25 * kWord);
static_assert(sizeof(REALstringData) == 5 * kWord);

// Procedures that the array services hand out for one array. Indexes count elements from 0; a
// getter's result carries one reference (rule 3), an inserter takes a reference of its own.
using StringArrayGetter = REALstringStruct* (*)(_REALarrayString*, std::int32_t index);
using ObjectArrayGetter = REALobjectStruct* (*)(_REALarrayObject*, std::int32_t index);
using StringArrayInserter = void (*)(_REALarrayString*, std::int32_t index, REALstringStruct*);

}  // namespace zrk

#endif  // ZRK_HOST_RECORDS_H
