// The documentation against the library: the class reference declares every registered member and
// no other, the examples print what stands behind them, and no link leads nowhere.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "tests/command.h"

namespace tests {
namespace {

namespace fs = std::filesystem;
using Names = std::set<std::string>;

const fs::path kRoot = ZRK_SOURCE_DIR;
const fs::path kHelp = kRoot / "docs/help";

std::vector<std::smatch> FindAll(const std::string& text, const char* pattern) {
  const std::regex regex(pattern, std::regex::multiline);
  return {std::sregex_iterator(text.begin(), text.end(), regex), std::sregex_iterator()};
}

std::vector<fs::path> Pages() {
  std::vector<fs::path> pages{kRoot / "README.md", kRoot / "CHANGELOG.md"};
  for (const auto& entry : fs::recursive_directory_iterator(kRoot / "docs")) {
    if (entry.path().extension() == ".md") pages.push_back(entry.path());
  }
  return pages;
}

// What the class reference says of a member: a heading of level 3, the declarations directly below
// it, and the text up to the next heading.
struct Entry {
  std::string name;
  Names declarations;
  std::string text;
};

std::vector<Entry> ReferenceEntries() {
  std::vector<Entry> entries;
  for (const auto& page : fs::directory_iterator(kHelp)) {
    if (page.path().extension() != ".md") continue;
    const std::string text = ReadFile(page.path());
    const auto headings = FindAll(text, "^### (\\w+)\n\n```declaration\n([^]*?)```\n");
    EXPECT_EQ(headings.size(), FindAll(text, "^```declaration$").size())
        << page.path() << " has declarations without a heading of their own";
    for (const std::smatch& heading : headings) {
      const std::string declared = heading[2];
      const std::string below = heading.suffix();
      Names declarations;
      for (const std::smatch& line : FindAll(declared, "^.+$")) declarations.insert(line.str());
      entries.push_back({heading[1], declarations, below.substr(0, below.find("\n##"))});
    }
  }
  return entries;
}

// The declarations of every member by its name, from the lines that the library is held to.
std::map<std::string, Names> RegisteredMembers() {
  const std::string lines = ReadFile(kRoot / "tests/expected/class.txt");
  std::map<std::string, Names> members;
  for (const std::smatch& line : FindAll(lines, "^(\\w+)([ (].*?)(: read \\w+)?(, write \\w+)?$")) {
    const bool read_only = line[3].matched && !line[4].matched;
    members[line[1]].insert(line[1].str() + line[2].str() + (read_only ? " (read only)" : ""));
  }
  return members;
}

TEST(Reference, DeclaresEachMemberOnceAsRegistered) {
  auto without_entry = RegisteredMembers();
  for (const Entry& entry : ReferenceEntries()) {
    EXPECT_EQ(entry.declarations, without_entry[entry.name]) << "the entry of " << entry.name;
    without_entry.erase(entry.name);
  }
  for (const auto& [name, lines] : without_entry) ADD_FAILURE() << name << " has no entry";
}

// Constants apart, whose use shows with the methods that leave them.
TEST(Reference, ShowsEachMemberInAListing) {
  for (const Entry& entry : ReferenceEntries()) {
    if (entry.declarations.begin()->starts_with(entry.name + " = ")) continue;
    const std::size_t listing = entry.text.find("```vb\n");
    ASSERT_NE(listing, std::string::npos) << entry.name;
    const std::string use = entry.name == "Constructor" ? "New RegExZRK" : entry.name;
    EXPECT_NE(entry.text.find(use, listing), std::string::npos) << entry.name;
  }
}

TEST(DocsDecisions, AreListedByTheirTitles) {
  const std::string list = ReadFile(kRoot / "docs/README.md");
  for (const auto& entry : fs::directory_iterator(kRoot / "docs/decisions")) {
    const std::string page = ReadFile(entry.path());
    const std::string title = page.substr(2, page.find('\n') - 2);
    const std::string line = "[" + title + "](decisions/" + entry.path().filename().string() + ")";
    EXPECT_NE(list.find(line), std::string::npos) << line;
  }
}

// An example without a text behind it prints nothing. Each stands in its file where it stands in
// the page, so that messages name the page's line.
TEST(DocsExamples, PrintWhatStandsBehindThem) {
  constexpr const char* kExample = "^```(lua|vb)\n([^]*?)```\n(?:\n```text\n([^]*?)```\n)?";
  std::size_t run = 0;
  for (const fs::path& page : Pages()) {
    const std::string text = ReadFile(page);
    for (const std::smatch& example : FindAll(text, kExample)) {
      const auto line = std::count(text.begin(), example[2].first, '\n');
      const std::string code = std::string(static_cast<std::size_t>(line), '\n') + example[2].str();
      const std::string ending = example[1] == "lua" ? "" : ".xojo_code";
      EXPECT_EQ(RunProgram(page.filename().string() + ending, code), example[3])
          << page << ':' << line << '\n'
          << example[2];
      ++run;
    }
  }
  EXPECT_GE(run, 10U);
}

// The tables of patterns.md: « and » enclose all that the row's pattern finds in its text, with a
// new object's options; ¶ stands for a line feed there and → for a TAB.
TEST(DocsPatterns, FindWhatTheirRowsMark) {
  std::string program = R"(
    local function row(pattern, marked)
      pattern, marked = pattern:gsub("\\|", "|"), marked:gsub("\\|", "|"):gsub("¶", "\n"):gsub("→", "\t")
      local re = RegExZRK()
      re:Compile(pattern)
      local found = re:ReplaceAll(marked:gsub("«", ""):gsub("»", ""), "«\\0»")
      if found ~= marked then print(pattern, found, re.ErrorMessage) end
    end
  )";
  const std::string page = ReadFile(kHelp / "patterns.md");
  const auto rows = FindAll(page, R"(^\| `([^`]+)` \| .* \| `([^`]+)` \|$)");
  EXPECT_GE(rows.size(), 90U);
  for (const std::smatch& row : rows) {
    program += "row([==[" + row[1].str() + "]==], [==[" + row[2].str() + "]==])\n";
  }
  EXPECT_EQ(RunProgram("lua", program), "");
}

// Also files that are named without a link, such as tests/docs_test.cpp.
TEST(DocsLinks, LeadToFiles) {
  std::size_t links = 0;
  for (const fs::path& page : Pages()) {
    const std::string text = ReadFile(page);
    for (const std::smatch& link : FindAll(text, R"(\]\(([^)#:]+)(#[^)]*)?\))")) {
      EXPECT_TRUE(fs::exists(page.parent_path() / link[1].str())) << page << ": " << link[1];
      ++links;
    }
    for (const std::smatch& name : FindAll(text, R"(`([a-z]+/\w+\.(?:cpp|h|lua))`)")) {
      EXPECT_TRUE(fs::exists(kRoot / name[1].str())) << page << ": " << name[1];
      ++links;
    }
  }
  EXPECT_GT(links, 100U) << "links that are not found are not looked at";
}

}  // namespace
}  // namespace tests
