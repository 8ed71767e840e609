#include "host/tlv.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "host/decode/decode.h"
#include "host/decode/tag_list.h"
#include "host/failure.h"
#include "host/text.h"
#include "host/text_input.h"

namespace host {
namespace {

constexpr size_t kMostTagOctets = 4;
constexpr size_t kMostLengthOctets = 4;  // after the first one

unsigned OctetAt(std::string_view digits, size_t at) { return HexValue(digits.substr(2 * at, 2)); }

class Reader {
 public:
  Reader(std::string_view digits, const std::function<void(const TlvElement&)>& take)
      : digits_(digits), take_(take), ends_{digits.size() / 2} {}

  std::string Read() {
    while (fault_.empty() && SkipToElement()) ReadElement();
    return fault_;
  }

 private:
  unsigned Octet(size_t at) const { return OctetAt(digits_, at); }

  // False at the end of the data.
  bool SkipToElement() {
    for (;;) {
      while (at_ < ends_.back() && Octet(at_) == 0) ++at_;
      if (at_ < ends_.back()) return true;
      if (ends_.size() == 1) return false;
      ends_.pop_back();
      parents_.pop_back();
    }
  }

  // Reads the element at this position, and moves to its value or behind it.
  void ReadElement() {
    const size_t begin = at_;
    const unsigned first = Octet(at_);
    if (!SkipTag()) return Fail(begin, "its tag is cut or has more than 4 octets");
    const std::string_view tag = Digits(begin, at_);
    const std::optional<size_t> length = ReadLength();
    if (!length) return Fail(begin, "its length is cut, indefinite or has more than 5 octets");
    const size_t end = ends_.back();
    if (*length > end - at_) {
      return Fail(begin, "its value of " + Counted(*length, "byte") + " does not fit the " +
                             Counted(end - at_, "byte") + " that are there");
    }
    const bool constructed = (first & 0x20) != 0;
    const size_t valueEnd = at_ + *length;
    take_({tag, Digits(at_, valueEnd), parents_.back(), ends_.size() - 1, constructed});
    if (constructed) {
      parents_.push_back(tag);
      ends_.push_back(valueEnd);
    } else {
      at_ = valueEnd;
    }
  }

  bool SkipTag() {
    const size_t octets = TagOctets(Digits(at_, ends_.back()));
    at_ += octets;
    return octets > 0;
  }

  std::optional<size_t> ReadLength() {
    if (at_ == ends_.back()) return std::nullopt;
    const size_t first = Octet(at_++);
    if (first < 0x80) return first;
    const size_t octets = first - 0x80;
    if (octets == 0 || octets > kMostLengthOctets || octets > ends_.back() - at_) {
      return std::nullopt;
    }
    size_t length = 0;
    for (size_t i = 0; i < octets; ++i) length = length << 8 | Octet(at_++);
    return length;
  }

  std::string_view Digits(size_t begin, size_t end) const {
    return digits_.substr(2 * begin, 2 * (end - begin));
  }

  void Fail(size_t begin, const std::string& why) {
    fault_ = "the element at byte " + std::to_string(begin + 1) + ": " + why;
  }

  std::string_view digits_;
  const std::function<void(const TlvElement&)>& take_;
  size_t at_ = 0;             // in octets, like all places here
  std::vector<size_t> ends_;  // the ends of the data and of the elements around this position
  std::vector<std::string_view> parents_ = {""};  // their tags
  std::string fault_;
};

}  // namespace

size_t TagOctets(std::string_view digits) {
  const size_t most = std::min(digits.size() / 2, kMostTagOctets);
  if (most == 0) return 0;
  if ((OctetAt(digits, 0) & 0x1F) != 0x1F) return 1;
  for (size_t at = 1; at < most; ++at) {
    if ((OctetAt(digits, at) & 0x80) == 0) return at + 1;
  }
  return 0;
}

std::string ReadTlv(std::string_view digits, const std::function<void(const TlvElement&)>& take) {
  return Reader(digits, take).Read();
}

std::vector<std::string> TlvLines(const TlvElement& element) {
  constexpr size_t kDeepestIndent = 64;  // in levels
  const std::string indent(2 * std::min(element.level, kDeepestIndent), ' ');
  std::string head = indent;
  if (element.level > kDeepestIndent) head += std::to_string(element.level) + "> ";
  head += UpperCase(element.tag) + "  " + std::to_string(element.value.size() / 2);
  if (const std::string name = TagName(element.tag); !name.empty()) head += "  " + name;
  std::vector<std::string> lines = {head};
  if (element.constructed) return lines;
  for (const OctetRow& row : OctetRows(UpperCase(element.value))) {
    lines.push_back(indent + "    " + row.octets + row.characters);
  }
  for (const std::string& line : ValueLines(element.tag, element.parent, element.value)) {
    lines.push_back(indent + "    " + line);
  }
  return lines;
}

void PrintTlv(std::ostream& out, std::string_view text) {
  const std::string fault = ReadTlv(DigitsIn(text), [&out](const TlvElement& element) {
    for (const std::string& line : TlvLines(element)) out << line << '\n';
  });
  if (!fault.empty()) throw Failure(kScriptFault, "no BER-TLV: " + fault);
}

}  // namespace host
