#include "standin/library.h"

#include <dlfcn.h>
#include <stdlib.h>
#include <unistd.h>

#include <stdexcept>
#include <string>
#include <system_error>

namespace standin {
namespace {

namespace fs = std::filesystem;

// A copy under a name of its own: the loader takes an equal name or the same file for the library
// that it has loaded already.
fs::path CopyOf(const fs::path& file) {
  std::string name = (fs::temp_directory_path() / file.filename()).string() + "-XXXXXX";
  const int descriptor = mkstemp(name.data());
  if (descriptor < 0) throw std::runtime_error(name + ": cannot be written");
  close(descriptor);
  fs::copy_file(file, name, fs::copy_options::overwrite_existing);
  return name;
}

}  // namespace

Library::Library(const fs::path& file, Copy copy) {
  if (!fs::is_regular_file(file)) throw std::runtime_error(file.string() + ": no such file");
  if (copy == Copy::kPrivate) copy_.path = CopyOf(file);
  // An absolute path, or the loader would search its own places for a bare name.
  const fs::path path = fs::absolute(copy == Copy::kPrivate ? copy_.path : file);
  void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!handle) throw std::runtime_error(file.string() + ": cannot be loaded: " + dlerror());
  main_ = reinterpret_cast<Main>(dlsym(handle, "REALPluginMain"));
  if (!main_) throw std::runtime_error(file.string() + ": no plugin (REALPluginMain is missing)");
}

Library::TemporaryFile::~TemporaryFile() {
  std::error_code ignored;
  if (!path.empty()) fs::remove(path, ignored);
}

void Library::Start(Host& host) {
  if (&host != Host::Current()) throw std::logic_error("only the current host starts a library");
  const char* const outer = host.accounts().EnterMethod("REALPluginMain");
  main_(&Host::Resolve);
  host.accounts().ResumeMethod(outer);
}

void Library::StartWithoutHost() { main_(nullptr); }

}  // namespace standin
