// A copy of the library in a folder of its own, with other files beside it than the build has. Each
// case runs in a child process, since the library binds its provider once.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

#include "orvane.h"
#include "support/module_loading.h"
#include "support/simulated_module.h"

namespace orvane_test {
namespace {

namespace fs = std::filesystem;

const fs::path kBuild = u8"" ORVANE_BUILD_FOLDER;
const std::string kProvider = support::ModuleFileName("orvane_crypto");
const std::string kLibrary = support::ModuleFileName("orvane");
// An entry, a call of it, and what it gives.
const std::string kEntries[][3] = {
    {"CryptoHash", "@HASH(616263)", "A9993E364706816ABA3E25717850C26C9CD0D89D"},
    {"CryptoBlockFlagged", "@des(0101010101010101,8000000000000000,1)", "95F8A5E5DD31D900"},
    {"CryptoBlockDefault", "@des(0101010101010101,95F8A5E5DD31D900,0)", "8000000000000000"},
    {"CryptoSubKey", "@SUBKEY(0101010101010101,8000000000000000)", "95F8A5E5DD31D900"},
    {"CryptoMac", "@mac(0123456789ABCDEF,4E,00,0)", "D01011F0DD2A22E9"},
    {"CryptoRsaPublic", "@RSAPUBENC(CA1,11,41)", "AE6"}};

class MissingProvider : public testing::Test {
 protected:
  void SetUp() override {
    fs::remove_all(folder_);
    fs::create_directory(folder_);
    fs::copy_file(kBuild / kLibrary, folder_ / kLibrary);
  }
  void TearDown() override { fs::remove_all(folder_); }

  // Ends the process: with 0 if just the calls of the lacking entry fail, as they should.
  [[noreturn]] void RunStatements(const std::string& lacking) const {
    std::string why;
    void* const library = support::LoadModule(folder_ / kLibrary, why);
    if (library == nullptr) std::exit(1);
    const auto run =
        reinterpret_cast<decltype(&RunScript)>(support::FindExport(library, "RunScript"));
    for (int round = 0; round < 2; ++round) {
      for (const auto& [entry, call, value] : kEntries) {
        const bool isLacking = lacking == "all" || lacking == entry;
        char result[512];
        const int code = run(("%X = AA " + call + " BB").c_str(), result);
        if (code == 0 && result == (isLacking ? "AABB" : "AA" + value + "BB")) continue;
        std::cerr << call << ": " << result << std::endl;
        std::exit(1);
      }
    }
    std::exit(0);
  }

  const fs::path folder_ =
      kBuild / "tests" /
      (std::string("provider_") + testing::UnitTest::GetInstance()->current_test_info()->name());
};

TEST_F(MissingProvider, WithoutAModuleEveryCommandFails) {
  EXPECT_EXIT(RunStatements("all"), testing::ExitedWithCode(0), "");
  std::ofstream(folder_ / kProvider) << "no module";
  EXPECT_EXIT(RunStatements("all"), testing::ExitedWithCode(0), "");
}

TEST_F(MissingProvider, OnlyTheCommandsOfALackingEntryFail) {
  fs::copy_file(kBuild / kProvider, folder_ / kProvider);
  EXPECT_EXIT(RunStatements(""), testing::ExitedWithCode(0), "");
  for (const auto& [entry, call, value] : kEntries) {
    support::CopyWithout(kBuild / kProvider, entry, folder_ / kProvider);
    EXPECT_EXIT(RunStatements(entry), testing::ExitedWithCode(0), "") << entry;
  }
}

}  // namespace
}  // namespace orvane_test
