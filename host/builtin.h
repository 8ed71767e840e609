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
  kReader,  // a reader's name or number, which no quotes stand around
  kHex,     // hexadecimal text of whole octets
  kKey,     // the same, of 8, 16 or 24 octets; secret
  kDigits,  // a number in hexadecimal, of one digit or more
  kNumber,  // a decimal number
  kFlag,    // the one character 0 or 1
};

struct Parameter {
  std::string_view name;
  ArgumentKind kind = ArgumentKind::kText;
  // Of kHex, in octets.
  size_t least = 0;
  size_t most = SIZE_MAX;
  bool skipsBlanks = false;   // the library takes the blanks of a value out
  bool serialNumber = false;  // tells one derived key from another, and is no secret
};

// The text of a command to the card.
inline constexpr Parameter kCommandText = {
    .name = "the command", .kind = ArgumentKind::kHex, .skipsBlanks = true};

// One command of the language: what it takes, and what it does to the secrets in it.
struct Builtin {
  std::string_view keyword;  // in upper case
  size_t count = 0;          // of arguments
  std::array<Parameter, 4> parameters = {};
  bool forHost = false;     // asks the host to act, and ends the statement's evaluation
  bool hides = false;       // its value gives nothing away
  bool usesCrypto = false;  // runs in the crypto module
};

// The command of this keyword, in either case; null if there is none.
const Builtin* FindBuiltin(std::string_view keyword);

// The first character that can't stand in such an argument, whatever stands around it; none if all
// can.
std::optional<size_t> FindWrongCharacter(const Parameter& parameter, std::string_view text);

// What is wrong with a whole value, as in "has 17 octets; the most is 16"; empty if nothing is. It
// quotes nothing of the value. The value has no wrong character.
std::string FaultIn(const Parameter& parameter, std::string_view value);

// What is wrong with values that are sound one by one; empty if nothing is.
std::string FaultAmong(const Builtin& builtin, const std::vector<std::string>& values);

// Why the library's call fails though its values are sound, as far as they tell.
std::string LikelyCause(const Builtin& builtin, const std::vector<std::string>& values);

// What was probably meant where this character stands in hexadecimal text, as in "; there are no
// quotes"; empty if nothing is known.
std::string_view HintAt(char wrong);

}  // namespace host
