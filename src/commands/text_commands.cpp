#include "commands/text_commands.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace orvane {
namespace {

bool IsWhiteSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

// White space, a sign, then digits up to the first other character; no digits give 0. A number
// beyond 32 bits counts as the largest one, which is past the end of any text.
std::int64_t DecimalValue(const std::string& text) {
  auto next = std::find_if_not(text.begin(), text.end(), IsWhiteSpace);
  const bool negative = next != text.end() && *next == '-';
  if (next != text.end() && (*next == '-' || *next == '+')) ++next;
  std::int64_t value = 0;
  for (; next != text.end() && *next >= '0' && *next <= '9'; ++next) {
    value = std::min<std::int64_t>(value * 10 + (*next - '0'),
                                   std::numeric_limits<std::int32_t>::max());
  }
  return negative ? -value : value;
}

bool Substring(Call& call, std::int64_t charactersPerUnit) {
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

bool Length(Call& call, std::size_t charactersPerUnit) {
  std::string text;
  if (!call.Read(text)) return false;
  call.Close();
  call.Give(std::to_string(text.size() / charactersPerUnit));
  return true;
}

}  // namespace

bool StrMid(Call& call) { return Substring(call, 1); }

bool StrMidH(Call& call) { return Substring(call, 2); }

bool StrLen(Call& call) { return Length(call, 1); }

bool StrLenH(Call& call) { return Length(call, 2); }

bool Compare(Call& call) {
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

}  // namespace orvane
