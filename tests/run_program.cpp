#include "tests/run_program.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>

namespace tests {
namespace {

namespace fs = std::filesystem;

std::string Run(const std::string& command, const std::string& name, const std::string& text) {
  const fs::path folder =
      fs::path(testing::TempDir()) / ("zrk_programs." + std::to_string(getpid()));
  fs::create_directories(folder);
  std::ofstream(folder / name) << text;
  const std::string line =
      "cd " + folder.string() + " && timeout 60 " + command + " " + name + " 2>&1";
  FILE* const out = popen(line.c_str(), "r");
  std::string printed;
  for (int byte = 0; (byte = std::fgetc(out)) != EOF;) printed += static_cast<char>(byte);
  const int status = pclose(out);
  fs::remove_all(folder);
  return status == 0 ? printed : printed + "exit " + std::to_string(WEXITSTATUS(status));
}

}  // namespace

std::string RunProgram(const std::string& name, const std::string& program) {
  return Run(ZRK_HOST_PROGRAM, name, program);
}

std::string RunListing(const std::string& name, const std::string& listing) {
  return Run(ZRK_HOST_PROGRAM " " ZRK_SOURCE_DIR "/standin/zrkhost/listing.lua", name, listing);
}

}  // namespace tests
