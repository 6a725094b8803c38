// Command lines as a user gives them to a shell.
#ifndef ZRK_TESTS_COMMAND_H
#define ZRK_TESTS_COMMAND_H

#include <string>

namespace tests {

struct Ran {
  int status = -1;
  std::string output;  // errors as well
};

Ran Shell(const std::string& command);
// One word for the shell, whatever is in it.
std::string Quoted(const std::string& text);
// zrkhost with these arguments and no input.
Ran ZRKHost(const std::string& arguments);

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
