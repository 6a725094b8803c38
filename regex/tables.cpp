// The class as it is registered: its record with the tables of methods, properties and constants.
// Rows stand in the order in which the host sees them.
#include <cstddef>
#include <iterator>

#include "regex/compile.h"
#include "regex/entry.h"
#include "regex/escape.h"
#include "regex/execute.h"
#include "regex/match_arrays.h"
#include "regex/options.h"
#include "regex/replace.h"
#include "regex/results.h"

namespace zrk {

namespace {

constexpr HostWord kLayoutVersion = 13;
constexpr HostWord kClassFlags = 4;
constexpr HostWord kMethodFlags = 4;
constexpr HostWord kPropertyFlags = 6;

template <auto kFunction>
REALmethodDefinition Method(const char* declaration) {
  return {kEntry<kFunction>, 0, declaration, kMethodFlags, {}};
}

REALproperty Property(const char* name, const char* type, HostFunction getter, HostFunction setter,
                      std::size_t parameter) {
  return {nullptr, name, type, kPropertyFlags, getter, setter, static_cast<HostWord>(parameter),
          {}};
}

// Tells the host to read or write the field of the record itself.
HostFunction DirectAccess() { return reinterpret_cast<HostFunction>(HostWord{-1}); }

#define ZRK_READ_FIELD(field, type) \
  Property(#field, type, DirectAccess(), nullptr, offsetof(RegExClassData, field))
#define ZRK_FIELD(field, type) \
  Property(#field, type, DirectAccess(), DirectAccess(), offsetof(RegExClassData, field))

#define ZRK_CONFIG_ROW(method, result, declared, type, item) \
  Method<method>(#method " as " declared),
#define ZRK_INFO_ROW(property, getter, type, item) \
  Property(property, "Integer", kEntry<getter>, nullptr, 0),
#define ZRK_OPTION_ROW(property, word, option) \
  Property(property, "Boolean", kEntry<Get##word##option>, kEntry<Set##word##option>, 0),

// clang-format off
REALmethodDefinition RegExMethods[] = {
    Method<Match>("Match(text as string) as boolean"),
    Method<MatchStringArray>("Match(text() as string, inverse as boolean = false) as string()"),
    Method<MatchVariantArray>("Match(text() as variant, inverse as boolean = false) as string()"),
    Method<InfoNameEntry>("InfoNameEntry(Index as Integer) as string"),
    Method<RegExConstructor>("Constructor(VecSize as integer = 0)"),
    Method<rb_pcre_version>("Version as string"),
    Method<rb_pcre_compile2>("Compile(pattern as string) as boolean"),
    Method<rb_pcre_compileM>("CompileMemory(pattern as memoryblock, ByteOffset as integer) as boolean"),
    Method<rb_pcre_study>("Study as boolean"),
    Method<rb_pcre_execAgain>("Execute(start as integer = 0) as integer"),
    Method<rb_pcre_exec>("Execute(text as string, start as integer = 0) as integer"),
    Method<rb_pcre_execM>("ExecuteMemory(text as memoryblock, ByteOffset as integer = 0, ByteLength as integer = 0) as integer"),
    Method<rb_pcre_execAgainMT>("ExecuteMT(start as integer = 0) as integer"),
    Method<rb_pcre_execMT>("ExecuteMT(text as string, start as integer = 0) as integer"),
    Method<rb_pcre_execMMT>("ExecuteMemoryMT(text as memoryblock, ByteOffset as integer = 0, ByteLength as integer = 0) as integer"),
    Method<GetOffset>("Offset(index as Integer) as integer"),
    Method<GetOffsetChar>("OffsetCharacters(index as Integer) as integer"),
    Method<rb_pcre_get_substringI>("Substring(index as integer) as string"),
    Method<rb_pcre_get_substringN>("Substring(name as string) as string"),
    Method<rbpcre_get_stringnumber>("StringNumber(name as string) as integer"),
    ZRK_CONFIGS(ZRK_CONFIG_ROW)
    Method<Replace>("Replace(NewText as string) as string"),
    Method<ReplaceSelection>("ReplaceSelection(NewText as string) as string"),
    Method<ReplaceAll>("ReplaceAll(Target as string, NewText as string = \"\") as string"),
    Method<EscapeString>("Escape(text as string) as string"),
    Method<UnescapeString>("Unescape(text as string) as string"),
};

REALproperty RegExProperties[] = {
    ZRK_INFOS(ZRK_INFO_ROW)
    ZRK_READ_FIELD(VectorSize, "Integer"),
    ZRK_READ_FIELD(Lasterror, "Integer"),
    ZRK_READ_FIELD(Handle, "Integer"),
    ZRK_READ_FIELD(Count, "Integer"),
    ZRK_READ_FIELD(Text, "String"),
    ZRK_READ_FIELD(TextMemory, "Memoryblock"),
    ZRK_READ_FIELD(ErrorMessage, "String"),
    ZRK_READ_FIELD(ErrorOffset, "Integer"),
    ZRK_FIELD(CompileOptions, "Integer"),
    ZRK_FIELD(ExecuteOptions, "Integer"),
    ZRK_FIELD(MatchLimit, "Integer"),
    ZRK_FIELD(MatchLimitRecursion, "Integer"),
    ZRK_OPTIONS(ZRK_OPTION_ROW)
};

REALconstant Constants[] = {
    {"ErrorPlugin = -99", {}},
    {"ErrorNoMatch = -1", {}},
    {"ErrorNull = -2", {}},
    {"ErrorBadOption = -3", {}},
    {"ErrorBadMagic = -4", {}},
    {"ErrorUnknownOpcode = -5", {}},
    {"ErrorUnknownNode = -6", {}},
    {"ErrorNoSubstring = -7", {}},
    {"ErrorMatchLimit = -8", {}},
    {"ErrorCallOut = -9", {}},
    {"ErrorBadUTF8 = -10", {}},
    {"ErrorBadUTF8Offset = -11", {}},
    {"ErrorPartial = -12", {}},
    {"ErrorBadPartial = -13", {}},
    {"ErrorInternal = -14", {}},
    {"ErrorBadCount = -15", {}},
    {"ErrorDFAUItem = -16", {}},
    {"ErrorDFAUCond = -17", {}},
    {"ErrorDFAUMLimit = -18", {}},
    {"ErrorDFAWSSize = -19", {}},
    {"ErrorDFARecurse = -20", {}},
    {"ErrorRecursionLimit = -21", {}},
    {"ErrorNullWSLimit = -22", {}},
    {"ErrorBadNewLine = -23", {}},
    {"ErrorBadOffset = -24", {}},
    {"ErrorShortUTF8 = -25", {}},
};
// clang-format on

static_assert(std::size(RegExMethods) == 34);
static_assert(std::size(RegExProperties) == 55);
static_assert(std::size(Constants) == 26);

}  // namespace

REALclassDefinition RegExClass = {
    .Version = kLayoutVersion,
    .Name = "RegExZRK",
    .SuperName = nullptr,
    .DataSize = sizeof(RegExClassData),
    .DataOffset = 0,
    .Constructor = nullptr,
    .Destructor = kEntry<RegExDestructor>,
    .Properties = RegExProperties,
    .PropertyCount = std::size(RegExProperties),
    .Methods = RegExMethods,
    .MethodCount = std::size(RegExMethods),
    .Events = nullptr,
    .EventCount = 0,
    .Unused = {},
    .FurtherTable = nullptr,
    .FurtherCount = 0,
    .Constants = Constants,
    .ConstantCount = std::size(Constants),
    .Flags = kClassFlags,
    .SharedProperties = nullptr,
    .SharedPropertyCount = 0,
    .SharedMethods = nullptr,
    .SharedMethodCount = 0,
};

}  // namespace zrk
