#include <gtest/gtest.h>

#include "readers/reader_host.h"
#include "support/simulated_module.h"

namespace orvane_test {
namespace {

struct Driver {
  const char* vendor;
  int kind;
  const char* reader;
};

const Driver kTyUsb{"tykeyint", ReaderKindTyUsb, "USB1"};
const Driver kTyCom{"tyreader", ReaderKindTyCom, "COM1"};
const Driver kD8{"dcrf32", ReaderKindD8, "COM1"};
const Driver kS5009{"S5009", ReaderKindS5009, "COM1"};
const Driver kS5009Ats{"S5009", ReaderKindS5009Ats, "COM1"};
const Driver kIcr{"sdtapi", ReaderKindIcr, "ICR-COM1"};
const Driver kBsit{"STJZZ_BSIT", ReaderKindBsit, "BSIT:1"};

/// Records listed, open by port, open by name, reset and send in slot 0 and in slot 12, close.
std::vector<int> Results(const Driver& driver) {
  std::vector<int> results = {static_cast<int>(List(driver.kind, 0, 0).size()),
                              OpenReader(1, driver.kind, 9600),
                              OpenReaderA(driver.reader, driver.kind)};
  for (const char* slot : {"00", "0C"}) {
    ChangeSlot(slot);
    results.push_back(ResetCard().result);
    results.push_back(Send("00A4000C023F00").result);
  }
  results.push_back(CloseReader());
  return results;
}

class MissingModule : public ReaderTest {};

TEST_F(MissingModule, LeavesNothingToOpen) {
  const struct {
    const Driver& driver;
    int listed;  // without any port offered
    int closed;
  } rows[] = {{kTyUsb, 0, 1}, {kTyCom, 0, 1},    {kD8, 1, 1}, {kS5009, 0, 1},
              {kBsit, 0, 1},  {kS5009Ats, 0, 1}, {kIcr, 1, 0}};
  for (const auto& row : rows) {
    EXPECT_EQ(Results(row.driver), (std::vector<int>{row.listed, 0, 0, 0, 0, 0, 0, row.closed}))
        << row.driver.vendor;
  }
}

/// The next open looks for the library again; only the identity-card reader looks once.
TEST_F(MissingModule, MayComeLater) {
  for (const Driver* driver : {&kTyUsb, &kTyCom, &kD8, &kS5009, &kBsit, &kIcr}) {
    EmptySlots();
    EXPECT_EQ(OpenReaderA(driver->reader, driver->kind), 0) << driver->vendor;
    const support::SimulatedModule module(driver->vendor);
    EXPECT_EQ(OpenReaderA(driver->reader, driver->kind), driver == &kIcr ? 0 : 1) << driver->vendor;
    EmptySlots();
    EXPECT_EQ(OpenReaderA(driver->reader, driver->kind), 1) << driver->vendor;
    EmptySlots();
  }
}

TEST_F(MissingModule, IsUnloadedWithTheLastReader) {
  for (const Driver* driver : {&kTyUsb, &kTyCom, &kD8, &kS5009, &kBsit, &kIcr}) {
    {
      const support::SimulatedModule module(driver->vendor);
      EXPECT_EQ(OpenReaderA(driver->reader, driver->kind), 1);
    }
    EXPECT_TRUE(support::IsLoaded(driver->vendor)) << "the reader is open";
    EmptySlots();
    EXPECT_FALSE(support::IsLoaded(driver->vendor));
  }
}

TEST_F(MissingModule, OrOneFunctionOfIt) {
  const struct {
    const Driver& driver;
    const char* missing;
    std::vector<int> expected;
  } rows[] = {
      {kTyUsb, "TYKey_GetATR", {2, 1, 1, 1, 1, 1, 1, 1}},  // never called
      {kTyUsb, "TYKey_Change", {0, 1, 1, 1, 1, 1, 1, 1}},
      {kTyUsb, "TYKey_Status", {0, 1, 1, 1, 1, 1, 1, 1}},
      {kTyUsb, "TYKey_OpenTYKey", {2, 0, 0, 0, 0, 0, 0, 1}},
      {kTyUsb, "TYKey_CloseTYKey", {2, 1, 1, 1, 1, 1, 1, 1}},
      {kTyUsb, "TYKey_ColdReset", {2, 1, 1, 0, 1, 0, 1, 1}},
      {kTyUsb, "TYKey_SendCommand", {2, 1, 1, 1, 0, 1, 0, 1}},

      {kTyCom, "TY_DCardExist", {0, 1, 1, 1, 1, 1, 1, 1}},  // never called
      {kTyCom, "TY_Open", {0, 0, 0, 0, 0, 0, 0, 1}},
      {kTyCom, "TY_Close", {0, 1, 1, 1, 1, 1, 1, 1}},
      {kTyCom, "TY_Dreset", {0, 1, 1, 0, 1, 0, 1, 1}},
      {kTyCom, "TY_Dtsi_api", {0, 1, 1, 1, 0, 1, 0, 1}},

      {kD8, "dc_init", {1, 0, 0, 0, 0, 0, 0, 1}},
      {kD8, "dc_exit", {1, 1, 1, 1, 1, 1, 1, 1}},
      {kD8, "dc_config_card", {1, 0, 0, 1, 1, 1, 1, 1}},
      {kD8, "dc_setcpu", {1, 1, 1, 1, 1, 1, 1, 1}},
      {kD8, "dc_reset", {1, 1, 1, 0, 0, 1, 1, 1}},
      {kD8, "dc_request", {1, 1, 1, 0, 0, 1, 1, 1}},
      {kD8, "dc_anticoll", {1, 1, 1, 0, 0, 1, 1, 1}},
      {kD8, "dc_select", {1, 1, 1, 0, 0, 1, 1, 1}},
      {kD8, "dc_pro_resethex", {1, 1, 1, 0, 0, 1, 1, 1}},
      {kD8, "dc_pro_commandlink", {1, 1, 1, 1, 0, 1, 1, 1}},
      {kD8, "dc_cpureset_hex", {1, 1, 1, 1, 1, 0, 1, 1}},
      {kD8, "dc_cpuapdu", {1, 1, 1, 1, 1, 1, 0, 1}},

      {kS5009, "Mifare_BlockCopy", {0, 1, 1, 1, 1, 1, 1, 1}},  // never called
      {kS5009, "InitCOM", {0, 0, 0, 0, 0, 0, 0, 1}},
      {kS5009, "CloseCOM", {0, 1, 1, 1, 1, 1, 1, 1}},
      {kS5009, "ExchangeAPDU", {0, 1, 1, 1, 0, 1, 0, 1}},
      {kS5009, "Mifare_SearchCard", {0, 1, 1, 0, 1, 0, 1, 1}},
      {kS5009, "Mifare_GetATS", {0, 1, 1, 1, 1, 1, 1, 1}},
      {kS5009Ats, "Mifare_SearchCard", {0, 1, 1, 1, 1, 1, 1, 1}},
      {kS5009Ats, "Mifare_GetATS", {0, 1, 1, 0, 1, 0, 1, 1}},

      {kIcr, "SDT_OpenPort", {1, 0, 0, 0, 0, 0, 0, 0}},
      {kIcr, "SDT_ClosePort", {1, 0, 1, 1, 1, 1, 1, 0}},
      {kIcr, "SDT_StartFindIDCard", {1, 0, 1, 0, 0, 0, 0, 1}},
      {kIcr, "SDT_SelectIDCard", {1, 0, 1, 0, 0, 0, 0, 1}},
      {kIcr, "SDT_ReadBaseMsg", {1, 0, 1, 1, 0, 1, 0, 1}},

      {kBsit, "bsit_GetCardState", {2, 1, 1, 1, 1, 1, 1, 1}},  // never called
      {kBsit, "bsit_gethidlist", {0, 1, 1, 1, 1, 1, 1, 1}},
      {kBsit, "bsit_openHID", {2, 0, 0, 0, 0, 0, 0, 1}},
      {kBsit, "bsit_CloseHID", {2, 1, 1, 1, 1, 1, 1, 1}},
      {kBsit, "bsit_SetSlot", {2, 1, 1, 1, 1, 1, 1, 1}},
      {kBsit, "bsit_ResetCard", {2, 1, 1, 0, 1, 0, 1, 1}},
      {kBsit, "bsit_SendApdu", {2, 1, 1, 1, 0, 1, 0, 1}},
  };
  for (const auto& row : rows) {
    const auto module = support::ModuleWithout(row.driver.vendor, row.missing);
    EXPECT_EQ(Results(row.driver), row.expected) << "without " << row.missing;
    EmptySlots();
  }
}

}  // namespace
}  // namespace orvane_test
