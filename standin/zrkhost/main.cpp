// zrkhost: runs Lua programs on a stand-in host that has loaded the plugin library.
#include <cstdio>
#include <exception>
#include <lua.hpp>

#include "standin/zrkhost/options.h"
#include "standin/zrkhost/program.h"

namespace {

using standin::zrkhost::Options;

void PrintVersions(const Options& options) {
  std::printf("zrkhost with %s\nlibrary: %s\n", LUA_RELEASE, options.library.c_str());
}

int Run(const Options& options) {
  if (options.help) {
    std::fputs(standin::zrkhost::kUsage, stdout);
  } else if (options.version) {
    PrintVersions(options);
  } else {
    return standin::zrkhost::Program(options).Run();
  }
  return standin::zrkhost::kSuccess;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run(standin::zrkhost::ParseOptions(argc, argv));
  } catch (const std::exception& error) {
    std::fprintf(stderr, "zrkhost: %s\n", error.what());
  }
  return standin::zrkhost::kNotStarted;
}
