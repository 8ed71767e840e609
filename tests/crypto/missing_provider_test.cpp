// A copy of the library in a folder of its own, where it finds no crypto module, or a file that is
// none. It runs in child processes, since the library binds its provider once.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "orvane.h"
#include "support/module_loading.h"

namespace orvane_test {
namespace {

namespace fs = std::filesystem;

// Ends the process: with 0 if every command fails, twice.
[[noreturn]] void RunStatements(const fs::path& library) {
  void* const loaded = support::LoadModule(library);
  const auto run = reinterpret_cast<decltype(&RunScript)>(support::FindExport(loaded, "RunScript"));
  char result[512];
  for (int round = 0; round < 2; ++round) {
    run("%X = AA @HASH(61) @des(0101010101010101,11,1) @RSAPUBENC(CA1,11,41) BB", result);
    if (result != std::string("AABB")) std::exit(1);
  }
  std::exit(0);
}

TEST(MissingProvider, MakesEveryCommandFail) {
  const fs::path build = u8"" ORVANE_BUILD_FOLDER, folder = build / "tests/missing_provider";
  const fs::path library = folder / support::ModuleFileName("orvane");
  fs::remove_all(folder);
  fs::create_directory(folder);
  fs::copy_file(build / library.filename(), library);
  EXPECT_EXIT(RunStatements(library), testing::ExitedWithCode(0), "");
  std::ofstream(folder / support::ModuleFileName("orvane_crypto")) << "no module";
  EXPECT_EXIT(RunStatements(library), testing::ExitedWithCode(0), "");
  fs::remove_all(folder);
}

}  // namespace
}  // namespace orvane_test
