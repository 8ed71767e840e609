#include "host/builtin.h"

#include <algorithm>
#include <utility>

#include "host/platform.h"
#include "host/text.h"

namespace host {
namespace {

using enum ArgumentKind;

constexpr Parameter kKeyParameter = {.name = "key", .kind = kKey};
constexpr Parameter kData = {.name = "data", .kind = kHex, .most = 256};
constexpr Parameter kIv = {.name = "iv", .kind = kHex, .most = 16};
constexpr Parameter kFlagParameter = {.name = "flag", .kind = kFlag};
constexpr Parameter kStart = {.name = "start", .kind = kNumber};
constexpr Parameter kCount = {.name = "count", .kind = kNumber};
constexpr Parameter kTextParameter = {.name = "text"};
constexpr Parameter kHexParameter = {.name = "hex", .kind = kHex};

constexpr Parameter Digits(std::string_view name) {
  return {.name = name, .kind = kDigits, .skipsBlanks = true};
}

constexpr Builtin kBuiltins[] = {
    {.keyword = "@RESET", .forHost = true},
    {.keyword = "@STOP", .forHost = true},
    {.keyword = "@STRMID", .count = 3, .parameters = {kTextParameter, kStart, kCount}},
    {.keyword = "@STRMIDH", .count = 3, .parameters = {kHexParameter, kStart, kCount}},
    {.keyword = "@COMPARE",
     .count = 3,
     .parameters = {{{.name = "left"}, {.name = "right"}, {.name = "expected", .kind = kFlag}}},
     .forHost = true},
    {.keyword = "@SETREADER", .count = 1, .parameters = {{{.name = "reader"}}}, .forHost = true},
    {.keyword = "@SETSLOT", .count = 1, .parameters = {{{.name = "slot"}}}, .forHost = true},
    {.keyword = "@STRLEN", .count = 1, .parameters = {kTextParameter}, .hides = true},
    {.keyword = "@STRLENH", .count = 1, .parameters = {kHexParameter}, .hides = true},
    {.keyword = "@DES",
     .count = 3,
     .parameters = {kKeyParameter, kData, kFlagParameter},
     .usesCrypto = true},
    {.keyword = "@DESCBC",
     .count = 4,
     .parameters = {kKeyParameter, kData, kIv, kFlagParameter},
     .usesCrypto = true},
    {.keyword = "@MAC",
     .count = 4,
     .parameters = {kKeyParameter, kData, kIv, kFlagParameter},
     .hides = true,
     .usesCrypto = true},
    {.keyword = "@XOR",
     .count = 2,
     .parameters = {{{.name = "data", .kind = kHex}, {.name = "mask", .kind = kHex, .least = 1}}}},
    {.keyword = "@ASC2HEX", .count = 1, .parameters = {kTextParameter}},
    {.keyword = "@HEX2ASC",
     .count = 1,
     .parameters = {{{.name = "hex", .kind = kHex, .skipsBlanks = true}}}},
    {.keyword = "@SUBKEY",
     .count = 2,
     .parameters = {kKeyParameter,
                    {.name = "data", .kind = kHex, .most = 256, .serialNumber = true}},
     .usesCrypto = true},
    {.keyword = "@OPENREADER",
     .count = 1,
     .parameters = {{{.name = "reader", .kind = kReader}}},
     .forHost = true},
    {.keyword = "@RSAPUBENC",
     .count = 3,
     .parameters = {Digits("modulus"), Digits("exponent"), Digits("data")},
     .hides = true,
     .usesCrypto = true},
    {.keyword = "@HASH",
     .count = 1,
     .parameters = {{{.name = "hex", .kind = kHex, .least = 1, .most = 4096, .skipsBlanks = true}}},
     .usesCrypto = true},
};

bool IsHexadecimal(ArgumentKind kind) { return kind == kHex || kind == kKey || kind == kDigits; }

// Accepts what the library reads as a number: blanks, a sign, digits. Blanks behind it are
// harmless.
bool IsNumber(std::string_view text) {
  constexpr std::string_view kBlanks = " \t";
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
  text = text.substr(0, text.find_last_not_of(kBlanks) + 1);
  if (text.starts_with('+') || text.starts_with('-')) text.remove_prefix(1);
  return IsDecimal(text);
}

// The number in upper case, without blanks and leading zeros.
std::string Number(std::string_view digits) {
  const std::string number = UpperCase(WithoutBlanks(digits));
  return number.substr(std::min(number.find_first_not_of('0'), number.size()));
}

std::string FaultInOctets(const Parameter& parameter, size_t digits) {
  if (digits == 0 && parameter.least > 0) return "is empty";
  if (digits % 2 != 0) return "has an odd number of digits (" + std::to_string(digits) + ")";
  const size_t octets = digits / 2;
  const std::string has = "has " + Counted(octets, "octet");
  if (parameter.kind == kKey) {
    return octets == 8 || octets == 16 || octets == 24 ? "" : has + "; it takes 8, 16 or 24";
  }
  return octets > parameter.most ? has + "; the most is " + std::to_string(parameter.most) : "";
}

}  // namespace

const Builtin* FindBuiltin(std::string_view keyword) {
  const std::string upper = UpperCase(keyword);
  const auto* const found = std::find_if(std::begin(kBuiltins), std::end(kBuiltins),
                                         [&](const Builtin& b) { return b.keyword == upper; });
  return found != std::end(kBuiltins) ? found : nullptr;
}

std::optional<size_t> FindWrongCharacter(const Parameter& parameter, std::string_view text) {
  if (!IsHexadecimal(parameter.kind)) return std::nullopt;
  const auto wrong = std::find_if_not(text.begin(), text.end(), [&](char c) {
    return IsHexDigit(c) || (c == ' ' && parameter.skipsBlanks);
  });
  if (wrong == text.end()) return std::nullopt;
  return static_cast<size_t>(wrong - text.begin());
}

std::string FaultIn(const Parameter& parameter, std::string_view value) {
  switch (parameter.kind) {
    case kText:
      return "";
    case kReader:
      return value.starts_with('"') || value.starts_with('\'') ? "has quotes: there are none here"
                                                               : "";
    case kHex:
    case kKey:
      return FaultInOctets(parameter, WithoutBlanks(value).size());
    case kDigits:
      return WithoutBlanks(value).empty() ? "is empty" : "";
    case kNumber:
      return IsNumber(value) ? "" : "is no decimal number";
    case kFlag:
      return value == "0" || value == "1" ? "" : "is neither 0 nor 1";
  }
  return "";
}

std::string FaultAmong(const Builtin& builtin, const std::vector<std::string>& values) {
  if (builtin.keyword != "@RSAPUBENC" || values[2].size() <= values[0].size()) return "";
  return "its data has " + Counted(values[2].size(), "digit") + ", its modulus " +
         std::to_string(values[0].size()) + "; data can't be longer";
}

std::string LikelyCause(const Builtin& builtin, const std::vector<std::string>& values) {
  if (builtin.keyword == "@RSAPUBENC") {
    const std::string modulus = Number(values[0]);
    const std::string data = Number(values[2]);
    if (modulus.empty()) return "its modulus is 0";
    if (std::pair(data.size(), data) >= std::pair(modulus.size(), modulus)) {
      return "its data is no smaller number than its modulus";
    }
  }
  // The library has loaded it before, if it can be loaded.
  const FoundModule crypto = FindModule("orvane_crypto", Lookup::kInOwnFolders);
  const std::string found = Printable(crypto.message);
  return crypto.module != nullptr
             ? "the crypto module " + found + " refuses, as in FIPS mode, or lacks an export"
             : "the crypto module can't be loaded: " + found;
}

std::string_view HintAt(char wrong) {
  switch (wrong) {
    case '%':
      return "; a variable needs a blank before it";
    case ';':
    case '/':
      return "; a comment needs a line of its own";
    case '#':
      return "; a comment begins with ; on a line of its own";
    case '"':
    case '\'':
      return "; there are no quotes";
    case 'x':
    case 'X':
      return "; there is no 0x";
    case ' ':
      return "; a blank in a value counts as a digit here";
    default:
      return "";
  }
}

}  // namespace host
