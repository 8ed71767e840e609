#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

// What an argument of a built-in command is.
enum class ArgumentKind {
  kText,
  kReader,  // a reader's name or number, without quotes
  kHex,     // hexadecimal text of whole octets
  kKey,     // the same, with 8, 16 or 24 octets; secret
  kDigits,  // a hexadecimal number of one or more digits
  kNumber,  // a decimal number
  kFlag,    // the one character 0 or 1
};

struct Parameter {
  std::string_view name;
  ArgumentKind kind = ArgumentKind::kText;
  // For kHex: in octets.
  size_t least = 0;
  size_t most = SIZE_MAX;
  bool skipsBlanks = false;   // the library removes blanks from the value
  bool serialNumber = false;  // identifies a derived key; not secret
};

// The text of a command to the card.
inline constexpr Parameter kCommandText = {
    .name = "the command", .kind = ArgumentKind::kHex, .skipsBlanks = true};

// One command of the language: its arguments, and what it does to secrets in them.
struct Builtin {
  std::string_view keyword;  // in upper case
  size_t count = 0;          // the number of arguments
  std::array<Parameter, 4> parameters = {};
  bool forHost = false;     // asks the host to act, and ends the statement's evaluation
  bool hides = false;       // its value reveals nothing of its arguments
  bool usesCrypto = false;  // runs in the crypto module
};

// The command of this keyword in either case; null if there is none.
const Builtin* FindBuiltin(std::string_view keyword);

// The first character that can never occur in such an argument; none if all can.
std::optional<size_t> FindWrongCharacter(const Parameter& parameter, std::string_view text);

// What is wrong with a whole value, as in "has 17 octets; the most is 16"; empty if nothing is.
// Quotes nothing of the value. The value's characters have been checked.
std::string FaultIn(const Parameter& parameter, std::string_view value);

// What is wrong with values that are each right by themselves; empty if nothing is.
std::string FaultAmong(const Builtin& builtin, const std::vector<std::string>& values);

// Why the library's call probably fails although each value is right.
std::string LikelyCause(const Builtin& builtin, const std::vector<std::string>& values);

// What the writer of this wrong character in hexadecimal text probably meant, as in "; there are no
// quotes"; empty if nothing is known.
std::string_view HintAt(char wrong);

}  // namespace host
