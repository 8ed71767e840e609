#include <algorithm>
#include <cstdint>
#include <limits>

#include "commands/builtin.h"
#include "util/hex.h"

namespace orvane {
namespace {

bool IsWhiteSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

// Reads white space, a sign, then digits up to the first other character; no digits give 0. A
// number beyond 32 bits counts as the largest one, which is past the end of any text.
std::int64_t DecimalValue(std::string_view text) {
  while (!text.empty() && IsWhiteSpace(text.front())) text.remove_prefix(1);
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);
  std::int64_t value = 0;
  for (const char c : text) {
    if (c < '0' || c > '9') break;
    value =
        std::min<std::int64_t>(value * 10 + (c - '0'), std::numeric_limits<std::int32_t>::max());
  }
  return negative ? -value : value;
}

bool Substring(CommandCall& call, std::int64_t charactersPerUnit) {
  std::string text;
  std::string start;
  std::string count;
  if (!call.Read(text) || !call.ReadNext(start) || !call.ReadNext(count)) return false;
  call.Close();
  const auto limit = static_cast<std::int64_t>(text.size());
  const auto first = std::clamp<std::int64_t>(DecimalValue(start) * charactersPerUnit, 0, limit);
  const auto length = std::max<std::int64_t>(DecimalValue(count) * charactersPerUnit, 0);
  call.Give(std::string_view(text).substr(static_cast<std::size_t>(first),
                                          static_cast<std::size_t>(length)));
  return true;
}

bool Length(CommandCall& call, std::size_t charactersPerUnit) {
  std::string text;
  if (!call.Read(text)) return false;
  call.Close();
  call.Give(std::to_string(text.size() / charactersPerUnit));
  return true;
}

// The octets of a hexadecimal text; zeros where its digits do not reach.
std::string Octets(const std::string& hex) {
  std::string octets((hex.size() + 1) / 2, '\0');
  DecodeHex(hex, reinterpret_cast<unsigned char*>(octets.data()));
  return octets;
}

void GiveHex(CommandCall& call, const std::string& octets) {
  call.GiveHex(reinterpret_cast<const unsigned char*>(octets.data()), octets.size());
}

}  // namespace

bool StrMid(CommandCall& call) { return Substring(call, 1); }

bool StrMidH(CommandCall& call) { return Substring(call, 2); }

bool StrLen(CommandCall& call) { return Length(call, 1); }

bool StrLenH(CommandCall& call) { return Length(call, 2); }

bool Compare(CommandCall& call) {
  call.engine.statementKind = KindCompare;
  std::string left;
  std::string right;
  std::string expected;
  if (!call.Read(left) || !call.ReadNext(right) || !call.ReadNext(expected)) return false;
  call.Close();
  const bool asExpected = expected == (left == right ? "1" : "0");
  call.Give(asExpected ? "1" : "0");
  return true;
}

bool Xor(CommandCall& call) {
  std::string data;
  std::string mask;
  if (!call.Read(data) || !call.ReadNext(mask)) return false;
  const std::size_t maskBytes = mask.size() / 2;
  if (maskBytes == 0) return false;
  const std::size_t excess = data.size() / 2 % maskBytes;
  if (excess != 0) data.append(2 * (maskBytes - excess), '0');
  const std::size_t dataBytes = data.size() / 2;

  const std::string blocks = Octets(data);
  std::string folded = Octets(mask);
  folded.resize(maskBytes);
  for (std::size_t i = 0; i < dataBytes; ++i) {
    folded[i % maskBytes] = static_cast<char>(folded[i % maskBytes] ^ blocks[i]);
  }
  GiveHex(call, folded);
  call.Close();
  return true;
}

bool AscToHex(CommandCall& call) {
  std::string text;
  if (!call.Read(text)) return false;
  call.Close();
  GiveHex(call, text);
  return true;
}

bool HexToAsc(CommandCall& call) {
  std::string hex;
  if (!call.Read(hex)) return false;
  call.Close();
  const std::string octets = Octets(hex);
  call.Give(octets.c_str());
  return true;
}

}  // namespace orvane
