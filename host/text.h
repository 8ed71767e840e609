#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace host {

bool IsDigit(char c);          // 0 to 9
bool BeginsCharacter(char c);  // in UTF-8
bool IsHexDigit(char c);       // in either case

// True for one or more digits and nothing else.
bool IsDecimal(std::string_view text);

// Changes a to z and no other byte, as the language does.
std::string UpperCase(std::string_view text);

// The text without its blanks (0x20).
std::string WithoutBlanks(std::string_view text);

// The text as UTF-8 that cannot control a terminal. Each octet of malformed UTF-8, of control
// characters and of characters that change the writing direction becomes \xNN.
std::string Printable(std::string_view text);

// Hexadecimal digits as octets with a blank between two: "00A4" as "00 A4".
std::string SpacedOctets(std::string_view digits);

// The octets as characters; a dot for each that is not printable ASCII.
std::string AsCharacters(std::string_view digits);

// Both forms for a row of 16 octets. A shorter last row is filled with blanks.
struct OctetRow {
  std::string octets, characters;
};
inline constexpr size_t kRowOctets = 16;
std::vector<OctetRow> OctetRows(std::string_view digits);

// The value of hexadecimal digits; 0 for none.
unsigned HexValue(std::string_view digits);

// An octet as two digits.
std::string HexOctet(unsigned octet);

// Lines to follow a message about one character of a text: the text (or the part around the place,
// if it is long), and a mark below the character. What is not printable ASCII becomes ?.
std::string MarkedAt(std::string_view text, size_t at);

// The text with * for each character that is no blank.
std::string Masked(std::string_view text);

// The column of a character in a text, counted from 1 in characters of UTF-8.
size_t ColumnOf(std::string_view text, size_t at);

// 1, "byte" as "1 byte"; 2, "byte" as "2 bytes".
std::string Counted(size_t count, const std::string& noun);

}  // namespace host
