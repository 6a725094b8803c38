// zrkhost try: what it shows of patterns and texts, and what its programs come to.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <string>

#include "tests/command.h"

namespace {

using namespace tests;

// Times and what Study does vary; everything else is the same each time.
std::string Steady(const std::string& output) {
  return std::regex_replace(output, std::regex(", [0-9.]+ (us|ms|s); Study .*"), ", ...");
}

Ran Try(const std::string& arguments) { return ZRKHost("try " + arguments); }

// Arguments, and all that is printed for them.
struct Row {
  std::string arguments;
  std::string printed;
};

TEST(Try, ShowsMatchesInTheirLines) {
  const Row rows[] = {
      {R"('(?<year>\d{4})-(\d\d)|(x)' -t 'Käse 2024-05' )",
       R"(    1: Käse 2024-05
            ^^^^^^^
       6-13 (characters 5-12)  "2024-05"  1 year "2024"  2 "05"  3 unset
1 match in 13 bytes, ...
)"},
      {R"-(-g '\w+(?=!)' -t "$(printf 'a\tb!\nno\nc! d!\a\n')")-",
       R"(    1: a	b!
        	^
       2-3  "b"
    3: c! d!\x07
       ^  ^
       8-9  "c"
       11-12  "d"
3 matches in 14 bytes, ...
)"},
      {R"-('e\s+o' -t "$(printf 'here\none')")-",
       R"(    1: here
          ^
    2: one
       ^
       3-6  "e\no"
1 match in 8 bytes, ...
)"},
      {R"('a+' -t baa)",
       R"(    1: baa
        ^^
       1-2  "a"
       2-3  "a"
Quantifiers are lazy here; with --greedy the first match is "aa"
2 matches in 3 bytes, ...
)"},
      {R"-(-m 'a$' -t "$(printf 'a\r\nb')")-",
       R"(Lines end in CR LF here: --newlineanycrlf lets $ match before it
0 matches in 4 bytes, ...
)"},
      {R"('x*' -g -t axé)",
       R"(    1: axé
       ^^^^
       0-0  ""
       1-2  "x"
       2-2  ""
       4-4 (characters 3-3)  ""
4 matches in 4 bytes, ...
)"},
      {R"-(b -t "$(printf 'ab\303')")-",
       R"(    1: ab\xC3
        ^
       1-2  "b"
text is not UTF-8: searched as bytes
1 match in 3 bytes, ...
)"},
      {"'k(..)s' --bytes -t käs",
       R"(    1: käs
       ^^^
       0-4  "käs"  1 "ä"
1 match in 4 bytes, ...
)"},
      {R"('(\w)(b)' --color=always -t ab)",
       "\x1b[2m    1: \x1b[0m\x1b[32ma\x1b[0m\x1b[36mb\x1b[0m\n"
       "       \x1b[2m0-2\x1b[0m  \x1b[1;31m\"ab\"\x1b[0m  1 \x1b[32m\"a\"\x1b[0m  2 "
       "\x1b[36m\"b\"\x1b[0m\n\x1b[1m1 match in 2 bytes\x1b[0m\x1b[2m, ...\n"},
      {R"('(\w)(b)' -r '<\2\1>' -t 'ab, no cb')",
       "    1- ab, no cb\n    1+ <ba>, no <bc>\n2 matches in 9 bytes, ...\n"},
      {R"(-p -r '' 'b*' -g -t abbc)", "ac"},
      {R"(-c z -t aab)", "0\n"},
      {R"(-oi 'A.' -t 'aab ac')", "aa\nac\n"},
      {R"(--json '(?<n>b)|(c)' -r '\0"' -t 'äb')",
       R"({"name":"text","count":1,"matches":[{"bytes":[2,3],"characters":[1,2],"text":"b",)"
       R"("groups":[{"number":1,"name":"n","bytes":[2,3],"text":"b"},{"number":2}],)"
       R"("replacement":"b\""}],"replaced":"äb\""})"
       "\n"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(Steady(Try(row.arguments).output), row.printed) << row.arguments;
  }
}

TEST(Try, AnswersAsGrepDoes) {
  const Case cases[] = {
      {"b -t abc", 0, "1 match in 3 bytes"},
      {"x -t abc", 1, "0 matches in 3 bytes"},
      {"'é(' -t abc", 2, "The pattern does not compile:\n  é(\n    ^ missing )\n"},
      {"a /nowhere -t", 2, "needs an argument"},
      {"a /nowhere", 2, "/nowhere: No such file"},
      {"a /", 2, "/: Is a directory"},
      {"--frob a", 2, "no option \"--frob\""},
      {"-q a", 2, "no option \"-q\""},
      {"--matchlimit=few a", 2, "--matchlimit takes a number"},
      {"--matchlimit=1 '(a|b)+c' -t ababc", 2, "ended with ErrorMatchLimit"},
      {"-i", 2, "a pattern is needed"},
      {"-p a", 2, "--print needs --replace"},
      {"--encoding=Klingon a " ZRK_SOURCE_DIR "/README.md", 2, "there are: UTF-8"},
      {"-r 'a\\' b -t b.", 2, "ReplaceAll makes something else"},
      {"--color=blue a", 2, "always, never or auto"},
      {"--help", 0, "--only-matching"},
      {"-c -- -c -", 1, "0\n"},
      {"--CompileOptionCaseLess --no-Ungreedy -o A+ -t aa", 0, "aa\n"},
      {"--ExecuteOptionNotEmpty -c 'b*' -t ab", 0, "1\n"},
      {"-c a -t a >/dev/full", 2, "not all output could be written"},
      // Files that every machine has, or that are in the tree.
      {R"(-go 'GNU \w+ \w+ License' /usr/share/common-licenses/GPL-2)", 0,
       "GNU General Public License\n"},
      {R"(-c '(?m)^$' /usr/share/common-licenses/GPL-2 /usr/share/common-licenses/BSD)", 0,
       "/usr/share/common-licenses/BSD:"},
      {"-cm '^$' /usr/share/common-licenses/GPL-2 /nowhere", 2, "/GPL-2:"},
      {R"(-gs '“(.*)”' )" ZRK_SOURCE_DIR "/examples/demo.lua", 0, "step(\"2"},
      {"-g 'REALPlugin\\w+' " ZRK_LIBRARY_PATH, 0, "searched as bytes"},
      {"-go 'REALPlugin\\w+' " ZRK_LIBRARY_PATH, 0, "REALPluginMain\n"},
      {"x -r y " ZRK_LIBRARY_PATH, 2, "is not UTF-8"},
  };
  for (const Case& row : cases) Check(row, Try(row.given));
}

// The program that --code prints finds what the command finds.
TEST(Try, WritesProgramsThatRun) {
  const std::string latin = testing::TempDir() + "zrkhost_try_latin.txt";
  std::ofstream(latin) << "K\xE4se\n12 \"x\"\n";
  const Row rows[] = {
      {R"-(-g '(?<n>\d+)\s"(x)' -t "$(printf '1 2 "x"\t3\n44 "x"')")-",
       "2 \"x at byte 2, character 2\n  n: 2\n  2: x\n"
       "44 \"x at byte 10, character 10\n  n: 44\n  2: x\n"},
      {R"('é*' -t éb)",
       " at byte 0, character 0\n at byte 2, character 1\n at byte 3, character 2\n"},
      {R"('(.)b' -r '"\1"' -t 'ab ')", "\"a\" \n"},
      {"--encoding='Windows Latin-1' 'ä.' " + latin, "äs at byte 1, character 1\n"},
  };
  for (const Row& row : rows) {
    const Ran written = Try("--code " + row.arguments);
    EXPECT_EQ(written.status, 0) << written.output;
    EXPECT_EQ(RunProgram("written.xojo_code", written.output), row.printed) << written.output;
  }
  std::filesystem::remove(latin);
}

}  // namespace
