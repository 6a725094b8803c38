#include "tests/command.h"

#include <gtest/gtest.h>
#include <stdio.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <fstream>
#include <iterator>

namespace tests {

Ran Shell(const std::string& command) {
  Ran ran;
  FILE* pipe = popen(("{ " + command + "; } 2>&1").c_str(), "r");
  if (!pipe) return ran;
  std::array<char, 4096> buffer;
  while (const std::size_t size = fread(buffer.data(), 1, buffer.size(), pipe)) {
    ran.output.append(buffer.data(), size);
  }
  const int ended = pclose(pipe);
  if (WIFEXITED(ended)) ran.status = WEXITSTATUS(ended);
  return ran;
}

std::string ReadFile(const std::filesystem::path& path) {
  std::ifstream file(path);
  EXPECT_TRUE(file) << path;
  return {std::istreambuf_iterator<char>(file), {}};
}

std::string Quoted(const std::string& text) {
  std::string quoted = "'";
  for (const char c : text) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return quoted + "'";
}

Ran ZRKHost(const std::string& arguments) {
  return Shell(ZRK_HOST_PROGRAM " </dev/null " + arguments);
}

std::string RunProgram(const std::string& name, const std::string& program) {
  const std::string folder = testing::TempDir() + "zrk_programs." + std::to_string(getpid());
  std::filesystem::create_directories(folder);
  std::ofstream(folder + '/' + name) << program;
  const Ran ran = Shell("cd " + folder + " && " ZRK_HOST_PROGRAM " " + name);
  std::filesystem::remove_all(folder);
  return ran.status == 0 ? ran.output : ran.output + "exit " + std::to_string(ran.status);
}

void Check(const Case& row, const Ran& ran) {
  SCOPED_TRACE(row.given);
  EXPECT_EQ(ran.status, row.status) << ran.output;
  EXPECT_NE(ran.output.find(row.said), std::string::npos) << ran.output;
}

}  // namespace tests
