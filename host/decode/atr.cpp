#include "host/decode/atr.h"

#include <algorithm>
#include <array>
#include <utility>

#include "host/decode/historical_bytes.h"
#include "host/text.h"

namespace host {
namespace {

constexpr size_t kMostBehindTs = 32;

constexpr std::array<unsigned, 16> kFi = {372, 372, 558, 744,  1116, 1488, 1860, 0,
                                          0,   512, 768, 1024, 1536, 2048, 0,    0};
constexpr std::array<std::string_view, 16> kMostMegahertz = {
    "4", "5", "6", "8", "12", "16", "20", "", "", "5", "7.5", "10", "15", "20", "", ""};
constexpr std::array<unsigned, 16> kDi = {0, 1, 2, 4, 8, 16, 32, 64, 12, 20, 0, 0, 0, 0, 0, 0};

std::string Number(unsigned value) { return std::to_string(value); }

std::string Speed(unsigned octet) {
  const unsigned fi = kFi[octet >> 4];
  const unsigned di = kDi[octet & 0xF];
  std::string text =
      "Fi " + (fi == 0 ? "reserved" : Number(fi)) + ", Di " + (di == 0 ? "reserved" : Number(di));
  if (fi > 0) text += ", up to " + std::string(kMostMegahertz[octet >> 4]) + " MHz";
  if (fi == 0 || di == 0) return text;
  const unsigned hundredths = (100 * fi + di / 2) / di;
  std::string cycles = Number(hundredths / 100);
  if (const unsigned rest = hundredths % 100; rest > 0) {
    cycles += (rest < 10 ? ".0" : ".") + Number(rest % 10 == 0 ? rest / 10 : rest);
  }
  return text + "; " + cycles + " clock cycles a bit";
}

std::string GuardTime(unsigned octet) {
  if (octet == 0) return "no extra guard time";
  if (octet == 255) return "no extra guard time: 12 etu in T=0, 11 etu in T=1";
  return "extra guard time of " + Number(octet) + " etu";
}

std::string SpecificMode(unsigned octet) {
  return "specific mode, T=" + Number(octet & 0xF) +
         ((octet & 0x10) != 0 ? ", Fi and Di implicit" : ", Fi and Di as TA1 has them") +
         ((octet & 0x80) != 0 ? "; it can't change" : "; it may change");
}

std::string WaitingTime(unsigned octet) {
  return octet == 0 ? "T=0: waiting time integer 0, which is reserved"
                    : "T=0: waiting time integer " + Number(octet);
}

std::string InformationField(unsigned octet) {
  const bool reserved = octet == 0 || octet == 255;
  return "T=1: IFSC " + Number(octet) +
         (reserved ? ", which is reserved" : ", the longest information field that the card takes");
}

std::string WaitingTimes(unsigned octet) {
  return "T=1: block waiting time integer " + Number(octet >> 4) +
         (octet >> 4 > 9 ? ", which is reserved" : "") + ", character waiting time integer " +
         Number(octet & 0xF);
}

std::string ErrorDetection(unsigned octet) {
  return std::string("T=1: error detection by ") + ((octet & 1) != 0 ? "CRC" : "LRC");
}

std::string ClockAndClass(unsigned octet) {
  constexpr std::array<std::string_view, 4> kStop = {
      "clock stop not supported", "clock stop in state L", "clock stop in state H",
      "clock stop in either state"};
  std::string classes;
  switch (octet & 0x3F) {
    case 1:
      classes = "class A (5 V)";
      break;
    case 2:
      classes = "class B (3 V)";
      break;
    case 3:
      classes = "classes A and B (5 V, 3 V)";
      break;
    case 4:
      classes = "class C (1.8 V)";
      break;
    case 6:
      classes = "classes B and C (3 V, 1.8 V)";
      break;
    case 7:
      classes = "classes A, B and C (5 V, 3 V, 1.8 V)";
      break;
    default:
      classes = "reserved class";
  }
  return std::string(kStop[octet >> 6]) + "; " + classes;
}

std::string ContactC6(unsigned octet) {
  if (octet == 0) return "contact C6 (SPU) not used";
  return (octet & 0x80) != 0 ? "contact C6 (SPU), proprietary use"
                             : "contact C6 (SPU), standard use";
}

std::string NotUsedAnyMore(unsigned) { return "programming voltage, not used any more"; }

// The meaning of an interface character. Groups 1 and 2 are known by their number. In later groups
// the protocol decides, and the character must be the first one of its letter.
struct Character {
  char letter;
  unsigned group;  // 3 stands for all later ones
  unsigned protocol;
  std::string (*meaning)(unsigned octet);
};

constexpr unsigned kAnyProtocol = 16;

constexpr Character kCharacters[] = {
    {'A', 1, kAnyProtocol, Speed},
    {'B', 1, kAnyProtocol, NotUsedAnyMore},
    {'C', 1, kAnyProtocol, GuardTime},
    {'A', 2, kAnyProtocol, SpecificMode},
    {'B', 2, kAnyProtocol, NotUsedAnyMore},
    {'C', 2, kAnyProtocol, WaitingTime},
    {'A', 3, 1, InformationField},
    {'B', 3, 1, WaitingTimes},
    {'C', 3, 1, ErrorDetection},
    {'A', 3, 15, ClockAndClass},
    {'B', 3, 15, ContactC6},
};

class AtrReader {
 public:
  explicit AtrReader(std::string_view digits) : all_(digits), rest_(digits) {}

  Decoding Read() {
    decoding_.standard = "answer to reset, ISO/IEC 7816-3";
    if (ReadConvention() && ReadFormat() && ReadInterface() && ReadHistorical() && ReadCheck() &&
        rest_.Left() > 0) {
      Fail(Counted(rest_.Left(), "byte") + " too many at its end");
    }
    return std::move(decoding_);
  }

 private:
  bool Fail(const std::string& why) {
    decoding_.fault = why;
    return false;
  }

  bool Cut(const std::string& before) { return Fail("it is cut before " + before); }

  bool ReadConvention() {
    const std::string_view ts = rest_.Take(1);
    if (ts != "3B" && ts != "3F") {
      return Fail("its first byte, TS, is " + std::string(ts) + ": it should be 3B or 3F");
    }
    Add("TS", ts, ts == "3B" ? "direct convention" : "inverse convention");
    return true;
  }

  bool ReadFormat() {
    if (rest_.Left() == 0) return Cut("T0");
    const std::string_view t0 = rest_.Take(1);
    historical_ = HexValue(t0) & 0xF;
    present_ = HexValue(t0) >> 4;
    Add("T0", t0, Counted(historical_, "historical byte") + Announced(1));
    return true;
  }

  // The TD of one group announces TA to TD of the next.
  bool ReadInterface() {
    for (unsigned group = 1; present_ != 0; ++group) {
      const unsigned announced = std::exchange(present_, 0);
      for (unsigned letter = 0; letter < 4; ++letter) {
        if ((announced >> letter & 1) == 0) continue;
        const char name = static_cast<char>('A' + letter);
        if (rest_.Left() == 0) return Cut(Name(name, group));
        ReadCharacter(name, group, rest_.Take(1));
      }
      if (present_ != 0 && group > kMostBehindTs) break;
    }
    return true;
  }

  void ReadCharacter(char letter, unsigned group, std::string_view octet) {
    const std::string name = Name(letter, group);
    if (letter != 'D') {
      Add(name, octet, MeaningOf(letter, group, HexValue(octet)));
      return;
    }
    protocol_ = HexValue(octet) & 0xF;
    present_ = HexValue(octet) >> 4;
    checked_ = checked_ || protocol_ != 0;
    const std::string offers =
        protocol_ == 15 ? "global interface bytes (T=15)" : "protocol T=" + Number(protocol_);
    Add(name, octet, offers + Announced(group + 1));
  }

  std::string MeaningOf(char letter, unsigned group, unsigned octet) {
    for (const Character& each : kCharacters) {
      if (each.letter != letter || each.group != std::min(group, 3u)) continue;
      if (each.protocol != kAnyProtocol && each.protocol != protocol_) continue;
      if (group > 2 && !First(letter)) break;
      return each.meaning(octet);
    }
    return "reserved for T=" + Number(protocol_);
  }

  // True for the first character of this letter and protocol from the third group on. Notes it.
  bool First(char letter) {
    const auto key = std::pair(letter, protocol_);
    if (std::find(seen_.begin(), seen_.end(), key) != seen_.end()) return false;
    seen_.push_back(key);
    return true;
  }

  bool ReadHistorical() {
    const size_t there = std::min<size_t>(historical_, rest_.Left());
    const std::string_view octets = rest_.Take(there);
    if (there < historical_) {
      return Fail("it is cut before its historical bytes end: " + std::to_string(there) + " of " +
                  Number(historical_) + " are there");
    }
    if (there == 0) return true;
    Add("T1-TK", octets, "historical bytes");
    AddHistoricalBytes(decoding_, octets);
    return true;
  }

  bool ReadCheck() {
    if (all_.size() / 2 - rest_.Left() - 1 + (checked_ ? 1 : 0) > kMostBehindTs) {
      return Fail("it has more than 32 bytes behind TS");
    }
    if (!checked_) return true;
    if (rest_.Left() == 0) return Cut("TCK");
    const std::string_view tck = rest_.Take(1);
    unsigned sum = 0;
    for (size_t at = 2; at + 2 <= all_.size() - 2 * rest_.Left(); at += 2) {
      sum ^= HexValue(all_.substr(at, 2));
    }
    Add("TCK", tck, sum == 0 ? "check character, right" : "check character, wrong");
    if (sum == 0) return true;
    return Fail("TCK is wrong: it should be " + HexOctet(sum ^ HexValue(tck)));
  }

  static std::string Name(char letter, unsigned group) {
    return std::string("T") + letter + Number(group);
  }

  std::string Announced(unsigned group) const {
    std::string names;
    for (unsigned letter = 0; letter < 4; ++letter) {
      if ((present_ >> letter & 1) == 0) continue;
      names +=
          (names.empty() ? "; behind it " : ", ") + Name(static_cast<char>('A' + letter), group);
    }
    return names;
  }

  void Add(const std::string& name, std::string_view octets, const std::string& meaning) {
    decoding_.fields.push_back({name, octets, meaning});
  }

  std::string_view all_;
  OctetReader rest_;
  Decoding decoding_;
  unsigned historical_ = 0;  // their number
  unsigned present_ = 0;     // one bit for each character of the next group
  unsigned protocol_ = 0;    // of the last TD
  bool checked_ = false;     // the card offers a protocol other than T=0
  std::vector<std::pair<char, unsigned>> seen_;
};

}  // namespace

Decoding DecodeAtr(std::string_view digits) { return AtrReader(digits).Read(); }

}  // namespace host
