// zrkhost: runs Lua programs on a stand-in host that has loaded the plugin library.
#include <clocale>
#include <cstdio>
#include <exception>
#include <lua.hpp>
#include <string_view>

#include "standin/zrkhost/options.h"
#include "standin/zrkhost/program.h"
#include "standin/zrkhost/run.h"

namespace {

using namespace standin::zrkhost;

// Of the locale only the letters; numbers stay as programs write them. Where none is chosen, texts
// are in UTF-8 all the same.
void SetLocale() {
  const char* const set = std::setlocale(LC_CTYPE, "");
  if (!set || std::string_view(set) == "C" || std::string_view(set) == "POSIX") {
    std::setlocale(LC_CTYPE, "C.UTF-8");
  }
}

int Run(const Options& options) {
  if (options.help) {
    std::fputs(kUsage, stdout);
    return FlushOutput(kSuccess);
  }
  if (options.version) std::puts("zrkhost " ZRK_VERSION ", " LUA_RELEASE);
  return Program(options).Run();
}

}  // namespace

int main(int argc, char** argv) {
  SetLocale();
  try {
    return Run(ParseOptions(argc, argv));
  } catch (const std::exception& error) {
    std::fprintf(stderr, "zrkhost: %s\n", error.what());
  }
  return kNotStarted;
}
