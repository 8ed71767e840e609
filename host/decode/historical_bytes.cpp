#include "host/decode/historical_bytes.h"

#include <array>

#include "host/decode/tag_list.h"
#include "host/status_word.h"
#include "host/text.h"

namespace host {
namespace {

constexpr Flag kServices[] = {
    {1, 8, "applications are selected by full DF name"},
    {1, 7, "applications are selected by partial DF name"},
    {1, 6, "data objects in EF.DIR"},
    {1, 5, "data objects in EF.ATR"},
    {1, 4, ""},
    {1, 3, ""},
    {1, 2, ""},
    {1, 1, "card without MF"},
};

constexpr Flag kCapabilities[] = {
    {1, 8, "DF selection by full DF name"},
    {1, 7, "DF selection by partial DF name"},
    {1, 6, "DF selection by path"},
    {1, 5, "DF selection by file identifier"},
    {1, 4, "implicit DF selection"},
    {1, 3, "short EF identifiers"},
    {1, 2, "record numbers"},
    {1, 1, "record identifiers"},
    {2, 8, "EFs of TLV structure"},
    {2, 7, ""},
    {2, 6, ""},
    {2, 5, "FF is valid as the first byte of a tag"},
    {2, 4, ""},
    {2, 3, ""},
    {2, 2, ""},
    {2, 1, ""},
    {3, 8, "command chaining"},
    {3, 7, "extended Lc and Le fields"},
    {3, 6, "extended length information in EF.ATR/INFO"},
    {3, 5, "logical channel numbers are given by the card"},
    {3, 4, "logical channel numbers are given by the host"},
    {3, 3, ""},
    {3, 2, ""},
    {3, 1, ""},
};

std::string LifeCycle(unsigned status) {
  if (status == 0) return "no life cycle status";
  if (status == 1) return "creation state";
  if (status == 3) return "initialisation state";
  if ((status & 0xFD) == 5) return "operational state, activated";
  if ((status & 0xFD) == 4) return "operational state, deactivated";
  if ((status & 0xFC) == 0xC) return "termination state";
  return status > 0xF ? "proprietary life cycle status" : "reserved life cycle status";
}

// Adds a life cycle status, a status word, or both in this order.
void AddStatus(Decoding& decoding, std::string_view digits) {
  if (digits.size() != 4) {
    decoding.fields.push_back(
        {"  LCS", digits.substr(0, 2), LifeCycle(HexValue(digits.substr(0, 2)))});
  }
  if (digits.size() < 4) return;
  const std::string_view word = digits.substr(digits.size() - 4);
  decoding.fields.push_back(
      {"  SW", word, word == "0000" ? "no status word" : DescribeStatusWord(word)});
}

void AddServices(Decoding& decoding, std::string_view digits) {
  constexpr std::array<std::string_view, 8> kAccess = {"READ RECORD", "", "GET DATA", "",
                                                       "READ BINARY", "", "",         ""};
  AddFlags(decoding, kServices, digits, "  ");
  const std::string_view access = kAccess[HexValue(digits) >> 1 & 7];
  decoding.fields.push_back(
      {"    bits 4-2", "",
       "EF.DIR and EF.ATR are read " +
           (access.empty() ? "in a reserved way" : "by " + std::string(access))});
}

void AddCapabilities(Decoding& decoding, std::string_view digits) {
  constexpr std::array<std::string_view, 4> kWrite = {"one-time", "proprietary", "OR", "AND"};
  AddFlags(decoding, kCapabilities, digits, "  ");
  const auto add = [&](const std::string& meaning) {
    decoding.fields.push_back({"  in all", "", meaning});
  };
  if (digits.size() >= 4) {
    const unsigned coding = HexValue(digits.substr(2, 2));
    add("write functions: " + std::string(kWrite[coding >> 5 & 3]) + "; data unit of " +
        Counted(size_t{1} << (coding & 0xF), "half byte"));
  }
  if (digits.size() >= 6) {
    const unsigned channels = HexValue(digits.substr(4, 2)) & 7;
    add(channels == 7 ? "8 logical channels or more" : Counted(channels + 1, "logical channel"));
  }
}

void AddObject(Decoding& decoding, unsigned tag, std::string_view value) {
  if (tag == 3 && value.size() == 2) AddServices(decoding, value);
  if (tag == 7 && value.size() <= 6 && !value.empty()) AddCapabilities(decoding, value);
  if (tag == 8 && value.size() <= 6 && !value.empty()) AddStatus(decoding, value);
}

// Compact-TLV: a tag and a length of four bits each.
void AddCompactTlv(Decoding& decoding, OctetReader rest) {
  while (rest.Left() > 0) {
    const unsigned head = HexValue(rest.Take(1));
    const unsigned tag = head >> 4;
    if ((head & 0xF) > rest.Left()) {
      decoding.fields.push_back({"  compact TLV", rest.Take(rest.Left()),
                                 "cut: its length is " + std::to_string(head & 0xF)});
      return;
    }
    const std::string_view value = rest.Take(head & 0xF);
    const std::string name = std::string("4") + "0123456789ABCDEF"[tag];
    const ListedTag* const known = FindListedTag(name);
    decoding.fields.push_back(
        {"  " + name, value, std::string(known != nullptr ? known->name : "unknown object")});
    AddObject(decoding, tag, value);
  }
}

}  // namespace

void AddHistoricalBytes(Decoding& decoding, std::string_view digits) {
  constexpr size_t kStatus = 6;  // the digits of the status indicator that ends category 00
  const std::string_view category = digits.substr(0, 2);
  const auto add = [&](const std::string& meaning) {
    decoding.fields.push_back({"  category", category, meaning});
  };
  OctetReader rest(digits.substr(2));
  if (category == "80") {
    add("compact TLV objects");
    AddCompactTlv(decoding, rest);
  } else if (category == "00" && rest.Left() >= kStatus / 2) {
    add("compact TLV objects, then a status indicator of 3 bytes");
    AddCompactTlv(decoding, OctetReader(rest.Take(rest.Left() - kStatus / 2)));
    AddStatus(decoding, digits.substr(digits.size() - kStatus));
  } else if (category == "00") {
    add("compact TLV objects and a status indicator, which is cut");
  } else if (category == "10" && rest.Left() == 1) {
    add("reference to the record of EF.DIR in the next byte");
  } else {
    add(category.starts_with('8') ? "reserved" : "proprietary");
  }
}

}  // namespace host
