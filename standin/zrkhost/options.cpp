#include "standin/zrkhost/options.h"

#include <getopt.h>

#include <cstdio>
#include <cstdlib>
#include <system_error>

namespace standin::zrkhost {
namespace {

constexpr const char* kLibraryName = "libZRKRegEx.so";

// Long options without a letter of their own.
enum Code { kLibrary = 256, kHost, kWithout, kNoDirectStorage, kTrace, kDescribe };

constexpr option kOptions[] = {{"library", required_argument, nullptr, kLibrary},
                               {"host", required_argument, nullptr, kHost},
                               {"without", required_argument, nullptr, kWithout},
                               {"no-direct-storage", no_argument, nullptr, kNoDirectStorage},
                               {"trace", no_argument, nullptr, kTrace},
                               {"describe", optional_argument, nullptr, kDescribe},
                               {"help", no_argument, nullptr, 'h'},
                               {"version", no_argument, nullptr, 'v'},
                               {nullptr, 0, nullptr, 0}};

// Beside the program, as built, or where "make install" puts it.
std::filesystem::path FindLibrary() {
  std::error_code ignored;
  const auto place = std::filesystem::read_symlink("/proc/self/exe", ignored).parent_path();
  const auto installed = place.parent_path() / "lib" / "zrkhost" / kLibraryName;
  return std::filesystem::exists(installed, ignored) ? installed : place / kLibraryName;
}

std::optional<double> ParseVersion(const std::string& text) {
  if (text == "none") return std::nullopt;
  char* end = nullptr;
  const double version = std::strtod(text.c_str(), &end);
  if (end != text.c_str() && *end == '\0' && version > 0) return version;
  throw UsageError("--host takes a version such as 2013.04, or none, not \"" + text + "\"");
}

Format ParseFormat(const std::string& text) {
  if (const auto format = FormatByName(text)) return *format;
  throw UsageError("--describe knows text, markdown and json, not \"" + text + "\"");
}

void PrintTrace(std::string_view line) {
  std::fflush(stdout);  // what the program printed so far comes first
  std::fprintf(stderr, "%.*s\n", static_cast<int>(line.size()), line.data());
}

void Apply(Options& options, int code, const char* argument) {
  switch (code) {
    case kLibrary:
      options.library = argument;
      break;
    case kHost:
      options.host.version = ParseVersion(argument);
      break;
    case kWithout:
      options.host.faults[argument] = Fault::Missing();
      break;
    case kNoDirectStorage:
      options.host.direct_storage = false;
      break;
    case kTrace:
      options.host.trace = PrintTrace;
      break;
    case kDescribe:
      options.describe = ParseFormat(argument ? argument : "text");
      break;
    case 'e':
      options.code.emplace_back(argument);
      break;
    case 'h':
      options.help = true;
      break;
    case 'v':
      options.version = true;
      break;
    default:
      break;
  }
}

}  // namespace

const char* const kUsage =
    R"(zrkhost [option...] [script.lua [argument...]]
zrkhost [option...] try PATTERN [FILE...]
zrkhost [option...] help [NAME]

Runs a Lua program on a stand-in host that has loaded the plugin library; without one it prompts.
"try" shows what a pattern does to a text ("try --help" says more), "help" the reference's entry
of a member. A script that ends in .xojo_code is a listing in the host's language.

  -e CODE               runs CODE (before the script, if there is one)
  --library FILE        the plugin library (libZRKRegEx.so beside this program)
  --host VERSION        the version that the host claims (2017), or none
  --without SERVICE     leaves out a service of the host; may be repeated
  --no-direct-storage   arrays are read through getters only
  --trace               prints each call between the library and the host as it happens
  --describe[=FORMAT]   prints the classes as registered: text, markdown or json
  -h, --help            this text
  -v, --version         the versions of the project, the engine and Lua

What programs find besides the class: the table "host". host.string(bytes, encoding),
host.memoryblock(bytes), host.stringarray{...}, host.variantarray{...} and host.null(type) make
values of the host; host.task(function) starts a task, host.yield() gives tasks their turn;
host.type(value) and host.members(class) say what a thing is and has. "man zrkhost" has all of it.

A script of "-" is read from the input. The exit status is 1 after an error in the program, 2 where
it could not start or its output not be written, and 3 where a reference to something of the host's
was given back twice, or never.
)";

Options ParseOptions(int argc, char** argv) {
  Options options;
  options.library = FindLibrary();
  int code = 0;
  // "+": what follows the script belongs to the script; ":": errors are told apart and left to us.
  while ((code = getopt_long(argc, argv, "+:e:hv", kOptions, nullptr)) != -1) {
    const std::string given = argv[optind - 1];
    if (code == '?') throw UsageError("no option \"" + given + "\"; zrkhost --help lists them");
    if (code == ':') throw UsageError("the option \"" + given + "\" needs an argument");
    Apply(options, code, optarg);
  }
  options.script.assign(argv + optind, argv + argc);
  return options;
}

}  // namespace standin::zrkhost
