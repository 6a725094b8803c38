// One pattern for everyone: the class, the engine called directly, the engine's C++ binding, RE2.
//
// The engine called from a C loop is the limit that the class is measured against: the same bytes,
// the same options, a vector of the same size. The binding checks the whole text's UTF-8 at every
// call, so that walks over long texts would not end; it runs without UTF-8 mode, on ASCII.
#ifndef ZRK_BENCH_ENGINES_H
#define ZRK_BENCH_ENGINES_H

#include <pcre.h>
#include <pcrecpp.h>
#include <re2/re2.h>

#include <cstdint>
#include <memory>
#include <string_view>

#include "bench/bench_host.h"

namespace bench {

struct Bare {
  explicit Bare(const char* pattern, int compile_options = kCompileOptions) {
    const char* error = nullptr;
    int offset = 0;
    code = pcre_compile(pattern, compile_options, &error, &offset, nullptr);
    if (code == nullptr) Fail(error);
  }
  ~Bare() { pcre_free(code); }
  Bare(const Bare&) = delete;
  Bare& operator=(const Bare&) = delete;

  int Exec(std::string_view text, int start = 0, const pcre_extra* extra = nullptr,
           int options = kExecuteOptions) {
    return pcre_exec(code, extra, text.data(), static_cast<int>(text.size()), start, options,
                     vector, kVectorSize);
  }

  // Finds all matches, none of which may be empty, and answers their number.
  std::int64_t Walk(std::string_view text) {
    std::int64_t matches = 0;
    for (int start = 0; Exec(text, start) > 0; start = vector[1]) ++matches;
    return matches;
  }

  pcre* code = nullptr;
  int vector[kVectorSize];
};

// The same walk as a host program does it: where the next match from a byte offset on ends, or -1.
// From 0 on the text becomes the subject.
inline int NextMatch(const RegEx& regex, REALstringStruct* text, int start) {
  const int found = start == 0 ? regex.execute(text, 0) : regex.execute_again(start);
  return found > 0 ? regex.offset(1) : -1;
}
inline std::int64_t Walk(const RegEx& regex, REALstringStruct* text) {
  std::int64_t matches = 0;
  for (int at = 0; (at = NextMatch(regex, text, at)) >= 0;) ++matches;
  return matches;
}

struct Engines {
  explicit Engines(const char* pattern, bool caseless = false)
      : regex(pattern, kCompileOptions | (caseless ? PCRE_CASELESS : 0)),
        bare(pattern, kCompileOptions | (caseless ? PCRE_CASELESS : 0)),
        binding(pattern, pcrecpp::RE_Options().set_caseless(caseless)),
        re2((caseless ? "(?i)" : "") + std::string(pattern)) {}

  RegEx regex;
  Bare bare;
  pcrecpp::RE binding;
  RE2 re2;
};
using SharedEngines = std::shared_ptr<Engines>;

inline pcrecpp::StringPiece ForBinding(std::string_view text) {
  return {text.data(), static_cast<int>(text.size())};
}

}  // namespace bench

#endif  // ZRK_BENCH_ENGINES_H
