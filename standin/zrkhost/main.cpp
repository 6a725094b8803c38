// zrkhost: runs Lua programs on a stand-in host that has loaded the plugin library.
#include <clocale>
#include <cstdio>
#include <exception>
#include <lua.hpp>
#include <string_view>

#include "standin/zrkhost/options.h"
#include "standin/zrkhost/program.h"
#include "standin/zrkhost/run.h"

using namespace standin::zrkhost;

namespace {

// Of the locale only the letters; numbers stay as programs write them. Where none is chosen, texts
// are in UTF-8 all the same.
void SetLocale() {
  const char* const set = std::setlocale(LC_CTYPE, "");
  if (!set || std::string_view(set) == "C" || std::string_view(set) == "POSIX") {
    std::setlocale(LC_CTYPE, "C.UTF-8");
  }
}

}  // namespace

int main(int argc, char** argv) {
  SetLocale();
  try {
    const Options options = ParseOptions(argc, argv);
    if (options.help) {
      std::fputs(kUsage, stdout);
      return FlushOutput(kSuccess);
    }
    if (options.version) std::puts("zrkhost " ZRK_VERSION ", " LUA_RELEASE);
    return Program(options).Run();
  } catch (const std::exception& error) {
    std::fprintf(stderr, "zrkhost: %s\n", error.what());
  }
  return kNotStarted;
}
