#pragma once

#include <gtest/gtest.h>

#include <string>

#include "readers/reader_host.h"
#include "support/simulated_module.h"

namespace orvane_test {

// A reader that a simulated library offers.
struct SimulatedReader {
  const char* vendor;
  int kind;
  const char* name;
  const char* closing;  // the call that closes it
};

inline const SimulatedReader kTyUsb{"tykeyint", ReaderKindTyUsb, "USB1", "TYKey_CloseTYKey(-1000)"},
    kTyCom{"tyreader", ReaderKindTyCom, "COM1", "TY_Close(0)"},
    kPcsc{"winscard", ReaderKindPcsc, "Simulated Reader 0",
          "SCardDisconnect(0xFFFFFFFFEA010001, 0)"},
    kWd{"wdcrwx", ReaderKindWd, "WDUSB1", "CT_close(1)"},
    kD8{"dcrf32", ReaderKindD8, "COM1", "dc_exit(1)"},
    kS5009{"S5009", ReaderKindS5009, "COM1", "CloseCOM(1)"},
    kS5009Ats{"S5009", ReaderKindS5009Ats, "COM1", "CloseCOM(1)"},
    kIcr{"sdtapi", ReaderKindIcr, "ICR-COM1", "SDT_ClosePort(1)"},
    kBsit{"STJZZ_BSIT", ReaderKindBsit, "BSIT:1", "bsit_CloseHID(0)"};

inline int Open(const SimulatedReader& reader) { return OpenReaderA(reader.name, reader.kind); }

// A driver with its vendor's library simulated.
class DriverTest : public ReaderTest {
 protected:
  explicit DriverTest(const SimulatedReader& tested) : reader(tested), module(tested.vendor) {}

  // A new tool, and a simulator that remembers nothing.
  void StartAnew() {
    EmptySlots();
    module.Restart();
    seen_ = 0;
  }

  void OpenAnew(const char* slot = nullptr) {
    StartAnew();
    ASSERT_EQ(Open(reader), 1);
    if (slot != nullptr) ChangeSlot(slot);
    NewCalls();
  }

  // The journal since the last look.
  std::string NewCalls() {
    const std::string journal = module.Journal();
    const std::string calls = journal.substr(seen_);
    seen_ = journal.size();
    return calls;
  }
  std::string NewCallsWithoutResults() { return CallsWithoutResults(NewCalls()); }

  const SimulatedReader& reader;
  const support::SimulatedModule module;

 private:
  std::size_t seen_ = 0;
};

constexpr char kCardAtr[] = "3B6A0000803180664F5256414E45";

}  // namespace orvane_test
