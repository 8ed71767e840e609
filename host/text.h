#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace host {

bool IsDigit(char c);          // 0 to 9
bool BeginsCharacter(char c);  // of UTF-8
bool IsHexDigit(char c);       // in either case

// True for one or more digits and nothing else.
bool IsDecimal(std::string_view text);

// Changes a to z and no other byte, as the language does.
std::string UpperCase(std::string_view text);

// The text without its blanks (0x20).
std::string WithoutBlanks(std::string_view text);

// The text as UTF-8 that steers no terminal: \xNN for each octet of what is no UTF-8, and of
// control characters and those that turn the writing direction.
std::string Printable(std::string_view text);

// Hexadecimal digits as octets with a blank between two: "00A4" as "00 A4".
std::string SpacedOctets(std::string_view digits);

// The octets as characters; a dot for each that is not printable ASCII.
std::string AsCharacters(std::string_view digits);

// Both for a row of 16 octets; the octets of a last one that is shorter are filled with blanks.
struct OctetRow {
  std::string octets, characters;
};
inline constexpr size_t kRowOctets = 16;
std::vector<OctetRow> OctetRows(std::string_view digits);

// The number that hexadecimal digits say; 0 for none.
unsigned HexValue(std::string_view digits);

// An octet as two digits.
std::string HexOctet(unsigned octet);

// What goes below a message about one character of a text: the text, the part around it if it is
// long, and a mark below the character. What is not printable ASCII is shown as ?.
std::string MarkedAt(std::string_view text, size_t at);

// The text with * for every character but blanks.
std::string Masked(std::string_view text);

// Where a character stands in a text, counted from 1 in characters of UTF-8.
size_t ColumnOf(std::string_view text, size_t at);

// 1, "byte" as "1 byte"; 2, "byte" as "2 bytes".
std::string Counted(size_t count, const std::string& noun);

}  // namespace host
