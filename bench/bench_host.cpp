#include "bench/bench_host.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <span>

#include "host/service_list.h"

namespace bench {

namespace {

using namespace zrk;  // NOLINT(google-build-using-namespace): the host's own names

// What the library got from Start and gave back by registering.
double host_version;
REALclassDefinition* registered;

// ---- Strings: a record, a count, and the bytes behind them in one piece of memory.

struct CountedString {
  REALstringStruct record;
  std::int32_t references;
  unsigned char bytes[1];  // one that is not text, the text, a zero byte
};

CountedString* AsCounted(REALstringStruct* string) {
  return reinterpret_cast<CountedString*>(string);
}

// Short strings come and go with every Substring; their memory is kept for the next one.
constexpr std::size_t kShortText = 40;
constexpr std::size_t kShortString = sizeof(CountedString) + kShortText + 1;
std::vector<void*> spare_short_strings;

void* NewMemory(std::size_t length) {
  if (length > kShortText) return std::malloc(sizeof(CountedString) + length + 1);
  if (spare_short_strings.empty()) return std::malloc(kShortString);
  void* const memory = spare_short_strings.back();
  spare_short_strings.pop_back();
  return memory;
}

void FreeMemory(CountedString* string) {
  if (static_cast<std::size_t>(string->record.Length) > kShortText) return std::free(string);
  spare_short_strings.push_back(string);
}

REALstringStruct* NewString(const char* text, std::size_t length, std::uint32_t encoding) {
  auto* const string = static_cast<CountedString*>(NewMemory(length));
  if (string == nullptr) Fail("out of memory");
  string->record = {string->bytes, static_cast<std::int32_t>(length), encoding};
  string->references = 1;
  if (text != nullptr) std::memcpy(string->bytes + 1, text, length);
  string->bytes[1 + length] = 0;
  return &string->record;
}

void LockString(REALstringStruct* string) { ++AsCounted(string)->references; }

void UnlockString(REALstringStruct* string) {
  if (--AsCounted(string)->references == 0) FreeMemory(AsCounted(string));
}

std::uint32_t StringEncoding(REALstringStruct* string) { return string->Encoding; }

REALstringStruct* BuildString(const char* text, std::int32_t length, std::uint32_t encoding) {
  return NewString(text, static_cast<std::size_t>(length), encoding);
}

REALstringStruct* BuildUnmarkedString(const char* text, std::int32_t length) {
  return BuildString(text, length, kEncodingUnknown);
}

void SetEncoding(REALstringStruct* string, std::uint32_t encoding) { string->Encoding = encoding; }

// All strings here are UTF-8 already, which is the one encoding that is ever asked for.
unsigned char StringData(REALstringStruct* string, std::uint32_t /*encoding*/,
                         REALstringData* data) {
  LockString(string);
  data->Data = reinterpret_cast<const char*>(string->Buffer) + 1;
  data->Length = string->Length;
  data->HostWords[0] = string;
  return 1;
}

void DisposeStringData(REALstringData* data) {
  UnlockString(static_cast<REALstringStruct*>(data->HostWords[0]));
}

// ---- Objects and memory blocks: both are locked by the same services and begin alike.

constexpr std::size_t kRecordOffset = 32;
static_assert(sizeof(MemoryBlock) <= kRecordOffset);

MemoryBlock* AsBlock(REALobjectStruct* object) { return reinterpret_cast<MemoryBlock*>(object); }

void LockObject(REALobjectStruct* object) { ++AsBlock(object)->references; }
void UnlockObject(REALobjectStruct* object) { --AsBlock(object)->references; }

unsigned char* BlockPointer(REALmemoryBlockStruct* block) { return block->Data; }
std::int32_t BlockSize(REALmemoryBlockStruct* block) { return block->Size; }

// ---- Arrays.

Array* AsArray(void* handle) { return static_cast<Array*>(handle); }

_REALarrayString* CreateArray(std::int32_t /*type*/, std::int32_t /*upper_bound*/) {
  return (new Array)->handle();
}

std::int32_t UpperBound(REALobjectStruct* array) {
  return static_cast<std::int32_t>(AsArray(array)->elements.size()) - 1;
}

REALstringStruct* GetElement(_REALarrayString* array, std::int32_t index) {
  REALstringStruct* const string = AsArray(array)->elements[static_cast<std::size_t>(index)];
  LockString(string);
  return string;
}

void InsertElement(_REALarrayString* array, std::int32_t /*index: always the end*/,
                   REALstringStruct* string) {
  AsArray(array)->Append(string);
}

StringArrayGetter GetterFor(_REALarrayString* /*array*/) { return GetElement; }
StringArrayInserter InserterFor(_REALarrayString* /*array*/) { return InsertElement; }

// ---- What nothing here should ever lead to.

REALobjectStruct* NewInstance(const char* name) { Fail(std::string("the library raised ") + name); }
void RaiseException(REALobjectStruct* /*exception*/) { Fail("the library raised an exception"); }

void RegisterClass(REALclassDefinition* definition) {
  definition->DataOffset = kRecordOffset;
  registered = definition;
}

void Yield() {}

double Version() { return host_version; }

// ---- The roster. The list of services gives each its name, and its type to the compiler.

#define ZRK_SERVICE_TYPE(wrapper, binding, result, arguments, name, second_name, neutral) \
  struct wrapper##Service {                                                               \
    using Signature = result arguments;                                                   \
    [[maybe_unused]] static constexpr const char* kName = name;                           \
  };
ZRK_HOST_SERVICES(ZRK_SERVICE_TYPE)
#undef ZRK_SERVICE_TYPE

struct Offer {
  const char* name;
  void* function;
};

template <typename Service>
Offer Answer(typename Service::Signature* function) {
  return {Service::kName, reinterpret_cast<void*>(function)};
}

void* Resolve(const char* name) {
  static const Offer kOffers[] = {
      {"REALGetRBVersion", reinterpret_cast<void*>(Version)},
      Answer<REALRegisterClassService>(RegisterClass),
      Answer<REALnewInstanceService>(NewInstance),
      Answer<REALRaiseExceptionService>(RaiseException),
      Answer<REALLockObjectService>(LockObject),
      Answer<REALUnlockObjectService>(UnlockObject),
      Answer<REALLockStringService>(LockString),
      Answer<REALUnlockStringService>(UnlockString),
      Answer<REALGetStringEncodingService>(StringEncoding),
      Answer<REALGetStringDataService>(StringData),
      Answer<REALDisposeStringDataService>(DisposeStringData),
      Answer<REALBuildStringWithEncodingService>(BuildString),
      Answer<originalREALBuildStringService>(BuildUnmarkedString),
      Answer<REALSetStringEncodingService>(SetEncoding),
      Answer<REALMemoryBlockGetPtrService>(BlockPointer),
      Answer<REALMemoryBlockGetSizeService>(BlockSize),
      Answer<REALCreateArrayService>(CreateArray),
      Answer<REALGetArrayUBoundService>(UpperBound),
      Answer<REALGetArrayValueStringService>(GetterFor),
      Answer<REALInsertArrayValueStringService>(InserterFor),
      Answer<REALYieldToRBService>(Yield),
  };
  const auto* const found = std::ranges::find_if(
      kOffers, [&](const Offer& offer) { return std::strcmp(offer.name, name) == 0; });
  return found != std::end(kOffers) ? found->function : nullptr;
}

// The instance record's field behind a property.
std::int32_t& Field(REALobjectStruct* object, std::string_view name) {
  for (const REALproperty& row :
       std::span(registered->Properties, static_cast<std::size_t>(registered->PropertyCount))) {
    if (row.Name != name) continue;
    auto* const record = reinterpret_cast<unsigned char*>(object) + kRecordOffset;
    return *reinterpret_cast<std::int32_t*>(record + row.Parameter);
  }
  Fail("no such property: " + std::string(name));
}

}  // namespace

void Fail(const std::string& message) {
  std::fprintf(stderr, "zrk_bench: %s\n", message.c_str());
  std::_Exit(2);  // what static objects still hold may be what is wrong
}

void Start(double version) {
  host_version = version;
  void* const library = dlopen(ZRK_LIBRARY_PATH, RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) Fail(dlerror());
  const auto plugin_main =
      reinterpret_cast<void (*)(void* (*)(const char*))>(dlsym(library, "REALPluginMain"));
  if (plugin_main == nullptr) Fail("the library has no REALPluginMain");
  plugin_main(Resolve);
  if (registered == nullptr) Fail("the library registered no class");
}

HostFunction FindMethod(const char* declaration) {
  for (const REALmethodDefinition& row :
       std::span(registered->Methods, static_cast<std::size_t>(registered->MethodCount))) {
    if (std::strcmp(row.Declaration, declaration) == 0) return row.Function;
  }
  Fail(std::string("no such method: ") + declaration);
}

String::String(std::string_view text)
    : string_(NewString(text.data(), text.size(), kEncodingUTF8)) {}

String String::FromFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary | std::ios::ate);
  if (!file) Fail("cannot read " + path + "; bench/make-text makes it");
  const auto length = static_cast<std::size_t>(file.tellg());
  String string(NewString(nullptr, length, kEncodingUTF8));
  file.seekg(0);
  file.read(reinterpret_cast<char*>(string.string_->Buffer) + 1,
            static_cast<std::streamsize>(length));
  if (!file) Fail("cannot read all of " + path);
  return string;
}

String String::Adopt(REALstringStruct* string) {
  return String(string != nullptr ? string : NewString("", 0, kEncodingUTF8));
}

String::~String() { Unlock(string_); }

std::string_view String::view() const {
  return {reinterpret_cast<const char*>(string_->Buffer) + 1,
          static_cast<std::size_t>(string_->Length)};
}

void Unlock(REALstringStruct* string) {
  if (string != nullptr) UnlockString(string);
}

Array::~Array() { std::ranges::for_each(elements, UnlockString); }

void Array::Append(REALstringStruct* string) {
  LockString(string);
  elements.push_back(string);
  record.Elements = elements.data();
}

void Unlock(_REALarrayString* array) { delete AsArray(array); }

MemoryBlock::MemoryBlock(const String& bytes)
    : record{{}, bytes.get()->Buffer + 1, bytes.length()} {}

RegEx::RegEx(const char* pattern, int compile_options)
    : object_(static_cast<REALobjectStruct*>(
          std::calloc(1, kRecordOffset + static_cast<std::size_t>(registered->DataSize)))) {
  if (object_ == nullptr) Fail("out of memory");
  Method<void(HostInteger)>(object_, "Constructor(VecSize as integer = 0)")(kVectorSize);
  Field(object_, "CompileOptions") = compile_options;
  Field(object_, "ExecuteOptions") = kExecuteOptions;
  const String text(pattern);
  const Method<HostBoolean(Text)> compile(object_, "Compile(pattern as string) as boolean");
  if (!compile(text.get())) Fail(std::string("cannot compile ") + pattern);
}

RegEx::~RegEx() {
  reinterpret_cast<void (*)(REALobjectStruct*)>(registered->Destructor)(object_);
  std::free(object_);
}

}  // namespace bench
