// The documentation against the library: the class reference declares every registered member and
// no other, the examples print what stands behind them, and no link leads nowhere.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "tests/run_program.h"
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

std::vector<fs::path> Pages() {
  std::vector<fs::path> pages{kRoot / "README.md", kRoot / "CHANGELOG.md"};
  for (const auto& entry : fs::recursive_directory_iterator(kRoot / "docs")) {
    if (entry.path().extension() == ".md") pages.push_back(entry.path());
  }
  return pages;
}

// A heading of level 3 in a help page, and what stands below it up to the next heading.
struct Entry {
  std::string name;
  std::string text;

  // The lines of the declaration fence that the text opens with, if it does.
  std::vector<std::string> Declarations() const {
    constexpr std::string_view kFence = "\n```declaration\n";
    if (!text.starts_with(kFence)) return {};
    std::istringstream in(text.substr(kFence.size()));
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line) && line != "```";) lines.push_back(line);
    return lines;
  }
};

std::vector<Entry> EntriesOf(const std::string& page) {
  std::vector<Entry> entries;
  bool in_entry = false;
  std::istringstream in(page);
  for (std::string line; std::getline(in, line);) {
    if (line.starts_with("### ")) {
      entries.push_back({line.substr(4), {}});
      in_entry = true;
    } else if (line.starts_with("# ") || line.starts_with("## ")) {
      in_entry = false;
    } else if (in_entry) {
      entries.back().text += line + '\n';
    }
  }
  return entries;
}

// The entries that declare something, of all help pages.
std::vector<Entry> ReferenceEntries() {
  std::vector<Entry> found;
  for (const auto& page : fs::directory_iterator(kHelp)) {
    if (page.path().extension() != ".md") continue;
    const std::string text = Read(page.path());
    std::size_t fences = FindAll(text, "^```declaration$").size();
    for (const Entry& entry : EntriesOf(text)) {
      if (entry.Declarations().empty()) continue;
      found.push_back(entry);
      --fences;
    }
    EXPECT_EQ(fences, 0U) << page.path() << " has declarations that no heading stands above";
  }
  return found;
}

// Every member as the library registers it: its name, and below it its declarations.
std::map<std::string, Names> RegisteredMembers() {
  Session session;
  const standin::ClassInfo& registered = *session.host.FindClass("RegExZRK");
  std::map<std::string, Names> members;
  for (const auto& method : registered.methods()) {
    members[method.declaration.name].insert(method.text);
  }
  for (const auto& property : registered.properties()) {
    members[property.name].insert(property.name + " as " + property.type.name +
                                  (property.setter == nullptr ? " (read only)" : ""));
  }
  for (const auto& constant : registered.constants()) {
    members[constant.declaration.name].insert(constant.text);
  }
  return members;
}

TEST(Reference, DeclaresEachMemberOnceAsRegistered) {
  std::map<std::string, Names> declared;
  for (const Entry& entry : ReferenceEntries()) {
    const auto lines = entry.Declarations();
    EXPECT_TRUE(declared.emplace(entry.name, Names(lines.begin(), lines.end())).second)
        << entry.name << " has two entries";
  }
  const auto registered = RegisteredMembers();
  for (const auto& [name, lines] : registered) {
    EXPECT_EQ(declared[name], lines) << "the entry of " << name;
  }
  for (const auto& [name, lines] : declared) {
    EXPECT_TRUE(registered.contains(name)) << name << " is declared, but not registered";
  }
}

// Constants apart, whose use shows with the methods that leave them.
TEST(Reference, ShowsEachMemberInAListing) {
  for (const Entry& entry : ReferenceEntries()) {
    if (entry.Declarations()[0].starts_with(entry.name + " = ")) continue;
    const std::size_t listing = entry.text.find("```vb\n");
    ASSERT_NE(listing, std::string::npos) << entry.name;
    const std::string use = entry.name == "Constructor" ? "New RegExZRK" : entry.name;
    EXPECT_NE(entry.text.find(use, listing), std::string::npos) << entry.name;
  }
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

// An example without a text behind it prints nothing. Each stands in its file where it stands in
// the page, so that messages name the page's line.
TEST(DocsExamples, PrintWhatStandsBehindThem) {
  constexpr const char* kExample = "^```(lua|vb)\n([^]*?)```\n(?:\n```text\n([^]*?)```\n)?";
  std::size_t run = 0;
  for (const fs::path& page : Pages()) {
    const std::string text = Read(page);
    const std::string name = page.filename();
    for (const std::smatch& example : FindAll(text, kExample)) {
      const auto line = std::count(text.begin(), example[2].first, '\n');
      const std::string code = std::string(static_cast<std::size_t>(line), '\n') + example[2].str();
      const bool lua = example[1] == "lua";
      EXPECT_EQ(lua ? RunProgram(name, code) : RunListing(name, code), example[3])
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
  const std::string page = Read(kHelp / "patterns.md");
  const auto rows = FindAll(page, R"(^\| `([^`]+)` \| .* \| `([^`]+)` \|$)");
  EXPECT_GE(rows.size(), 90U);
  for (const std::smatch& row : rows) {
    program += "row([==[" + row[1].str() + "]==], [==[" + row[2].str() + "]==])\n";
  }
  EXPECT_EQ(RunProgram("lua", program), "");
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
