// What the whole run was asked for, and the texts it reads.
#ifndef ZRK_BENCH_SETTINGS_H
#define ZRK_BENCH_SETTINGS_H

#include <string>
#include <vector>

#include "bench/bench_host.h"

namespace bench {

struct Settings {
  double version = 2017.0;  // of the host
  bool quick = false;       // a tenth of the work, for checks
};
const Settings& TheSettings();

// One of build/bench's texts as a host string, loaded on first use and kept: kind is "ascii" or
// "mixed", megabytes 1, 10 or 100.
const String& Text(std::string_view kind, int megabytes);

// The size most rows work on, in megabytes.
inline int UsualSize() { return TheSettings().quick ? 1 : 10; }

// That many of what is done often: all of it, or a tenth.
inline int Times(int full) { return TheSettings().quick ? full / 10 : full; }

// The lines of a text as host strings, at most so many.
Array LinesOf(const String& text, std::size_t most);

// Every room's rows.
void AddWalkRows();
void AddCallRows();
void AddReplaceRows();
void AddTextRows();
void AddGrowthRows();
void AddMemoryRows();

}  // namespace bench

#endif  // ZRK_BENCH_SETTINGS_H
