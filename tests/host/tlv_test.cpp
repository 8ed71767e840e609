#include "host/tlv.h"

#include <gtest/gtest.h>

#include <string>

namespace host_test {
namespace {

// An element as level, tag, = or (, and value, with a blank behind it.
void Show(std::string& text, const host::TlvElement& element) {
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
      {"5A011", "", "an odd number"},
  };
  for (const auto& row : rows) {
    std::string elements;
    const std::string fault = host::ReadTlv(
        row.digits, [&](const host::TlvElement& element) { Show(elements, element); });
    EXPECT_EQ(elements, row.elements) << row.digits;
    EXPECT_TRUE(fault.starts_with(row.fault)) << row.digits << ": " << fault;
    EXPECT_EQ(fault.empty(), std::string(row.fault).empty()) << row.digits;
  }
}

}  // namespace
}  // namespace host_test
