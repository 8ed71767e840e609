#include <gtest/gtest.h>

#include "host/run_program.h"
#include "orvane.h"
#include "simulators/encryption_machine.h"
#include "support/module_loading.h"
#include "support/simulated_module.h"

namespace host_test {
namespace {

namespace fs = std::filesystem;

constexpr char kSimulated[] = "simulated: no hardware is touched";

class SimulatedReaders : public testing::Test {
 protected:
  // The program, its libraries and the simulators, in the current folder.
  static void CopyProgram() {
    const fs::path here = fs::current_path(), build = u8"" ORVANE_BUILD_FOLDER;
    for (const fs::directory_entry& entry : fs::directory_iterator(build)) {
      const std::string name = entry.path().filename().string();
      if (name.starts_with("orvane") || name.starts_with("liborvane")) {
        fs::copy(entry, here / name);
      }
    }
    fs::copy(build / "simulators", here / "simulators");
  }

  WorkingFolder folder;
};

TEST_F(SimulatedReaders, OfEveryMakerRunTheExample) {
  for (const std::string reader :
       {"1:USB1", "1:1", "2:COM1", "2:1", "3:Simulated Reader 0", "3:1", "4:WDUSB1", "5:COM1",
        "5:COM100(D8USB)", "5:1", "5:100", "7:COM1", "7:1", "8:COM1", "8:1", "12:BSIT:1", "12:1"}) {
    const Outcome outcome = RunOrvane("run --simulate -r \"" + reader +
                                      "\" '" ORVANE_SOURCE_FOLDER "/examples/payment.orv'");
    EXPECT_EQ(outcome.exitCode, 0) << reader << '\n' << outcome.err;
    EXPECT_EQ(outcome.err, "") << reader;
    EXPECT_TRUE(Shows(outcome.out, kSimulated)) << reader << '\n' << outcome.out;
    EXPECT_TRUE(Shows(outcome.out, "done  ")) << reader << '\n' << outcome.out;
  }
}

TEST_F(SimulatedReaders, OfIdentityCardsGiveNothing) {
  WriteFile("script",
            "@reset()\n@compare(@strlen(%ATR),0,1)\n00A40000\n@compare(@strlen(%RESP),0,1)\n");
  const Outcome outcome = RunOrvane("run --simulate -r \"11:ICR-COM1001(ICRUSB)\" script");
  EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
}

// It is a device on the network, with or without simulators for the rest.
TEST_F(SimulatedReaders, DoNotIncludeTheEncryptionMachine) {
  WriteFile("script", "30 31\n@compare(%RESP,9000AA,1)\n30\n@compare(%RESP,30,1)\n");
  for (const std::string option : {"", "--simulate "}) {
    simulator::EncryptionMachine machine;
    machine.Prepare({{{std::chrono::milliseconds(0), simulator::FromHex("9000AA")}}});
    const Outcome outcome = RunOrvane("run " + option + "-r 10:" + machine.Name() + " script");
    EXPECT_EQ(outcome.exitCode, 0) << outcome.out << outcome.err;
    EXPECT_FALSE(Shows(outcome.out, kSimulated)) << outcome.out;
    EXPECT_TRUE(machine.Journal().starts_with("1 opens\n1 sends 3031\n1 sends 30\n"))
        << machine.Journal();
  }
}

// Beside the library stands what is no simulator: nothing may be sent to it as if it were one.
TEST_F(SimulatedReaders, DoNotStandInForTheLibraryOfWd) {
  const fs::path here = fs::current_path();
  CopyProgram();
  support::WriteModuleWithout("wdcrwx", "SimulatorRestart", here);

  WriteFile("script", "@reset()\n");
  const Outcome refused = RunOrvane("run --simulate -r 4:WDUSB1 script", "", here.string());
  EXPECT_EQ(refused.exitCode, 4);
  EXPECT_EQ(refused.err,
            "orvane: beside Orvane's library stands no simulator of WD's: nothing is opened\n");
  const Outcome real = RunOrvane("run -r 4:WDUSB1 script", "", here.string());
  EXPECT_EQ(real.exitCode, 0) << real.err;
  EXPECT_FALSE(Shows(real.out, kSimulated)) << real.out;
  // Nor is another maker's opened where there is no simulator of it.
  fs::remove("simulators/" + support::ModuleFileName("dcrf32"));
  const Outcome none = RunOrvane("run --simulate -r 5:COM1 script", "", here.string());
  EXPECT_TRUE(none.err.starts_with("orvane: there is no simulator ")) << none.err;
}

// The library has them in the ANSI code page, on POSIX in UTF-8.
TEST_F(SimulatedReaders, MayHaveLettersInTheirNames) {
  const std::string before = "Simulated Reader 0", shown = "Simulated Les\u00E4r";
  std::string name = "Simulated Les\xE4r", utf8(64, '\0');
  ASCII2UTF_8(name.c_str(), utf8.data());
  if (utf8.c_str() != shown) name = shown;
  name.resize(before.size());
  CopyProgram();
  const fs::path library = "simulators/" + support::ModuleFileName("winscard");
  std::string octets = orvane_test::ReadFile(library).value();
  for (std::size_t at; (at = octets.find(before)) != octets.npos;) {
    octets.replace(at, name.size(), name);
  }
  WriteFile(library, octets);
  WriteFile("byName", "@OPENREADER(" + shown + ")\n@reset()\n");
  WriteFile("reset", "@reset()\n");
  for (const std::string command :
       {"run byName", "run -r \"3:Simulated Les\u00E4r\" reset", "readers"}) {
    const Outcome outcome = RunOrvane(command + " --simulate", "", fs::current_path().string());
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_TRUE(Shows(outcome.out, shown)) << outcome.out;
  }
}

}  // namespace
}  // namespace host_test
