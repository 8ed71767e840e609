// Copies of the library in folders of their own, with other files beside them than the build has.
// Each runs in a child process, since the library binds its provider once.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "engine/script_host.h"
#include "support/export_names.h"
#include "support/module_loading.h"

namespace orvane_test {
namespace {

namespace fs = std::filesystem;

const fs::path kBuild = ORVANE_BUILD_FOLDER;
const std::string kProvider = support::ModuleFileName("orvane_crypto");
const std::string kLibrary = support::ModuleFileName("orvane");

struct EntryRow {
  const char* entry;
  const char* statement;
  const char* value;  // what stands between AA and BB when the entry is there
};

constexpr EntryRow kEntries[] = {
    {"CryptoHash", "%X = AA @HASH(616263) BB", "A9993E364706816ABA3E25717850C26C9CD0D89D"},
    {"CryptoBlockFlagged", "%X = AA @des(0101010101010101,8000000000000000,1) BB",
     "95F8A5E5DD31D900"},
    {"CryptoBlockDefault", "%X = AA @des(0101010101010101,95F8A5E5DD31D900,0) BB",
     "8000000000000000"},
    {"CryptoSubKey", "%X = AA @SUBKEY(0101010101010101,8000000000000000) BB", "95F8A5E5DD31D900"},
    {"CryptoMac", "%X = AA @mac(0123456789ABCDEF,4E,00,0) BB", "D01011F0DD2A22E9"},
};

class Folder {
 public:
  Folder() {
    std::random_device random;
    do {
      path_ = fs::temp_directory_path() / ("orvane-" + std::to_string(random()));
    } while (!fs::create_directory(path_));
    fs::copy_file(kBuild / kLibrary, path_ / kLibrary);
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  ~Folder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
  }
  const fs::path& Path() const { return path_; }

 private:
  fs::path path_;
};

void WriteProviderWithout(const std::string& entry, const fs::path& target) {
  std::ifstream in(kBuild / kProvider, std::ios::binary);
  std::vector<char> octets{std::istreambuf_iterator<char>(in), {}};
  ASSERT_TRUE(support::HideExport(octets, entry)) << entry;
  std::ofstream out(target, std::ios::binary);
  out.write(octets.data(), static_cast<std::streamsize>(octets.size()));
}

// Ends the process: with 0 if just the commands of these entries fail, and in the way they should.
[[noreturn]] void RunStatements(const fs::path& folder, const std::set<std::string>& lacking) {
  std::string why;
  void* const library = support::LoadModule(folder / kLibrary, why);
  if (library == nullptr) {
    std::cerr << why << '\n';
    std::exit(1);
  }
  const auto run =
      reinterpret_cast<decltype(&RunScript)>(support::FindExport(library, "RunScript"));
  bool right = true;
  const auto expect = [&](const char* statement, const std::string& expected) {
    char result[512];
    const int code = run(statement, result);
    if (code == 0 && result == expected) return;
    std::cerr << statement << ": " << Outcome{code, result} << ", not " << expected << '\n';
    right = false;
  };
  for (int again = 0; again < 2; ++again) {
    for (const EntryRow& row : kEntries) {
      expect(row.statement,
             lacking.count(row.entry) ? "AABB" : std::string("AA") + row.value + "BB");
    }
    expect("%X = AA @RSAPUBENC(CA1,11,41) BB",
           lacking.count("CryptoRsaPublic") ? "AABB" : "AAAE6BB");
  }
  std::exit(right ? 0 : 1);
}

const std::set<std::string> kAll = {"CryptoHash",   "CryptoBlockFlagged", "CryptoBlockDefault",
                                    "CryptoSubKey", "CryptoMac",          "CryptoRsaPublic"};

TEST(MissingProvider, TheModuleBesideTheLibraryIsFound) {
  const Folder folder;
  fs::copy_file(kBuild / kProvider, folder.Path() / kProvider);
  EXPECT_EXIT(RunStatements(folder.Path(), {}), testing::ExitedWithCode(0), "");
}

TEST(MissingProvider, WithoutAModuleEveryCommandFails) {
  const Folder folder;
  EXPECT_EXIT(RunStatements(folder.Path(), kAll), testing::ExitedWithCode(0), "");
}

TEST(MissingProvider, AFileThatIsNoModuleIsNone) {
  const Folder folder;
  std::ofstream(folder.Path() / kProvider) << "no module";
  EXPECT_EXIT(RunStatements(folder.Path(), kAll), testing::ExitedWithCode(0), "");
}

TEST(MissingProvider, OnlyTheCommandsOfALackingEntryFail) {
  for (const std::string& entry : kAll) {
    SCOPED_TRACE(entry);
    const Folder folder;
    ASSERT_NO_FATAL_FAILURE(WriteProviderWithout(entry, folder.Path() / kProvider));
    EXPECT_EXIT(RunStatements(folder.Path(), {entry}), testing::ExitedWithCode(0), "");
  }
}

}  // namespace
}  // namespace orvane_test
