// The properties and Config methods: one bit of an option word each, facts about the compiled
// pattern, and how the engine was built. Nothing here raises an exception.
#ifndef ZRK_REGEX_OPTIONS_H
#define ZRK_REGEX_OPTIONS_H

#include "regex/class_data.h"

// OPTION(property, word, engine option): getter, setter and property row of every option are made
// from these rows, in the order of registration. The getter answers whether any bit of the option
// is set, the setter sets or clears all of them; they differ for the newline options of several
// bits.
#define ZRK_OPTIONS(OPTION)                                                \
  OPTION("CompileOptionCaseLess", Compile, PCRE_CASELESS)                  \
  OPTION("CompileOptionMultiline", Compile, PCRE_MULTILINE)                \
  OPTION("CompileOptionDotAll", Compile, PCRE_DOTALL)                      \
  OPTION("CompileOptionExtended", Compile, PCRE_EXTENDED)                  \
  OPTION("CompileOptionAnchored", Compile, PCRE_ANCHORED)                  \
  OPTION("ExecuteOptionAnchored", Execute, PCRE_ANCHORED)                  \
  OPTION("CompileOptionDollarEndOnly", Compile, PCRE_DOLLAR_ENDONLY)       \
  OPTION("ExecuteOptionNotBOL", Execute, PCRE_NOTBOL)                      \
  OPTION("ExecuteOptionNotEOL", Execute, PCRE_NOTEOL)                      \
  OPTION("CompileOptionUngreedy", Compile, PCRE_UNGREEDY)                  \
  OPTION("ExecuteOptionNotEmpty", Execute, PCRE_NOTEMPTY)                  \
  OPTION("CompileOptionUTF8", Compile, PCRE_UTF8)                          \
  OPTION("CompileOptionNoAutoCapture", Compile, PCRE_NO_AUTO_CAPTURE)      \
  OPTION("CompileOptionNoUTF8Check", Compile, PCRE_NO_UTF8_CHECK)          \
  OPTION("ExecuteOptionNoUTF8Check", Execute, PCRE_NO_UTF8_CHECK)          \
  OPTION("CompileOptionAutoCallOut", Compile, PCRE_AUTO_CALLOUT)           \
  OPTION("ExecuteOptionPartial", Execute, PCRE_PARTIAL)                    \
  OPTION("CompileOptionFirstLine", Compile, PCRE_FIRSTLINE)                \
  OPTION("CompileOptionDuplicateNames", Compile, PCRE_DUPNAMES)            \
  OPTION("CompileOptionNewLineCR", Compile, PCRE_NEWLINE_CR)               \
  OPTION("CompileOptionNewLineLF", Compile, PCRE_NEWLINE_LF)               \
  OPTION("CompileOptionNewLineCRLF", Compile, PCRE_NEWLINE_CRLF)           \
  OPTION("CompileOptionNewLineAny", Compile, PCRE_NEWLINE_ANY)             \
  OPTION("CompileOptionNewLineAnyCRLF", Compile, PCRE_NEWLINE_ANYCRLF)     \
  OPTION("ExecuteOptionNewLineCR", Execute, PCRE_NEWLINE_CR)               \
  OPTION("ExecuteOptionNewLineLF", Execute, PCRE_NEWLINE_LF)               \
  OPTION("ExecuteOptionNewLineCRLF", Execute, PCRE_NEWLINE_CRLF)           \
  OPTION("ExecuteOptionNewLineAny", Execute, PCRE_NEWLINE_ANY)             \
  OPTION("ExecuteOptionNewLineAnyCRLF", Execute, PCRE_NEWLINE_ANYCRLF)     \
  OPTION("CompileOptionBSRAnyCRLF", Compile, PCRE_BSR_ANYCRLF)             \
  OPTION("ExecuteOptionBSRAnyCRLF", Execute, PCRE_BSR_ANYCRLF)             \
  OPTION("CompileOptionBSRUnicode", Compile, PCRE_BSR_UNICODE)             \
  OPTION("ExecuteOptionBSRUnicode", Execute, PCRE_BSR_UNICODE)             \
  OPTION("CompileOptionJavaScriptCompat", Compile, PCRE_JAVASCRIPT_COMPAT) \
  OPTION("ExecuteOptionNoStartOptimize", Execute, PCRE_NO_START_OPTIMIZE)  \
  OPTION("CompileOptionNoStartOptimize", Compile, PCRE_NO_START_OPTIMIZE)  \
  OPTION("ExecuteOptionPartialHard", Execute, PCRE_PARTIAL_HARD)           \
  OPTION("ExecuteOptionNotEmptyAtStart", Execute, PCRE_NOTEMPTY_ATSTART)   \
  OPTION("CompileOptionUnicodeCodePoints", Compile, PCRE_UCP)

// INFO(property, getter, engine's type of the item, item): facts about the compiled pattern.
#define ZRK_INFOS(INFO)                                                      \
  INFO("InfoStudySize", GetInfoStudySize, std::size_t, PCRE_INFO_STUDYSIZE)  \
  INFO("InfoSize", GetInfoSize, std::size_t, PCRE_INFO_SIZE)                 \
  INFO("InfoCaptureCount", GetInfoCaptureCount, int, PCRE_INFO_CAPTURECOUNT) \
  INFO("InfoNameCount", GetInfoNameCount, int, PCRE_INFO_NAMECOUNT)

// CONFIG(method, result, declared result, engine's type of the item, item): how the engine was
// built.
#define ZRK_CONFIGS(CONFIG)                                                                      \
  CONFIG(ConfigUTF8, HostBoolean, "boolean", int, PCRE_CONFIG_UTF8)                              \
  CONFIG(ConfigUnicodeProperties, HostBoolean, "boolean", int, PCRE_CONFIG_UNICODE_PROPERTIES)   \
  CONFIG(ConfigNewLine, HostInteger, "integer", int, PCRE_CONFIG_NEWLINE)                        \
  CONFIG(ConfigBSR, HostBoolean, "boolean", int, PCRE_CONFIG_BSR)                                \
  CONFIG(ConfigLinkSize, HostInteger, "integer", int, PCRE_CONFIG_LINK_SIZE)                     \
  CONFIG(ConfigMallocThreshold, HostInteger, "integer", int, PCRE_CONFIG_POSIX_MALLOC_THRESHOLD) \
  CONFIG(ConfigMatchLimit, HostInteger, "integer", unsigned long, PCRE_CONFIG_MATCH_LIMIT)       \
  CONFIG(ConfigMatchLimitRecursion, HostInteger, "integer", unsigned long,                       \
         PCRE_CONFIG_MATCH_LIMIT_RECURSION)                                                      \
  CONFIG(ConfigStackRecurse, HostBoolean, "boolean", int, PCRE_CONFIG_STACKRECURSE)

namespace zrk {

// The accessors take the row's parameter, which they do not need.
#define ZRK_DECLARE_OPTION(property, word, option)                            \
  HostBoolean Get##word##option(RegExClassData& data, HostInteger parameter); \
  void Set##word##option(RegExClassData& data, HostInteger parameter, HostBoolean value);
ZRK_OPTIONS(ZRK_DECLARE_OPTION)
#undef ZRK_DECLARE_OPTION

// 0, with ErrorPlugin in Lasterror, without a compiled pattern; the engine's code is there
// otherwise.
#define ZRK_DECLARE_INFO(property, getter, type, item) \
  HostInteger getter(RegExClassData& data, HostInteger parameter);
ZRK_INFOS(ZRK_DECLARE_INFO)
#undef ZRK_DECLARE_INFO

// Lasterror takes the engine's code.
#define ZRK_DECLARE_CONFIG(method, result, declared, type, item) \
  result method(RegExClassData& data);
ZRK_CONFIGS(ZRK_DECLARE_CONFIG)
#undef ZRK_DECLARE_CONFIG

// The engine's release and date.
REALstringStruct* rb_pcre_version(RegExClassData& data);

}  // namespace zrk

#endif  // ZRK_REGEX_OPTIONS_H
