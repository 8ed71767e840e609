#include <map>
#include <sstream>

#include "readers/driver_test.h"
#include "simulators/encryption_machine.h"

namespace orvane_test {
namespace {

using support::SimulatedModule;

const SimulatedReader* const kReaders[] = {&kTyUsb, &kTyCom,    &kPcsc, &kWd,  &kD8,
                                           &kS5009, &kS5009Ats, &kIcr,  &kBsit};

const SimulatedReader& ReaderOf(unsigned slot) { return *kReaders[slot % std::size(kReaders)]; }

class MixedReaders : public ReaderTest {
 protected:
  const SimulatedModule winscard{"winscard"}, dcrf32{"dcrf32"}, s5009{"S5009"},
      tyreader{"tyreader"}, tykeyint{"tykeyint"}, wdcrwx{"wdcrwx"}, bsit{"STJZZ_BSIT"},
      sdtapi{"sdtapi"};
  const std::map<std::string, const SimulatedModule*> modules = {
      {"winscard", &winscard}, {"dcrf32", &dcrf32}, {"S5009", &s5009},     {"tyreader", &tyreader},
      {"tykeyint", &tykeyint}, {"wdcrwx", &wdcrwx}, {"STJZZ_BSIT", &bsit}, {"sdtapi", &sdtapi}};
};

// In one slot, each kind after each other: the former reader is closed, and closed before the new
// one opens. The same kind opens once more without closing, and its new connection is the one that
// closes; S5009 and ICR close their port, which has no other number.
TEST_F(MixedReaders, FollowEachOtherInASlot) {
  for (const SimulatedReader* former : kReaders) {
    for (const SimulatedReader* next : kReaders) {
      SCOPED_TRACE(std::to_string(former->kind) + ", then " + std::to_string(next->kind));
      EmptySlots();
      const SimulatedModule& module = *modules.at(former->vendor);
      module.Restart();
      ASSERT_EQ(Open(*former), 1);
      const std::size_t opening = module.Journal().size();
      ASSERT_EQ(Open(*next), 1);
      const std::string calls = CallsWithoutResults(module.Journal().substr(opening));
      const std::string closing = former->closing;
      const bool again = former == next;
      EXPECT_EQ(calls.find(again ? closing.substr(0, closing.find('(')) : closing + '\n'),
                again ? std::string::npos : 0)
          << calls;
      EXPECT_EQ(ResetCard().result, 1);
      EXPECT_EQ(Send("00A4000C023F00").result, 1);
      if (!again) continue;
      EXPECT_EQ(CloseReader(), 1);
      EXPECT_EQ(module.Journal().find(closing) == std::string::npos,
                former->kind != ReaderKindIcr && former->vendor != std::string("S5009"));
    }
  }
}

TEST_F(MixedReaders, StandSideBySideInAllSlots) {
  simulator::EncryptionMachine machine;
  for (unsigned slot = 0; slot < 15; ++slot) {
    SetReader(slot);
    ASSERT_EQ(Open(ReaderOf(slot)), 1) << slot;
  }
  SetReader(15);
  ASSERT_EQ(OpenReaderA(machine.Name().c_str(), ReaderKindTcp), 1);

  const auto expectWork = [&](unsigned slot) {
    SetReader(slot);
    EXPECT_EQ(ResetCard().result, 1) << slot;
    EXPECT_EQ(Send("00A4000C023F00").result, 1) << slot;
  };
  for (unsigned slot = 0; slot < 16; ++slot) expectWork(slot);
  for (const SimulatedReader* reader : kReaders) EXPECT_FALSE(List(reader->kind, 1, 1).empty());
  // All but S5009, whose port closes for all at once, have a connection each.
  for (unsigned slot = 0; slot < 6; ++slot) {
    SetReader(slot);
    if (&ReaderOf(slot) == &kS5009) continue;
    EXPECT_EQ(CloseReader(), 1) << slot;
  }
  for (unsigned slot = 6; slot < 16; ++slot) expectWork(slot);
}

// A library that throws when it is to close ends neither the host nor the reader that comes next.
TEST_F(MixedReaders, OutliveALibraryThatThrowsWhenItCloses) {
  for (const SimulatedReader* reader : kReaders) {
    SCOPED_TRACE(reader->kind);
    const SimulatedModule& module = *modules.at(reader->vendor);
    const std::string closing = reader->closing;
    const auto works = [](const SimulatedReader& opened) {
      return Open(opened) == 1 && ResetCard().result == 1 && Send("00A4000C023F00").result == 1;
    };
    EmptySlots();
    module.Restart();
    for (int i = 0; i < 2; ++i) {
      module.Answer(closing.substr(0, closing.find('(')).c_str(), 0, nullptr, SIMULATOR_THROW);
    }
    ASSERT_TRUE(works(*reader));
    EXPECT_EQ(CloseReader(), 0);
    EXPECT_TRUE(works(*reader));
    EXPECT_TRUE(works(reader == &kD8 ? kTyCom : kD8));
    const std::string journal = module.Journal();
    EXPECT_NE(journal.find("throws"), journal.rfind("throws"));
  }
}

// A library may give 64 bits of handle: 32 are kept, and handed over with their sign.
TEST_F(MixedReaders, HandOverHandlesWithTheirSign) {
  const struct {
    const SimulatedReader& reader;
    const char* opening;
    std::int64_t result;
    std::int64_t given;  // where the result is not the handle
    const char* used;
  } rows[] = {
      {kTyCom, "TY_Open", -2, 0, "-2"},
      {kTyUsb, "TYKey_OpenTYKey", 0x9000, 0x100000005, "5"},
      {kTyUsb, "TYKey_OpenTYKey", 0x9000, 0xFFFFFFFE, "-2"},
      {kTyUsb, "TYKey_OpenTYKey", 0x9000, INT64_C(0x7FFFFFFF80000000), "-2147483648"},
      {kWd, "CT_open", -2, 0, "-2"},  // refuses, and the handle stays
      {kD8, "dc_init", 0x1FFFFFFFE, 0, "-2"},
      {kBsit, "bsit_openHID", -2, 0, "-2"},
  };
  for (const auto& [reader, opening, result, given, used] : rows) {
    SCOPED_TRACE(opening);
    EmptySlots();
    const SimulatedModule& module = *modules.at(reader.vendor);
    module.Restart();
    module.Answer(opening, result, nullptr, given);
    Open(reader);
    for (const char* slot : {"0C", "00"}) {
      ChangeSlot(slot);
      ResetCard();
      Send("00A4000C023F00");
    }
    CloseReader();
    std::istringstream calls(module.Journal());
    std::string call;
    std::getline(calls, call);
    int withHandle = 0;
    for (; std::getline(calls, call); ++withHandle) {
      const std::size_t argument = call.find('(') + 1;
      EXPECT_EQ(call.substr(argument, call.find_first_of(",)") - argument), used) << call;
    }
    EXPECT_GE(withHandle, 5);
  }
}

// Whether a tool whose open failed is still the one that the next open of its kind finds.
TEST_F(MixedReaders, KeepAToolThatKnowsItsKind) {
  const struct {
    const SimulatedReader& reader;
    const char* wrongName;  // null: by port
    const char* slotCall;   // in the slot that the failed tool was told
    bool expected;
  } rows[] = {
      {kD8, "COM9", "dc_cpureset_hex(", true},     {kD8, "nothing", "dc_cpureset_hex(", true},
      {kD8, nullptr, "dc_cpureset_hex(", false},   {kTyCom, "COM9", "TY_Dreset(0, 1)", true},
      {kTyCom, nullptr, "TY_Dreset(0, 1)", true},  {kS5009, "COM9", "ExchangeAPDU(1,", false},
      {kS5009, nullptr, "ExchangeAPDU(1,", false},
  };
  for (const auto& [reader, wrongName, slotCall, expected] : rows) {
    SCOPED_TRACE(reader.vendor + std::string(wrongName != nullptr ? wrongName : " by port"));
    EmptySlots();
    const SimulatedModule& module = *modules.at(reader.vendor);
    module.Restart();
    EXPECT_EQ(wrongName != nullptr ? OpenReaderA(wrongName, reader.kind)
                                   : OpenReader(9, reader.kind, 9600),
              0);
    ChangeSlot("01");
    ASSERT_EQ(OpenReader(1, reader.kind, 9600), 1);
    ResetCard();
    Send("00A40000");
    EXPECT_EQ(module.Journal().find(slotCall) != std::string::npos, expected);
  }
}

// The destructor of a tool that is replaced is heard in the library; that of a kept one is not.
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
