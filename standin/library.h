// The built plugin library, loaded the way its host loads it.
#ifndef ZRK_STANDIN_LIBRARY_H
#define ZRK_STANDIN_LIBRARY_H

#include <filesystem>

#include "standin/host.h"

namespace standin {

// A loaded library stays loaded for the life of the process: there is no unload step, and tables
// and functions that were registered stay valid.
class Library {
 public:
  enum class Copy {
    kShared,   // the same file loaded twice is one library with one set of statics
    kPrivate,  // loads a copy of the file: fresh statics, services bound anew
  };

  // Throws std::runtime_error with one line for a file that is missing, cannot be loaded or has
  // no entry point "REALPluginMain".
  explicit Library(const std::filesystem::path& file, Copy copy = Copy::kShared);
  ~Library();
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;

  // Calls the entry point with the host's resolver. A host starts a library once.
  void Start(Host& host);
  // Calls the entry point with a null resolver, as a process without a host would.
  void StartWithoutHost();

 private:
  using Main = void (*)(Host::Resolver);

  // The private copy's file, if there is one. The loaded library does not need it any more; until
  // the end it serves sanitizers and debuggers, which read symbols from it.
  std::filesystem::path copy_;
  Main main_ = nullptr;
};

}  // namespace standin

#endif  // ZRK_STANDIN_LIBRARY_H
