#include <array>

#include "readers/driver_test.h"
#include "support/library_copy.h"

namespace orvane_test {
namespace {

// Records listed, open by port, open by name, reset and send in slot 0 and in slot 12, close.
std::vector<int> Results(const SimulatedReader& reader) {
  std::vector<int> results = {static_cast<int>(List(reader.kind, 0, 0).size()),
                              OpenReader(1, reader.kind, 9600), Open(reader)};
  for (const char* slot : {"00", "0C"}) {
    ChangeSlot(slot);
    results.push_back(ResetCard().result);
    results.push_back(Send("00A4000C023F00").result);
  }
  results.push_back(CloseReader());
  return results;
}

class MissingModule : public ReaderTest {};

// The next open looks for the library again; only the identity-card reader looks once. The last
// reader unloads it.
TEST_F(MissingModule, MayComeLater) {
  const struct {
    const SimulatedReader& reader;
    int listed;  // without any port offered
  } rows[] = {{kTyUsb, 0}, {kTyCom, 0},    {kD8, 1}, {kS5009, 0},
              {kBsit, 0},  {kS5009Ats, 0}, {kIcr, 1}};
  for (const auto& [reader, listed] : rows) {
    SCOPED_TRACE(reader.kind);
    const int other = &reader == &kIcr ? 0 : 1;
    EXPECT_EQ(Results(reader), (std::vector<int>{listed, 0, 0, 0, 0, 0, 0, other}));
    {
      const support::SimulatedModule module(reader.vendor);
      EXPECT_EQ(Open(reader), other);
      EmptySlots();
      EXPECT_EQ(Open(reader), 1);
    }
    EXPECT_TRUE(support::IsLoaded(reader.vendor)) << "the reader is open";
    EmptySlots();
    EXPECT_FALSE(support::IsLoaded(reader.vendor));
  }
}

TEST_F(MissingModule, OrOneFunctionOfIt) {
  const std::vector<int> all = {2, 1, 1, 1, 1, 1, 1, 1}, none = {2, 0, 0, 0, 0, 0, 0, 1},
                         noReset = {2, 1, 1, 0, 1, 0, 1, 1}, noSend = {2, 1, 1, 1, 0, 1, 0, 1};
  const struct {
    const SimulatedReader& reader;
    std::vector<const char*> missing;  // one of these at a time
    std::vector<int> expected;
    int listed = 2;  // in the place of the number there
  } rows[] = {
      {kTyUsb, {"TYKey_GetATR", "TYKey_CloseTYKey"}, all},  // the first is never called
      {kTyUsb, {"TYKey_Change", "TYKey_Status"}, all, 0},
      {kTyUsb, {"TYKey_OpenTYKey"}, none},
      {kTyUsb, {"TYKey_ColdReset"}, noReset},
      {kTyUsb, {"TYKey_SendCommand"}, noSend},
      {kTyCom, {"TY_DCardExist", "TY_Close"}, all, 0},
      {kTyCom, {"TY_Open"}, none, 0},
      {kTyCom, {"TY_Dreset"}, noReset, 0},
      {kTyCom, {"TY_Dtsi_api"}, noSend, 0},
      {kPcsc, {"SCardStatusA", "SCardDisconnect", "SCardGetStatusChangeA", "g_rgSCardT1Pci"}, all},
      {kPcsc, {"SCardEstablishContext", "SCardReleaseContext"}, none, 0},
      {kPcsc, {"SCardListReadersA", "SCardFreeMemory"}, {2, 0, 1, 1, 1, 1, 1, 1}, 0},
      {kPcsc, {"SCardConnectA"}, none},
      {kPcsc, {"SCardTransmit"}, noSend},
      {kPcsc, {"SCardGetAttrib"}, noReset},
      {kPcsc, {"SCardControl"}, {2, 1, 1, 0, 0, 0, 0, 1}},
      {kPcsc, {"g_rgSCardT0Pci"}, {2, 1, 1, 1, 0, 1, 1, 1}},
      {kD8, {"dc_exit", "dc_setcpu"}, all, 1},
      {kD8, {"dc_init"}, none, 1},
      {kD8, {"dc_config_card"}, {2, 0, 0, 1, 1, 1, 1, 1}, 1},
      {kD8,
       {"dc_reset", "dc_request", "dc_anticoll", "dc_select", "dc_pro_resethex"},
       {2, 1, 1, 0, 0, 1, 1, 1},
       1},
      {kD8, {"dc_pro_commandlink"}, {2, 1, 1, 1, 0, 1, 1, 1}, 1},
      {kD8, {"dc_cpureset_hex"}, {2, 1, 1, 1, 1, 0, 1, 1}, 1},
      {kD8, {"dc_cpuapdu"}, {2, 1, 1, 1, 1, 1, 0, 1}, 1},
      {kS5009, {"Mifare_BlockCopy", "CloseCOM", "Mifare_GetATS"}, all, 0},
      {kS5009, {"InitCOM"}, none, 0},
      {kS5009, {"ExchangeAPDU"}, noSend, 0},
      {kS5009, {"Mifare_SearchCard"}, noReset, 0},
      {kS5009Ats, {"Mifare_SearchCard"}, all, 0},
      {kS5009Ats, {"Mifare_GetATS"}, noReset, 0},
      {kIcr, {"SDT_OpenPort"}, {2, 0, 0, 0, 0, 0, 0, 0}, 1},
      {kIcr, {"SDT_ClosePort"}, {2, 0, 1, 1, 1, 1, 1, 0}, 1},
      {kIcr, {"SDT_StartFindIDCard", "SDT_SelectIDCard"}, {2, 0, 1, 0, 0, 0, 0, 1}, 1},
      {kIcr, {"SDT_ReadBaseMsg"}, {2, 0, 1, 1, 0, 1, 0, 1}, 1},
      {kBsit, {"bsit_GetCardState", "bsit_CloseHID", "bsit_SetSlot"}, all},
      {kBsit, {"bsit_gethidlist"}, all, 0},
      {kBsit, {"bsit_openHID"}, none},
      {kBsit, {"bsit_ResetCard"}, noReset},
      {kBsit, {"bsit_SendApdu"}, noSend},
  };
  for (const auto& row : rows) {
    std::vector<int> expected = row.expected;
    expected[0] = row.listed;
    for (const char* missing : row.missing) {
      const auto module = support::ModuleWithout(row.reader.vendor, missing);
      EXPECT_EQ(Results(row.reader), expected) << "without " << missing;
      EmptySlots();
    }
  }
  const auto winscard = support::ModuleWithout("winscard", "SCardGetStatusChangeA");
  EXPECT_TRUE(TakeSteps(kPcsc, winscard, "card out;open;card in;reset").ends_with("; 0"));
  EmptySlots();
}

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
  EXPORT_OF(copy, OpenReader)(1, -1, 9600);
  std::error_code ignored;
  std::filesystem::remove_all(folder, ignored);
  return results;
}

TEST_F(MissingModule, BesideOrvanesIsTheOnlyOneForWd) {
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
