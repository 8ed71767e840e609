#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "readers/reader_host.h"
#include "simulators/encryption_machine.h"

namespace orvane_test {
namespace {

using simulator::EncryptionMachine;
using simulator::FromHex;
using simulator::Reaction;
using std::chrono::milliseconds;

class TcpTool : public ReaderTest {
 protected:
  void Open() { ASSERT_EQ(OpenReaderA(machine.Name().c_str(), ReaderKindTcp), 1); }

  // The machine learns of a connection's end a little later than its peer.
  void ExpectJournal(const std::string& expected) {
    for (int tries = 0; tries < 400 && machine.Journal() != expected; ++tries) {
      std::this_thread::sleep_for(milliseconds(5));
    }
    EXPECT_EQ(machine.Journal(), expected);
  }

  std::string Port() const { return machine.Name().substr(machine.Name().find(':') + 1); }

  EncryptionMachine machine;
};

Reaction Answers(const std::string& digits) { return {{{milliseconds(0), FromHex(digits)}}}; }

const Reaction kSilence{};

TEST_F(TcpTool, PassesRequestsAndAnswersAsTheyAre) {
  Open();
  EXPECT_EQ(ResetCard(), (Reply{1, ""}));
  ChangeSlot("01");
  EXPECT_EQ(Send("00 11 22"), (Reply{1, "00112200"}));  // blanks count as digits
  machine.Prepare(Answers("00010203040506070809"));
  EXPECT_EQ(Send("6110"), (Reply{1, "00010203040506070809"}));
  EXPECT_EQ(CloseReader(), 1);
  EXPECT_EQ(CloseReader(), 1);
  EXPECT_EQ(Send("00"), (Reply{0, ""}));
  ExpectJournal("1 opens\n1 sends 00112200\n1 sends 6110\n1 closes\n");
}

TEST_F(TcpTool, OpensAddressesOnly) {
  const std::string port = ':' + Port();
  // An octet may be written with any number of zeros before it, in octal then.
  const auto padded = [](std::size_t length) {
    const std::string end = "177.0.0.1";
    return std::string(length - end.size(), '0') + end;
  };
  const std::string gone = EncryptionMachine().Name();
  const std::pair<std::string, int> rows[] = {
      {gone, 0},
      {"127.0.0.1" + port, 1},
      {"127.0.0.1" + port + " and more", 1},
      {"127.0.0.1:" + std::to_string(std::stoi(Port()) + 65536), 1},
      {padded(63) + port, 1},
      {padded(64) + port, 0},
      {std::string(5000, '1') + port, 0},
      {"127.0.0.1", 0},
      {"", 0},
      {":", 0},
      {port, 0},
      {"localhost" + port, 0},
      {"127.0.0.256" + port, 0},
      {"255.255.255.255" + port, 0},
      {"127.0.0.1::" + Port(), 0},
  };
  for (const auto& [name, expected] : rows) {
    EmptySlots();
    EXPECT_EQ(OpenReaderA(name.c_str(), ReaderKindTcp), expected) << name;
    EXPECT_EQ(Send("00").result, expected) << name;
    EXPECT_EQ(CloseReader(), 1) << name;
  }
  EXPECT_EQ(OpenReader(std::stoi(Port()), ReaderKindTcp, 9600), 0);
}

TEST_F(TcpTool, TakesWhatOneReceiveBrings) {
  Open();
  machine.Prepare({{{milliseconds(0), FromHex("AA")}, {milliseconds(200), FromHex("BBCC")}}});
  EXPECT_EQ(Send("00"), (Reply{1, "AA"}));
  std::this_thread::sleep_for(milliseconds(400));
  machine.Prepare(kSilence);
  EXPECT_EQ(Send("00"), (Reply{1, "BBCC"}));
  // What was there already came before the machine saw the request: the next must not join it.
  ExpectJournal("1 opens\n1 sends 00\n1 sends 00\n");

  std::string tooMuch;
  for (int i = 0; i < 2500; ++i) tooMuch += "0F1E";
  machine.Prepare(Answers(tooMuch));
  EXPECT_EQ(Send("00"), (Reply{1, tooMuch.substr(0, 8192)}));
  machine.Prepare(kSilence);
  EXPECT_EQ(Send("00"), (Reply{1, tooMuch.substr(8192)}));
  ExpectJournal("1 opens\n1 sends 00\n1 sends 00\n1 sends 00\n1 sends 00\n");
  EXPECT_EQ(Send("77"), (Reply{1, "77"}));
}

TEST_F(TcpTool, StaysConnectedWithoutAnAnswer) {
  Open();
  machine.Prepare(kSilence);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(Send("00"), (Reply{0, ""}));
  EXPECT_GE(std::chrono::steady_clock::now() - start, milliseconds(1000));
  EXPECT_EQ(Send("01"), (Reply{1, "01"}));

  // A late answer opens the answer to the next command.
  machine.Prepare({{{milliseconds(1400), FromHex("AA")}}});
  machine.Prepare(kSilence);
  EXPECT_EQ(Send("02"), (Reply{0, ""}));
  EXPECT_EQ(Send("03"), (Reply{1, "AA"}));
}

TEST_F(TcpTool, StaysDeadWhenItsPeerHasClosed) {
  Open();
  machine.Prepare({.parts = {}, .closes = true});
  for (int i = 0; i < 3; ++i) EXPECT_EQ(Send("00"), (Reply{0, ""}));
  EXPECT_EQ(ResetCard(), (Reply{1, ""}));
  EXPECT_EQ(CloseReader(), 1);
  Open();
  EXPECT_EQ(Send("01"), (Reply{1, "01"}));
}

// The number of a socket that was closed is soon another reader's.
TEST_F(TcpTool, ClosesItsSocketOnce) {
  Open();
  EXPECT_EQ(CloseReader(), 1);
  SetReader(1);
  Open();
  SetReader(0);
  EXPECT_EQ(CloseReader(), 1);
  SetReader(1);
  EXPECT_EQ(Send("01"), (Reply{1, "01"}));
}

TEST_F(TcpTool, DropsTheFormerConnectionWhenItOpensAgain) {
  Open();
  Open();
  EXPECT_EQ(List(ReaderKindTcp, 1, 0).size(), 1U);
  const std::string longest(8192, 'A');
  EXPECT_TRUE(Send(longest) == (Reply{1, longest}));
  OpenReader(1, ReaderKindFm8201, 9600);  // takes its place
  ExpectJournal("1 opens\n2 opens\n2 sends " + longest + "\n2 closes\n");
}

}  // namespace
}  // namespace orvane_test
