#include "host/command.h"

#include <gtest/gtest.h>

#include "host/failure.h"

namespace host {
namespace {

struct Row {
  std::string text;
  size_t dataBegin, dataEnd;
  bool lengthFits;
};

TEST(Command, IsSortedIntoHeaderLengthDataAndLe) {
  const std::string longData(2 * 256, 'A');
  const Row rows[] = {
      {"00A40000", 4, 4, true},
      {"00 a4 00 00 02 3f 00", 5, 7, true},
      {"00A40000023F0000", 5, 7, true},
      {"00A40000033F00", 4, 7, false},
      {"00A40000013F0000", 4, 8, false},
      {"00B00000000100", 7, 7, true},  // extended Le
      {"00D60000000100" + longData + "0000", 7, 263, true},
      {"00D60000000100" + longData + "00", 4, 264, false},
      {"00B000000001", 4, 6, false},
      {"00B000000000003F", 4, 8, false},
  };
  for (const Row& row : rows) {
    const CardCommand command = ReadCommand(row.text, Framing::kApdu);
    EXPECT_EQ(command.dataBegin, row.dataBegin) << row.text;
    EXPECT_EQ(command.dataEnd, row.dataEnd) << row.text;
    EXPECT_EQ(command.lengthFits, row.lengthFits) << row.text;
  }
}

TEST(Command, IsRefusedUnlessWholeOctetsOfAnApdu) {
  for (const char* text : {"", "  ", "00A4040", "00A404", "00A4040G", "00A4-0400", "00\t40400"}) {
    EXPECT_THROW(ReadCommand(text, Framing::kApdu), Failure) << text;
  }
  EXPECT_EQ(ReadCommand("3a", Framing::kRaw).digits, "3A");
  EXPECT_THROW(ReadCommand("3", Framing::kRaw), Failure);
}

TEST(Command, TellsWhetherItCarriesSecrets) {
  for (const char* secret :
       {"0020", "0420", "A020", "0024", "002C", "8024", "8424", "80D8", "84D8", "84D4"}) {
    EXPECT_TRUE(CarriesSecret(secret)) << secret;
  }
  for (const char* open : {"00A4", "00D8", "00D4", "80E2", "0082", "00B0", "0000"}) {
    EXPECT_FALSE(CarriesSecret(open)) << open;
  }
  EXPECT_FALSE(CarriesSecret(ReadCommand("0020008008", Framing::kRaw)));
}

}  // namespace
}  // namespace host
