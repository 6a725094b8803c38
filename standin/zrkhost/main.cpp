// zrkhost: runs Lua programs on a stand-in host that has loaded the plugin library.
#include <clocale>
#include <cstdio>
#include <exception>
#include <lua.hpp>

#include "standin/zrkhost/options.h"
#include "standin/zrkhost/program.h"
#include "standin/zrkhost/run.h"

namespace {

using namespace standin::zrkhost;

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
  std::setlocale(LC_CTYPE, "");  // numbers stay as programs write them
  try {
    return Run(ParseOptions(argc, argv));
  } catch (const std::exception& error) {
    std::fprintf(stderr, "zrkhost: %s\n", error.what());
  }
  return kNotStarted;
}
