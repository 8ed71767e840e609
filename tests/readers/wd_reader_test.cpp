#include <array>

#include "readers/driver_test.h"
#include "support/library_copy.h"

namespace orvane_test {
namespace {

// Open by name, reset, send and close with a copy of the library in a folder of its own, where
// wdcrwx lacks one function or, without a name, is missing. The copy stays loaded, as its reader
// slots are never released.
std::vector<int> ResultsWithout(const char* missing) {
  const auto folder = MakeTemporaryFolder();
  if (missing != nullptr) support::WriteModuleWithout("wdcrwx", missing, folder);
  void* const copy = LoadLibraryCopy(folder);
  std::array<char, 8193> text{};
  const std::vector<int> results = {EXPORT_OF(copy, OpenReaderA)("WDUSB1", ReaderKindWd),
                                    EXPORT_OF(copy, Reset)(text.data()),
                                    EXPORT_OF(copy, SendCommand)("00A4000C023F00", 14, text.data()),
                                    EXPORT_OF(copy, CloseReader)()};
  EXPORT_OF(copy, OpenReader)(1, 13, 9600);
  std::error_code ignored;
  std::filesystem::remove_all(folder, ignored);
  return results;
}

TEST(WdReader, WithoutItsLibraryBesideOrvanesOrOneFunction) {
  const support::SimulatedModule elsewhere("wdcrwx");
  const std::pair<const char*, std::vector<int>> rows[] = {
      {nullptr, {0, 0, 0, 0}},       {"ICC_reset", {1, 1, 1, 1}},  // never called
      {"ICC_set_NAD", {1, 1, 1, 1}}, {"ICC_tsi_api", {1, 0, 0, 1}},
      {"CT_close", {1, 1, 1, 0}},    {"CT_open", {0, 0, 0, 0}},
  };
  for (const auto& [missing, expected] : rows) {
    EXPECT_EQ(ResultsWithout(missing), expected) << (missing != nullptr ? missing : "all");
  }
}

}  // namespace
}  // namespace orvane_test
