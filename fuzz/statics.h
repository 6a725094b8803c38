// A loaded library's statics, to be put back to what they were.
//
// A library binds its services once and cannot be unloaded. A thousand hosts a second, each with
// other services missing, therefore share one copy whose statics are reset before each start.
#ifndef ZRK_FUZZ_STATICS_H
#define ZRK_FUZZ_STATICS_H

#include <cstdint>
#include <filesystem>
#include <vector>

namespace fuzz {

class Statics {
 public:
  // Remembers the writable memory of the library that was loaded from `file` (an absolute path).
  // Throws std::runtime_error where none was.
  explicit Statics(const std::filesystem::path& file);
  // Puts it back. Nothing of the library may be running. Memory that only the statics know, such as
  // a block kept for next time, is given back where a sanitizer would miss it.
  void Restore();

 private:
  // Volatile, so that the compiler makes no checked memcpy of reads and writes between objects.
  struct Segment {
    volatile std::uintptr_t* words;
    std::vector<std::uintptr_t> before;
  };

  std::vector<Segment> segments_;
};

}  // namespace fuzz

#endif  // ZRK_FUZZ_STATICS_H
