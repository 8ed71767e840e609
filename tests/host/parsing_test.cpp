// What the program takes apart: statements, commands, addresses of readers, BER-TLV.
#include <gtest/gtest.h>

#include "host/command.h"
#include "host/failure.h"
#include "host/reader_address.h"
#include "host/statement.h"
#include "host/tlv.h"

namespace host {
namespace {

TEST(Statement, IsRefusedWhereTheLibraryWouldPassOverSomething) {
  const std::pair<std::string_view, std::string_view> rows[] = {
      {"( 00", "begin"},
      {"# one, two", "a comment begins with ;"},
      {"%A = 12 ; one, two",
       "a comment needs a line of its own\n  %A = 12 ; one, two\n          ^"},
      {"00A4 %A # text", "line of its own"},
      {"@OPENREADER(\"Name (1)\")", "there are no quotes"},
      {"00A4,0400", "\",\" has no meaning"},
      {"00A4 (0400)", "\"(\" has no meaning"},
      {"%A B = 1", "\"=\" has no meaning"},
      {"%A =", "nothing stands behind"},
      {"00A4 @nosuch(1)", "unknown command @nosuch"},
      {"@strlen", "@strlen has no \"(\""},
      {"00A4 @strlen %A", "@strlen has no \"(\""},
      {"@strlen(AB", "not closed"},
      {"@strlen(AB,CD)", "takes 1 argument"},
      {"@strmid(AB,1)", "takes 3 arguments"},
      {"@strmid(AB,,1)", "takes 3 arguments"},
      {"@reset(1)", "takes no arguments"},
      {"@compare(%SW,9000,1) @compare(%RESP,00,1)",
       "only a comment can stand behind @compare(...)"},
      {"@RESET() 00A4040000 ; text", "only a comment can stand behind @RESET(...)"},
      {"@stop()%A", "only a comment"},
      {"00A4 @reset()", "must stand alone"},
      {"%A = @compare(1,1,1)", "must stand alone"},
      {{"00A4\0000400", 9}, "zero byte"},
  };
  for (const auto& [line, message] : rows) {
    try {
      ReadStatement(line);
      ADD_FAILURE() << line << " was taken";
    } catch (const Failure& failure) {
      EXPECT_NE(std::string_view(failure.what()).find(message), std::string_view::npos)
          << line << ": " << failure.what();
    }
  }
  // Forms that a careful reader might refuse.
  for (const char* line :
       {"  // (text", "; @nosuch", "$ any (text", "@reset()/text", "%A ; %B", "A B C=D", "A B = 1",
        "%A = @StrMid( %B 00 , 1 2,2)", "@compare(%A,B,1) ; what (stands here, is not read"}) {
    EXPECT_NO_THROW(ReadStatement(line)) << line;
  }
  const auto nested = [](size_t depth) {
    std::string text;
    for (size_t level = 0; level < depth; ++level) text += "@strlen(";
    return text + "AB" + std::string(depth, ')');
  };
  EXPECT_EQ(ReadStatement(nested(128)).invocations.size(), 128u);
  EXPECT_THROW(ReadStatement(nested(129)), Failure);
}

struct CommandRow {
  std::string text;
  size_t dataBegin, dataEnd;
  bool lengthFits;
};

TEST(Command, IsSortedIntoHeaderLengthDataAndLe) {
  const std::string longData(2 * 256, 'A');
  const CommandRow rows[] = {
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
  for (const auto& row : rows) {
    const CardCommand command = ReadCommand(row.text, Framing::kApdu);
    EXPECT_EQ(command.dataBegin, row.dataBegin) << row.text;
    EXPECT_EQ(command.dataEnd, row.dataEnd) << row.text;
    EXPECT_EQ(command.lengthFits, row.lengthFits) << row.text;
  }
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

TEST(ReaderAddress, IsKindAndPortOrName) {
  for (const char* text : {"", "3:", "9:1", "0:1", "99:X", "99999999999:1", "3:99999999999"}) {
    EXPECT_THROW(ReadReaderAddress(text, 3), Failure) << text;
  }
  for (const char* name : {":1", "-1", "BSIT:2"}) {
    EXPECT_EQ(ReadReaderAddress(name, 3).name, name);
    EXPECT_EQ(ReadReaderAddress(name, 3).kind, 3);
  }
}

TEST(ReaderName, IsMatchedExactlyThenWithoutBlanksThenNotAtAll) {
  const std::vector<std::string> listed = {"Acme Two 0", "Ac meTwo0", "AcmeTwo1", "Acme Two 1",
                                           "Example 3x21 0"};
  EXPECT_EQ(MatchReaderName("Acme Two 0", listed), "Acme Two 0");
  EXPECT_EQ(MatchReaderName("Example3x210", listed), "Example 3x21 0");
  EXPECT_EQ(MatchReaderName("AcmeTwo0", listed), "AcmeTwo0");  // two could be meant
  EXPECT_EQ(MatchReaderName("AcmeTwo9", listed), "AcmeTwo9");
}

// An element as level, tag, = or (, and value, with a blank behind it.
void Show(std::string& text, const TlvElement& element) {
  text += std::to_string(element.level) + ":" + std::string(element.tag) +
          (element.constructed ? "(" : "=") + std::string(element.value) + " ";
}

TEST(Tlv, IsReadAsATree) {
  const struct {
    const char* digits;
    const char* elements;
    const char* fault;  // how it begins; empty: none
  } rows[] = {
      {"", "", ""},
      {"5a00570134", "0:5a= 0:57=34 ", ""},
      {"70055A01125700", "0:70(5A01125700 1:5A=12 1:57= ", ""},
      {"7007A5055A03112233", "0:70(A5055A03112233 1:A5(5A03112233 2:5A=112233 ", ""},
      {"70027000", "0:70(7000 1:70( ", ""},
      {"A503570112560134", "0:A5(570112 1:57=12 0:56=34 ", ""},
      {"9F36020001", "0:9F36=0001 ", ""},
      {"DF8181020101", "0:DF818102=01 ", ""},
      {"00005A0112000057000000", "0:5A=12 0:57= ", ""},
      {"5A840000000112", "0:5A=12 ", ""},
      {"5A01125A0212", "0:5A=12 ",
       "the element at byte 4: its value of 2 bytes does not fit the 1"},
      {"70025A01125A00", "0:70(5A01 ", "the element at byte 3: its value"},
      {"5A", "", "the element at byte 1: its length"},
      {"5A8012", "", "the element at byte 1: its length"},
      {"5A8200", "", "the element at byte 1: its length"},
      {"5A850000000001125A", "", "the element at byte 1: its length"},
      {"5A84FFFFFFFF", "", "the element at byte 1: its value of 4294967295 bytes"},
      {"9F", "", "the element at byte 1: its tag"},
      {"70019F3600", "0:70(9F ", "the element at byte 3: its tag"},
      {"9F8181810100", "", "the element at byte 1: its tag"},
  };
  for (const auto& row : rows) {
    std::string elements;
    const std::string fault =
        ReadTlv(row.digits, [&](const TlvElement& element) { Show(elements, element); });
    EXPECT_EQ(elements, row.elements) << row.digits;
    EXPECT_TRUE(fault.starts_with(row.fault)) << row.digits << ": " << fault;
    EXPECT_EQ(fault.empty(), std::string(row.fault).empty()) << row.digits;
  }
}

}  // namespace
}  // namespace host
