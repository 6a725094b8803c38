# The target "engine": what the library is linked with. The system's libpcre, or, for a library that
# stands by itself, PCRE built here from the source that tools/fetch-engine unpacked.
if(NOT ZRK_STANDALONE)
  add_library(engine ALIAS PkgConfig::PCRE)
  return()
endif()

set(source ${PROJECT_SOURCE_DIR}/build/engine)
if(NOT EXISTS ${source}/.release)
  message(FATAL_ERROR "The engine's source is not there yet: run tools/fetch-engine first.")
endif()

# The engine's own way to be built without its configure script: files to rename, and settings to
# define. Debian asks for UTF-8 and Unicode properties and leaves all else as it comes; it has the
# just-in-time compiler as well, which the class never asks for.
set(include ${CMAKE_BINARY_DIR}/engine)
configure_file(${source}/pcre.h.generic ${include}/pcre.h COPYONLY)
configure_file(${source}/config.h.generic ${include}/config.h COPYONLY)
configure_file(${source}/pcre_chartables.c.dist ${include}/pcre_chartables.c COPYONLY)

set(parts byte_order compile config exec fullinfo get globals newline ord2utf8 string_utils study
  tables ucd valid_utf8 version xclass)
list(TRANSFORM parts REPLACE "(.+)" "${source}/pcre_\\1.c" OUTPUT_VARIABLE sources)

add_library(engine STATIC ${sources} ${include}/pcre_chartables.c)
set_target_properties(engine PROPERTIES POSITION_INDEPENDENT_CODE ON C_VISIBILITY_PRESET hidden)
target_include_directories(engine SYSTEM PUBLIC ${include} PRIVATE ${source})
target_compile_definitions(engine PRIVATE HAVE_CONFIG_H SUPPORT_PCRE8 SUPPORT_UTF SUPPORT_UCP
  HAVE_INTTYPES_H HAVE_MEMMOVE HAVE_STDINT_H HAVE_STDLIB_H HAVE_STRING_H)
# As Debian compiles it, in whatever kind of build. Sections of their own for functions and data would
# save little, and made walks 4 to 8 % slower.
target_compile_options(engine PRIVATE -O2 -fstack-protector-strong -D_FORTIFY_SOURCE=2)
