#include "tests/terminal.h"

#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <thread>

namespace tests {
namespace {

constexpr int kPatience = 30'000;  // milliseconds; other work may keep the machine busy

}  // namespace

Terminal::Terminal(const std::string& command, unsigned short columns) {
  const winsize size = {.ws_row = 24, .ws_col = columns, .ws_xpixel = 0, .ws_ypixel = 0};
  child_ = forkpty(&terminal_, nullptr, nullptr, &size);
  if (child_ != 0) return;
  setenv("LC_ALL", "C.UTF-8", 1);
  setenv("TERM", "xterm", 1);
  execl("/bin/sh", "sh", "-c", ("exec " + command).c_str(), nullptr);
  _exit(127);
}

Terminal::~Terminal() {
  if (child_ > 0) {
    kill(child_, SIGKILL);
    waitpid(child_, nullptr, 0);
  }
  close(terminal_);
}

bool Terminal::ReadSome() {
  pollfd waiting = {.fd = terminal_, .events = POLLIN, .revents = 0};
  if (poll(&waiting, 1, kPatience) <= 0) return false;
  std::array<char, 4096> bytes;
  const ssize_t count = read(terminal_, bytes.data(), bytes.size());
  if (count <= 0) return false;  // the program has ended
  output_.append(bytes.data(), static_cast<std::size_t>(count));
  return true;
}

bool Terminal::Type(const std::string& keys, const std::string& expected) {
  if (write(terminal_, keys.data(), keys.size()) != static_cast<ssize_t>(keys.size())) return false;
  const auto until = std::chrono::steady_clock::now() + std::chrono::milliseconds(kPatience);
  for (;;) {
    const std::size_t found = output_.find(expected, seen_);
    if (found != std::string::npos) {
      seen_ = found + expected.size();
      return !expected.ends_with("> ") || AwaitKeys();
    }
    if (std::chrono::steady_clock::now() > until || !ReadSome()) return false;
  }
}

// Between a prompt and the editor's first look at the keys the terminal still reads whole lines.
bool Terminal::AwaitKeys() {
  termios mode;
  for (int waited = 0; waited < kPatience; ++waited) {
    if (tcgetattr(terminal_, &mode) != 0) return false;
    if ((mode.c_lflag & ICANON) == 0) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return false;
}

void Terminal::Resize(unsigned short columns) {
  const winsize size = {.ws_row = 24, .ws_col = columns, .ws_xpixel = 0, .ws_ypixel = 0};
  ioctl(terminal_, TIOCSWINSZ, &size);
}

int Terminal::Wait() {
  while (ReadSome()) {
  }
  // Whoever says nothing and does not end would be waited for without a bound.
  int status = 0;
  for (int waited = 0; waitpid(child_, &status, WNOHANG) == 0; ++waited) {
    if (waited == kPatience) kill(child_, SIGKILL);
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  child_ = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace tests
