#include "readers/driver_test.h"

namespace orvane_test {
namespace {

class TyComReader : public DriverTest {
 protected:
  TyComReader() : DriverTest("tyreader") {}
};

class TyUsbReader : public DriverTest {
 protected:
  TyUsbReader() : DriverTest("tykeyint") {}
};

TEST_F(TyComReader, OpensPortsAtItsOwnSpeed) {
  const OpenRow rows[] = {
      {nullptr, 1, 1, "TY_Open(57600, 0) = 0\n"},
      {nullptr, 2, 0, "TY_Open(57600, 1) = -1\n"},
      {nullptr, INT32_MIN, 0, "TY_Open(57600, 2147483647) = -1\n"},
      {"COM1", 0, 1, "TY_Open(57600, 0) = 0\n"},
      {"COM3", 0, 0, "TY_Open(57600, 2) = -1\n"},
      {"COM", 0, 0, "TY_Open(57600, -1) = -1\n"},
      {"USB1", 0, 0, ""},
  };
  for (const OpenRow& row : rows) {
    StartAnew();
    EXPECT_EQ(row.Open(ReaderKindTyCom), row.expected) << row;
    EXPECT_EQ(NewCalls(), row.calls) << row;
    EXPECT_EQ(CloseReader(), 1);
    EXPECT_EQ(NewCalls(), row.expected == 1 ? "TY_Close(0) = 0\n" : "") << row;
  }
}

TEST_F(TyComReader, PassesTheSlotOn) {
  ASSERT_EQ(OpenReader(1, ReaderKindTyCom, 9600), 1);
  EXPECT_EQ(ResetCard().result, 1);
  ChangeSlot("02");
  EXPECT_EQ(ResetCard().result, 1);
  EXPECT_EQ(Send("00A4040008F04F5256414E4501").result, 1);
  EXPECT_EQ(CloseReader(), 1);
  EXPECT_EQ(ResetCard(), (Reply{0, kUntouched}));
  EXPECT_EQ(CallsWithoutResults(NewCalls()),
            "TY_Open(57600, 0)\nTY_Dreset(0, 0)\nTY_Dreset(0, 2)\n"
            "TY_Dtsi_api(0, 2, 00A4040008F04F5256414E4501)\nTY_Dtsi_api(0, 2, 00C000002B)\n"
            "TY_Close(0)\n");
}

TEST_F(TyUsbReader, OpensKeys) {
  const OpenRow rows[] = {
      {nullptr, 1, 1, "TYKey_OpenTYKey(0) = 0x9000 -1000\n"},
      {nullptr, 2, 1, "TYKey_OpenTYKey(1) = 0x9000 -1000\n"},
      {nullptr, 3, 0, "TYKey_OpenTYKey(2) = 0x6FFE\n"},
      {"USB1", 0, 1, "TYKey_OpenTYKey(0) = 0x9000 -1000\n"},
      {"USB", 0, 0, "TYKey_OpenTYKey(-1) = 0x6FFE\n"},
      {"COM1", 0, 0, ""},
  };
  for (const OpenRow& row : rows) {
    StartAnew();
    EXPECT_EQ(row.Open(ReaderKindTyUsb), row.expected) << row;
    EXPECT_EQ(NewCalls(), row.calls) << row;
    EXPECT_EQ(CloseReader(), 1);
    EXPECT_EQ(NewCalls(), row.expected == 1 ? "TYKey_CloseTYKey(-1000) = 0x9000\n" : "") << row;
  }
}

TEST_F(TyUsbReader, KeepsItsKeyWhenAnotherDoesNotOpen) {
  ASSERT_EQ(OpenReaderA("USB1", ReaderKindTyUsb), 1);
  EXPECT_EQ(OpenReaderA("USB9", ReaderKindTyUsb), 0);
  NewCalls();
  ChangeSlot("02");
  EXPECT_EQ(ResetCard(), (Reply{1, kCardAtr}));
  EXPECT_EQ(NewCalls(), std::string("TYKey_ColdReset(-1000) = 0x9000 ") + kCardAtr + '\n');
}

TEST_F(TyUsbReader, UsesTheLowHalfOfAHandle) {
  const struct {
    std::int64_t given;
    const char* used;
  } rows[] = {{0x100000005, "5"}, {0xFFFFFFFE, "-2"}, {INT64_C(0x7FFFFFFF80000000), "-2147483648"}};
  for (const auto& row : rows) {
    StartAnew();
    module.Answer("TYKey_OpenTYKey", 0x9000, nullptr, row.given);
    ASSERT_EQ(OpenReader(1, ReaderKindTyUsb, 9600), 1);
    NewCalls();
    CloseReader();
    EXPECT_EQ(NewCalls(), std::string("TYKey_CloseTYKey(") + row.used + ") = 0x6FFE\n");
  }
}

TEST_F(TyUsbReader, ListsTheKeysThatAreThere) {
  using Lines = std::vector<std::string>;
  const Lines two = {"1 1 1 USB1", "1 1 2 USB2"};
  Lines all;
  for (int i = 0; i < 16; ++i)
    all.push_back("1 1 " + std::to_string(i) + " USB" + std::to_string(i));
  const struct {
    const char* table;
    std::int64_t result;
    int max;
    Lines expected;
  } rows[] = {
      {"00FF010000", 0, 0, two},
      {"00FF010000", 0, 2, two},
      {"00FF010000", 0, 1, {"1 1 1 USB1"}},
      {"00FF010000", 1, -1, two},  // what the call gives back decides nothing
      {"01010101010101010101010101010101", 0, 0, all},
      {"0101010101010101010101010101010101010101", 0, 20, all},
      {"", 0, 0, {}},
  };
  for (const auto& row : rows) {
    StartAnew();
    module.Answer("TYKey_Status", row.result, row.table);
    EXPECT_EQ(List(ReaderKindTyUsb, 0, row.max), row.expected) << row.table << ' ' << row.max;
    EXPECT_EQ(CallsWithoutResults(NewCalls()), "TYKey_Change()\nTYKey_Status()\n");
  }
  EXPECT_EQ(List(ReaderKindTyUsb, 0, 0), two);
}

/// Both drivers: what is reported of an ATR is not trusted.
void ExpectAtrs(const support::SimulatedModule& module, const char* function) {
  const std::string longest(512, 'A');
  const struct {
    std::int64_t result;
    const char* atr;
    std::int64_t length;
    Reply expected;
  } rows[] = {
      {0x9000, "3B0102", SIMULATOR_TRUE_LENGTH, {1, "3B0102"}},
      {0x9000, "3B", 3, {1, "3B0000"}},
      {0x9000, "", SIMULATOR_TRUE_LENGTH, {1, ""}},
      {0x9000, longest.c_str(), SIMULATOR_TRUE_LENGTH, {1, longest}},
      {0x9000, longest.c_str(), 257, {0, kUntouched}},
      {0x9000, "3B", -1, {0, kUntouched}},
      {0x6103, "3B", SIMULATOR_TRUE_LENGTH, {0, kUntouched}},
      {0, "3B", SIMULATOR_TRUE_LENGTH, {0, kUntouched}},
  };
  for (const auto& row : rows) {
    module.Answer(function, row.result, row.atr, row.length);
    EXPECT_EQ(ResetCard(), row.expected) << row.result << ' ' << row.atr << ' ' << row.length;
  }
}

TEST_F(TyComReader, ReadsTheAtr) {
  ASSERT_EQ(OpenReader(1, ReaderKindTyCom, 9600), 1);
  ExpectAtrs(module, "TY_Dreset");
}

TEST_F(TyUsbReader, ReadsTheAtr) {
  ASSERT_EQ(OpenReader(1, ReaderKindTyUsb, 9600), 1);
  ExpectAtrs(module, "TYKey_ColdReset");
}

}  // namespace
}  // namespace orvane_test
