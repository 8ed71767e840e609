#include <array>
#include <filesystem>
#include <random>
#include <stdexcept>

#include "readers/driver_test.h"
#include "support/module_loading.h"

namespace orvane_test {
namespace {

class WdReader : public DriverTest {
 protected:
  WdReader() : DriverTest("wdcrwx") {}

  void Open() {
    ASSERT_EQ(OpenReaderA("WDUSB1", ReaderKindWd), 1);
    NewCalls();
  }
};

TEST_F(WdReader, OpensByNameAlone) {
  const char* const first = "CT_open(\"USB1\", 0, 0) = 1\nICC_set_NAD(1, 21) = 0\n";
  const OpenRow rows[] = {
      {"WDUSB1", 0, 1, first},
      {"??USB1", 0, 1, first},
      {"WDUSB2", 0, 0, "CT_open(\"USB2\", 0, 0) = -1\n"},
      {"WD", 0, 0, "CT_open(\"\", 0, 0) = -1\n"},
      {"W", 0, 0, ""},
      {"", 0, 0, ""},
      {nullptr, 1, 0, ""},
  };
  for (const OpenRow& row : rows) {
    StartAnew();
    EXPECT_EQ(row.Open(ReaderKindWd), row.expected) << row;
    EXPECT_EQ(NewCalls(), row.calls) << row;
  }
}

TEST_F(WdReader, StaysOpenUntilTheLibraryAgreesToClose) {
  Open();
  module.Answer("CT_close", 1);
  EXPECT_EQ(CloseReader(), 0);
  EXPECT_EQ(ResetCard(), (Reply{1, kCardAtr}));
  EXPECT_EQ(CloseReader(), 1);
  EXPECT_EQ(CloseReader(), 1);
  EXPECT_EQ(ResetCard(), (Reply{0, kUntouched}));
  EXPECT_EQ(CallsWithoutResults(NewCalls()),
            "CT_close(1)\nICC_tsi_api(1, 0012000000)\nCT_close(1)\n");
}

TEST_F(WdReader, TriesWithTheHandleOfAFailedOpen) {
  module.Answer("CT_open", 0);
  EXPECT_EQ(OpenReaderA("WDUSB1", ReaderKindWd), 0);
  EXPECT_EQ(ResetCard(), (Reply{0, kUntouched}));
  EXPECT_EQ(CloseReader(), 0);
  EXPECT_EQ(CallsWithoutResults(NewCalls()),
            "CT_open(\"USB1\", 0, 0)\nICC_tsi_api(0, 0012000000)\nCT_close(0)\n");
}

TEST_F(WdReader, GivesTheSlotAsNodeAddress) {
  Open();
  ChangeSlot("05");
  module.Answer("ICC_set_NAD", 1);
  ChangeSlot("FF");
  EXPECT_EQ(CallsWithoutResults(NewCalls()), "ICC_set_NAD(1, 5)\nICC_set_NAD(1, 255)\n");
  EXPECT_EQ(ResetCard().result, 1);
}

/// Its reset is an exchange like any other.
TEST_F(WdReader, ReadsTheAtrFromAReply) {
  const std::string longest(512, 'A');
  const struct {
    std::int64_t result;
    const char* atr;
    std::int64_t length;
    Reply expected;
  } rows[] = {
      {0x9000, "3B0102", SIMULATOR_TRUE_LENGTH, {1, "3B0102"}},
      {0x9000, "", SIMULATOR_TRUE_LENGTH, {1, ""}},
      {0x9000, longest.c_str(), SIMULATOR_TRUE_LENGTH, {1, longest}},
      {0x9000, longest.c_str(), 257, {0, kUntouched}},
      {0x9000, "3B", -1, {0, kUntouched}},
      {0x6A82, "6A82", SIMULATOR_TRUE_LENGTH, {0, kUntouched}},
      {0xFFFF, "3B", SIMULATOR_TRUE_LENGTH, {0, kUntouched}},
  };
  Open();
  for (const auto& row : rows) {
    module.Answer("ICC_tsi_api", row.result, row.atr, row.length);
    EXPECT_EQ(ResetCard(), row.expected) << row.result << ' ' << row.atr << ' ' << row.length;
  }
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
  Open();
  for (const auto& row : rows) {
    module.Answer("ICC_tsi_api", 0x6102, "6102");
    module.Answer("ICC_tsi_api", row.result, row.reply);
    EXPECT_EQ(Send("00B0000003"), row.expected) << row.result << ' ' << row.reply;
    EXPECT_EQ(CallsWithoutResults(NewCalls()),
              "ICC_tsi_api(1, 00B0000003)\nICC_tsi_api(1, 00C0000002)\n");
  }
}

TEST_F(WdReader, SendsAtMost255Octets) {
  Open();
  EXPECT_EQ(Send(std::string(512, 'A')), (Reply{0, ""}));
  EXPECT_EQ(NewCalls(), "");
  module.Answer("ICC_tsi_api", 0x9000, "9000");
  EXPECT_EQ(Send(std::string(510, 'A')), (Reply{1, "9000"}));
  EXPECT_EQ(CallsWithoutResults(NewCalls()), "ICC_tsi_api(1, " + std::string(510, 'A') + ")\n");
}

/// The library in a folder of its own, where wdcrwx lacks one function or, without a name, is
/// missing.
class LibraryCopy {
 public:
  explicit LibraryCopy(const char* missing) {
    const std::string file = support::ModuleFileName("orvane");
    std::filesystem::create_directory(folder_);
    std::filesystem::copy_file(std::filesystem::path(ORVANE_BUILD_FOLDER) / file, folder_ / file);
    if (missing != nullptr) support::WriteModuleWithout("wdcrwx", missing, folder_);
    std::string why;
    library_ = support::LoadModule(folder_ / file, why);
    if (library_ == nullptr) throw std::runtime_error(why);
  }
  /// Closes its reader. The library itself stays loaded, as its reader slots are never released.
  ~LibraryCopy() {
    Find<decltype(OpenReader)>("OpenReader")(1, 13, 9600);
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }

  /// Open by name, reset, send, close.
  std::vector<int> Results() const {
    std::array<char, 8193> text{};
    const char select[] = "00A4000C023F00";
    return {Find<decltype(OpenReaderA)>("OpenReaderA")("WDUSB1", ReaderKindWd),
            Find<decltype(Reset)>("Reset")(text.data()),
            Find<decltype(SendCommand)>("SendCommand")(select, sizeof select - 1, text.data()),
            Find<decltype(CloseReader)>("CloseReader")()};
  }

 private:
  template <typename Function>
  Function* Find(const char* name) const {
    return reinterpret_cast<Function*>(support::FindExport(library_, name));
  }

  const std::filesystem::path folder_ = std::filesystem::temp_directory_path() /
                                        ("orvane-wd-" + std::to_string(std::random_device()()));
  void* library_ = nullptr;
};

TEST(WdReaderWithout, OneFunction) {
  const struct {
    const char* missing;
    std::vector<int> expected;
  } rows[] = {
      {"ICC_reset", {1, 1, 1, 1}},  // never called
      {"ICC_set_NAD", {1, 1, 1, 1}}, {"ICC_tsi_api", {1, 0, 0, 1}},
      {"CT_close", {1, 1, 1, 0}},    {"CT_open", {0, 0, 0, 0}},
  };
  for (const auto& row : rows) {
    const LibraryCopy copy(row.missing);
    EXPECT_EQ(copy.Results(), row.expected) << "without " << row.missing;
  }
}

TEST_F(WdReader, IsLookedForBesideTheLibraryAndNowhereElse) {
  ASSERT_TRUE(support::IsLoaded("wdcrwx"));
  const LibraryCopy copy(nullptr);
  EXPECT_EQ(copy.Results(), (std::vector<int>{0, 0, 0, 0}));
}

}  // namespace
}  // namespace orvane_test
