#include "standin/library.h"

#include <dlfcn.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <system_error>

namespace standin {
namespace {

namespace fs = std::filesystem;

// Copies lie in a folder beside the library, each named after the process that made it. Where that
// ended without unwinding, or the copy did not load, the next process removes it.
void RemoveOrphans(const fs::path& folder) {
  std::error_code ignored;
  for (const auto& entry : fs::directory_iterator(folder, ignored)) {
    const pid_t maker = std::atoi(entry.path().filename().c_str());
    if (kill(maker, 0) != 0 && errno == ESRCH) fs::remove(entry.path(), ignored);
  }
}

// A copy under a name of its own: the loader takes an equal name or the same file for the library
// that it has loaded already.
fs::path CopyOf(const fs::path& file) {
  static int copies = 0;
  const fs::path folder = file.string() + ".copies";
  fs::create_directory(folder);
  RemoveOrphans(folder);
  const std::string number = std::to_string(getpid()) + "-" + std::to_string(++copies);
  fs::path copy = folder / (number + "-" + file.filename().string());
  fs::copy_file(file, copy, fs::copy_options::overwrite_existing);
  return copy;
}

}  // namespace

Library::Library(const fs::path& file, Copy copy) {
  if (!fs::is_regular_file(file)) throw std::runtime_error(file.string() + ": no such file");
  if (copy == Copy::kPrivate) copy_ = CopyOf(file);
  // An absolute path, or the loader would search its own places for a bare name.
  const fs::path path = fs::absolute(copy == Copy::kPrivate ? copy_ : file);
  void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!handle) throw std::runtime_error(file.string() + ": cannot be loaded: " + dlerror());
  main_ = reinterpret_cast<Main>(dlsym(handle, "REALPluginMain"));
  if (!main_) throw std::runtime_error(file.string() + ": no plugin (REALPluginMain is missing)");
}

Library::~Library() {
  std::error_code ignored;
  if (!copy_.empty()) fs::remove(copy_, ignored);
}

void Library::Start(Host& host) {
  if (&host != Host::Current()) throw std::logic_error("only the current host starts a library");
  const char* const outer = host.accounts().SetMethod("REALPluginMain");
  main_(&Host::Resolve);
  host.accounts().SetMethod(outer);
}

void Library::StartWithoutHost() { main_(nullptr); }

}  // namespace standin
