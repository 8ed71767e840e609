// The conversions and the texts of stamps: the whole input goes through each of them, beside a
// plain way to say what should come out. Buffers have no byte more than that.
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

#include "fuzz/input.h"
#include "fuzz/plain_hex.h"
#include "orvane.h"

namespace orvane_fuzz {
namespace {

const unsigned char* Octets(std::string_view text) {
  return reinterpret_cast<const unsigned char*>(text.data());
}

unsigned char* Octets(char* room) { return reinterpret_cast<unsigned char*>(room); }

bool IsBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

std::string EncodedUrl(std::string_view text) {
  std::string out;
  for (const char c : text) {
    const bool plain = IsDecimal(c) || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    if (!plain) out += '%';
    out += plain ? std::string(1, c) : HexOf({&c, 1});
  }
  return out;
}

std::string DecodedUrl(std::string_view text) {
  const auto value = [](char c) {
    return IsDecimal(c) ? c - '0' : static_cast<unsigned char>(c) - 55;
  };
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '%' && i + 2 < text.size()) {
      out += static_cast<char>((value(text[i + 1]) * 16 | value(text[i + 2])) & 0xFF);
      i += 2;
    } else {
      out += text[i] == '+' ? ' ' : text[i];
    }
  }
  return out;
}

void CheckUrl(std::string_view text) {
  const Text in(text);
  const std::string encoded = EncodedUrl(text);
  ExpectWritten(encoded, "URLEncode", [&](char* out) { URLEncode(in, out); });
  ExpectWritten(text, "there and back", [&](char* out) { URLDecode(Text(encoded), out); });
  ExpectWritten(DecodedUrl(text), "URLDecode", [&](char* out) { URLDecode(in, out); });
}

void CheckHex(std::string_view text) {
  const auto length = static_cast<int32_t>(text.size());
  const std::string hex = HexOf(text);
  ExpectWritten(hex, "HexToAscii", [&](char* out) { HexToAscii(Octets(text), out, length); });
  ExpectWritten(text, "there and back", [&](char* out) {
    Expect(AsciiToHex(hex.data(), Octets(out), 2 * length) == 1, "good digits");
  });
  const Decoded decoded = Decode(text);
  ExpectWritten(decoded.octets, "AsciiToHex", [&](char* out) {
    Expect(AsciiToHex(text.data(), Octets(out), length) == decoded.good, "result of AsciiToHex");
  });
}

void CheckEscapes(std::string_view text) {
  std::string escapes;
  for (std::size_t i = 0; i < text.size(); i += 2) {
    escapes += "\\x";
    escapes += text.substr(i, 2);
  }
  ExpectWritten(escapes, "AsciiToHexStr", [&](char* out) {
    const bool even = !text.empty() && text.size() % 2 == 0;
    Expect(AsciiToHexStr(text.data(), out, static_cast<int32_t>(text.size())) == even, "evenness");
  });
}

void CheckDigits(std::string_view text) {
  for (const bool allow_hex : {false, true}) {
    std::size_t at = 0;
    while (at < text.size() && (IsDecimal(text[at]) || (allow_hex && IsHex(text[at])))) ++at;
    const auto expected = static_cast<int32_t>(at == text.size() ? 0 : at + 1);
    const auto length = static_cast<int32_t>(text.size());
    Expect(CheckAsciiNum(text.data(), allow_hex, length) == expected, "CheckAsciiNum");
  }
}

// None where it must be refused.
std::optional<int32_t> NumberOf(std::string octets, std::size_t count) {
  if (count < 1 || count > 4) return std::nullopt;
  octets.resize(4, '\0');
  std::uint32_t number = 0;
  for (std::size_t i = 0; i < count; ++i) number = number * 256 + Octets(octets)[i];
  return static_cast<int32_t>(number);
}

void ExpectNumber(bool done, int32_t value, int32_t before, std::optional<int32_t> expected,
                  const char* what) {
  Expect(done == expected.has_value() && value == expected.value_or(before), what);
}

void CheckNumbers(std::string_view text) {
  const auto length = static_cast<int32_t>(text.size());
  for (const int32_t before : {0, -1}) {
    int32_t value = before;
    const Decoded decoded = Decode(text);
    int32_t done = HexStrToInt(text.data(), &value, length);
    ExpectNumber(done == 1, value, before,
                 decoded.good ? NumberOf(decoded.octets, text.size() / 2) : std::nullopt,
                 "HexStrToInt");
    value = before;
    done = HexToInt(Octets(text), &value, length);
    ExpectNumber(done == 1, value, before, NumberOf(std::string(text), text.size()), "HexToInt");
  }
}

void CheckNumber(std::uint32_t number) {
  char digits[9];
  std::snprintf(digits, sizeof digits, "%08X", static_cast<unsigned>(number));
  std::string hex(digits);
  while (hex.size() > 2 && hex.starts_with("00")) hex.erase(0, 2);
  int32_t length = 0;
  ExpectWritten(hex, "IntToHexStr", [&](char* out) {
    Expect(IntToHexStr(out, static_cast<int32_t>(number), &length) == 1, "result");
  });
  Expect(length == static_cast<int32_t>(hex.size()), "length of IntToHexStr");
  const std::string octets = Decode(hex).octets;
  Room room(4);
  const std::string untouched(4 - octets.size(), Room::kFiller);
  int32_t count = 0;
  Expect(IntToHex(Octets(room.Data()), static_cast<int32_t>(number), &count) == 1, "result");
  ExpectSame(room.Bytes(), untouched + octets, "IntToHex");
  Expect(count == static_cast<int32_t>(octets.size()), "count of IntToHex");
}

// As atoi reads it, but modulo 2^32.
std::uint32_t DecimalOf(std::string_view text) {
  std::size_t at = 0;
  while (at < text.size() && IsBlank(text[at])) ++at;
  const bool negative = at < text.size() && text[at] == '-';
  if (at < text.size() && (text[at] == '-' || text[at] == '+')) ++at;
  std::uint32_t number = 0;
  for (; at < text.size() && IsDecimal(text[at]); ++at) {
    number = number * 10 + static_cast<std::uint32_t>(text[at] - '0');
  }
  return negative ? 0 - number : number;
}

std::string TimeOf(std::uint32_t stamp) {
  using std::chrono::days;
  const std::uint32_t seconds = stamp + 28800;
  const std::chrono::year_month_day date{std::chrono::sys_days(days(seconds / 86400))};
  const unsigned time = seconds % 86400;
  char text[64];
  std::snprintf(text, sizeof text, "%04d-%02u-%02u %02u:%02u:%02u", static_cast<int>(date.year()),
                static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()), time / 3600,
                time / 60 % 60, time % 60);
  return text;
}

std::string Padded(std::string text, std::size_t size) {
  text.resize(size, '\0');
  return text;
}

void CheckTimes(std::string_view text, std::uint32_t stamp) {
  ExpectWritten(Padded(TimeOf(stamp), 32), "GetTimeStrFromTimeStampInt",
                [&](char* out) { GetTimeStrFromTimeStampInt(out, stamp); });
  for (const int32_t with_ms : {0, 1, 2}) {
    std::string expected;
    if (text.size() > 25) {
      expected.assign(36, Room::kFiller);
    } else if (text.size() >= 3) {
      expected = TimeOf(DecimalOf(text.substr(0, text.size() - 3)));
      char ms[16];
      std::snprintf(ms, sizeof ms, ":%03d",
                    static_cast<std::uint16_t>(DecimalOf(text.substr(text.size() - 3))));
      if (with_ms == 1) expected += ms;
    }
    ExpectWritten(Padded(expected, 36), "GetTimeStrFromTimeStampStr",
                  [&](char* out) { GetTimeStrFromTimeStampStr(out, Text(text), with_ms); });
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  const std::string_view octets = input.Rest();
  const std::string_view text = octets.substr(0, octets.find('\0'));
  CheckUrl(text);
  CheckHex(octets);
  CheckEscapes(octets);
  CheckDigits(octets);
  CheckNumbers(octets);
  CheckNumber(static_cast<std::uint32_t>(NumberOf(std::string(octets), 4).value_or(0)));
  CheckTimes(text, DecimalOf(text));
  return 0;
}

}  // namespace orvane_fuzz
