// Sessions are recorded true to the wire, whole or not at all.

#include "recorder/recorder.h"

#include <gtest/gtest.h>

#include <string>

#include "recordings/session_log.h"
#include "session.h"
#include "src/readers/winscard_types.h"
#include "support/module_loading.h"
#include "support/simulated_module.h"

namespace host_test {
namespace {

using namespace winscard;

class Recorder : public testing::Test {
 protected:
  WorkingFolder folder;
};

const std::string kOpened = R"({"event":"recording","version":1,"secrets":"hidden"}
{"event":"open","reader":1,"kind":"PC/SC","name":"Simulated Reader 0","level":"wire","protocol":"T=0","atr":"3B6A0000803180664F5256414E45"}
{"event":"atr","reader":1,"atr":"3B6A0000803180664F5256414E45"}
)";

TEST_F(Recorder, WritesWhatGoesOverTheWire) {
  ASSERT_EQ(RunOrvane("apdu --simulate --record s" + kSessionApdus).exitCode, 0);
  EXPECT_EQ(ReadSession("s"),
            kOpened +
                R"({"event":"exchange","reader":1,"command":"00A40000021001","sw":"612B"}
{"event":"exchange","reader":1,"command":"00C000002B","response":"6F298408F04F5256414E4501A51D500A4F5256414E45205041598701015F2D02656E9F38069F1A025F2A02","sw":"9000"}
{"event":"exchange","reader":1,"command":"0020008008****************","sw":"9000","hidden":"data of VERIFY"}
{"event":"exchange","reader":1,"command":"00B2030C00","sw":"6A83"}
{"event":"exchange","reader":1,"command":"00B2010C00","response":"7021570F9999000000000004D311220100000F5F200D53414D504C452F4F5256414E45","sw":"9000"}
{"event":"close","reader":1,"power":"kept"}
)");
}

// The same commands by the library's own way through the other drivers.
TEST_F(Recorder, WritesWhatTheProgramSendsToOtherReaders) {
  ASSERT_EQ(RunOrvane("apdu --simulate -r 12:BSIT:1 --record s 00A40000 00B2030C00").exitCode, 0);
  EXPECT_EQ(ReadSession("s"),
            R"({"event":"recording","version":1,"secrets":"hidden"}
{"event":"open","reader":1,"kind":"BSIT","name":"BSIT:1","level":"program"}
{"event":"reset","reader":1,"atr":"3B6A0000803180664F5256414E45"}
{"event":"exchange","reader":1,"command":"00A40000","response":"6F0782013883023F00","sw":"9000"}
{"event":"exchange","reader":1,"command":"00B2030C00","sw":"6A82","incomplete":true}
)");
}

// What the trace hides is hidden, also where the command alone does not tell.
TEST_F(Recorder, HidesSecretsUnlessTheyAreAskedFor) {
  const std::string script =
      "@reset()\n%PIN = 41424344\n00D68500 04 %PIN\n0020008008241234FFFFFFFFFF\n";
  for (const std::string reader : {"", "-r 5:COM1 "}) {
    WriteFile("script", script);
    RunOrvane("run --simulate " + reader + "--record hidden script");
    RunOrvane("run --simulate " + reader + "--record shown --show-secrets script");
    const std::string hidden = ReadText("hidden"), shown = ReadText("shown");
    EXPECT_TRUE(Shows(hidden, R"("command":"00D6850004********","sw":)")) << hidden;
    EXPECT_TRUE(Shows(hidden, R"("hidden":"data made from a secret")")) << hidden;
    EXPECT_FALSE(Shows(hidden, "41424344") || Shows(hidden, "241234")) << hidden;
    EXPECT_TRUE(Shows(shown, "00D685000441424344") && Shows(shown, "0020008008241234FF")) << shown;
    EXPECT_TRUE(Shows(shown, R"("secrets":"shown")")) << shown;
  }
}

// No command goes out that is not recorded.
TEST_F(Recorder, EndsWhereNothingCanBeWritten) {
  std::filesystem::create_directory("folder");
  recordings::SessionLog other("taken", false);
  other.Begin();
  std::vector<std::string> files = {"folder", "nowhere/s", "taken"};
  if (std::filesystem::exists("/dev/full")) files.push_back("/dev/full");
  for (const std::string& file : files) {
    for (const std::string reader : {"", "-r 12:BSIT:1 "}) {
      const Outcome outcome =
          RunOrvane("apdu --simulate " + reader + "--record " + file + " 00A40000");
      EXPECT_EQ(outcome.exitCode, 5) << outcome.out;
      EXPECT_TRUE(outcome.err.starts_with("orvane: can't write the recording " + file))
          << outcome.err;
      EXPECT_FALSE(Shows(outcome.out, ">>")) << outcome.out;
    }
  }
}

// A script that is refused costs no earlier recording, and a file's name may tell processes apart.
TEST_F(Recorder, TakesTheFileWhenAReaderIsOpened) {
  WriteFile("old", "what was recorded");
  EXPECT_EQ(RunOrvane("run --simulate --record old -", "@reset()\n%U\n").exitCode, 3);
  EXPECT_EQ(RunOrvane("apdu --simulate --record old 00A4").exitCode, 3);
  EXPECT_EQ(ReadText("old"), "what was recorded");
  EXPECT_EQ(RunOrvane("run --simulate --record old -", "%A = 1\n").exitCode, 0);
  EXPECT_EQ(ReadSession("old"), kOpened.substr(0, kOpened.find('\n') + 1));
  std::filesystem::create_directory("each");
  for (int count = 1; count <= 2; ++count) {
    EXPECT_EQ(RunOrvane("apdu --simulate --record each/%p.jsonl 00A40000").exitCode, 0);
    EXPECT_EQ(orvane_test::FilesIn("each"), count);
  }
}

// The module as a host has it, behind it a simulator with prepared failures.
std::string lines;
int32_t canWrite = 1;

template <typename Function>
Function* Find(void* module, const char* name) {
  return reinterpret_cast<Function*>(support::FindExport(module, name));
}

TEST_F(Recorder, HandsCallsOnWithTheirFailures) {
  const std::filesystem::path build = std::u8string(u8"" ORVANE_BUILD_FOLDER);
  const std::string name = support::ModuleFileName("winscard");
  const support::SimulatedModule simulator("winscard");
  void* const recorder = support::LoadModule(build / "recorder" / name);
  const RecorderSettings settings = {
      .append = [](const char* line,
                   uint64_t length) { lines += std::string(line, length) + '\n'; },
      .ready = [] { return canWrite; },
      .nextReader = []() -> int64_t { return 7; },
      .origin = 0,
      .showSecrets = 0};
  Find<RecorderBeginFunction>(recorder, "RecorderBegin")(&settings);

  SCARDCONTEXT context = 0;
  SCARDHANDLE card = 0;
  DWORD protocol = 0;
  Find<LONG(DWORD, void*, void*, SCARDCONTEXT*)>(recorder, "SCardEstablishContext")(
      0, nullptr, nullptr, &context);
  const auto connect = Find<LONG(SCARDCONTEXT, const char*, DWORD, DWORD, SCARDHANDLE*, DWORD*)>(
      recorder, "SCardConnectA");
  EXPECT_EQ(connect(context, "nowhere", 2, 3, &card, &protocol), SCARD_E_UNKNOWN_READER);
  EXPECT_EQ(connect(context, "Simulated Reader 0", 2, 3, &card, &protocol), 0);
  std::uint8_t reply[4] = {0, 0, 0, 0};
  const auto send = [&](DWORD room) {
    const SCARD_IO_REQUEST header = {protocol, sizeof header};
    DWORD length = room;
    return Find<LONG(SCARDHANDLE, const SCARD_IO_REQUEST*, const char*, DWORD, void*, std::uint8_t*,
                     DWORD*)>(recorder, "SCardTransmit")(card, &header, "\0\xB2\1\4", 4, nullptr,
                                                         reply, &length);
  };
  // A removed card; a length beyond the area, of which no octet is read; a reply of one octet.
  simulator.Answer("SCardTransmit", SCARD_W_REMOVED_CARD);
  simulator.Answer("SCardTransmit", 0, "61026A82", 1000);
  simulator.Answer("SCardTransmit", 0, "6A");
  EXPECT_EQ(send(4), SCARD_W_REMOVED_CARD);
  EXPECT_EQ(send(4), 0);
  EXPECT_EQ(send(4), 0);
  const auto control = Find<LONG(SCARDHANDLE, DWORD, const char*, DWORD, void*, DWORD, DWORD*)>(
      recorder, "SCardControl");
  DWORD length = 0;
  EXPECT_EQ(control(card, 0x00312EE4, "\0\x20\0\x80\1\x31", 6, reply, 4, &length), 0);
  EXPECT_EQ(control(card, 0x00310004, "\1", 1, reply, 4, &length), SCARD_E_UNSUPPORTED_FEATURE);
  EXPECT_EQ(Find<LONG(SCARDHANDLE, DWORD, DWORD, DWORD, DWORD*)>(recorder, "SCardReconnect")(
                card, 2, 3, 2, &protocol),
            0);
  const std::string recorded = std::regex_replace(lines, std::regex(R"(,"at_us".*)"), "}");
  EXPECT_EQ(
      recorded,
      R"({"event":"open","reader":0,"kind":"PC/SC","name":"nowhere","level":"wire","failed":"0x80100009"}
{"event":"open","reader":7,"kind":"PC/SC","name":"Simulated Reader 0","level":"wire","protocol":"T=0","atr":"3B6A0000803180664F5256414E45"}
{"event":"exchange","reader":7,"command":"00B20104","failed":"0x80100069"}
{"event":"exchange","reader":7,"command":"00B20104","response":"6102","sw":"6A82"}
{"event":"exchange","reader":7,"command":"00B20104","response":"6A"}
{"event":"exchange","reader":7,"code":"0x00312EE4","command":"0020008001**","sw":"6985","hidden":"data of VERIFY"}
{"event":"control","reader":7,"code":"0x00310004","command":"01","failed":"0x80100022"}
{"event":"reset","reader":7,"power":"cold reset","protocol":"T=0","atr":"3B6A0000803180664F5256414E45"}
)");

  canWrite = 0;
  simulator.Restart();
  EXPECT_EQ(send(4), 29);
  EXPECT_EQ(simulator.Journal(), "");
  Find<RecorderBeginFunction>(recorder, "RecorderBegin")(nullptr);
  support::UnloadModule(recorder);
}

}  // namespace
}  // namespace host_test
