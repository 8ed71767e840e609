#include "host/expectation.h"

#include <gtest/gtest.h>

#include "host/failure.h"

namespace {

using host::ReadExpectation;

std::string Fault(const std::string& text) {
  try {
    ReadExpectation(text);
  } catch (const host::Failure& failure) {
    EXPECT_EQ(failure.Code(), host::kScriptFault);
    return failure.what();
  }
  return "";
}

std::string Parting(const std::string& expectation, const host::Response& response) {
  const std::map<std::string, std::string> values = {
      {"%AID", "f0 4f52"}, {"%WORD", "9000"}, {"%ODD", "123"}};
  try {
    return PartingFrom(ReadExpectation(expectation), response, values);
  } catch (const host::Failure& failure) {
    return failure.what();
  }
}

TEST(Expectation, IsFoundInItsCommentAlone) {
  for (const char* line : {"; expect 9000", ";expect 9000", " ;\tEXPECT 9000", "; expect: 9000"}) {
    ASSERT_TRUE(host::FindExpectation(line)) << line;
  }
  for (const char* line : {"", ";", "; expects 9000", "; expected 9000", "expect 9000", "/ expect",
                           "00A4 ; expect 9000"}) {
    EXPECT_FALSE(host::FindExpectation(line)) << line;
  }
}

TEST(Expectation, IsRefusedWithThePlaceMarked) {
  const std::string word = "an expectation ends in a status word: four digits or X, as in 61XX";
  const std::string octet = "an octet has two digits: one is missing before this place";
  const std::pair<std::string, std::string> rows[] = {
      {"", "an expectation says here what should come\n  \n  ^"},
      {"9000 or", "an expectation says here what should come\n  9000 or\n         ^"},
      {"900", octet + "\n  900\n     ^"},
      {"6F 8 .. 9000", octet + "\n  6F 8 .. 9000\n       ^"},
      {"6F ..", word + "\n  6F ..\n       ^"},
      {"6F", word + "\n  6F\n    ^"},
      {"6F .. 00 or 9000", word + "\n  6F .. 00 or 9000\n           ^"},
      {"9O00",
       "an expectation has hexadecimal digits, X, .., variables and \"or\" alone\n"
       "  9O00\n   ^"},
      {"% 9000", "a variable has no name\n  % 9000\n  ^"},
  };
  for (const auto& [text, fault] : rows) EXPECT_EQ(Fault(text), fault);
}

TEST(Expectation, IsMetOrShowsWhereTheResponseParts) {
  const struct {
    const char *expectation, *data, *word, *parting;
  } rows[] = {
      {"9000", "6F02", "9000", ""},
      {"61xx Or 9000", "", "9000", ""},
      {"61XX or %WORD", "", "6110", ""},
      {"%WORD", "01", "9000", ""},
      {"6F XX 84 08 %AID .. 9000", "6F298408F04F52", "9000", ""},
      {".. 84 .. %AID .. XXXX", "848484F04FF04F5200", "6282", ""},
      {".. 8401 .. 0184 9000", "84018401840184", "9000", ""},
      {"9000", "", "6A82",
       "\n  expected  90 00\n  came      6A 82   file or application not found\n            ^^ ^^"},
      {"6F .. 9000", "", "6A82",
       "\n  expected  6F .. 90 00\n"
       "  came            6A 82   file or application not found\n                  ^^ ^^"},
      {"6F XX 85 .. 9000 or 61XX", "6F298408", "9000",
       "\n  expected  6F XX 85 .. 90 00\n  came      6F 29 84 08 90 00\n                  ^^"},
      {"6F .. 84 08 A1 .. 9000", "6F00840884088408F0", "9000",
       "\n  expected  6F .. 84 08 A1 .. 90 00\n  came      6F 00 84 08 84 08 84 08 F0 90 00\n"
       "                        ^^"},
      {"01 02 03 9000", "0102", "9000",
       "\n  expected  01 02 03 90 00\n  came      01 02 90 00   success\n                  ^^ ^^"},
      {".. 0A 9000", "000102030405060708090A0B", "9000",
       "\n  expected                                 .. 0A 90 00\n"
       "  came      ... 01 02 03 04 05 06 07 08 09 0A 0B 90 00\n"
       "                                              ^^"},
      {"%ODD 9000", "", "9000",
       "the value of %ODD is not whole octets in hexadecimal: nothing can be expected of it"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Parting(row.expectation, {row.data, row.word}), row.parting) << row.expectation;
  }
  EXPECT_EQ(Parting("0102", {"0102", ""}), "");    // of a reader without status words
  EXPECT_NE(Parting("9000", {"", "", true}), "");  // the status word is not known
}

}  // namespace
