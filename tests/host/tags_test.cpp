#include <gtest/gtest.h>

#include <iomanip>
#include <sstream>

#include "host/run_program.h"

namespace host_test {
namespace {

// The program finds the dictionary in the folder that it runs in.
class Tags : public testing::Test {
 protected:
  WorkingFolder folder;
};

TEST_F(Tags, AreEditedAndShown) {
  const std::string list = "'" ORVANE_SOURCE_FOLDER "/examples/tags.txt'";
  const struct {
    std::string arguments;
    int exitCode;
    std::string out;
    std::string err;
    std::string input;
  } steps[] = {
      {"tags list", 0, "", "", ""},
      {"tags find 5D00", 1, "",
       "orvane: neither the dictionary nor the program's own list has tag 5D00\n", ""},
      {"tags find 5a", 0,
       "5A      Application primary account number\n"
       "        from the program's own list: EMV book 3 and ISO/IEC 7816\n",
       "", ""},
      {"tags add 5a Number \"of the card\"", 0, "", "", ""},
      {"tags add 5A Other", 1, "",
       "orvane: the dictionary has tag 5A already; --replace puts this in its place\n", ""},
      {"tags add 9f36 Counter", 0, "", "", ""},
      {"tags list", 0, "5A      Number\n9F36    Counter\n", "", ""},
      {"tags add 5A Other --replace", 0, "", "", ""},
      {"tlv 5A02 12 34 70039F3600", 0,
       "5A  2  Other\n    12 34                                            .4\n70  3  Record "
       "template\n"
       "  9F36  0  Counter\n",
       "", ""},
      {"tlv 5A0131 57", 3, "5A  1  Other\n    31                                               1\n",
       "orvane: no BER-TLV: the element at byte 4: its length is cut, indefinite or has more than "
       "5 "
       "octets\n",
       ""},
      {"tlv 5A0131 5x", 3, "", "orvane: 'x' is no hexadecimal digit\n", ""},
      {"tlv", 3, "", "orvane: there is no data\n", " \n"},
      {"tags remove 9f36", 0, "", "", ""},
      {"tags import -", 0, "2 entries\n", "",
       "# a comment\n\n5a\tThird  |  its text \r\n  57 Fourth\n"},
      {"tags list", 0, "5A      Third\n57      Fourth\n", "", ""},
      {"tags find 5A", 0, "5A      Third\n        its text\n        from dictdata.bin\n", "", ""},
      {"tags import -", 3, "", "<stdin>:2: 5 is no tag: two hexadecimal digits an octet\n",
       "58 Fifth\n5 Sixth\n"},
      {"tags import -", 3, "", "<stdin>:1: the name has more than 199 bytes\n",
       "58 " + std::string(200, 'n') + "\n"},
      {"tags import -", 3, "", "<stdin>:2: tag 58 has no name\n", "5A Sixth\n58 | text\n"},
      {"tags list", 0, "5A      Third\n57      Fourth\n", "", ""},
      {"tags import missing.txt", 5, "",
       "orvane: can't open missing.txt: No such file or directory\n", ""},
      {"tags import " + list, 0, "49 entries\n", "", ""},
      {"tags find 6f", 0,
       "6F      File control information\n"
       "        Template in the answer to SELECT: parameters and management data\n"
       "        from dictdata.bin\n",
       "", ""},
  };
  for (const auto& step : steps) {
    const Outcome outcome = RunOrvane(step.arguments, step.input);
    EXPECT_EQ(outcome.exitCode, step.exitCode) << step.arguments;
    EXPECT_EQ(outcome.out, step.out) << step.arguments;
    EXPECT_EQ(outcome.err, step.err) << step.arguments;
  }
}

TEST_F(Tags, TakeALineEachHoweverDeepTheyAreNested) {
  constexpr size_t kLevels = 5000;
  std::string digits;
  for (size_t level = kLevels; level-- > 0;) {
    std::ostringstream length;
    length << std::hex << std::setfill('0') << std::setw(6) << digits.size() / 2;
    digits.insert(0, "7083" + length.str());
  }
  const std::string out = RunOrvane("tlv", digits).out;
  EXPECT_LT(out.size(), kLevels * 160);
  const std::string indent(2 * 64, ' ');
  EXPECT_TRUE(
      Shows(out, '\n' + indent + "70  24675  Record template\n" + indent + "65> 70  24670  "))
      << out;
  EXPECT_TRUE(out.ends_with('\n' + indent + "4999> 70  0  Record template\n"));
}

TEST_F(Tags, NameTheElementsOfAnswersOnRequest) {
  RunOrvane("tags add A5 Inner");
  const std::string select = "apdu --simulate 00A4040008F04F5256414E4501";
  const std::string plain = RunOrvane(select).out;
  const std::string tree = RunOrvane(select + " --tlv").out;
  EXPECT_FALSE(Shows(plain, "Inner")) << plain;
  EXPECT_TRUE(Shows(tree, "             A5  29  Inner\n               50  10  Application label\n"))
      << tree;
}

TEST_F(Tags, StayAsTheyAreWhereTheyAreNoWholeDictionary) {
  using namespace std::string_literals;
  const std::string record = "\x02"s + "5A" + "\x02" + "No" + '\0', wide = "\xFF\xFE\xFF";
  const std::string longer(15, '\xFF');  // a length in 64 bits
  const std::vector<std::string> damaged = {"\2\0\0\0"s + record, "\1\0\0\0"s + record + '\0',
                                            "\xFF\xFF\xFF\xFF", "\1\0\0\0"s + longer, "Notes"};
  const auto expectFault = [](const std::string& what) {
    for (const char* arguments :
         {"tags list", "tags find 57", "tags add 57 Name", "tags remove 57", "tags import -"}) {
      const Outcome outcome = RunOrvane(arguments, "57 Name\n");
      EXPECT_EQ(outcome.exitCode, 5) << arguments;
      EXPECT_EQ(outcome.out + outcome.err, "orvane: " + what + '\n') << arguments;
    }
  };
  std::filesystem::create_directory("dictdata.bin");
  expectFault("can't read dictdata.bin");
  std::filesystem::remove("dictdata.bin");
  for (const std::string& file : damaged) {
    WriteFile("dictdata.bin", file);
    expectFault("dictdata.bin is no whole dictionary: it holds less or more than it says");
    EXPECT_EQ(ReadFile("dictdata.bin"), file);
  }
  WriteFile("dictdata.bin", "\2\0\0\0"s + wide + "\xFF\2\0005\0A\0"s + wide +
                                "\3\xE4\0\x3D\xD8\0\xDE\0"s +
                                "\xFF\2\0005B\xFF\xFF\xFF\1\0\0\0N\0"s);
  EXPECT_EQ(RunOrvane("tags list").out, "5A      \xC3\xA4\xF0\x9F\x98\x80\n5B      N\n");
}

}  // namespace
}  // namespace host_test
