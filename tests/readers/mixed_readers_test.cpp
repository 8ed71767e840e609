#include <gtest/gtest.h>

#include <functional>

#include "readers/reader_host.h"
#include "simulators/encryption_machine.h"
#include "support/simulated_module.h"

namespace orvane_test {
namespace {

using support::SimulatedModule;

struct Reader {
  int kind;
  const char* name;
  const SimulatedModule& module;
  const char* closing;  ///< what its library is asked when it closes
};

class MixedReaders : public ReaderTest {
 protected:
  const SimulatedModule winscard{"winscard"}, dcrf32{"dcrf32"}, s5009{"S5009"},
      tyreader{"tyreader"}, tykeyint{"tykeyint"}, wdcrwx{"wdcrwx"}, bsit{"STJZZ_BSIT"},
      sdtapi{"sdtapi"};
  const std::vector<Reader> readers = {
      {ReaderKindTyUsb, "USB1", tykeyint, "TYKey_CloseTYKey(-1000)\n"},
      {ReaderKindTyCom, "COM1", tyreader, "TY_Close(0)\n"},
      {ReaderKindPcsc, "Simulated Reader 0", winscard, "SCardDisconnect(0xFFFFFFFFEA010001, 0)\n"},
      {ReaderKindWd, "WDUSB1", wdcrwx, "CT_close(1)\n"},
      {ReaderKindD8, "COM1", dcrf32, "dc_exit(1)\n"},
      {ReaderKindS5009, "COM1", s5009, "CloseCOM(1)\n"},
      {ReaderKindS5009Ats, "COM1", s5009, "CloseCOM(1)\n"},
      {ReaderKindIcr, "ICR-COM1", sdtapi, "SDT_ClosePort(1)\n"},
      {ReaderKindBsit, "BSIT:1", bsit, "bsit_CloseHID(0)\n"},
  };
};

/// In one slot, each kind after each other: the former reader is closed, and closed before the new
/// one opens.
TEST_F(MixedReaders, FollowEachOtherInASlot) {
  for (const Reader& former : readers) {
    for (const Reader& next : readers) {
      if (former.kind == next.kind) continue;
      EmptySlots();
      former.module.Restart();
      next.module.Restart();
      ASSERT_EQ(OpenReaderA(former.name, former.kind), 1);
      const std::size_t opening = former.module.Journal().size();
      ASSERT_EQ(OpenReaderA(next.name, next.kind), 1);
      const std::string calls = CallsWithoutResults(former.module.Journal().substr(opening));
      EXPECT_TRUE(calls.starts_with(former.closing))
          << former.kind << ", then " << next.kind << '\n'
          << calls;
      EXPECT_EQ(ResetCard().result, 1) << next.kind;
      EXPECT_EQ(Send("00A4000C023F00").result, 1) << next.kind;
    }
  }
}

TEST_F(MixedReaders, StandSideBySideInAllSlots) {
  simulator::EncryptionMachine machine;
  const auto readerOf = [&](unsigned slot) -> const Reader& {
    return readers[slot % readers.size()];
  };
  for (unsigned slot = 0; slot < 15; ++slot) {
    SetReader(slot);
    ASSERT_EQ(OpenReaderA(readerOf(slot).name, readerOf(slot).kind), 1) << slot;
  }
  SetReader(15);
  ASSERT_EQ(OpenReaderA(machine.Name().c_str(), ReaderKindTcp), 1);

  const auto expectWork = [&](unsigned slot) {
    SetReader(slot);
    EXPECT_EQ(ResetCard().result, 1) << slot;
    EXPECT_EQ(Send("00A4000C023F00").result, 1) << slot;
  };
  for (unsigned slot = 0; slot < 16; ++slot) expectWork(slot);
  for (const Reader& reader : readers) EXPECT_FALSE(List(reader.kind, 1, 1).empty());
  // All but S5009, whose port closes for all at once, have a connection each.
  for (unsigned slot = 0; slot < 6; ++slot) {
    SetReader(slot);
    if (&readerOf(slot).module == &s5009) continue;
    EXPECT_EQ(CloseReader(), 1) << slot;
  }
  for (unsigned slot = 6; slot < 16; ++slot) expectWork(slot);
}

/// Whether a tool whose open failed is still the one that the next open of its kind finds.
TEST_F(MixedReaders, KeepAToolThatKnowsItsKind) {
  const auto d8Slot = [this] {
    return dcrf32.Journal().find("dc_cpureset_hex") != std::string::npos;
  };
  const auto tySlot = [this] {
    return tyreader.Journal().find("TY_Dreset(0, 1)") != std::string::npos;
  };
  const auto s5009Slot = [this] {
    Send("00A40000");
    return s5009.Journal().find("ExchangeAPDU(1,") != std::string::npos;
  };
  const struct {
    const char* what;
    int kind;
    const char* wrongName;  // null: by port
    std::function<bool()> slotWasKept;
    bool expected;
  } rows[] = {
      {"D8 by name", ReaderKindD8, "COM9", d8Slot, true},
      {"D8 by a name without number", ReaderKindD8, "nothing", d8Slot, true},
      {"D8 by port", ReaderKindD8, nullptr, d8Slot, false},
      {"TY by name", ReaderKindTyCom, "COM9", tySlot, true},
      {"TY by port", ReaderKindTyCom, nullptr, tySlot, true},
      {"S5009 by name", ReaderKindS5009, "COM9", s5009Slot, false},
      {"S5009 by port", ReaderKindS5009, nullptr, s5009Slot, false},
  };
  for (const auto& row : rows) {
    EmptySlots();
    for (const SimulatedModule* module : {&dcrf32, &tyreader, &s5009}) module->Restart();
    const int opened = row.wrongName != nullptr ? OpenReaderA(row.wrongName, row.kind)
                                                : OpenReader(9, row.kind, 9600);
    EXPECT_EQ(opened, 0) << row.what;
    ChangeSlot("01");
    ASSERT_EQ(OpenReader(1, row.kind, 9600), 1);
    ResetCard();
    EXPECT_EQ(row.slotWasKept(), row.expected) << row.what;
  }
}

/// The destructor of a tool that is replaced is heard in the library; that of a kept one is not.
TEST_F(MixedReaders, KeepToolsThatOpenByNameAlone) {
  wdcrwx.Answer("CT_open", 0);
  EXPECT_EQ(OpenReaderA("WDUSB1", ReaderKindWd), 0);
  EXPECT_EQ(OpenReaderA("WDUSB1", ReaderKindWd), 1);
  EXPECT_EQ(wdcrwx.Journal().find("CT_close"), std::string::npos);
  EXPECT_EQ(OpenReaderA("ICR-COM9", ReaderKindIcr), 0);
  EXPECT_EQ(OpenReaderA("ICR-COM1", ReaderKindIcr), 1);
  EXPECT_EQ(CallsWithoutResults(sdtapi.Journal()), "SDT_OpenPort(9)\nSDT_OpenPort(1)\n");
}

}  // namespace
}  // namespace orvane_test
