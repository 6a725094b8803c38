#include "standin/zrkhost/options.h"

#include <getopt.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <system_error>

namespace standin::zrkhost {
namespace {

constexpr const char* kLibraryName = "libZRKRegEx.so";

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

std::string CheckFormat(const std::string& text) {
  if (text == "text" || text == "markdown" || text == "json") return text;
  throw UsageError("--describe knows text, markdown and json, not \"" + text + "\"");
}

void PrintTrace(std::string_view line) {
  std::fflush(stdout);  // what the program printed so far comes first
  std::fprintf(stderr, "%.*s\n", static_cast<int>(line.size()), line.data());
}

struct Row {
  const char* name;  // of the long option; null where there is none
  int argument;
  char letter;  // of the short option, for e, h and v; the others are known by it here alone
  void (*apply)(Options& options, const char* argument);
};

constexpr Row kRows[] = {
    {"library", required_argument, 'l', [](Options& o, const char* file) { o.library = file; }},
    {"host", required_argument, 'o',
     [](Options& o, const char* text) { o.host.version = ParseVersion(text); }},
    {"without", required_argument, 'w',
     [](Options& o, const char* service) { o.host.faults[service] = Fault::Missing(); }},
    {"no-direct-storage", no_argument, 's',
     [](Options& o, const char*) { o.host.direct_storage = false; }},
    {"trace", no_argument, 't', [](Options& o, const char*) { o.host.trace = PrintTrace; }},
    {"describe", optional_argument, 'd',
     [](Options& o, const char* format) { o.describe = CheckFormat(format ? format : "text"); }},
    {nullptr, required_argument, 'e',
     [](Options& o, const char* code) { o.code.emplace_back(code); }},
    {"help", no_argument, 'h', [](Options& o, const char*) { o.help = true; }},
    {"version", no_argument, 'v', [](Options& o, const char*) { o.version = true; }},
};

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
  std::vector<option> names;
  for (const Row& row : kRows) {
    if (row.name) names.push_back({row.name, row.argument, nullptr, row.letter});
  }
  names.push_back({});
  int letter = 0;
  // "+": what follows the script belongs to the script; ":": errors are told apart and left to us.
  while ((letter = getopt_long(argc, argv, "+:e:hv", names.data(), nullptr)) != -1) {
    const std::string given = argv[optind - 1];
    if (letter == '?') throw UsageError("no option \"" + given + "\"; zrkhost --help lists them");
    if (letter == ':') throw UsageError("the option \"" + given + "\" needs an argument");
    std::ranges::find(kRows, letter, &Row::letter)->apply(options, optarg);
  }
  options.script.assign(argv + optind, argv + argc);
  return options;
}

}  // namespace standin::zrkhost
