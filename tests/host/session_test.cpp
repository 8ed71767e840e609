#include "host/session.h"

#include <gtest/gtest.h>
#include <orvane.h>

#include <cstdlib>
#include <iostream>
#include <sstream>

#include "host/failure.h"
#include "host/output.h"
#include "host/run_program.h"
#include "host/text.h"
#include "simulators/encryption_machine.h"
#include "support/simulated_module.h"

namespace host {
namespace {

constexpr char kReader[] = "3:Simulated Reader 0";

// A session on the simulated winscard as if it were the system's.
class SessionTest : public testing::Test {
 protected:
  // Runs statements, and goes on behind one that fails; gives what they say.
  std::string Run(const std::vector<std::string>& statements, const std::string& defaultReader = "",
                  int32_t defaultKind = ReaderKindPcsc, bool coldReset = false) {
    Readers readers(defaultKind, false, defaultReader, coldReset);
    Secrets secrets;
    std::ostringstream shown;
    Trace trace(shown, {});
    Session session(readers, secrets, trace, {});
    std::string failures;
    for (const std::string& each : statements) {
      try {
        session.Run(ReadStatement(each), std::nullopt);
      } catch (const Failure& failure) {
        failures += std::string(failure.what()) + '\n';
      }
    }
    shown_ = shown.str();
    return failures;
  }

  support::SimulatedModule winscard_{"winscard"};
  std::string shown_;
};

TEST_F(SessionTest, TakesTheOnlyReaderWhereNoneIsNamed) {
  const std::string rest = "; --simulate runs on a simulated card";
  const struct {
    std::vector<std::string_view> listed;
    std::string defaultReader;
    int32_t defaultKind;
    std::string failure;
    std::string shown;
  } rows[] = {
      {{"Simulated Reader 0"}, "", 3, "", "reader Simulated Reader 0 (PC/SC)\n"},
      {{"A", "B 1"}, "", 3, "there is: port 1 A, port 2 B 1" + rest + "\n", ""},
      {{}, "", 3, "no PC/SC reader is there" + rest + "\n", ""},
      {{"Simulated Reader 0"}, "", 5, "there is: port 1 Simulated Reader 0" + rest + "\n", ""},
      {{"Simulated Reader 0", "Simulated Reader 1"}, "2", 3, "", "reader port 2 (PC/SC)\n"},
  };
  for (const auto& row : rows) {
    std::string list;
    for (const std::string_view name : row.listed) list += std::string(name) + '\0';
    std::string digits;
    for (const char c : list + '\0') digits += HexOctet(static_cast<unsigned char>(c));
    for (int call = 0; call < 2; ++call) {
      winscard_.Answer("SCardListReadersA", 0, digits.c_str());
    }
    const std::string failure = Run({"00A40000"}, row.defaultReader, row.defaultKind);
    EXPECT_TRUE(failure.ends_with(row.failure)) << failure;
    EXPECT_TRUE(failure.starts_with("no reader is named") || row.failure.empty()) << failure;
    EXPECT_NE(shown_.find(row.shown), shown_.npos) << shown_;
    winscard_.Restart();
  }
}

// An answer of the simulated winscard to the next call of a function.
struct Prepared {
  const char* function;
  uint32_t code;
  const char* data = nullptr;
};

TEST_F(SessionTest, TellsWhatAFailedExchangeMeans) {
  const std::string first = "or the first two octets of data";
  const std::string less =
      "more than 254 octets with a status word can't be had at once: ask for "
      "parts, with Le FE at most";
  const struct {
    std::string command;
    std::vector<Prepared> prepared;
    std::string note;  // with | before it, none of this
    std::string failure;
  } rows[] = {
      {"00A4040000", {{"SCardTransmit", 0, "6F0412346283"}}, "SW   6F04  no precise", ""},
      {"00A40400", {{"SCardTransmit", 0, "6F0412346283"}}, first, ""},
      {"84D6000000", {{"SCardTransmit", 0, "6982"}}, first, ""},
      {"00D600000100", {{"SCardTransmit", 0, "6982"}}, "|" + first, ""},
      {"00B0000000", {{"SCardTransmit", 0, "70126282"}}, "the first two octets of the answer", ""},
      {"00B0000000", {{"SCardTransmit", 0, "9000AA6282"}}, "SW   unknown", ""},
      {"00B0000000", {{"SCardTransmit", 0, "63C2"}}, "SW   63C2  warning: 2 tries left", ""},
      {"00B0000000", {{"SCardTransmit", 0, "63C1"}}, "warning: 1 try left", ""},
      {"00B0000000", {{"SCardTransmit", 0, "6381"}}, "warning: file filled up", ""},
      {"00B0000000", {{"SCardTransmit", 0, "69F0"}}, "SW   69F0  command not allowed", ""},
      {"00B0000000", {{"SCardTransmit", 0, "9404"}}, "proprietary status word", ""},
      {"00B00000FE", {{"SCardTransmit", 0, "6C1A"}}, "wrong Le: exactly 26 bytes", ""},
      {"00B0000000", {{"SCardTransmit", 0, "6CFF"}}, less, ""},
      {"00B00000FE", {{"SCardTransmit", 0, "6CFE"}}, "|" + less, ""},
      {"00A40000",
       {{"SCardTransmit", 0, "6100"}, {"SCardTransmit", 0x80100008}},
       "SW   6100  256 more bytes available\n                 " + less,
       ""},
      {"00A40000",
       {{"SCardTransmit", 0, "6110"}, {"SCardTransmit", 0x80100008}},
       "they were asked for once",
       ""},
      {"00B0000000",
       {{"SCardTransmit", 0x80100008}},
       "",
       "no answer from the card or its reader: it asks for 256 octets; " + less + "\n"},
      {"00B00000FE",
       {{"SCardTransmit", 0x80100068}},
       "",
       "no answer from the card or its reader: if another program has reset the card, @reset() "
       "brings it back\n"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.command + " " + row.note);
    for (const Prepared& answer : row.prepared) {
      winscard_.Answer(answer.function, answer.code, answer.data);
    }
    EXPECT_EQ(Run({"%SW = none", row.command, "@compare(%SW,9000,0)"}, kReader), row.failure);
    const bool absent = row.note.starts_with('|');
    EXPECT_EQ(shown_.find(row.note.substr(absent)) == shown_.npos, absent) << shown_;
    winscard_.Restart();
  }
}

TEST_F(SessionTest, OpensAReaderAfreshThatTheServiceHasForgotten) {
  const std::vector<std::vector<Prepared>> rows = {
      {{"SCardControl", 0x80100068}},                        // another program has reset the card
      {{"SCardControl", 6}, {"SCardConnectA", 0x8010001E}},  // the service has restarted
      {},
  };
  for (const auto& row : rows) {
    Readers readers(ReaderKindPcsc, false, "");
    readers.Open(kReader);
    readers.ChooseSlot("01");
    for (const Prepared& answer : row) {
      winscard_.Answer(answer.function, answer.code, answer.data);
    }
    EXPECT_EQ(readers.ResetCard().substr(0, 4), "3B6A");
    EXPECT_EQ(winscard_.Journal().find("SCardGetAttrib"), std::string::npos) << "another slot";
    winscard_.Answer("SCardConnectA", 0x8010001E);
    const size_t before = winscard_.Journal().size();
    EXPECT_NO_THROW(readers.Open(kReader));
    EXPECT_TRUE(winscard_.Journal().substr(before).starts_with("SCardDisconnect")) << "left open";
    winscard_.Restart();
  }
}

// Without it the card is as the session before has left it. Once is enough for each reader.
TEST_F(SessionTest, PowersACardOffAndOnAtTheStart) {
  const std::vector<std::string> read = {"@reset()", "00B0850001", "@compare(%SW,6A82,0)"};
  const auto cold = [&](const std::vector<std::string>& statements, const std::string& reader) {
    return Run(statements, reader, ReaderKindPcsc, true);
  };
  EXPECT_EQ(Run({"00A4040C08F04F5256414E4501"}, kReader), "");
  EXPECT_EQ(Run(read, kReader), "");
  EXPECT_NE(cold(read, kReader), "");
  const std::string again = "@OPENREADER(" + std::string(kReader) + ")";
  EXPECT_EQ(cold({"00A4040C08F04F5256414E4501", again, read[1], read[2]}, "3:1"), "");
  EXPECT_EQ(cold({"@reset()"}, "3:2"),
            "can't cold-reset the card in the reader port 2 (PC/SC): no card is in the reader\n");
  EXPECT_EQ(cold({"@reset()"}, "5:COM1"),
            "can't open the reader COM1 (D8): --cold-reset works through PC/SC alone, not with "
            "readers of the kind D8\n");
}

// What stands before an answer is out when the maker's library is called, which may crash.
TEST_F(SessionTest, ShowsTheCommandBeforeItIsSent) {
  const auto crash = [] {
    const std::string shown = host_test::ReadText("shown");
    const bool whole = host_test::Shows(shown, "%A = 12\n") &&
                       host_test::Shows(shown, ">>   00 A4 00 00   SELECT\n");
    std::_Exit(whole ? 7 : 8);
  };
  const auto run = [&] {
    ASSERT_NE(std::freopen("shown", "w", stdout), nullptr);
    const StandardStreams streams;
    Readers readers(ReaderKindPcsc, false, kReader);
    Secrets secrets;
    Trace trace(std::cout, {});
    Session session(readers, secrets, trace, {});
    session.Run(ReadStatement("@reset()"), 1);
    winscard_.CallBack(crash);
    session.Run(ReadStatement("%A = 12"), 2);
    session.Run(ReadStatement("00A40000"), 3);
  };
  const host_test::WorkingFolder folder;
  EXPECT_EXIT(run(), testing::ExitedWithCode(7), "");
}

TEST_F(SessionTest, TriesTheDefaultReaderAgainAfterAFailure) {
  for (int call = 0; call < 2; ++call) winscard_.Answer("SCardConnectA", 0x8010000B);
  const std::string failures = Run({"@reset()", "@reset()"}, kReader);
  EXPECT_EQ(
      failures,
      "can't open the reader Simulated Reader 0 (PC/SC): another program holds the reader for "
      "itself\n");
}

TEST_F(SessionTest, NamesWhatKeepsAReaderFromOpening) {
  const struct {
    std::string reader;
    std::vector<Prepared> prepared;
    std::string failure;
  } rows[] = {
      {kReader, {{"SCardConnectA", 0x8010000B}}, "another program holds the reader for itself"},
      {kReader, {{"SCardConnectA", 0x80100066}}, "the card in the reader is mute"},
      {kReader, {{"SCardConnectA", 0x80100001}}, "PC/SC gives the code 0x80100001"},
      {kReader,
       {{"SCardConnectA", 0x8010001D}, {"SCardEstablishContext", 0x8010001D}},
       "the PC/SC service does not run"},
      {"3:3",
       {},
       "no reader has this number; there is: port 1 Simulated Reader 0, port 2 Simulated Reader 1"},
      {"10:localhost:8000", {}, "\"localhost\" is no IPv4 address: a payment HSM is "},
      {"10:1.2.3.256:8000", {}, "\"1.2.3.256\" is no IPv4 address"},
      {"10:127.0.0.1", {}, "an address has no port"},
      {"10:8000", {}, "a port has no address"},
      {"10:127.0.0.1:65616", {}, "\"65616\" is no port from 1 to 65535"},
      {"10:127.0.0.1:1", {}, "nothing takes a connection there"},
      {"7:COM1", {}, "S5009"},
      {"6:1", {}, "readers of this kind never open"},
  };
  for (const auto& row : rows) {
    for (const Prepared& answer : row.prepared) {
      for (int call = 0; call < 8; ++call) winscard_.Answer(answer.function, answer.code);
    }
    const std::string failure = Run({"00A40000"}, row.reader);
    EXPECT_NE(failure.find(row.failure), failure.npos) << row.reader << ": " << failure;
    winscard_.Restart();
  }
}

TEST_F(SessionTest, ClosesAnEncryptionMachineThatGivesNoAnswer) {
  simulator::EncryptionMachine machine;
  machine.Prepare({{{std::chrono::milliseconds(1300), {0xAA}}}});
  machine.Prepare({{{std::chrono::milliseconds(600), {0x31}}}});
  const std::string failure =
      Run({"@reset()", "30", "31", "@compare(%RESP,31,1)"}, "10:" + machine.Name());
  EXPECT_TRUE(failure.starts_with("no answer from the payment HSM; its connection is closed"))
      << failure;
  EXPECT_EQ(shown_.find("ATR"), shown_.npos) << shown_;
  EXPECT_NE(shown_.find("ok   31 = 31"), shown_.npos) << shown_;
}

}  // namespace
}  // namespace host
