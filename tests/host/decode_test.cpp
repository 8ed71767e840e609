#include <gtest/gtest.h>

#include <sstream>

#include "host/run_program.h"

namespace host_test {
namespace {

// What standard output shows stands between bars, in its order; behind the last one the message.
TEST(Decode, TellsOfEachField) {
  const WorkingFolder folder;
  const char* const rows[][3] = {
      // An answer to reset with groups for T=1 and T=15; then its TCK wrong, more, less, too long.
      {"atr", "3BDA18FF81B1FE751F030031F573C001600090001C",
       "TA1           18              Fi 372, Di 12, up to 5 MHz; 31 clock|TC1|12 etu in T=0|"
       "TD2           B1              protocol T=1; behind it TA3, TB3, TD3|TA3|IFSC 254|"
       "TB3|block waiting time integer 7, character waiting time integer 5|TA4|classes A and B|"
       "T1-TK|  43          F5 |  bit 1     card without MF|GET DATA|  47          C0 01 60|"
       "extended Lc|1 logical channel|  LCS         00|  SW          90 00           success|"
       "TCK           1C              check character, right|"},
      {"atr", "3bda18ff81b1fe751f030031f573c001600090001d", "|TCK is wrong: it should be 1C"},
      {"atr", "3BDA18FF81B1FE751F030031F573C001600090001C00", "|1 byte too many at its end"},
      {"atr", "3BDA18FF81B1FE751F030031F573C00160009000", "|it is cut before TCK"},
      {"atr", "3B1A9511",
       "TA1|Fi 512, Di 16|32 clock|"
       "|it is cut before its historical bytes end: 1 of 10 are there"},
      {"atr", "3B80", "|it is cut before TD1"},
      {"atr", "3F0081", "inverse|0 historical|1 byte too many at its end"},
      {"atr", "3B108F", "TA1  8F              Fi reserved, Di reserved|"},
      {"atr", "03", "|its first byte, TS, is 03: it should be 3B or 3F"},
      {"atr", "3B658000",
       "T0   65|TB1  80|TC1  00|it is cut before its historical bytes end: 0 of 5 "
       "are there"},
      {"atr", "3B8080808080808080808080808080808080808080808080808080808080808080808000",
       "TD31|it has more than 32 bytes behind TS"},
      {"dol", "9F1A02 5f2a 02",
       "9F1A  9F 1A 02        2 bytes  Terminal country code|sum|4 bytes|"},
      {"dol", "9F3704 9F", "9F37|the entry at byte 4 is cut"},
      {"afl", "08010201 10010200", "SFI 1, records 1 to 2; the first 1 for|SFI 2|"},
      {"afl", "08010201 10", "SFI 1|its last entry is cut: an entry has 4 bytes"},
      {"afl", "08030201", "|entry 1: its last record is below its first"},
      {"afl", "0A010101", "|entry 1: its first byte is no short file identifier"},
      {"aip", "5C01",
       "byte 1   5C|bit 7  SDA|bit 5  card|bit 4  term|bit 3  iss|byte 2   01|"
       "bit 1  reserved|"},
      {"aip", "5C", "|it has 1 byte, and should have 2"},
      {"tvr", "8000048010",
       "bit 8  offline data|byte 3|bit 3  online PIN|byte 4|floor limit|"
       "bit 5  script processing failed after|"},
      {"cvm", "000000640000000042011F06",
       "X       00 00 00 64     amount 100|enciphered PIN, verified "
       "online, if unattended cash; else the next rule|no verification required, if in the "
       "application's currency and under X; else fail|"},
      {"cvm", "00000064", "|it is cut: the amounts X and Y alone have 8 bytes"},
      {"sw", "63C2", "SW  63 C2           warning: 2 tries left|"},
      {"sw", "6083", "|6083 is no status word: one begins with 6, but not 60, or with 9"},
      {"apdu", "5CA40400 08 F04F5256414E4501 00",
       "no secure messaging, logical channel 16, not the last of its chain|"},
      {"apdu", "00A4040009 F04F", "rest|Lc does not fit the data"},
      {"apdu", "00A404", "|it is cut: its header alone has 4 bytes"},
      {"tlv", "770A82025C00940408010100", "  82  2  Application inter|bit 7  SDA|94  4|SFI 1|"},
      {"tlv", "6F0482025C00", "  82  2|"},
      {"sw", "900", "|the data has an odd number of digits (3)"},
      {"sw", "90o0", "|'o' is no hexadecimal digit"},
  };
  for (const auto& [kind, data, shown] : rows) {
    SCOPED_TRACE(std::string(kind) + " " + data);
    const Outcome outcome = RunOrvane(std::string("decode ") + kind, data);
    std::istringstream parts(shown);
    const std::string all = shown;
    const std::string message = all.substr(all.rfind('|') + 1);
    EXPECT_EQ(outcome.exitCode, message.empty() ? 0 : 3);
    EXPECT_TRUE(Shows(outcome.err, message)) << outcome.err;
    size_t at = 0;
    for (std::string part; std::getline(parts, part, '|') && part != message;) {
      at = outcome.out.find(part, at);
      ASSERT_NE(at, outcome.out.npos) << part << " is missing in:\n" << outcome.out;
    }
  }
}

}  // namespace
}  // namespace host_test
