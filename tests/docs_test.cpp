// The documentation against the library: the class reference names every registered member and no
// other, the examples print what stands behind them, and no link leads nowhere.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "tests/session.h"

namespace tests {
namespace {

namespace fs = std::filesystem;
using Names = std::set<std::string>;

const fs::path kRoot = ZRK_SOURCE_DIR;
const fs::path kHelp = kRoot / "docs/help";

std::string Read(const fs::path& file) {
  std::ifstream in(file);
  EXPECT_TRUE(in) << file;
  return {std::istreambuf_iterator<char>(in), {}};
}

std::vector<std::smatch> FindAll(const std::string& text, const char* pattern) {
  const std::regex regex(pattern, std::regex::multiline);
  return {std::sregex_iterator(text.begin(), text.end(), regex), std::sregex_iterator()};
}

// What the pattern's first group finds in a help page.
Names NamesIn(const char* page, const char* pattern) {
  const std::string text = Read(kHelp / page);
  Names names;
  for (const std::smatch& match : FindAll(text, pattern)) {
    EXPECT_TRUE(names.insert(match[1]).second) << page << " has this twice: " << match[1];
  }
  return names;
}

std::vector<fs::path> Pages() {
  std::vector<fs::path> pages{kRoot / "README.md", kRoot / "CHANGELOG.md"};
  for (const auto& entry : fs::recursive_directory_iterator(kRoot / "docs")) {
    if (entry.path().extension() == ".md") pages.push_back(entry.path());
  }
  return pages;
}

class Reference : public testing::Test {
 protected:
  Session session_;
  const standin::ClassInfo& class_ = *session_.host.FindClass("RegExZRK");
};

TEST_F(Reference, MethodsAreTheHeadingsOfTheirPage) {
  Names registered;
  for (const auto& method : class_.methods()) registered.insert(method.text);
  EXPECT_EQ(NamesIn("methods.md", "^### (.*)$"), registered);
}

TEST_F(Reference, PropertiesStandInTheirPageWithTypeAndAccess) {
  Names registered;
  for (const auto& property : class_.properties()) {
    const bool writable = property.setter != nullptr;
    registered.insert('`' + property.name + "` | " + property.type.name + " | " +
                      (writable ? "read/write" : "read"));
  }
  EXPECT_EQ(NamesIn("properties.md", R"(^\| (`\w+` \| \w+ \| [a-z/]+) \|)"), registered);
}

TEST_F(Reference, ConstantsStandInTheirPageAsDeclared) {
  Names registered;
  for (const auto& constant : class_.constants()) registered.insert(constant.text);
  EXPECT_EQ(NamesIn("constants.md", R"(^\| `(\w+ = -?\d+)` \|)"), registered);
}

// Runs a program in zrkhost; answers what it prints, and its exit status where that is not 0.
std::string RunProgram(const std::string& program) {
  const fs::path file =
      fs::path(testing::TempDir()) / ("zrk_docs_test." + std::to_string(getpid()));
  std::ofstream(file) << program;
  FILE* const out = popen((ZRK_HOST_PROGRAM " " + file.string() + " 2>&1").c_str(), "r");
  std::string printed;
  for (int byte = 0; (byte = std::fgetc(out)) != EOF;) printed += static_cast<char>(byte);
  const int status = pclose(out);
  fs::remove(file);
  return status == 0 ? printed : printed + "exit " + std::to_string(WEXITSTATUS(status));
}

TEST(DocsDecisions, AreListedByTheirTitles) {
  const std::string list = Read(kRoot / "docs/README.md");
  for (const auto& entry : fs::directory_iterator(kRoot / "docs/decisions")) {
    const std::string page = Read(entry.path());
    const std::string title = page.substr(2, page.find('\n') - 2);
    const std::string line = "[" + title + "](decisions/" + entry.path().filename().string() + ")";
    EXPECT_NE(list.find(line), std::string::npos) << line;
  }
}

TEST(DocsExamples, PrintWhatStandsBehindThem) {
  constexpr const char* kExample = "```lua\n([^]*?)```\n(?:\n```text\n([^]*?)```\n)?";
  std::size_t compared = 0;
  for (const fs::path& page : Pages()) {
    const std::string text = Read(page);
    for (const std::smatch& example : FindAll(text, kExample)) {
      const std::string printed = RunProgram(example[1]);
      EXPECT_EQ(printed.find("exit "), std::string::npos) << page << '\n' << printed;
      if (!example[2].matched) continue;
      EXPECT_EQ(printed, example[2]) << page << '\n' << example[1];
      ++compared;
    }
  }
  EXPECT_GE(compared, 10U);
}

// Also files that are named without a link, such as tests/docs_test.cpp.
TEST(DocsLinks, LeadToFiles) {
  for (const fs::path& page : Pages()) {
    const std::string text = Read(page);
    for (const std::smatch& link : FindAll(text, R"(\]\(([^)#:]+)(#[^)]*)?\))")) {
      EXPECT_TRUE(fs::exists(page.parent_path() / link[1].str())) << page << ": " << link[1];
    }
    for (const std::smatch& name : FindAll(text, R"(`([a-z]+/\w+\.(?:cpp|h|lua))`)")) {
      EXPECT_TRUE(fs::exists(kRoot / name[1].str())) << page << ": " << name[1];
    }
  }
}

}  // namespace
}  // namespace tests
