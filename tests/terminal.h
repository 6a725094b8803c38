// A program in a terminal of its own, driven as a person would: keys in, the screen's text out.
#ifndef ZRK_TESTS_TERMINAL_H
#define ZRK_TESTS_TERMINAL_H

#include <sys/types.h>

#include <string>

namespace tests {

class Terminal {
 public:
  // Runs the command by a shell, in a terminal of this many columns and a UTF-8 locale.
  explicit Terminal(const std::string& command, unsigned short columns = 80);
  ~Terminal();
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  // Types the keys and waits, 30 seconds at most, until `expected` has been printed after them;
  // false where it never is. The search goes on behind what was found. What ends in "> " is taken
  // for a prompt: then the keys that follow go to its editor.
  bool Type(const std::string& keys, const std::string& expected);
  void Resize(unsigned short columns);
  // Waits for the end; the exit status, or -1 for an end by a signal. What does not end within a
  // minute is killed.
  int Wait();

  // All that was printed, control sequences included.
  const std::string& output() const { return output_; }

 private:
  bool ReadSome();
  bool AwaitKeys();
  int terminal_ = -1;
  pid_t child_ = -1;
  std::string output_;
  std::size_t seen_ = 0;
};

}  // namespace tests

#endif  // ZRK_TESTS_TERMINAL_H
