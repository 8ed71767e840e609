#include "common/virtual_card.h"

#include <gtest/gtest.h>

#include <map>
#include <sstream>

namespace simulator {
namespace {

// Stand in for their commands. A new card's first challenges are 5CF6EE792CDF05E1,
// BA2B6325C41A5F10, E7E459FAA111B337 and AA5218595C3BDC8D. What belongs to them was computed with
// OpenSSL 3.0.
const std::map<std::string, std::string> kWords = {
    {"select", "00A4040008F04F5256414E450100"},      {"challenge", "0084000008"},
    {"verify", "0020008008241234FFFFFFFFFF"},        {"wrong-pin", "0020008008240000FFFFFFFFFF"},
    {"authenticate", "008200000874108E00BFB86359"},     // with the first challenge
    {"authenticate-2", "008200000897BE824802DBF5BE"}};  // with the second

std::string Send(VirtualCard& card, const std::string& command) {
  const auto word = kWords.find(command);
  return ToHex(card.Transmit(FromHex(word != kWords.end() ? word->second : command)));
}

const std::string kZeros(128, '0');

// Steps "command: response; ". A * and an end stand for any response data before the end.
void ExpectAnswers(VirtualCard& card, const std::string& steps) {
  std::istringstream rest(steps);
  for (std::string command, expected;
       std::getline(rest, command, ':') && std::getline(rest >> std::ws, expected, ';');
       rest >> std::ws) {
    std::string response = Send(card, command);
    if (expected[0] == '*' && response.size() > 4) response.replace(0, response.size() - 4, "*");
    EXPECT_EQ(response, expected) << command;
  }
}

struct Sequence {
  const char* name;
  std::string steps;
};

void PrintTo(const Sequence& sequence, std::ostream* out) { *out << sequence.name; }

class VirtualCardSequence : public testing::TestWithParam<Sequence> {};

TEST_P(VirtualCardSequence, AnswersEveryStep) {
  VirtualCard card;
  ExpectAnswers(card, GetParam().steps);
}

const Sequence kSequences[] = {
    {"NoCommand", ": 6700; 00: 6700; 00A4: 6700; 00A404: 6700; "},
    {"WrongLengths",
     "00A4040008F04F5256414E45: 6700; "        // Lc beyond the data
     "00A4040008: 6700; "                      // Lc and no data
     "00A4040008F04F5256414E45010000: 6700; "  // an octet behind Le
     "00A40400000008F04F5256414E4501: 6700; "  // extended Lc
     "00B08500000100: 6700; "                  // extended Le
     "00A40400: 6700; "                        // no name
     "00A4000001 3F: 6700; "                   // half an identifier
     "00B0850001 00: 6700; "                   // data where none belongs
     "00D6850000: 6700; "},                    // no data where some belongs
    {"UnknownClassAndInstruction",
     "90A4040008F04F5256414E4501: 6E00; FFFFFFFF: 6E00; 0070000000: 6D00; 80A40400: 6D00; "
     "00A8000006830400000000: 6D00; "},
    {"SelectParameters",
     "00A4020002 3F00: 6A86; 00A4040108F04F5256414E4501: 6A86; "
     "00A4040007F04F5256414E45: 6A82; "  // a part of a name is not a name
     "00A4040009F04F5256414E450100: 6A82; "
     "00A4000002 0101: 6A82; "},  // a file of another directory
    {"SelectByIdentifier",
     "00A40000023F00: 6109; 00C0000009: 6F0782013883023F009000; "
     "00A4000000: 6F0782013883023F009000; "  // no identifier: the master file
     "00A40000022F00: 610C; 00C000000C: 6F0A82010483022F008801F09000; "
     "00B2010400: *9000; "  // the record of the current file
     "00A40000021001: 612B; 00A40000020105: 6110; "
     "00C0000000: 6F0E80020040820101830201058801289000; 00B0003F01: 009000; "},
    {"FailedSelectChangesNothing",
     "select: 612B; 00A40000020105: 6110; 00A40000029999: 6A82; 00A4040001AA: 6A82; "
     "00B0000001: 009000; "},
    {"SelectWithoutResponse", "00A4040C08F04F5256414E4501: 9000; 00C0000000: 6985; "},
    {"ResponseWaits",
     "select: 612B; 00C000002C: 6C2B; "          // too much: the right length, nothing lost
     "00C0000102: 6A86; 00C0000002: 6F296129; "  // a part
     "00C0000029: "
     "8408F04F5256414E4501A51D500A4F5256414E45205041598701015F2D02656E9F38069F1A025F2A029000; "
     "00C0000000: 6985; "},
    {"ResponseIsDropped",
     "select: 612B; 00840000: *9000; 00C000002B: 6985; select: 612B; 00: 6700; "
     "00C000002B: 6985; "},
    {"ReadRecord",
     "00B2010C00: 6A82; "  // no such file in the master file
     "00B2010400: 6986; select: 612B; 00B2010C22: 6C23; 00B2010C24: 6C23; 00B2010C23: *9000; "
     "00B2010C: *9000; 00B2020400: *9000; "  // the file is the current one now
     "00B2030C00: 6A83; 00B2000C00: 6A83; 00B2010D00: 6A86; 00B2012C00: 6981; "
     "00B2011C00: 6A82; "},
    {"Records",
     "00B201F400: 61164F08F04F5256414E4501500A4F5256414E45205041599000; select: 612B; "
     "00B2010C00: 7021570F9999000000000004D311220100000F5F200D53414D504C452F4F5256414E459000; "
     "00B2020C00: 701F5A0899990000000000045F24033112315F25032601015F280209995F3401019000; "
     "00B2011400: 70308C159F02069F03069F1A0295055F2A029A039C019F3704"
     "8D178A029F02069F03069F1A0295055F2A029A039C019F37049000; "
     "00B2021400: 70188E0C000000000000000041031F009F0702FF009F080200019000; "},
    {"ReadBinary", "select: 612B; 00B0000000: 6986; 00B0850041: 6C40; 00B0850040: " + kZeros +
                       "9000; 00B0850000: " + kZeros +
                       "9000; 00B0003E00: 00009000; 00B0003E03: 6C02; 00B0004000: 6B00; "
                       "00B07FFF00: 6B00; 00B0A50000: 6A86; 00B0830000: 6A82; 00B0810000: 6981; "},
    {"UpdateBinaryNeedsThePin",
     "select: 612B; 00D6850002 1122: 6982; wrong-pin: 63C2; 00D6850002 1122: 6982; "
     "verify: 9000; 00D6850002 1122: 9000; "
     "00D6003F02 3344: 6A84; "  // would run over the end: nothing written
     "00D6004001 55: 6B00; 00D6003F01 66: 9000; 00D6810001 00: 6981; 00B0850002: 11229000; "
     "00B0003F01: 669000; select: 612B; "  // selecting ends the verification
     "00D6850001 77: 6982; "},
    {"WrongPinAfterTheRightOne",
     "select: 612B; verify: 9000; wrong-pin: 63C2; 00D6850001 11: 6982; "},
    {"TriesRunOut",
     "00200080: 6985; "  // the PIN belongs to the application
     "select: 612B; 00200080: 63C3; wrong-pin: 63C2; 0020008000: 63C2; verify: 9000; "
     "0020008000: 9000; wrong-pin: 63C2; wrong-pin: 63C1; wrong-pin: 63C0; verify: 6983; "
     "0020008000: 6983; "},
    {"BadPinBlockCostsNoTry",
     "select: 612B; 0020008008141234FFFFFFFFFF: 6A80; "  // another format
     "0020008008251234FFFFFFFFFF: 6A80; "                // five digits announced, four there
     "002000800823123FFFFFFFFFFF: 6A80; "                // too few digits
     "00200080082F1234567890123456: 6A80; 0020008008241234FFFFFFFFF0: 6A80; "  // bad filler
     "0020008007241234FFFFFFFF: 6700; 0020000108241234FFFFFFFFFF: 6A86; 0020008000: 63C3; "},
    {"SerialNumber",
     "00B0820000: 5A0880999900000000429000; 00D6820001 00: 6982; select: 612B; "
     "00B0820000: 6981; "},  // there file 2 is another one
    {"ExternalAuthenticate",
     "challenge: *9000; authenticate: 6985; "  // the key belongs to the application
     "select: 612B; 0082000108 74108E00BFB86359: 6A86; 0082000007 74108E00BFB863: 6700; "
     "authenticate: 9000; "  // the challenge was still unused
     "authenticate: 6985; "},
    {"WrongCryptogramUsesTheChallengeUp",
     "select: 612B; authenticate: 6985; challenge: *9000; 0082000008 74108E00BFB86358: 6300; "
     "authenticate: 6985; challenge: *9000; authenticate: 6300; 0084000004: *9000; "
     "authenticate: 6985; "},  // four octets are not enough
    {"UpdateBinaryUnderMac",
     "select: 612B; 04D6860006 112270C3D59B: 6982; challenge: *9000; authenticate: 9000; "
     "00D6860002 1122: 6982; "                                     // without a MAC
     "04D6860004 70C3D59B: 6987; 04D6860006 112270C3D59B: 6985; "  // without a challenge
     "challenge: *9000; 04D6860006 112270C3D59B: 9000; 04D6860006 112270C3D59B: 6985; "
     "challenge: *9000; 04D686000C 112233445566778851F0586E: 9000; challenge: *9000; "
     "04D6860F06 5566F6CA9B47: 6A84; 00B0860000: 112233445566778800000000000000009000; "},
    {"WrongMacEndsTheAuthentication",
     "select: 612B; challenge: *9000; authenticate: 9000; challenge: *9000; "
     "04D6860106 112270C3D59B: 6988; "  // another offset than the MAC's
     "challenge: *9000; 04D6860106 33444BEE9998: 6982; 00B0860003: 0000009000; "},
    {"SelectEndsTheAuthentication",
     "select: 612B; challenge: *9000; authenticate: 9000; challenge: *9000; select: 612B; "
     "04D6860006 112270C3D59B: 6982; authenticate-2: 9000; "},
    {"IssuerAndCardholderWriteTheirOwnFiles",
     "select: 612B; verify: 9000; 00D6860001 00: 6982; challenge: *9000; authenticate: 9000; "
     "00D6850001 00: 9000; 00D6860001 00: 6982; "},
    {"IssuerNeedsThePinForNotes",
     "select: 612B; challenge: *9000; authenticate: 9000; challenge: *9000; "
     "04D6850006 5566A4DFD1DA: 6982; "},
    {"GetProcessingOptions",
     "80A8000006830409990999: 6985; select: 612B; 80A8000006830409990999: 6110; "
     "00C0000010: 770E82021000940808010201100102009000; 80A80000028300: 6700; "
     "80A8000006810409990999: 6A80; 80A8010006830409990999: 6A86; "},
};

INSTANTIATE_TEST_SUITE_P(Commands, VirtualCardSequence, testing::ValuesIn(kSequences),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(VirtualCard, EveryChallengeIsFreshAndEveryNewCardBeginsAnew) {
  VirtualCard card, another;
  const std::string first = Send(card, "0084000008");
  EXPECT_EQ(first.size(), 20u);
  EXPECT_EQ(first.substr(16), "9000");
  EXPECT_EQ(Send(another, "0084000000"), first);
  card.Reset();
  EXPECT_NE(Send(card, "0084000008"), first);
  EXPECT_EQ(Send(card, "0084000004").size(), 12u);
}

TEST(VirtualCard, ResetForgetsTheSessionAndKeepsWhatWasWritten) {
  VirtualCard card;
  ExpectAnswers(card,
                "select: 612B; wrong-pin: 63C2; verify: 9000; 00D6850001AB: 9000; wrong-pin: 63C2; "
                "challenge: *9000; select: 612B; ");
  card.Reset();
  ExpectAnswers(card,
                "00C000002B: 6985; 00B0850001: 6A82; select: 612B; authenticate: 6985; "
                "00B0850001: AB9000; 00D6850001CD: 6982; 0020008000: 63C2; ");
}

}  // namespace
}  // namespace simulator
