// zrkhost as its users meet it: command lines, exit statuses, and what Lua programs see.
#include <gtest/gtest.h>

#include <regex>
#include <string>

#include "tests/command.h"
#include "tests/session.h"

namespace {

using namespace tests;

Ran Lua(const std::string& code, const std::string& options = "") {
  return ZRKHost(options + " -e " + Quoted(code));
}

TEST(ZRKHost, AnswersCommandLines) {
  const Case cases[] = {
      {"--help", 0, "--without SERVICE"},
      {"--version", 0, "zrkhost 1.0.0, Lua 5.4"},
      {"-v", 0, "RegExZRK, engine 8."},
      {"--host=2011 -e 'print(host.version)'", 0, "2011.0\n"},
      {"--host none -e 'print(host.version)'", 0, "nil\n"},
      {"-e 'a = 1' -e 'print(a + 1)'", 0, "2\n"},
      {"/nowhere.lua", 1, "cannot open /nowhere.lua"},
      {"'a+' /etc/passwd", 1, "to try a pattern: zrkhost try PATTERN [FILE...]"},
      {"help Studi", 1, "no \"Studi\"; it has:\n  Study as boolean\n"},
      {"help study", 0, "    Study as boolean\n\n"},
      {"help constants", 0, "\nErrorNoMatch  "},
      {"--without Nothing", 2, "\"Nothing\" is no service; there are:\n  PluginDisposeStringData"},
  };
  for (const Case& row : cases) Check(row, ZRKHost(row.given));
  const std::string code = Quoted("print(arg[0], #arg, ...)");
  EXPECT_EQ(Shell("echo " + code + " | " ZRK_HOST_PROGRAM " - a 'b c'").output, "-\t2\ta\tb c\n");
  EXPECT_EQ(Shell("echo " + code + " | " ZRK_HOST_PROGRAM).output, "-\t0\n");
}

TEST(ZRKHost, RefusesWithOneLineWhatItCannotStart) {
  const Case cases[] = {
      {"--frobnicate", 2, "no option \"--frobnicate\""},
      {"-e", 2, "\"-e\" needs an argument"},
      {"--host=young", 2, "not \"young\""},
      {"--describe=xml", 2, "text, markdown and json"},
      {"--library /nowhere.so", 2, "/nowhere.so: no such file"},
      {"--library " __FILE__, 2, "cannot be loaded"},
      {"--library $(ldd " ZRK_HOST_PROGRAM " | grep -o '/.*/libc\\.so\\.6')", 2, "no plugin"},
  };
  for (const Case& row : cases) {
    const Ran ran = ZRKHost(row.given);
    Check(row, ran);
    EXPECT_TRUE(std::regex_match(ran.output, std::regex("zrkhost: .*\n"))) << ran.output;
  }
}

TEST(ZRKHost, SaysWhenItsOutputCannotBeWritten) {
  for (const char* command :
       {"--help", "-v", "--describe", "-e 'print(1)'", "-e 'print(1) os.exit()'"}) {
    Check({command, 2, "zrkhost: not all output could be written"},
          ZRKHost(std::string(command) + " 2>&1 >/dev/full"));
  }
}

// Programs that have an object `re`, their exit status, and something that they print.
TEST(ZRKHost, ExitsAsTheProgramWentAndSaysWhy) {
  const Case cases[] = {
      {"return", 0, ""},
      {"local function f() error('ouch') end f()", 1, "1: ouch\nstack traceback:"},
      {"if", 1, "near <eof>"},
      {"re:Offset(-1)", 1, "zrkhost: (command line):1: OutOfBoundsException: Parameter index"},
      {"os.exit(5)", 5, ""},
      {"os.exit(true)", 0, ""},
      {"os.exit(false)", 1, ""},
      {"host.task(function() os.exit(6) end) re:Compile('a') re:ExecuteMT('a')", 6, ""},
      {"host.task(function() error('late') end) host.yield() print('on')", 1, "late\nstack"},
      {"host.task(function() while true do host.yield() end end) host.yield()", 0, ""},
      // After a wrong call the declarations help.
      {"re:Compiel('a')", 1,
       "no \"Compiel\"; it has:\n  Compile(pattern as string) as boolean\nst"},
      {"re.MatchLimits = 1", 1, "no \"MatchLimits\"; it has:\n  MatchLimit as Integer"},
      {"re:Frobnicate()", 1, " Unescape, InfoStudySize,"},
      {"re:Compile(1)", 1, "Compile(integer) fits no declaration: Compile(pattern as string)"},
      {"re:Offset(0, 1)", 1, "Offset(integer, integer) fits no declaration"},
      {"re:Execute({})", 1, "Execute(start as integer = 0) as integer; Execute(text as string,"},
      {"re:Match(nil)", 1, "Match(nil) fits more than one declaration"},
      {"re.Compile('a')", 1, "Compile is called with a colon"},
      {"re:Offset(1 << 31)", 1, "2147483648 does not fit the host's Integer"},
      {"re:Execute(print)", 1, "the host has no value like a Lua function"},
      {"re.Count = 1", 1, "Count as Integer is read-only"},
      {"re.MatchLimit = 'many'", 1, "MatchLimit as Integer takes no string"},
      {"RegExZRK.Match()", 1, "RegExZRK itself has \"new\" and constants"},
      {"RegExZRK.ErrorNoMatch = 1", 1, "takes no new members"},
      {"RegExZRK('x')", 1, "Constructor(string) fits no declaration"},
      {"host.string('a', 'EBCDIC')", 1, "there are: UTF-8, UTF-16, UTF-32, ASCII"},
      {"host.memoryblock('abc'):read(2, 2)", 1, "not all in a block of 3 bytes"},
      {"host.memoryblock('abc'):byte(-1)", 1, "not all in a block of 3 bytes"},
      {"host.variantarray{{}}", 1, "arrays hold no arrays"},
      {"host.null('integer')", 1, "integer has no nil"},
  };
  for (const Case& row : cases) Check(row, Lua("re = RegExZRK() " + row.given));
  const Case unbalanced[] = {
      {"", 3, "\"abc\": 1 reference was never given"},
      {"os.exit()", 3, "REALLockString"},
      {"os.exit(5)", 5, "do not balance"},
      {"error()", 1, "do not balance"},
  };
  for (const Case& row : unbalanced) {
    Check(row, Lua("re = RegExZRK() re:Compile('abc') " + row.given, "--without realunlockSTRING"));
  }
}

TEST(ZRKHost, DescribesTheWholeClass) {
  Session session;
  const standin::ClassInfo& registered = *session.host.FindClass("RegExZRK");
  const std::size_t members =
      registered.methods().size() + registered.properties().size() + registered.constants().size();
  const struct {
    const char* format;
    const char* each;  // stands once for each member
    const char* one;   // stands for one of them
  } rows[] = {
      {"text", "\n  ", "\n  Count as Integer, read only\n"},
      {"markdown", "\n\\| `", "\n| `ErrorPlugin = -99` |\n"},
      {"json", "\"(declaration|writable|value)\": ", R"(string = \"\") as string"})"},
      {"json", "\"(declaration|writable|value)\": ",
       R"({"name": "inverse", "type": "boolean", "default": false}])"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.one);
    const std::string text = ZRKHost("--host 2011 --describe=" + std::string(row.format)).output;
    const std::regex each(row.each);
    EXPECT_EQ(std::distance(std::sregex_iterator(text.begin(), text.end(), each), {}), members);
    EXPECT_NE(text.find(row.one), text.npos) << text;
  }
}

TEST(ZRKHost, ShowsServicesAndTheirAbsence) {
  const Case cases[] = {
      {"--trace | grep -c '^> RegExZRK.Match(string array #'", 0, "1\n"},
      {"--trace | grep -c 'string array getter('", 1, "0\n"},
      {"--trace --no-direct-storage | grep -c 'string array getter('", 0, "2\n"},
      {"--without PluginStringArrayInsertProc --without RuntimeArrayDirectGetInsertProc", 0, "0\n"},
  };
  const std::string filter = "re = RegExZRK() re:Compile('a') print(#re:Match{'a', 'b'})";
  for (const Case& row : cases) {
    Check(row, ZRKHost("--host 2013 -e " + Quoted(filter) + " 2>&1 " + row.given));
  }
}

// Programs that have an object `re` with a pattern, and all that they print.
TEST(ZRKHost, CarriesValuesBothWaysAndGivesTasksTheirTurns) {
  const struct {
    const char* code;
    const char* printed;
  } rows[] = {
      {"print(re:Execute('xab'), re.Count, re:Substring('n'), re:Offset(2))", "2\t2\ta\t1\n"},
      {"print(RegExZRK.ErrorNoMatch, re.ErrorNoMatch, regexzrk)", "-1\t-1\tnil\n"},
      {"print(re.VECTORSIZE, re:offset(0), RegExZRK(99).VectorSize)", "51\t0\t99\n"},
      {"print(re:Substring(40) == '', re.TextMemory)", "true\tnil\n"},
      {"re.CompileOptionCaseLess = true print(re.CompileOptions)", "10753\n"},
      {"print(table.concat(re:Match{'a', 'b', 'ba'}, ','))", "a,ba\n"},
      {"print(table.concat(re:Match({n = 3, 'b', nil, 'a'}, true), ','))", "b,\n"},
      {"re:Compile('[1T]') print(table.concat(re:Match{10, true, 2.5, 'x', '1'}, ','))",
       "10,True,1\n"},
      {"print(#re:Match{}, #re:Match(host.null('variant()')))", "0\t0\n"},
      {"local a = host.stringarray{'x', 'y'} a:resize(3) print(#a, a[2], a[3], a[4])",
       "3\ty\t\tnil\n"},
      {"print(table.unpack(host.variantarray{1, 'b'}:totable()))", "1\tb\n"},
      {"local s = host.string('\\xE4a', 'windows latin-1') "
       "print(s, #s, s:bytes() == '\\xE4a', s:encoding(), re:Execute(s), re.Text, re:Offset(0))",
       "äa\t2\ttrue\tWindows Latin-1\t2\täa\t2\n"},
      {"print(host.string('\\0\\xD8b\\0', 'UTF-16'), host.string('a\\xE4z', 'ASCII'))",
       "�b\ta�z\n"},
      {"local b = host.memoryblock('x\\0ab') print(re:ExecuteMemory(b), re:Offset(0), #b)",
       "2\t2\t4\n"},
      {"local b = host.memoryblock('abc') b:write(1, 'BC') b:byte(0, 65) "
       "print(b, b:size(), b:byte(1), b:read(1), b:read(0, 2), b:read(3) == '')",
       "ABC\t3\t66\tBC\tAB\ttrue\n"},
      {"local b = host.memoryblock('a') re:ExecuteMemory(b) print(re.TextMemory == b)", "true\n"},
      {"local ok, e = pcall(re.Offset, re, 51) print(ok, e.class, e.number, #e.message > 9)",
       "false\tOutOfBoundsException\t0\ttrue\n"},
      {"do local x <close> = re end print(pcall(function() return re.Count end))",
       "false\t(command line):1: this handle is closed\n"},
      {"re = nil collectgarbage() print(#host.problems())", "0\n"},
      {"local t = host.clock() print(math.type(t), host.clock() >= t, host.isatty())",
       "float\ttrue\tfalse\n"},
      // At least two yields in every threaded call, one turn in each.
      {"n = 0 host.task(function() while n < 2 do n = n + 1 coroutine.yield() end end) "
       "re:ExecuteMT('x') print(n)",
       "2\n"},
      {"for i = 1, 2 do host.task(function() for k = 1, 2 do io.write(i, k, ' ') host.yield() end "
       "end) end while host.yield() do end print()",
       "11 21 12 22 \n"},
      // A task that starts a threaded call of its own: the others still get their turns.
      {"host.task(function() local own = RegExZRK() own:Compile('b') print(own:ExecuteMT('b')) "
       "end) host.task(function() print('turn') end) print(re:ExecuteMT('a'))",
       "turn\n1\n2\n"},
      // What is raised in a task stays there.
      {"host.task(function() print((pcall(RegExZRK().Offset, RegExZRK(), 51))) end) "
       "print(pcall(re.ExecuteMT, re, 'a'))",
       "false\ntrue\t2\n"},
      // An object belongs to one task at a time.
      {"host.task(function() print(pcall(function() return re.Count end)) "
       "print(pcall(re.Substring, re, 0)) end) re:ExecuteMT('a')",
       "false\t(command line):1: RegExZRK.Count while another task waits for ExecuteMT of the same "
       "object: an object belongs to one task at a time\n"
       "false\tRegExZRK.Substring while another task waits for ExecuteMT of the same object: an "
       "object belongs to one task at a time\n"},
  };
  for (const auto& [code, printed] : rows) {
    const Ran ran = Lua("re = RegExZRK.new() re:Compile('(?<n>a)') " + std::string(code));
    EXPECT_EQ(ran.output, printed) << code;
    EXPECT_EQ(ran.status, 0) << code;
  }
}

TEST(ZRKHost, CompletesItsCommandLineInBash) {
  const struct {
    const char* words;
    const char* choices;  // for the last word
  } rows[] = {
      {"zrkhost tr", "try"},
      {"zrkhost --no-d", "--no-direct-storage"},
      {"zrkhost --without REALUnlockS", "REALUnlockString"},
      {"zrkhost help Stu", "Study"},
      {"zrkhost try --only", "--only-matching"},
      {"zrkhost try --CompileOptionUng", "--CompileOptionUngreedy"},
  };
  for (const auto& [words, choices] : rows) {
    const std::string script =
        "PATH=$(dirname " ZRK_HOST_PROGRAM "):$PATH; COMP_WORDS=(" + std::string(words) +
        "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); . " ZRK_SOURCE_DIR
        "/standin/zrkhost/completions/zrkhost.bash; _zrkhost; echo \"${COMPREPLY[*]}\"";
    EXPECT_EQ(Shell("bash -c " + Quoted(script)).output, std::string(choices) + "\n") << words;
  }
}

}  // namespace
