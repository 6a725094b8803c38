// zrkhost in a real terminal: the prompt, and what try does there.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "tests/command.h"
#include "tests/terminal.h"

namespace {

using tests::ReadFile;
using tests::Terminal;
using std::string_literals::operator""s;

constexpr const char* kEnter = "\r";
constexpr const char* kInterrupt = "\x03";
constexpr const char* kEndOfInput = "\x04";
constexpr const char* kUp = "\x1b[A";

// Keys, and what the terminal shows after them.
struct Row {
  std::string keys;
  std::string shown;
};

// Keys mean something else after a row that failed, so that is the last one.
void Follow(Terminal& terminal, const std::vector<Row>& rows) {
  for (const auto& [keys, shown] : rows) {
    if (testing::Test::HasFatalFailure()) return;
    ASSERT_TRUE(terminal.Type(keys, shown)) << keys << "\n" << terminal.output();
  }
}

class Prompt : public testing::Test {
 protected:
  ~Prompt() override { std::filesystem::remove_all(home_); }

  std::string History() const { return ReadFile(home_ / ".local/state/zrkhost/history"); }

  const std::filesystem::path home_ =
      testing::TempDir() + "zrkhost_home_" + std::to_string(getpid());
  const std::string command_ =
      "env -u XDG_STATE_HOME -u ZRKHOST_HISTORY HOME='" + home_.string() + "' " ZRK_HOST_PROGRAM;
};

TEST_F(Prompt, RunsShowsAndDrawsMistakes) {
  const std::vector<Row> entries = {
      {"'Käse' .. 1", "\nKäse1\r\n"},
      {"local re, two = RegExZRK(), 2", "> "},
      {"two + 40", "\n42\r\n"},
      {"local closed <close> = RegExZRK()", "> "},
      {"closed", "\nRegExZRK, no pattern, Count 0, Lasterror 0\r\n"},
      {"re:Compile('ä(')", "\nfalse\r\n  ä(\r\n    ^ missing )\r\n"},
      {"re", "\nRegExZRK, pattern does not compile:\r\n  ä("},
      {"re:Compile('(b)+') and re:Execute('aé')", "\n-1\r\n"},
      {"re", "pattern \"(b)+\", Count 0, Lasterror -1 (ErrorNoMatch)\r\n"},
      {"{1, 'b', x = {}}", "\n{1, \"b\", x = {}}\r\n"},
      {"host.memoryblock('\\0ab')", "\nmemory block, 3 bytes: 00 61 62  \"\\x00ab\"\r\n"},
      {"host.stringarray{'a', 'ü'}", "\nstring array {\"a\", \"ü\"}\r\n"},
      {"host.string('\\xe4', 'Windows Latin-1')", "\n\"ä\" in Windows Latin-1, 1 byte\r\n"},
      {"for i = 2, 2 do\rprint(i * 21)\rend", "\n42\r\n"},
      {"print(1 2)", "')' expected near '2'\r\n  print(1 2)\r\n          ^\r\n"},
      {"re:Foo()", "\n  re:Foo()\r\n     ^\r\n"},
      {"x.y = 1", "(global 'x')\r\n  x.y = 1\r\n  ^\r\n"},
      {"re:Offset(-1)", "OutOfBoundsException: Parameter index"},
      {"error('ouch', 0)", "\nouch\r\n"},
      {"help Study", "\n    Study as boolean"},
      {"help Studi", "has no \"Studi\"; it has:\r\n  Study as boolean"},
  };
  Terminal terminal(command_, 160);
  Follow(terminal, {{"", "> "}});
  for (const Row& entry : entries) Follow(terminal, {{entry.keys + kEnter, entry.shown}});
  Follow(terminal, {{"", "> "}, {kEndOfInput, "\n"}});  // before a prompt the key would end nothing
  EXPECT_EQ(terminal.Wait(), 0);
}

// What stands between two marks of a text, behind `from`.
std::string Between(const std::string& text, const std::string& first, const std::string& last,
                    std::size_t from = 0) {
  const std::size_t begin = text.find(first, from) + first.size();
  return text.substr(begin, text.find(last, begin) - begin);
}

TEST_F(Prompt, TakesThePastedSessionOfTheReadme) {
  const std::string page = ReadFile(ZRK_SOURCE_DIR "/README.md");
  const std::string session = Between(page, "```lua\n", "```");
  std::istringstream printed(Between(page, "```text\n", "```", page.find(session)));
  Terminal terminal(command_, 160);
  Follow(terminal, {{"", "> "}, {session, "> "}});
  for (std::string line; std::getline(printed, line);) Follow(terminal, {{"", line}});
}

TEST_F(Prompt, CompletesNames) {
  Terminal terminal(command_, 120);
  Follow(terminal,
         {{"re = RegExZRK()\r", "> "},
          {"re:esca\t'+')\r", "\n\\+\r\n"},
          {"RegExZRK.errornom\t\r", "\n-1\r\n"},
          {"string.forma\t('%d', 7)\r", "\n7\r\n"},
          {"hos\t.memo\t('a')\r", "memory block, 1 byte"},
          {"help exec\tMT\r", "\n    ExecuteMT(start as integer = 0) as integer"},
          {"re.CompileOptionNewLine\t", "\nCompileOptionNewLineAny      CompileOptionNewLineCR "}});
}

TEST_F(Prompt, KeepsItsHistoryAfterEachEntry) {
  const std::string without_locale = "env LC_ALL=C " + command_;
  {
    Terminal terminal(without_locale);
    Follow(terminal, {{"print('K' .. 'äse')\rprint('second')\r", "\nsecond\r\n"}});
  }  // killed
  EXPECT_NE(History().find("second"), std::string::npos);
  Terminal terminal(without_locale);
  Follow(terminal, {{"", "> "}, {kUp + ""s + kUp + kEnter, "\nKäse\r\n"}});
}

TEST_F(Prompt, StopsAtInterrupts) {
  Terminal terminal(command_);
  Follow(terminal,
         {{"", "> "},
          {"half a line"s + kInterrupt, "^C\r\n"},
          {"for i = 1, 2 do\r", ">> "},
          {kInterrupt + "6 * 7\r"s, "\n42\r\n"},
          {"print('run' .. 'ning') while true do end\r", "running"},
          {kInterrupt, "interrupted\r\n"},
          {"re = RegExZRK() re:Compile('.+x') s = ('a'):rep(3000000) print(#s)\r", "\n3000000\r\n"},
          {"host.task(function() print('search' .. 'ing') end)\r", "> "},
          {"re:ExecuteMT(s)\r", "searching"},
          {kInterrupt, "Ctrl-C again ends zrkhost.\r\n"},
          {kInterrupt, "\n"}});
  EXPECT_EQ(terminal.Wait(), 130);
  EXPECT_NE(History().find("re:ExecuteMT(s)"), std::string::npos) << "lost with the process";
}

// Without following the window the editor wraps lines where they no longer end.
TEST_F(Prompt, FollowsTheWindow) {
  Terminal terminal(command_, 100);
  Follow(terminal, {{"", "> "}});
  terminal.Resize(30);
  const std::string word(40, 'w');
  Follow(terminal,
         {{"'" + word, std::string(27, 'w')},
          {"\x15", "\x1b[A"},  // the wrapped line is taken back as two rows: up, and cleared
          {"#'" + word + "'\r", "\n40\r\n"}});
}

TEST(TryInATerminal, ColoursWhatItFinds) {
  Terminal terminal(ZRK_HOST_PROGRAM " try '(b)' -t 'Käb'");
  Follow(terminal, {{"", "Kä\x1b[32mb\x1b[0m\r\n"}});
  EXPECT_EQ(terminal.Wait(), 0);
}

TEST(TryInATerminal, ShowsThatItSearchesAndEndsAtAnInterrupt) {
  Terminal terminal(
      "env LC_ALL=C awk 'BEGIN { while (i++ < 300000) printf \"a\" }' | " ZRK_HOST_PROGRAM
      " try '.+x'");
  Follow(terminal, {{"", "searching the input: 0 %, 0 matches"}, {kInterrupt, "^C"}});
  EXPECT_NE(terminal.Wait(), 0);
}

}  // namespace
