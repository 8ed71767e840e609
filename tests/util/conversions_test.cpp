#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "orvane.h"

namespace {

constexpr char kUntouched = '\x55';

// Room that shows what was written: behind the last written byte it is untouched.
struct Area {
  std::string bytes = std::string(64, kUntouched);
  char* Text() { return bytes.data(); }
  unsigned char* Octets() { return reinterpret_cast<unsigned char*>(bytes.data()); }
  std::string Written() const { return bytes.substr(0, bytes.find_last_not_of(kUntouched) + 1); }
};

std::string operator""_octets(const char* text, std::size_t size) { return {text, size}; }

int Length(const std::string& text) { return static_cast<int>(text.size()); }

TEST(Conversions, EscapeAndUnescape) {
  // The text in escapes, the text, and whether URLEncode gives the first for the second.
  const std::tuple<std::string, std::string, bool> rows[] = {
      {"", "", true},
      {"a%20b", "a b", true},
      {"a%2Eb%2D%5F%7E", "a.b-_~", true},
      {"09AZaz", "09AZaz", true},
      {"%80%FF%01%25", "\x80\xFF\x01%", true},
      {"a+b%21", "a b!", false},
      {"%4a", "\x6A", false},
      {"%a4", "\xA4", false},
      {"%00x", "\0x"_octets, false},
      {"%zz", "\x73", false},
      {"%", "%", false},
      {"x%4", "x%4", false},
      {"%%41", "\xE4\x31", false}};
  for (const auto& [escaped, text, isGiven] : rows) {
    Area out, back;
    if (isGiven) URLEncode(text.c_str(), out.Text());
    EXPECT_EQ(out.Written(), isGiven ? escaped : "");
    URLDecode(escaped.c_str(), back.Text());
    EXPECT_EQ(back.Written(), text);
    std::string area = escaped;  // in one area
    URLDecode(area.c_str(), area.data());
    EXPECT_TRUE(area.starts_with(text));
  }
}

TEST(Conversions, BetweenOctetsAndHexadecimalText) {
  const std::tuple<const char*, int, std::string> rows[] = {
      {"", 1, ""},
      {"1 2 3", 1, "\x12\x30"_octets},
      {"1G", 0, "\x10"_octets},
      {"G", 0, ""},
      {" aB  Cd ", 1, "\xAB\xCD"_octets},
      {"00 A4 04 0", 1, "\x00\xA4\x04\x00"_octets},
      {"00 A 4 04\t00", 0, "\x00\xA4\x04"_octets},
      {"12:34", 0, "\x12"_octets},
      {"1/", 0, "\x10"_octets},
      {"@1", 0, ""},
      {"12`", 0, "\x12"_octets},
      {"12\xB1", 0, "\x12"_octets}};
  for (const auto& [text, result, expected] : rows) {
    Area octets, same;
    EXPECT_EQ(AsciiToHex(text, octets.Octets(), Length(text)), result) << text;
    EXPECT_EQ(octets.Written(), expected) << text;
    // With a length beyond the text's end nothing behind its terminator is read.
    const std::vector<char> exact(text, text + std::strlen(text) + 1);
    for (const int length : {40, 400})
      EXPECT_EQ(AsciiToHex(exact.data(), same.Octets(), length), 0);
    EXPECT_EQ(same.Written(), expected) << text;
  }
  Area octets;
  for (const char wrong : {'/', ':', '@', 'G', '`', 'g'}) {  // the neighbours of digits
    const std::string text = std::string(63, '1') + wrong;
    EXPECT_EQ(AsciiToHex(text.c_str(), octets.Octets(), Length(text)), 0) << wrong;
  }
  octets = {};
  EXPECT_EQ(AsciiToHex("12", octets.Octets(), -1), 1);
  HexToAscii(octets.Octets(), octets.Text(), -1);
  HexToAscii(octets.Octets(), octets.Text(), 0);
  EXPECT_EQ(octets.Written(), "");
}

TEST(Conversions, OfEveryOctetAtEveryLengthGoBothWays) {
  std::mt19937 random(51);
  for (std::size_t size = 1; size <= 300; ++size) {
    std::vector<unsigned char> octets(size);
    for (auto& octet : octets) octet = static_cast<unsigned char>(random());
    std::string text(2 * size, ' ');
    HexToAscii(octets.data(), text.data(), static_cast<int>(size));
    // Blanks may stand anywhere.
    for (int blanks = static_cast<int>(random() % 4); blanks > 0; --blanks) {
      text.insert(random() % text.size(), random() % 3, ' ');
    }
    std::vector<unsigned char> decoded(size);
    ASSERT_EQ(AsciiToHex(text.data(), decoded.data(), Length(text)), 1) << text;
    ASSERT_EQ(decoded, octets) << text;
    // In one area, as a host may do.
    ASSERT_EQ(AsciiToHex(text.data(), reinterpret_cast<unsigned char*>(text.data()), Length(text)),
              1);
    ASSERT_EQ(std::memcmp(text.data(), octets.data(), size), 0);
  }
}

TEST(Conversions, ToEscapesOfASourceText) {
  const std::tuple<const char*, int, const char*> rows[] = {
      {"ABCD", 1, "\\xAB\\xCD"}, {"ABC", 0, "\\xAB\\xC"}, {"", 0, ""}, {"? ", 1, "\\x? "}};
  for (const auto& [text, result, expected] : rows) {
    Area out;
    EXPECT_EQ(AsciiToHexStr(text, out.Text(), Length(text)), result);
    EXPECT_EQ(out.Written(), expected);
  }
}

TEST(Conversions, TellTheFirstCharacterThatIsNoDigit) {
  const std::tuple<const char*, int, int> rows[] = {{"12a4", 0, 3},   {"12a4", 1, 0}, {"09", 0, 0},
                                                    {"afAF09", 2, 0}, {"afg", -1, 3}, {" 1", 1, 1},
                                                    {"", 0, 0},       {"1:", 0, 2},   {"1/", 1, 2}};
  for (const auto& [text, allowHex, expected] : rows)
    EXPECT_EQ(CheckAsciiNum(text, allowHex, Length(text)), expected) << text;
  EXPECT_EQ(CheckAsciiNum("x", 0, -1), 0);
}

TEST(Conversions, FromHexadecimalTextToIntegers) {
  constexpr int kNotWritten = 0x5A5A5A5A;
  const std::tuple<const char*, int, int> rows[] = {{"0012", 1, 0x12},
                                                    {"1", 0, kNotWritten},
                                                    {"", 0, kNotWritten},
                                                    {"ABC", 1, 0xAB},
                                                    {"fFfFfFfF", 1, -1},
                                                    {"123456789", 1, 0x12345678},
                                                    {"1234567890", 0, kNotWritten},
                                                    {"12 34 56", 1, 0x12345600},
                                                    {"  ", 1, 0},
                                                    {"12345678G", 0, kNotWritten}};
  for (const auto& [text, result, expected] : rows) {
    int value = kNotWritten;
    EXPECT_EQ(HexStrToInt(text, &value, Length(text)), result) << text;
    EXPECT_EQ(value, expected) << text;
  }
}

TEST(Conversions, FromIntegersToOctetsAndText) {
  // With all four octets, of which those before the number are untouched.
  const std::tuple<int, std::string, std::string> rows[] = {
      {0, "UUU\0"_octets, "00"},
      {0xFF, "UUU\xFF"_octets, "FF"},
      {0x100, "UU\x01\x00"_octets, "0100"},
      {0x12345, "U\x01\x23\x45"_octets, "012345"},
      {0x1000000, "\x01\x00\x00\x00"_octets, "01000000"},
      {-1, "\xFF\xFF\xFF\xFF"_octets, "FFFFFFFF"}};
  for (const auto& [value, expected, digits] : rows) {
    Area octets, text;
    int count = 0, length = 0, back = -7;
    EXPECT_EQ(IntToHex(octets.Octets(), value, &count), 1);
    EXPECT_EQ(octets.bytes.substr(0, 4), expected);
    EXPECT_EQ(HexToInt(octets.Octets() + 4 - count, &back, count), 1);
    EXPECT_EQ(IntToHexStr(text.Text(), value, &length), 1);
    EXPECT_EQ(text.Written(), digits);
    EXPECT_EQ(length, Length(digits));
    for (const int none : {-1, 0, 5}) EXPECT_EQ(HexToInt(octets.Octets(), &back, none), 0);
    EXPECT_EQ(back, value);
  }
}

TEST(Conversions, BetweenCharacterSetsLeaveAsciiAsItIs) {
  std::string ascii;
  for (char c = 1; c < 127; ++c) ascii += c;
  for (const auto convert : {ASCII2UTF_8, UTF_82ASCII}) {
    std::string out(ascii.size() + 1, '\x7F');
    convert(ascii.c_str(), out.data());
    EXPECT_EQ(out, ascii + '\x7F');
    convert(out.c_str(), out.data());  // in one area
    convert("", out.data());
    EXPECT_EQ(out, ascii + '\x7F');
  }
}

TEST(Timestamps, AreOfUtc) {
  using std::chrono::system_clock;
  const auto expected = [] {
    return static_cast<uint32_t>(system_clock::to_time_t(system_clock::now())) - 28800;
  };
  const uint32_t before = expected();
  uint32_t stamp = 0;
  GetTimeStampInt(&stamp);
  EXPECT_LE(before, stamp);
  EXPECT_LE(stamp, expected());
}

}  // namespace
