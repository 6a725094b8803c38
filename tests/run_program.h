// Programs and listings run in zrkhost, as a user would run them.
#ifndef ZRK_TESTS_RUN_PROGRAM_H
#define ZRK_TESTS_RUN_PROGRAM_H

#include <string>

namespace tests {

// Runs a Lua program from a file of this name, or a listing in the host's language from
// NAME.xojo_code; messages show these names. Answers what it prints, errors as well, and "exit N"
// behind that where N is not 0; it is ended after a minute.
std::string RunProgram(const std::string& name, const std::string& program);
std::string RunListing(const std::string& name, const std::string& listing);

}  // namespace tests

#endif  // ZRK_TESTS_RUN_PROGRAM_H
