#include <array>
#include <filesystem>
#include <random>
#include <stdexcept>

#include "readers/driver_test.h"
#include "support/module_loading.h"

namespace orvane_test {
namespace {

using WdReader = DriverOf<kWd>;

TEST_F(WdReader, StaysOpenUntilTheLibraryAgreesToClose) {
  OpenAnew();
  module.Answer("CT_close", 1);
  EXPECT_EQ(CloseReader(), 0);
  EXPECT_EQ(ResetCard(), (Reply{1, kCardAtr}));
  EXPECT_EQ(CloseReader(), 1);
  EXPECT_EQ(CloseReader(), 1);
  EXPECT_EQ(ResetCard(), (Reply{0, kUntouched}));
  EXPECT_EQ(NewCallsWithoutResults(), "CT_close(1)\nICC_tsi_api(1, 0012000000)\nCT_close(1)\n");
}

TEST_F(WdReader, GivesTheSlotAsNodeAddress) {
  OpenAnew();
  ChangeSlot("05");
  module.Answer("ICC_set_NAD", 1);
  ChangeSlot("FF");
  EXPECT_EQ(NewCallsWithoutResults(), "ICC_set_NAD(1, 5)\nICC_set_NAD(1, 255)\n");
  EXPECT_EQ(ResetCard().result, 1);
}

TEST_F(WdReader, WantsSuccessTwiceBehindMoreData) {
  const struct {
    std::int64_t result;
    const char* reply;
    Reply expected;
  } rows[] = {
      {0x9000, "01029000", {1, "01029000"}}, {0x9000, "9000", {1, "9000"}},
      {0x9000, "01026A82", {0, "6102"}},     {0x9000, "01026102", {0, "6102"}},
      {0x6A82, "01029000", {0, "6102"}},     {0x6FF0, "01029000", {0, "6102"}},
  };
  OpenAnew();
  for (const auto& row : rows) {
    module.Answer("ICC_tsi_api", 0x6102, "6102");
    module.Answer("ICC_tsi_api", row.result, row.reply);
    EXPECT_EQ(Send("00B0000003"), row.expected) << row.result << ' ' << row.reply;
    EXPECT_EQ(NewCallsWithoutResults(), "ICC_tsi_api(1, 00B0000003)\nICC_tsi_api(1, 00C0000002)\n");
  }
}

// Open by name, reset, send and close with a copy of the library in a folder of its own, where
// wdcrwx lacks one function or, without a name, is missing. The copy stays loaded, as its reader
// slots are never released.
std::vector<int> ResultsWithout(const char* missing) {
  const auto folder = std::filesystem::temp_directory_path() /
                      ("orvane-wd-" + std::to_string(std::random_device()()));
  const auto library = folder / support::ModuleFileName("orvane");
  std::filesystem::create_directory(folder);
  std::filesystem::copy_file(ORVANE_BUILD_PATH / library.filename(), library);
  if (missing != nullptr) support::WriteModuleWithout("wdcrwx", missing, folder);
  std::string why;
  void* const copy = support::LoadModule(library, why);
  if (copy == nullptr) throw std::runtime_error(why);
  const auto find = [copy]<typename Function>(Function*, const char* name) {
    return reinterpret_cast<Function*>(support::FindExport(copy, name));
  };
  std::array<char, 8193> text{};
  const std::vector<int> results = {
      find(OpenReaderA, "OpenReaderA")("WDUSB1", ReaderKindWd), find(Reset, "Reset")(text.data()),
      find(SendCommand, "SendCommand")("00A4000C023F00", 14, text.data()),
      find(CloseReader, "CloseReader")()};
  find(OpenReader, "OpenReader")(1, 13, 9600);
  std::error_code ignored;
  std::filesystem::remove_all(folder, ignored);
  return results;
}

TEST(WdReaderWithout, OneFunction) {
  const std::pair<const char*, std::vector<int>> rows[] = {
      {"ICC_reset", {1, 1, 1, 1}},  // never called
      {"ICC_set_NAD", {1, 1, 1, 1}}, {"ICC_tsi_api", {1, 0, 0, 1}},
      {"CT_close", {1, 1, 1, 0}},    {"CT_open", {0, 0, 0, 0}},
  };
  for (const auto& [missing, expected] : rows) {
    EXPECT_EQ(ResultsWithout(missing), expected) << "without " << missing;
  }
}

TEST_F(WdReader, IsLookedForBesideTheLibraryAndNowhereElse) {
  ASSERT_TRUE(support::IsLoaded("wdcrwx"));
  EXPECT_EQ(ResultsWithout(nullptr), (std::vector<int>{0, 0, 0, 0}));
}

}  // namespace
}  // namespace orvane_test
