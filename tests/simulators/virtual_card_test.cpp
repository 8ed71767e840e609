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

// Each row is a new card's; "command: response; ". A * stands for any response data, R resets.
TEST(VirtualCard, AnswersEveryStep) {
  const char* const rows[] = {
      // lengths, classes, instructions
      ": 6700; 00A404: 6700; 00A4040008F04F5256414E45: 6700; 00A4040008F04F5256414E45010000: 6700; "
      "00A40400000008F04F5256414E4501: 6700; 00B0850001 00: 6700; 00D6850000: 6700; "
      "90A40400: 6E00; 0070000000: 6D00; 00A4020002 3F00: 6A86; ",
      // selection; one that fails changes nothing
      "00A4040007F04F5256414E45: 6A82; 00A4000002 0101: 6A82; 00A40000022F00: 610C; "
      "00C000000C: 6F0A82010483022F008801F09000; 00A40000021001: 612B; 00A40000020105: 6110; "
      "00A40000029999: 6A82; 00B0000001: 009000; 00A4040C08F04F5256414E4501: 9000; ",
      // a response that waits: in parts, with a wrong length, dropped by the next command
      "select: 612B; 00C000002C: 6C2B; 00C0000002: 6F296129; 00C0000029: *9000; 00C0000000: 6985; "
      "select: 612B; 00840000: *9000; 00C000002B: 6985; ",
      // files
      "00B2010400: 6986; select: 612B; 00B2010C22: 6C23; 00B2010C23: *9000; 00B2030C00: 6A83; "
      "00B2012C00: 6981; 00B0850041: 6C40; "
      "00B0003E03: 6C02; 00B0004000: 6B00; 00B0810000: 6981; ",
      // the PIN
      "00200080: 6985; select: 612B; 00D6850002 1122: 6982; wrong-pin: 63C2; verify: 9000; "
      "00D6850002 1122: 9000; 00D6003F02 3344: 6A84; 00B0850002: 11229000; R: ; 00B0850001: 6A82; "
      "select: 612B; 00B0850002: 11229000; 00D6850001 77: 6982; 0020008008141234FFFFFFFFFF: 6A80; "
      "00200080082F1234567890123456: 6A80; wrong-pin: 63C2; wrong-pin: 63C1; wrong-pin: 63C0; "
      "verify: 6983; ",
      // the issuer's key: a challenge serves once, a MAC needs one, the PIN's file is not the
      // issuer's
      "challenge: *9000; authenticate: 6985; select: 612B; authenticate: 9000; "
      "authenticate: 6985; 00D6860002 1122: 6982; 04D6860006 112270C3D59B: 6985; "
      "challenge: *9000; 04D6860006 112270C3D59B: 9000; 00B0860003: 1122009000; "
      "challenge: *9000; 04D6860106 112270C3D59B: 6988; 04D6860106 112270C3D59B: 6982; ",
      "select: 612B; challenge: *9000; 0082000008 74108E00BFB86358: 6300; authenticate: 6985; "
      "challenge: *9000; authenticate-2: 9000; select: 612B; 04D6860006 112270C3D59B: 6982; ",
      // GET PROCESSING OPTIONS
      "80A8000006830409990999: 6985; select: 612B; 80A8000006830409990999: 6110; "
      "00C0000010: 770E82021000940808010201100102009000; 80A8000006810409990999: 6A80; ",
  };
  for (const char* row : rows) {
    VirtualCard card;
    std::istringstream rest(row);
    for (std::string command, expected;
         std::getline(rest, command, ':') && std::getline(rest >> std::ws, expected, ';');
         rest >> std::ws) {
      if (command == "R") {
        card.Reset();
        continue;
      }
      std::string response = Send(card, command);
      if (expected[0] == '*' && response.size() > 4) response.replace(0, response.size() - 4, "*");
      EXPECT_EQ(response, expected) << command << " in " << row;
    }
  }
}

}  // namespace
}  // namespace simulator
