// Makes an ordinary program of a fuzz target: runs it once over each file of the corpus directories
// given. Exit status 2 when there is nothing to replay.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

void Replay(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
}

}  // namespace

int main(int argc, char** argv) {
  int count = 0;
  for (int i = 1; i < argc; ++i) {
    std::error_code no_directory;
    for (const auto& entry : std::filesystem::directory_iterator(argv[i], no_directory)) {
      Replay(entry.path());
      ++count;
    }
  }
  std::printf("%d inputs replayed\n", count);
  return count > 0 ? 0 : 2;
}
