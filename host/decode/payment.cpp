#include "host/decode/payment.h"

#include <array>

#include "host/decode/tag_list.h"
#include "host/text.h"
#include "host/tlv.h"

namespace host {
namespace {

constexpr Flag kProfile[] = {
    {1, 7, "SDA supported"},
    {1, 6, "DDA supported"},
    {1, 5, "cardholder verification supported"},
    {1, 4, "terminal risk management to be performed"},
    {1, 3, "issuer authentication supported"},
    {1, 2, "reserved for contactless"},
    {1, 1, "CDA supported"},
    {2, 8, "reserved for contactless"},
};

constexpr Flag kResults[] = {
    {1, 8, "offline data authentication was not performed"},
    {1, 7, "SDA failed"},
    {1, 6, "data of the card is missing"},
    {1, 5, "the card is on the terminal's exception file"},
    {1, 4, "DDA failed"},
    {1, 3, "CDA failed"},
    {1, 2, "SDA selected"},
    {2, 8, "card and terminal have different application versions"},
    {2, 7, "the application has expired"},
    {2, 6, "the application is not effective yet"},
    {2, 5, "the service is not allowed for this card product"},
    {2, 4, "new card"},
    {3, 8, "cardholder verification was not successful"},
    {3, 7, "cardholder verification method not recognised"},
    {3, 6, "PIN try limit exceeded"},
    {3, 5, "PIN entry required; the PIN pad is not there or does not work"},
    {3, 4, "PIN entry required; the PIN pad is there, but no PIN was entered"},
    {3, 3, "online PIN entered"},
    {4, 8, "the transaction is above the floor limit"},
    {4, 7, "lower limit of consecutive offline transactions exceeded"},
    {4, 6, "upper limit of consecutive offline transactions exceeded"},
    {4, 5, "selected at random for online processing"},
    {4, 4, "the merchant forced the transaction online"},
    {5, 8, "default TDOL used"},
    {5, 7, "issuer authentication failed"},
    {5, 6, "script processing failed before the final GENERATE AC"},
    {5, 5, "script processing failed after the final GENERATE AC"},
};

constexpr std::array<std::string_view, 6> kMethods = {
    "fail cardholder verification",         "plaintext PIN, verified by the card",
    "enciphered PIN, verified online",      "plaintext PIN, verified by the card, and signature",
    "enciphered PIN, verified by the card", "enciphered PIN, verified by the card, and signature"};

constexpr std::array<std::string_view, 10> kConditions = {
    "always",
    "if unattended cash",
    "if not unattended cash, manual cash or purchase with cashback",
    "if the terminal supports it",
    "if manual cash",
    "if purchase with cashback",
    "if in the application's currency and under X",
    "if in the application's currency and over X",
    "if in the application's currency and under Y",
    "if in the application's currency and over Y"};

std::string Method(unsigned octet) {
  const unsigned method = octet & 0x3F;
  if (method < kMethods.size()) return std::string(kMethods[method]);
  if (method == 0x1E) return "signature";
  if (method == 0x1F) return "no verification required";
  if (method == 0x3F) return "no method: this value is not used";
  if (method < 0x20) return "reserved method";
  return method < 0x30 ? "method of the payment system" : "method of the issuer";
}

std::string Condition(unsigned octet) {
  if (octet < kConditions.size()) return std::string(kConditions[octet]);
  return octet < 0x80 ? "under a reserved condition" : "under a condition of the payment system";
}

Decoding DecodeBits(std::string_view standard, std::span<const Flag> flags, size_t octets,
                    std::string_view digits) {
  Decoding decoding{.standard = standard, .fields = {}, .fault = {}};
  AddFlags(decoding, flags, digits.substr(0, 2 * octets));
  if (digits.size() != 2 * octets) {
    decoding.fault = "it has " + Counted(digits.size() / 2, "byte") + ", and should have " +
                     std::to_string(octets);
  }
  return decoding;
}

// What is wrong with an entry of a file locator; empty if nothing is.
std::string FaultIn(unsigned file, unsigned first, unsigned last, unsigned authenticated) {
  std::string fault;
  if (authenticated > last - first + 1) fault = "it authenticates more records than it has";
  if (last < first) fault = "its last record is below its first";
  if (first == 0) fault = "its first record is 0";
  if ((file & 7) != 0 || file == 0 || file == 0xF8) {
    fault = "its first byte is no short file identifier";
  }
  return fault;
}

}  // namespace

Decoding DecodeDol(std::string_view digits) {
  Decoding decoding{.standard = "data object list, EMV book 3, 5.4", .fields = {}, .fault = {}};
  size_t sum = 0;
  OctetReader rest(digits);
  for (size_t at = 0; rest.Left() > 0; at = digits.size() / 2 - rest.Left()) {
    const size_t octets = TagOctets(digits.substr(2 * at));
    const std::string_view tag = rest.Take(octets);
    if (octets == 0 || rest.Left() == 0) {
      decoding.fault = "the entry at byte " + std::to_string(at + 1) + " is cut";
      return decoding;
    }
    const unsigned length = HexValue(rest.Take(1));
    sum += length;
    const std::string name = TagName(tag);
    decoding.fields.push_back({std::string(tag), digits.substr(2 * at, 2 * octets + 2),
                               Counted(length, "byte") + (name.empty() ? "" : "  " + name)});
  }
  decoding.fields.push_back({"sum", "", Counted(sum, "byte")});
  return decoding;
}

Decoding DecodeAfl(std::string_view digits) {
  Decoding decoding{
      .standard = "application file locator, EMV book 3, 10.2", .fields = {}, .fault = {}};
  OctetReader rest(digits);
  for (unsigned number = 1; rest.Left() >= 4; ++number) {
    const std::string_view entry = rest.Take(4);
    const unsigned file = HexValue(entry.substr(0, 2));
    const unsigned first = HexValue(entry.substr(2, 2));
    const unsigned last = HexValue(entry.substr(4, 2));
    const unsigned authenticated = HexValue(entry.substr(6, 2));
    const std::string fault = FaultIn(file, first, last, authenticated);
    const std::string name = "entry " + std::to_string(number);
    decoding.fields.push_back({name, entry,
                               "SFI " + std::to_string(file >> 3) + ", records " +
                                   std::to_string(first) + " to " + std::to_string(last) +
                                   "; the first " + std::to_string(authenticated) +
                                   " for offline data authentication"});
    if (!fault.empty() && decoding.fault.empty()) decoding.fault = name + ": " + fault;
  }
  if (rest.Left() > 0) decoding.fault = "its last entry is cut: an entry has 4 bytes";
  return decoding;
}

Decoding DecodeAip(std::string_view digits) {
  return DecodeBits("application interchange profile, EMV book 3, C1", kProfile, 2, digits);
}

Decoding DecodeTvr(std::string_view digits) {
  return DecodeBits("terminal verification results, EMV book 3, C5", kResults, 5, digits);
}

Decoding DecodeCvm(std::string_view digits) {
  Decoding decoding{.standard = "cardholder verification method list, EMV book 3, 10.5 and C3",
                    .fields = {},
                    .fault = {}};
  OctetReader rest(digits);
  if (rest.Left() < 8) {
    decoding.fault = "it is cut: the amounts X and Y alone have 8 bytes";
    return decoding;
  }
  for (const char* name : {"X", "Y"}) {
    const std::string_view amount = rest.Take(4);
    decoding.fields.push_back({name, amount, "amount " + std::to_string(HexValue(amount))});
  }
  for (unsigned number = 1; rest.Left() >= 2; ++number) {
    const std::string_view rule = rest.Take(2);
    const unsigned method = HexValue(rule.substr(0, 2));
    decoding.fields.push_back(
        {"rule " + std::to_string(number), rule,
         Method(method) + ", " + Condition(HexValue(rule.substr(2))) +
             ((method & 0x40) != 0 ? "; else the next rule" : "; else fail")});
  }
  if (rest.Left() > 0) decoding.fault = "its last rule is cut: a rule has 2 bytes";
  return decoding;
}

}  // namespace host
