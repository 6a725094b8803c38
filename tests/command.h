// Command lines as a user gives them to a shell, and programs in files.
#ifndef ZRK_TESTS_COMMAND_H
#define ZRK_TESTS_COMMAND_H

#include <filesystem>
#include <string>

namespace tests {

struct Ran {
  int status = -1;
  std::string output;  // errors as well
};

Ran Shell(const std::string& command);
// All that is in a file, which must be there.
std::string ReadFile(const std::filesystem::path& path);
// One word for the shell, whatever is in it.
std::string Quoted(const std::string& text);
// zrkhost with these arguments and no input.
Ran ZRKHost(const std::string& arguments);
// Runs a program in zrkhost from a file of this name, which messages show; it is a listing in the
// host's language where the name ends in .xojo_code. Answers what it prints, errors as well, and
// "exit N" behind that where N is not 0.
std::string RunProgram(const std::string& name, const std::string& program);

// A command line or a program, and what it has to come to.
struct Case {
  std::string given;
  int status;
  std::string said;
};

// Fails the test where the status is another or `said` was not printed.
void Check(const Case& row, const Ran& ran);

}  // namespace tests

#endif  // ZRK_TESTS_COMMAND_H
