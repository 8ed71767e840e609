#include <cctype>
#include <filesystem>
#include <set>

#include "docs/page.h"

namespace orvane_test {
namespace {

namespace fs = std::filesystem;
using Names = std::set<std::string>;

const fs::path kRoot = u8"" ORVANE_SOURCE_FOLDER;

Names UpperCased(const std::vector<std::string>& names) {
  Names upper;
  for (std::string name : names) {
    for (char& c : name) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    upper.insert(name);
  }
  return upper;
}

std::string Joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + '\n';
  return text;
}

// The pages with examples for the default module. A variable lasts as long as the process: each
// page is a test, and so has one of its own.
std::vector<std::string> Pages() {
  std::vector<std::string> pages;
  for (const auto& entry : fs::directory_iterator(kRoot / "docs"))
    if (entry.path().extension() == ".md" && entry.path().stem() != "crypto-module")
      pages.push_back(entry.path().stem().string());
  return pages;
}

class DocsPage : public testing::TestWithParam<std::string> {};

TEST_P(DocsPage, GivesWhatItSays) {
  RunExamples(ReadText("docs/" + GetParam() + ".md"), u8"" DEFAULT_CRYPTO);
}

INSTANTIATE_TEST_SUITE_P(Every, DocsPage, testing::ValuesIn(Pages()), [](const auto& page) {
  return std::regex_replace(page.param, std::regex("\\W"), "_");
});

TEST(Docs, LanguageHasEveryCommandInARowAndInAnExample) {
  const std::string page = ReadText("docs/language.md");
  const Names commands =
      UpperCased(Matches(ReadText("src/commands/builtin.cpp"), "\\{\"(@\\w+)\", "));
  EXPECT_FALSE(commands.empty());
  EXPECT_EQ(UpperCased(Matches(page, "(?:\n\\||,) `(@\\w+)\\(")), commands);
  const std::string examples =
      Joined(ExampleLines(page)) + Joined(ExampleLines(ReadText("docs/cryptography.md")));
  const Names tested = UpperCased(Matches(examples, "(@\\w+) ?\\("));
  for (const std::string& command : commands) EXPECT_EQ(tested.count(command), 1U) << command;
}

TEST(Docs, AndListsHaveEveryCommand) {
  const auto commands = Matches(ReadText("src/commands/builtin.cpp"), "\\{\"(@\\w+)\", ");
  for (const char* file : {"docs/cheat-sheet.md", "fuzz/statements.dict", "host/builtin.cpp",
                           "host/desk/vocabulary.cpp", "tests/memory/memory_test.cpp"}) {
    const Names words = UpperCased(Matches(ReadText(file), "(@\\w+)"));
    for (const std::string& command : commands)
      EXPECT_EQ(words.count(command), 1U) << file << ": " << command;
  }
}

TEST(Docs, CallingTellsWhatEveryExportGives) {
  const std::string page = ReadText("docs/calling.md");
  const std::string table = page.substr(page.find("## What comes back"));
  const auto exports = Matches(ReadText("include/orvane.h"), "\nORVANE_API [^(]*\\b(\\w+)\\(");
  EXPECT_EQ(exports.size(), 40U);
  for (const std::string& name : exports)
    EXPECT_NE(table.find('`' + name + '`'), table.npos) << name;
}

TEST(Docs, ReadersAreThoseOfTheHeader) {
  const std::string page = ReadText("docs/readers.md");
  const std::string header = ReadText("include/orvane.h");
  const auto constants = Matches(header, "\n  (ReaderKind\\w+ = \\d+)");
  EXPECT_EQ(constants.size(), 11U);
  const std::regex constant("(\\w+) = (\\d+)");
  for (const std::string& text : constants) {
    const std::string row = std::regex_replace(text, constant, "\n| $2 | `$1` |");
    EXPECT_NE(page.find(row), page.npos) << row;
  }
  const auto libraries = Matches(header, "/\\* (\\w+)\\.dll[: ;]");
  EXPECT_EQ(libraries.size(), 9U);
  for (const std::string& name : libraries) {
    const std::string files = std::string("| `").append(name).append(".dll`, `lib").append(name);
    EXPECT_NE(page.find(files + ".so` |"), page.npos) << name;
  }
}

TEST(Docs, NameFilesThatAreThere) {
  Names pages = {"README.md"};
  for (const auto& entry : fs::directory_iterator(kRoot / "docs"))
    if (entry.is_regular_file()) pages.insert("docs/" + entry.path().filename().string());
  const std::string folders = "src|include|host|crypto|pcsc|simulators|examples|tests|docs";
  for (const std::string& name : pages) {
    const std::string page = ReadText(name);
    for (const std::string& file : Matches(page, "`((?:" + folders + ")/[\\w./-]*)`"))
      EXPECT_TRUE(fs::exists(kRoot / file)) << name << ": " << file;
    for (const std::string& file : Matches(page, "\\]\\(([\\w./-]+)\\)"))
      EXPECT_TRUE(fs::exists(kRoot / fs::path(name).parent_path() / file)) << name << ": " << file;
  }
}

}  // namespace
}  // namespace orvane_test
