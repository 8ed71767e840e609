// A copy of the library in a folder of its own, with other files beside it than the build has. Each
// case runs in a child process, since the library binds its provider once.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

#include "engine/script_host.h"
#include "support/export_names.h"
#include "support/module_loading.h"

namespace orvane_test {
namespace {

namespace fs = std::filesystem;

const fs::path kBuild = ORVANE_BUILD_PATH;
const std::string kProvider = support::ModuleFileName("orvane_crypto");
const std::string kLibrary = support::ModuleFileName("orvane");
constexpr char kAll[] = "all entries";

struct EntryRow {
  std::string entry;
  const char* statement;
  const char* value;  // what stands between AA and BB when the entry is there
};

const EntryRow kEntries[] = {
    {"CryptoHash", "%X = AA @HASH(616263) BB", "A9993E364706816ABA3E25717850C26C9CD0D89D"},
    {"CryptoBlockFlagged", "%X = AA @des(0101010101010101,8000000000000000,1) BB",
     "95F8A5E5DD31D900"},
    {"CryptoBlockDefault", "%X = AA @des(0101010101010101,95F8A5E5DD31D900,0) BB",
     "8000000000000000"},
    {"CryptoSubKey", "%X = AA @SUBKEY(0101010101010101,8000000000000000) BB", "95F8A5E5DD31D900"},
    {"CryptoMac", "%X = AA @mac(0123456789ABCDEF,4E,00,0) BB", "D01011F0DD2A22E9"},
    {"CryptoRsaPublic", "%X = AA @RSAPUBENC(CA1,11,41) BB", "AE6"}};

class MissingProvider : public testing::Test {
 protected:
  void SetUp() override {
    fs::remove_all(folder_);
    fs::create_directory(folder_);
    fs::copy_file(kBuild / kLibrary, folder_ / kLibrary);
  }
  void TearDown() override { fs::remove_all(folder_); }

  // Ends the process: with 0 if just the commands of the lacking entry fail, as they should.
  [[noreturn]] void RunStatements(const std::string& lacking) const {
    std::string why;
    void* const library = support::LoadModule(folder_ / kLibrary, why);
    if (library == nullptr) {
      std::cerr << why << '\n';
      std::exit(1);
    }
    const auto run =
        reinterpret_cast<decltype(&RunScript)>(support::FindExport(library, "RunScript"));
    bool right = true;
    for (int call = 0; call < 2 * static_cast<int>(std::size(kEntries)); ++call) {
      const EntryRow& row = kEntries[static_cast<std::size_t>(call) % std::size(kEntries)];
      const bool isLacking = lacking == kAll || lacking == row.entry;
      const std::string expected = isLacking ? "AABB" : std::string("AA") + row.value + "BB";
      char result[512];
      const int code = run(row.statement, result);
      if (code == 0 && result == expected) continue;
      std::cerr << row.statement << ": " << Outcome{code, result} << ", not " << expected << '\n';
      right = false;
    }
    std::exit(right ? 0 : 1);
  }

  const fs::path folder_ =
      kBuild / "tests" /
      (std::string("provider_") + testing::UnitTest::GetInstance()->current_test_info()->name());
};

TEST_F(MissingProvider, WithoutAModuleEveryCommandFails) {
  EXPECT_EXIT(RunStatements(kAll), testing::ExitedWithCode(0), "");
  std::ofstream(folder_ / kProvider) << "no module";
  EXPECT_EXIT(RunStatements(kAll), testing::ExitedWithCode(0), "");
}

TEST_F(MissingProvider, OnlyTheCommandsOfALackingEntryFail) {
  fs::copy_file(kBuild / kProvider, folder_ / kProvider);
  EXPECT_EXIT(RunStatements(""), testing::ExitedWithCode(0), "");
  for (const EntryRow& row : kEntries) {
    std::ifstream in(kBuild / kProvider, std::ios::binary);
    std::vector<char> octets{std::istreambuf_iterator<char>(in), {}};
    ASSERT_TRUE(support::HideExport(octets, row.entry)) << row.entry;
    std::ofstream(folder_ / kProvider, std::ios::binary)
        .write(octets.data(), static_cast<std::streamsize>(octets.size()));
    EXPECT_EXIT(RunStatements(row.entry), testing::ExitedWithCode(0), "") << row.entry;
  }
}

}  // namespace
}  // namespace orvane_test
