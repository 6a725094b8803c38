#include "tests/run_program.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "tests/command.h"

namespace tests {
namespace {

namespace fs = std::filesystem;

std::string Run(const std::string& command, const std::string& name, const std::string& text) {
  const fs::path folder =
      fs::path(testing::TempDir()) / ("zrk_programs." + std::to_string(getpid()));
  fs::create_directories(folder);
  std::ofstream(folder / name) << text;
  const Ran ran = Shell("cd " + folder.string() + " && " + command + " " + name);
  fs::remove_all(folder);
  return ran.status == 0 ? ran.output : ran.output + "exit " + std::to_string(ran.status);
}

}  // namespace

std::string RunProgram(const std::string& name, const std::string& program) {
  return Run(ZRK_HOST_PROGRAM, name, program);
}

std::string RunListing(const std::string& name, const std::string& listing) {
  return Run(ZRK_HOST_PROGRAM, name + ".xojo_code", listing);
}

}  // namespace tests
