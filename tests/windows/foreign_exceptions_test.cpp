// Libraries whose functions throw as those do that Microsoft's compiler has built: one function at
// a time, in every operation of every reader, and all of the crypto module's.
#include <windows.h>

#include <set>
#include <sstream>
#include <string>
#include <string_view>

#include "engine/script_host.h"
#include "readers/driver_test.h"
#include "support/windows/replaced_import.h"

namespace orvane_test {
namespace {

std::set<std::string> functions;  // that the library has looked up
std::string throwing;             // which of them throws
int thrown = 0;

INT_PTR WINAPI Throw() {
  ++thrown;
  constexpr DWORD kMicrosoftException = 0xE06D7363;
  RaiseException(kMicrosoftException, EXCEPTION_NONCONTINUABLE, 0, nullptr);
  return 1;
}

FARPROC WINAPI FindThrowing(HMODULE module, const char* name) {
  if (std::string_view(name).substr(0, 2) != "g_") functions.insert(name);
  return name == throwing ? Throw : GetProcAddress(module, name);
}

FARPROC WINAPI FindNoneButThrowing(HMODULE, const char*) { return Throw; }

class ForeignExceptions : public ReaderTest {
 protected:
  // An operation in which something is thrown gives 0.
  static void Expect0IfThrown(const char* operation, int result) {
    EXPECT_TRUE(result == 0 || thrown == seen_) << operation;
    seen_ = thrown;
  }

  // What a driver calls at its end gives nothing back.
  static void CloseAll() {
    EmptySlots();
    seen_ = thrown;
  }

  static void UseEverything(const SimulatedReader& reader) {
    ReaderInfo list[32];
    Expect0IfThrown("GetReaderList", GetReaderList(reader.kind, list, 2, 0));
    Expect0IfThrown("OpenReader", OpenReader(1, reader.kind, 9600));
    CloseAll();
    Expect0IfThrown("OpenReaderA", Open(reader));
    for (const char* slot : {"00", "0C"}) {
      ChangeSlot(slot);
      Expect0IfThrown("ChangeSlot", 0);
      const Reply atr = ResetCard();
      Expect0IfThrown("Reset", atr.result);
      Expect0IfThrown("SendCommand", Send("00A4000C023F00").result);
    }
    Expect0IfThrown("CloseReader", CloseReader());
    Open(reader);
    CloseAll();
  }

  static inline int seen_ = 0;
};

TEST_F(ForeignExceptions, EndAnyOperationOfAnyReader) {
  const struct {
    const SimulatedReader& reader;
    int called;  // how many of its functions are
  } rows[] = {{kTyUsb, 6}, {kTyCom, 4},    {kPcsc, 9}, {kWd, 4},  {kD8, 12},
              {kS5009, 4}, {kS5009Ats, 4}, {kIcr, 5},  {kBsit, 6}};
  const support::ReplacedImport replaced("orvane.dll", "GetProcAddress", FindThrowing);
  for (const auto& row : rows) {
    SCOPED_TRACE(row.reader.vendor);
    const support::SimulatedModule module(row.reader.vendor);
    functions.clear();
    throwing.clear();
    UseEverything(row.reader);
    int throwers = 0;
    for (const std::string& function : std::set(functions)) {
      SCOPED_TRACE(function);
      const int before = thrown;
      throwing = function;
      UseEverything(row.reader);
      throwers += thrown > before;
    }
    EXPECT_EQ(throwers, row.called);
  }
}

TEST_F(ForeignExceptions, LeaveNothingWithThePcscService) {
  const support::ReplacedImport replaced("orvane.dll", "GetProcAddress", FindThrowing);
  const support::SimulatedModule module(kPcsc.vendor);
  const auto calls = [&](const std::string& function) {
    std::istringstream journal(module.Journal());
    int count = 0;
    for (std::string line; std::getline(journal, line);) count += line.starts_with(function);
    return count;
  };
  for (const char* function : {"SCardListReadersA", "SCardFreeMemory", "SCardConnectA"}) {
    module.Restart();
    throwing = function;
    UseEverything(kPcsc);
    EXPECT_EQ(calls("SCardEstablishContext("), calls("SCardReleaseContext(")) << function;
  }
  EXPECT_EQ(calls("SCardListReadersA("), calls("SCardFreeMemory("));
}

TEST_F(ForeignExceptions, EndAStatement) {
  const support::ReplacedImport replaced("orvane.dll", "GetProcAddress", FindNoneButThrowing);
  for (const char* call : {"@des(0101010101010101,00,1)", "@des(0101010101010101,00,0)",
                           "@mac(0101010101010101,00,00,0)", "@SUBKEY(0101010101010101,00)",
                           "@HASH(00)", "@RSAPUBENC(CA1,11,41)"}) {
    const int before = thrown;
    EXPECT_EQ(RunOne(call), (Outcome{1, ""})) << call;
    EXPECT_EQ(thrown, before + 1) << call;
  }
}

}  // namespace
}  // namespace orvane_test
