#include "host/check/value.h"

#include <algorithm>
#include <charconv>
#include <optional>

#include "host/text.h"

namespace host {
namespace {

constexpr size_t kLongestKnown = 65536;
constexpr size_t kBlockDigits = 16;

size_t Sum(size_t left, size_t right) { return left > SIZE_MAX - right ? SIZE_MAX : left + right; }

bool IsUpperDigit(char c) { return IsDigit(c) || (c >= 'A' && c <= 'F'); }

// True if all its characters, known or not, are upper-case hexadecimal digits.
bool IsDigitsAlone(const Value& value) {
  const bool unknown = !value.whole || value.begin.find(Value::kUnknown) != value.begin.npos;
  return (!unknown || value.digits) &&
         std::all_of(value.begin.begin(), value.begin.end(),
                     [](char c) { return c == Value::kUnknown || IsUpperDigit(c); });
}

// Limits the memory of a value.
Value Bounded(Value value) {
  if (value.begin.size() <= kLongestKnown) return value;
  value.digits = IsDigitsAlone(value);
  value.most = value.Most();
  value.whole = false;
  value.begin.resize(kLongestKnown);
  return value;
}

// The number that the library reads from this text; a negative one counts as 0.
std::optional<size_t> NumberOf(const Value& value) {
  if (!value.IsExact()) return std::nullopt;
  const size_t sign = value.begin.find_first_of("+-");
  if (sign != value.begin.npos && value.begin[sign] == '-') return 0;
  const size_t first = std::min(value.begin.find_first_of("0123456789"), value.begin.size());
  size_t number = 0;
  const char* const end = value.begin.data() + value.begin.size();
  const auto read = std::from_chars(value.begin.data() + first, end, number);
  constexpr size_t kMost = INT32_MAX;  // larger ones count as this
  return read.ec == std::errc::result_out_of_range ? kMost : std::min(number, kMost);
}

Value Part(const Value& text, const std::vector<Value>& arguments, size_t unit) {
  const std::optional<size_t> start = NumberOf(arguments[1]);
  const std::optional<size_t> count = NumberOf(arguments[2]);
  Value part = text;
  part.whole = false;
  part.digits = IsDigitsAlone(text);
  part.most = text.Most();
  part.begin.clear();
  if (count) part.most = std::min(part.most, *count * unit);
  if (!start) return part;
  const size_t first = *start * unit;
  part.most = std::min(part.most, text.Most() - std::min(text.Most(), first));
  if (!count) return part;
  part.digits = text.digits;
  part.begin = text.begin.substr(std::min(first, text.begin.size()), *count * unit);
  part.whole = text.whole || part.begin.size() == *count * unit;
  return part;
}

Value Length(const Value& text, size_t unit) {
  return text.whole ? Exactly(std::to_string(text.begin.size() / unit)) : AnyText();
}

Value Xor(const Value& data, const Value& mask) {
  if (!mask.whole) return DigitsUpTo(mask.most);
  if (!mask.IsExact() || !data.IsExact()) return DigitsOf(mask.begin.size());
  std::string folded;
  for (size_t at = 0; at < mask.begin.size(); at += 2) {
    unsigned octet = HexValue(mask.begin.substr(at, 2));
    for (size_t each = at; each < data.begin.size(); each += mask.begin.size()) {
      octet ^= HexValue(data.begin.substr(each, 2));
    }
    folded += HexOctet(octet);
  }
  return Exactly(folded);
}

Value HexOfText(const Value& text) {
  if (!text.whole) return DigitsUpTo(Sum(text.most, text.most));
  std::string digits;
  for (const char c : text.begin) {
    digits += c == Value::kUnknown ? std::string(2, Value::kUnknown)
                                   : HexOctet(static_cast<unsigned char>(c));
  }
  return {.begin = digits};
}

Value TextOfHex(const Value& hex) {
  if (!hex.IsExact()) return AnyText(hex.Most() / 2);
  const std::string digits = WithoutBlanks(hex.begin);
  std::string text;
  for (size_t at = 0; at + 2 <= digits.size(); at += 2) {
    const unsigned octet = HexValue(std::string_view(digits).substr(at, 2));
    if (octet == 0) break;
    text += static_cast<char>(octet);
  }
  return Exactly(text);
}

Value Blocks(const Value& data) {
  if (!data.whole) return DigitsUpTo(SIZE_MAX);
  return DigitsOf((data.begin.size() + kBlockDigits - 1) / kBlockDigits * kBlockDigits);
}

Value Mac(const Value& flag) {
  if (!flag.IsExact()) return DigitsUpTo(kBlockDigits);
  return DigitsOf(flag.begin == "1" ? kBlockDigits / 2 : kBlockDigits);
}

Value SubKey(const Value& key) {
  if (!key.whole) return DigitsUpTo(2 * kBlockDigits);
  return DigitsOf(key.begin.size() > kBlockDigits ? 2 * kBlockDigits : kBlockDigits);
}

Value Assumed(Value value) {
  value.assumed = true;
  return value;
}

}  // namespace

Value Exactly(std::string_view text) { return Bounded({.begin = std::string(text)}); }

Value DigitsOf(size_t length) { return Bounded({.begin = std::string(length, Value::kUnknown)}); }

Value DigitsUpTo(size_t most) { return {.begin = "", .whole = false, .most = most}; }

Value AnyText(size_t most) { return {.begin = "", .whole = false, .most = most, .digits = false}; }

Value Join(const Value& left, const Value& right) {
  Value joined = left;
  joined.assumed = left.assumed || right.assumed;
  joined.most = Sum(left.Most(), right.Most());
  if (!left.whole) {
    joined.digits = left.digits && IsDigitsAlone(right);
    return joined;
  }
  joined.begin += right.begin;
  joined.whole = right.whole;
  joined.digits = left.digits && right.digits;
  return Bounded(joined);
}

bool CanBeEqual(const Value& left, const Value& right) {
  const size_t known = std::max(left.begin.size(), right.begin.size());
  if (left.Most() < known || right.Most() < known) return false;
  for (size_t at = 0; at < known; ++at) {
    const char l = at < left.begin.size() ? left.begin[at] : Value::kUnknown;
    const char r = at < right.begin.size() ? right.begin[at] : Value::kUnknown;
    if (l == Value::kUnknown && r == Value::kUnknown) continue;
    if (l == Value::kUnknown && left.digits && !IsUpperDigit(r)) return false;
    if (r == Value::kUnknown && right.digits && !IsUpperDigit(l)) return false;
    if (l != Value::kUnknown && r != Value::kUnknown && l != r) return false;
  }
  return true;
}

Value ValueOf(const Builtin& builtin, const std::vector<Value>& arguments) {
  const std::string_view keyword = builtin.keyword;
  bool assumed = false;
  for (const Value& each : arguments) assumed = assumed || each.assumed;
  Value value = AnyText();
  if (keyword == "@STRMID") value = Part(arguments[0], arguments, 1);
  if (keyword == "@STRMIDH") value = Part(arguments[0], arguments, 2);
  if (keyword == "@STRLEN") value = Length(arguments[0], 1);
  if (keyword == "@STRLENH") value = Length(arguments[0], 2);
  if (keyword == "@XOR") value = Xor(arguments[0], arguments[1]);
  if (keyword == "@ASC2HEX") value = HexOfText(arguments[0]);
  if (keyword == "@HEX2ASC") value = TextOfHex(arguments[0]);
  if (keyword == "@DES" || keyword == "@DESCBC") value = Assumed(Blocks(arguments[1]));
  if (keyword == "@MAC") value = Assumed(Mac(arguments[3]));
  if (keyword == "@SUBKEY") value = Assumed(SubKey(arguments[0]));
  if (keyword == "@RSAPUBENC") value = Assumed(DigitsUpTo(arguments[0].Most()));
  if (keyword == "@HASH") value = Assumed(DigitsOf(40));
  value.assumed = value.assumed || assumed;
  return value;
}

}  // namespace host
