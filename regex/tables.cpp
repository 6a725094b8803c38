// The class as it is registered: its record with the tables of methods, properties and constants.
// Rows stand in the order in which the host sees them; docs/maintaining.md tells what a new one
// needs.
#include "regex/tables.h"

#include <cstddef>
#include <iterator>

#include "regex/compile.h"
#include "regex/entry.h"
#include "regex/escape.h"
#include "regex/execute.h"
#include "regex/match.h"
#include "regex/options.h"
#include "regex/replace.h"
#include "regex/results.h"

namespace zrk {

namespace {

constexpr HostWord kLayoutVersion = 13;
constexpr HostWord kClassFlags = 4;
constexpr HostWord kMethodFlags = 4;
constexpr HostWord kPropertyFlags = 6;

// What makes the rows below.

template <auto kFunction>
REALmethodDefinition Method(const char* declaration) {
  return {kEntry<kFunction>, 0, declaration, kMethodFlags, {}};
}

template <typename Result, int kItem, typename Value = int>
REALmethodDefinition Config(const char* declaration) {
  return Method<GetConfig<Result, kItem, Value>>(declaration);
}

REALproperty Property(const char* name, const char* type, HostFunction getter, HostFunction setter,
                      std::size_t parameter = 0) {
  return {nullptr, name, type, kPropertyFlags, getter, setter, static_cast<HostWord>(parameter),
          {}};
}

template <int kItem, typename Value = int>
REALproperty Info(const char* name) {
  return Property(name, "Integer", kEntry<GetInfo<kItem, Value>>, nullptr);
}

constexpr auto kCompile = &RegExClassData::CompileOptions;
constexpr auto kExecute = &RegExClassData::ExecuteOptions;

template <auto kWord, std::uint32_t kOption>
REALproperty Option(const char* name) {
  return Property(name, "Boolean", kEntry<GetOption<kWord, kOption>>,
                  kEntry<SetOption<kWord, kOption>>);
}

// The host reads, and maybe writes, the field of the instance record itself.
HostFunction DirectAccess() { return reinterpret_cast<HostFunction>(HostWord{-1}); }

REALproperty ReadOnlyField(const char* name, const char* type, std::size_t offset) {
  return Property(name, type, DirectAccess(), nullptr, offset);
}

REALproperty Field(const char* name, const char* type, std::size_t offset) {
  return Property(name, type, DirectAccess(), DirectAccess(), offset);
}

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
    Config<HostBoolean, PCRE_CONFIG_UTF8>("ConfigUTF8 as boolean"),
    Config<HostBoolean, PCRE_CONFIG_UNICODE_PROPERTIES>("ConfigUnicodeProperties as boolean"),
    Config<HostInteger, PCRE_CONFIG_NEWLINE>("ConfigNewLine as integer"),
    Config<HostBoolean, PCRE_CONFIG_BSR>("ConfigBSR as boolean"),
    Config<HostInteger, PCRE_CONFIG_LINK_SIZE>("ConfigLinkSize as integer"),
    Config<HostInteger, PCRE_CONFIG_POSIX_MALLOC_THRESHOLD>("ConfigMallocThreshold as integer"),
    Config<HostInteger, PCRE_CONFIG_MATCH_LIMIT, unsigned long>("ConfigMatchLimit as integer"),
    Config<HostInteger, PCRE_CONFIG_MATCH_LIMIT_RECURSION, unsigned long>("ConfigMatchLimitRecursion as integer"),
    Config<HostBoolean, PCRE_CONFIG_STACKRECURSE>("ConfigStackRecurse as boolean"),
    Method<Replace>("Replace(NewText as string) as string"),
    Method<ReplaceSelection>("ReplaceSelection(NewText as string) as string"),
    Method<ReplaceAll>("ReplaceAll(Target as string, NewText as string = \"\") as string"),
    Method<EscapeString>("Escape(text as string) as string"),
    Method<UnescapeString>("Unescape(text as string) as string"),
};

REALproperty RegExProperties[] = {
    Info<PCRE_INFO_STUDYSIZE, std::size_t>("InfoStudySize"),
    Info<PCRE_INFO_SIZE, std::size_t>("InfoSize"),
    Info<PCRE_INFO_CAPTURECOUNT>("InfoCaptureCount"),
    Info<PCRE_INFO_NAMECOUNT>("InfoNameCount"),
    ReadOnlyField("VectorSize", "Integer", offsetof(RegExClassData, VectorSize)),
    ReadOnlyField("Lasterror", "Integer", offsetof(RegExClassData, Lasterror)),
    ReadOnlyField("Handle", "Integer", offsetof(RegExClassData, Handle)),
    ReadOnlyField("Count", "Integer", offsetof(RegExClassData, Count)),
    ReadOnlyField("Text", "String", offsetof(RegExClassData, Text)),
    ReadOnlyField("TextMemory", "Memoryblock", offsetof(RegExClassData, TextMemory)),
    ReadOnlyField("ErrorMessage", "String", offsetof(RegExClassData, ErrorMessage)),
    ReadOnlyField("ErrorOffset", "Integer", offsetof(RegExClassData, ErrorOffset)),
    Field("CompileOptions", "Integer", offsetof(RegExClassData, CompileOptions)),
    Field("ExecuteOptions", "Integer", offsetof(RegExClassData, ExecuteOptions)),
    Field("MatchLimit", "Integer", offsetof(RegExClassData, MatchLimit)),
    Field("MatchLimitRecursion", "Integer", offsetof(RegExClassData, MatchLimitRecursion)),
    Option<kCompile, PCRE_CASELESS>("CompileOptionCaseLess"),
    Option<kCompile, PCRE_MULTILINE>("CompileOptionMultiline"),
    Option<kCompile, PCRE_DOTALL>("CompileOptionDotAll"),
    Option<kCompile, PCRE_EXTENDED>("CompileOptionExtended"),
    Option<kCompile, PCRE_ANCHORED>("CompileOptionAnchored"),
    Option<kExecute, PCRE_ANCHORED>("ExecuteOptionAnchored"),
    Option<kCompile, PCRE_DOLLAR_ENDONLY>("CompileOptionDollarEndOnly"),
    Option<kExecute, PCRE_NOTBOL>("ExecuteOptionNotBOL"),
    Option<kExecute, PCRE_NOTEOL>("ExecuteOptionNotEOL"),
    Option<kCompile, PCRE_UNGREEDY>("CompileOptionUngreedy"),
    Option<kExecute, PCRE_NOTEMPTY>("ExecuteOptionNotEmpty"),
    Option<kCompile, PCRE_UTF8>("CompileOptionUTF8"),
    Option<kCompile, PCRE_NO_AUTO_CAPTURE>("CompileOptionNoAutoCapture"),
    Option<kCompile, PCRE_NO_UTF8_CHECK>("CompileOptionNoUTF8Check"),
    Option<kExecute, PCRE_NO_UTF8_CHECK>("ExecuteOptionNoUTF8Check"),
    Option<kCompile, PCRE_AUTO_CALLOUT>("CompileOptionAutoCallOut"),
    Option<kExecute, PCRE_PARTIAL>("ExecuteOptionPartial"),
    Option<kCompile, PCRE_FIRSTLINE>("CompileOptionFirstLine"),
    Option<kCompile, PCRE_DUPNAMES>("CompileOptionDuplicateNames"),
    Option<kCompile, PCRE_NEWLINE_CR>("CompileOptionNewLineCR"),
    Option<kCompile, PCRE_NEWLINE_LF>("CompileOptionNewLineLF"),
    Option<kCompile, PCRE_NEWLINE_CRLF>("CompileOptionNewLineCRLF"),
    Option<kCompile, PCRE_NEWLINE_ANY>("CompileOptionNewLineAny"),
    Option<kCompile, PCRE_NEWLINE_ANYCRLF>("CompileOptionNewLineAnyCRLF"),
    Option<kExecute, PCRE_NEWLINE_CR>("ExecuteOptionNewLineCR"),
    Option<kExecute, PCRE_NEWLINE_LF>("ExecuteOptionNewLineLF"),
    Option<kExecute, PCRE_NEWLINE_CRLF>("ExecuteOptionNewLineCRLF"),
    Option<kExecute, PCRE_NEWLINE_ANY>("ExecuteOptionNewLineAny"),
    Option<kExecute, PCRE_NEWLINE_ANYCRLF>("ExecuteOptionNewLineAnyCRLF"),
    Option<kCompile, PCRE_BSR_ANYCRLF>("CompileOptionBSRAnyCRLF"),
    Option<kExecute, PCRE_BSR_ANYCRLF>("ExecuteOptionBSRAnyCRLF"),
    Option<kCompile, PCRE_BSR_UNICODE>("CompileOptionBSRUnicode"),
    Option<kExecute, PCRE_BSR_UNICODE>("ExecuteOptionBSRUnicode"),
    Option<kCompile, PCRE_JAVASCRIPT_COMPAT>("CompileOptionJavaScriptCompat"),
    Option<kExecute, PCRE_NO_START_OPTIMIZE>("ExecuteOptionNoStartOptimize"),
    Option<kCompile, PCRE_NO_START_OPTIMIZE>("CompileOptionNoStartOptimize"),
    Option<kExecute, PCRE_PARTIAL_HARD>("ExecuteOptionPartialHard"),
    Option<kExecute, PCRE_NOTEMPTY_ATSTART>("ExecuteOptionNotEmptyAtStart"),
    Option<kCompile, PCRE_UCP>("CompileOptionUnicodeCodePoints"),
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
