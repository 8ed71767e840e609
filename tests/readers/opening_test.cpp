#include "readers/driver_test.h"

namespace orvane_test {
namespace {

struct OpenRow {
  const SimulatedReader& reader;  // which kind
  const char* name;
  int port;  // where there is no name
  int expected;
  const char* calls;  // of an open and a close
};

const char* const kD8Com1 = "dc_init(0, 115200) = 1\ndc_config_card(1, 0x41) = 0\ndc_exit(1) = 0\n";
const char* const kD8Usb =
    "dc_init(100, 115200) = 1\ndc_config_card(1, 0x41) = 0\ndc_exit(1) = 0\n";
const char* const kBsit1 =
    "bsit_openHID(0, 0, 0) = 0\nbsit_SetSlot(0, 0) = 0\nbsit_CloseHID(0) = 0\n";
const char* const kBsit2 =
    "bsit_openHID(0, 1, 0) = 0\nbsit_SetSlot(0, 0) = 0\nbsit_CloseHID(0) = 0\n";
const char* const kTyKey1 = "TYKey_OpenTYKey(0) = 0x9000 -1000\nTYKey_CloseTYKey(-1000) = 0x9000\n";
const char* const kWd1 = "CT_open(\"USB1\", 0, 0) = 1\nICC_set_NAD(1, 21) = 0\nCT_close(1) = 0\n";

const OpenRow kRows[] = {
    {kBsit, nullptr, 1, 1, kBsit1},
    {kBsit, nullptr, 3, 0, "bsit_openHID(0, 2, 0) = -1\n"},
    {kBsit, nullptr, 65537, 1, kBsit1},  // 16 bits go to the library
    {kBsit, nullptr, 0, 0, "bsit_openHID(0, 65535, 0) = -1\n"},
    {kBsit, "BSIT:2", 0, 1, kBsit2},
    {kBsit, "the BSIT:1", 0, 1, kBsit1},
    {kBsit, "BSIT:", 0, 0, "bsit_openHID(0, 65535, 0) = -1\n"},
    {kBsit, "BSIT1", 0, 0, ""},
    {kD8, nullptr, 1, 1, kD8Com1},
    {kD8, nullptr, 100, 1, kD8Usb},
    {kD8, nullptr, 101, 1, kD8Usb},
    {kD8, nullptr, 2, 0, "dc_init(1, 115200) = -1\n"},
    {kD8, nullptr, 65537, 1, kD8Com1},  // 16 bits go to the library
    {kD8, nullptr, INT32_MIN, 0, "dc_init(-1, 115200) = -1\n"},
    {kD8, "reader at COM1!", 0, 1, kD8Com1},
    {kD8, "COM5 COM100(D8USB)", 0, 1, kD8Usb},
    {kD8, "COM100", 0, 1, kD8Usb},
    {kD8, "COM", 0, 0, "dc_init(-1, 115200) = -1\n"},
    {kD8, "COM99999999999", 0, 0, "dc_init(-2, 115200) = -1\n"},
    {kD8, "com1", 0, 0, ""},
    {kD8, "", 0, 0, ""},
    {kIcr, "ICR-COM1001(ICRUSB)", 0, 1,
     "SDT_OpenPort(1001) = 0x90\nSDT_OpenPort(1001) = 0x90\nSDT_ClosePort(1001) = 0x90\n"},
    {kIcr, "ICR-COM1", 0, 1, "SDT_OpenPort(1) = 0x90\nSDT_ClosePort(1) = 0x90\n"},
    {kIcr, "ICR-COM3", 0, 0, "SDT_OpenPort(3) = 0x1\nSDT_ClosePort(3) = 0x1\n"},
    {kIcr, "COM1001", 0, 1, "SDT_OpenPort(1001) = 0x90\nSDT_ClosePort(1001) = 0x90\n"},
    {kIcr, "ICRUSB", 0, 0, "SDT_ClosePort(0) = 0x1\n"},
    {kIcr, nullptr, 1, 0, "SDT_ClosePort(0) = 0x1\n"},
    {kS5009, nullptr, 1, 1, "InitCOM(1) = 0\nCloseCOM(1) = 0\n"},
    {kS5009, nullptr, -5, 0, "InitCOM(-5) = 1\nCloseCOM(-1) = 1\n"},  // 1 is an open handle
    {kS5009, "S5009 on COM12", 0, 0, "InitCOM(12) = 1\nCloseCOM(-1) = 1\n"},
    {kS5009, "USB1", 0, 0, ""},
    {kS5009Ats, nullptr, 1, 1, "InitCOM(1) = 0\nCloseCOM(1) = 0\n"},
    {kS5009Ats, "COM", 0, 0, "InitCOM(0) = 1\nCloseCOM(-1) = 1\n"},
    {kTyCom, nullptr, 1, 1, "TY_Open(57600, 0) = 0\nTY_Close(0) = 0\n"},
    {kTyCom, nullptr, INT32_MIN, 0, "TY_Open(57600, 2147483647) = -1\n"},
    {kTyCom, "COM1", 0, 1, "TY_Open(57600, 0) = 0\nTY_Close(0) = 0\n"},
    {kTyCom, "COM", 0, 0, "TY_Open(57600, -1) = -1\n"},
    {kTyCom, "USB1", 0, 0, ""},
    {kTyUsb, nullptr, 1, 1, kTyKey1},
    {kTyUsb, nullptr, 3, 0, "TYKey_OpenTYKey(2) = 0x6FFE\n"},
    {kTyUsb, "USB1", 0, 1, kTyKey1},
    {kTyUsb, "USB", 0, 0, "TYKey_OpenTYKey(-1) = 0x6FFE\n"},
    {kTyUsb, "COM1", 0, 0, ""},
    {kWd, "WDUSB1", 0, 1, kWd1},
    {kWd, "??USB1", 0, 1, kWd1},
    {kWd, "WDUSB2", 0, 0, "CT_open(\"USB2\", 0, 0) = -1\n"},
    {kWd, "WD", 0, 0, "CT_open(\"\", 0, 0) = -1\n"},
    {kWd, "W", 0, 0, ""},
    {kWd, "", 0, 0, ""},
    {kWd, nullptr, 1, 0, ""},
};

TEST(Opening, AsksTheLibraryForTheReader) {
  for (const auto& [reader, name, port, expected, calls] : kRows) {
    SCOPED_TRACE(reader.vendor + (' ' + (name != nullptr ? name : std::to_string(port))));
    const support::SimulatedModule module(reader.vendor);
    EXPECT_EQ(
        name != nullptr ? OpenReaderA(name, reader.kind) : OpenReader(port, reader.kind, 9600),
        expected);
    CloseReader();
    EXPECT_EQ(module.Journal(), calls);
    ReaderTest::EmptySlots();
  }
}

}  // namespace
}  // namespace orvane_test
