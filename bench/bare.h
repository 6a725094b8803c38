// The engine called directly from a C loop, which is the limit that the class is measured against:
// the same bytes, the same options, a vector of the same size.
#ifndef ZRK_BENCH_BARE_H
#define ZRK_BENCH_BARE_H

#include <pcre.h>

#include <cstdint>
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

// The same walk as a host program does it.
inline std::int64_t Walk(const RegEx& regex, REALstringStruct* text) {
  std::int64_t matches = 0;
  for (int found = regex.execute(text, 0); found > 0;
       found = regex.execute_again(regex.offset(1))) {
    ++matches;
  }
  return matches;
}

}  // namespace bench

#endif  // ZRK_BENCH_BARE_H
