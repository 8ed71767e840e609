#include "host/decode/decode.h"

#include <algorithm>

#include "host/decode/atr.h"
#include "host/decode/command_apdu.h"
#include "host/decode/payment.h"
#include "host/failure.h"
#include "host/status_word.h"
#include "host/text.h"
#include "host/text_input.h"

namespace host {
namespace {

Decoding DecodeStatusWord(std::string_view digits) {
  Decoding decoding{.standard = "status word, ISO/IEC 7816-4", .fields = {}, .fault = {}};
  if (digits.size() != 4) {
    decoding.fault = "it has " + Counted(digits.size() / 2, "byte") + ", and should have 2";
  } else if (!LooksLikeStatusWord(digits)) {
    decoding.fault =
        std::string(digits) + " is no status word: one begins with 6, but not 60, or with 9";
  } else {
    decoding.fields.push_back({"SW", digits, DescribeStatusWord(digits)});
  }
  return decoding;
}

struct Decoder {
  std::string_view kind;
  Decoding (*decode)(std::string_view digits);
};

constexpr Decoder kDecoders[] = {
    {"atr", DecodeAtr}, {"dol", DecodeDol}, {"afl", DecodeAfl},       {"aip", DecodeAip},
    {"tvr", DecodeTvr}, {"cvm", DecodeCvm}, {"sw", DecodeStatusWord}, {"apdu", DecodeCommandApdu}};

// A tag of one octet from 80 to BF has another meaning in each template. These are the templates of
// payment cards; the empty one is for an object that is read alone.
constexpr std::string_view kPaymentTemplates[] = {"", "70", "77"};

struct KnownValue {
  std::string_view tag;
  Decoding (*decode)(std::string_view digits);
};

constexpr KnownValue kValues[] = {{"82", DecodeAip}, {"8C", DecodeDol},   {"8D", DecodeDol},
                                  {"8E", DecodeCvm}, {"94", DecodeAfl},   {"95", DecodeTvr},
                                  {"97", DecodeDol}, {"9F38", DecodeDol}, {"9F49", DecodeDol}};

std::string Padded(std::string text, size_t width) {
  text.resize(std::max(text.size(), width), ' ');
  return text;
}

// Octets that are too many for a column get rows of their own below.
std::vector<std::string> Lines(const std::vector<Field>& fields) {
  constexpr size_t kColumnOctets = 5;
  constexpr size_t kOctets = 3 * kColumnOctets + 1;
  size_t names = 0;
  for (const Field& field : fields) names = std::max(names, field.name.size());
  std::vector<std::string> lines;
  for (const Field& field : fields) {
    const bool fits = field.octets.size() <= 2 * kColumnOctets;
    std::string line = Padded(field.name, names + 2);
    if (!field.octets.empty() || field.name[0] != ' ') {
      line += Padded(fits ? SpacedOctets(field.octets) : "", kOctets);
    }
    line += field.meaning;
    line.erase(line.find_last_not_of(' ') + 1);
    lines.push_back(line);
    if (fits) continue;
    for (const OctetRow& row : OctetRows(field.octets)) {
      lines.push_back("    " + row.octets + row.characters);
    }
  }
  return lines;
}

}  // namespace

std::vector<std::string> DecodedKinds() {
  std::vector<std::string> kinds;
  for (const Decoder& each : kDecoders) kinds.emplace_back(each.kind);
  return kinds;
}

void PrintDecoded(std::ostream& out, std::string_view kind, std::string_view text) {
  const std::string digits = UpperCase(DigitsIn(text));
  const auto decoder = std::find_if(std::begin(kDecoders), std::end(kDecoders),
                                    [&](const Decoder& d) { return d.kind == kind; });
  const Decoding decoding = decoder->decode(digits);
  out << decoding.standard << '\n';
  for (const std::string& line : Lines(decoding.fields)) out << line << '\n';
  if (!decoding.fault.empty()) throw Failure(kScriptFault, decoding.fault);
}

std::vector<std::string> ValueLines(std::string_view tag, std::string_view parent,
                                    std::string_view value) {
  const std::string upper = UpperCase(value);
  for (const KnownValue& each : kValues) {
    if (each.tag != UpperCase(tag) || value.empty()) continue;
    if (tag.size() == 2 && std::find(std::begin(kPaymentTemplates), std::end(kPaymentTemplates),
                                     parent) == std::end(kPaymentTemplates)) {
      continue;
    }
    const Decoding decoding = each.decode(upper);
    if (decoding.fault.empty()) return Lines(decoding.fields);
  }
  return {};
}

}  // namespace host
