// The command line of zrkhost.
#ifndef ZRK_STANDIN_ZRKHOST_OPTIONS_H
#define ZRK_STANDIN_ZRKHOST_OPTIONS_H

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "standin/host.h"

namespace standin::zrkhost {

struct Options {
  std::filesystem::path library;  // as given, or the one beside the program
  HostOptions host;
  std::vector<std::string> code;  // of each -e
  std::string describe;           // the format; empty: not asked for
  bool help = false;
  bool version = false;
  std::vector<std::string> script;  // the script ("-": what comes in) and its arguments
};

// A command line that makes no sense; what() is one line.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

Options ParseOptions(int argc, char** argv);

// What --help prints.
extern const char* const kUsage;

}  // namespace standin::zrkhost

#endif  // ZRK_STANDIN_ZRKHOST_OPTIONS_H
