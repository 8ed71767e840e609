#include <gtest/gtest.h>

#include "host/run_program.h"
#include "simulators/encryption_machine.h"
#include "support/simulated_module.h"

namespace host_test {
namespace {

constexpr char kSimulated[] = "simulated: no hardware is touched";

bool Shows(const Outcome& outcome, std::string_view text) {
  return outcome.out.find(text) != std::string::npos;
}

TEST(SimulatedReaders, OfEveryMakerRunTheExample) {
  const Folder folder;
  for (const char* reader :
       {"1:USB1", "1:1", "2:COM1", "2:1", "3:Simulated Reader 0", "3:1", "4:WDUSB1", "5:COM1",
        "5:COM100(D8USB)", "5:1", "5:100", "7:COM1", "7:1", "8:COM1", "8:1", "12:BSIT:1", "12:1"}) {
    const Outcome outcome = RunOrvane(folder, "run --simulate -r '" + std::string(reader) + "' " +
                                                  ORVANE_SOURCE_FOLDER "/examples/payment.orv");
    EXPECT_EQ(outcome.exitCode, 0) << reader << '\n' << outcome.err;
    EXPECT_EQ(outcome.err, "") << reader;
    EXPECT_TRUE(Shows(outcome, kSimulated)) << reader << '\n' << outcome.out;
    EXPECT_TRUE(Shows(outcome, "done  ")) << reader << '\n' << outcome.out;
  }
}

TEST(SimulatedReaders, OfIdentityCardsGiveNothing) {
  const Folder folder;
  const std::string script = folder.Write(
      "script.orv",
      "@reset()\n@compare(@strlen(%ATR),0,1)\n00A40000\n@compare(@strlen(%RESP),0,1)\n");
  const Outcome outcome = RunOrvane(folder, "run --simulate -r '11:ICR-COM1001(ICRUSB)' " + script);
  EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
}

TEST(SimulatedReaders, AreListedAsTheyAreOpened) {
  const Folder folder;
  const Outcome outcome = RunOrvane(folder, "readers --simulate");
  for (const char* line : {" 1:USB1\n", " 1:USB2\n", " 12:BSIT:1\n", " 12:BSIT:2\n"}) {
    EXPECT_TRUE(Shows(outcome, line)) << outcome.out;
  }
}

/// It is a device on the network, with or without simulators for the rest.
TEST(EncryptionMachine, IsNoSimulatorToTheProgram) {
  for (const char* option : {"", "--simulate "}) {
    simulator::EncryptionMachine machine;
    machine.Prepare({{{std::chrono::milliseconds(0), simulator::FromHex("9000AA")}}});
    const Folder folder;
    const std::string script =
        folder.Write("script.orv", "30 31\n@compare(%RESP,9000AA,1)\n30\n@compare(%RESP,30,1)\n");
    const Outcome outcome =
        RunOrvane(folder, std::string("run ") + option + "-r 10:" + machine.Name() + ' ' + script);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.out << outcome.err;
    EXPECT_FALSE(Shows(outcome, kSimulated)) << outcome.out;
    EXPECT_TRUE(machine.Journal().starts_with("1 opens\n1 sends 3031\n1 sends 30\n"))
        << machine.Journal();
  }
}

/// Beside the library stands what is no simulator: nothing may be sent to it as if it were one.
TEST(SimulatedReaders, DoNotStandInForTheLibraryOfWd) {
  namespace fs = std::filesystem;
  const Folder folder;
  const fs::path here = folder.Path(""), build = ORVANE_BUILD_FOLDER;
  for (const fs::directory_entry& entry : fs::directory_iterator(build)) {
    const std::string name = entry.path().filename().string();
    if (name.starts_with("orvane") || name.starts_with("liborvane")) fs::copy(entry, here / name);
  }
  fs::copy(build / "simulators", here / "simulators");
  support::WriteModuleWithout("wdcrwx", "SimulatorRestart", here);

  const std::string script = folder.Write("script.orv", "@reset()\n");
  const Outcome refused =
      RunOrvane(folder, "run --simulate -r 4:WDUSB1 " + script, "", here.string());
  EXPECT_EQ(refused.exitCode, 4);
  EXPECT_EQ(refused.err,
            "orvane: the WD library beside this one is no simulator: it is not opened\n");
  const Outcome real = RunOrvane(folder, "run -r 4:WDUSB1 " + script, "", here.string());
  EXPECT_EQ(real.exitCode, 0) << real.err;
  EXPECT_FALSE(Shows(real, kSimulated)) << real.out;
}

}  // namespace
}  // namespace host_test
