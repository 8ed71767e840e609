#include "tags/tag_parser.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

#include "util/hex.h"

static_assert(sizeof(TagRecord) == 2050 && offsetof(TagRecord, value) == 4);

namespace {

constexpr std::size_t kMostValueDigits = sizeof(TagRecord::value);

// The text is the first level; the second is a value of at most 1,023 octets. Each deeper level is
// two octets smaller, for tag and length, and the innermost has at least one octet.
constexpr std::size_t kMostLevels = 1 + (kMostValueDigits / 2 + 1) / 2;

constexpr unsigned kConstructed = 0x20;
constexpr unsigned kMoreTagOctets = 0x1F;
constexpr unsigned kLongForm = 0x80;

std::size_t CopyWithoutBlanks(std::string_view text, char* out) {
  const char* const begin = out;
  if (text.find(' ') == text.npos) {
    std::memcpy(out, text.data(), text.size());
    return text.size();
  }
  for (const char c : text) {
    *out = c;
    out += c != ' ';
  }
  return static_cast<std::size_t>(out - begin);
}

// False if a character is no hexadecimal digit. Free of branches, so that the compiler vectorises
// it.
bool FoldDigits(char* digits, std::size_t count) {
  unsigned char wrong = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const auto c = static_cast<unsigned char>(digits[i]);
    const auto upper = static_cast<unsigned char>(c & 0xDF);
    const bool isDecimal = static_cast<unsigned char>(c - '0') < 10;
    const bool isLetter = static_cast<unsigned char>(upper - 'A') < 6;
    wrong = static_cast<unsigned char>(wrong | !(isDecimal | isLetter));
    digits[i] = static_cast<char>(isLetter ? upper : c);
  }
  return wrong == 0;
}

// Takes a decimal digit or an upper-case letter.
unsigned DigitValue(char c) {
  return (static_cast<unsigned>(c) & 15U) + (static_cast<unsigned>(c) >> 6U) * 9U;
}

}  // namespace

struct TagParser::Element {
  unsigned tag;
  std::array<char, 2> lengthText;
  std::size_t begin;  // where the value begins
  std::size_t end;
};

unsigned TagParser::OctetAt(std::size_t at) const {
  return DigitValue(digits_[at]) << 4U | DigitValue(digits_[at + 1]);
}

bool TagParser::Parse(std::string_view text) {
  const std::size_t begin = digits_.size();
  digits_.resize(begin + text.size());
  char* const added = digits_.data() + begin;
  const std::size_t count = CopyWithoutBlanks(text, added);
  const bool areDigits = FoldDigits(added, count);
  digits_.resize(areDigits ? begin + count : begin);
  const bool parsed = count != 0 && areDigits && StoreElements(begin);
  GiveBackRoom();
  return parsed;
}

bool TagParser::StoreElements(std::size_t begin) {
  std::array<std::size_t, kMostLevels> ends;
  std::size_t level = 0;
  ends[level] = digits_.size();
  for (std::size_t at = begin;;) {
    while (at == ends[level]) {
      if (level == 0) return true;
      --level;
    }
    Element element;
    if (!ReadElement(at, ends[level], element)) return false;
    Store(element);
    at = element.end;
    if ((element.tag & kConstructed) != 0) {
      if (element.begin == element.end) return false;
      at = element.begin;
      ends[++level] = element.end;
    }
  }
}

bool TagParser::ReadElement(std::size_t begin, std::size_t end, Element& element) const {
  if (end - begin < 4) return false;
  element.tag = OctetAt(begin);
  if ((element.tag & kMoreTagOctets) == kMoreTagOctets) return false;
  element.lengthText = {digits_[begin + 2], digits_[begin + 3]};
  element.begin = begin + 4;
  std::size_t length = OctetAt(begin + 2);
  if (length >= kLongForm) {
    const std::size_t octets = length - kLongForm;
    if (octets == 0 || octets > 4 || (end - element.begin) / 2 < octets) return false;
    length = 0;
    for (std::size_t i = 0; i < octets; ++i) length = length << 8U | OctetAt(element.begin + 2 * i);
    element.begin += 2 * octets;
  }
  if (length > kMostValueDigits / 2 || length > (end - element.begin) / 2) return false;
  element.end = element.begin + 2 * length;
  return true;
}

void TagParser::Store(const Element& element) {
  Entry& entry = entries_[element.tag];
  const std::size_t size = element.end - element.begin;
  used_ += size - entry.size;
  entry = {element.begin, size, element.lengthText};
}

// Drops digits that no entry uses any more, once they outnumber the used ones. Keeps them if there
// is no memory for the copy.
void TagParser::GiveBackRoom() noexcept {
  constexpr std::size_t kSpare = 4096;
  const std::size_t room = 2 * used_ + kSpare;
  if (digits_.capacity() <= 2 * room) return;
  try {
    std::string kept;
    kept.reserve(room);
    for (Entry& entry : entries_) {
      const std::size_t begin = kept.size();
      kept.append(digits_, entry.begin, entry.size);
      entry.begin = begin;
    }
    digits_ = std::move(kept);
  } catch (const std::bad_alloc&) {
  }
}

bool TagParser::Find(std::string_view tag, TagRecord& record) const {
  if (tag.size() != 2) return false;
  const unsigned high = orvane::HexDigitValue(tag[0]);
  const unsigned low = orvane::HexDigitValue(tag[1]);
  if ((high | low) > 15) return false;
  const Entry& entry = entries_[high << 4U | low];
  if (entry.lengthText[0] == '\0') return false;
  std::copy(entry.lengthText.begin(), entry.lengthText.end(), record.lengthText);
  std::memcpy(record.value, digits_.data() + entry.begin, entry.size);
  return true;
}
