#include "host/expectation.h"

#include <algorithm>

#include "host/status_word.h"
#include "host/text.h"

namespace host {
namespace {

constexpr std::string_view kWord = "expect";
constexpr std::string_view kBlanks = " \t";
constexpr size_t kStatusWordDigits = 4;
constexpr size_t kOctetsAround = 10;  // shown on each side of a place

using Part = Expectation::Part;
using Kind = Expectation::Part::Kind;

bool IsBlank(char c) { return kBlanks.find(c) != kBlanks.npos; }

class Reader {
 public:
  Reader(std::string_view text, size_t begin) : text_(text), at_(begin) {}

  Expectation Read() {
    expectation_.patterns.emplace_back();
    while (at_ < text_.size()) ReadPart();
    EndPattern();
    return std::move(expectation_);
  }

 private:
  void ReadPart() {
    const char c = text_[at_];
    if (IsBlank(c)) {
      ++at_;
    } else if (IsHexDigit(c) || c == 'X' || c == 'x') {
      ReadDigits();
    } else if (text_.substr(at_).starts_with("..")) {
      EndDigits();
      Add(Kind::kGap, 2);
    } else if (c == '%') {
      EndDigits();
      const size_t end = std::min(text_.find_first_of(" \t(),=", at_), text_.size());
      if (end == at_ + 1) throw Malformed("a variable has no name");
      Add(Kind::kVariable, end - at_);
    } else if (IsOr()) {
      EndPattern();
      expectation_.patterns.emplace_back();
      at_ += 2;
    } else {
      throw Malformed("an expectation has hexadecimal digits, X, .., variables and \"or\" alone");
    }
  }

  bool IsOr() const {
    const bool ends = at_ + 2 >= text_.size() || IsBlank(text_[at_ + 2]);
    return UpperCase(text_.substr(at_, 2)) == "OR" && ends;
  }

  void ReadDigits() {
    Expectation::Pattern& pattern = expectation_.patterns.back();
    if (pattern.empty() || pattern.back().kind != Kind::kDigits) {
      pattern.push_back({Kind::kDigits, ""});
    }
    pattern.back().text += UpperCase(text_.substr(at_++, 1));
  }

  void Add(Kind kind, size_t length) {
    expectation_.patterns.back().push_back({kind, std::string(text_.substr(at_, length))});
    at_ += length;
  }

  void EndDigits() {
    const Expectation::Pattern& pattern = expectation_.patterns.back();
    const bool digits = !pattern.empty() && pattern.back().kind == Kind::kDigits;
    if (digits && pattern.back().text.size() % 2 != 0) {
      throw Malformed("an octet has two digits: one is missing before this place");
    }
  }

  void EndPattern() {
    EndDigits();
    const Expectation::Pattern& pattern = expectation_.patterns.back();
    if (pattern.empty()) throw Malformed("an expectation says here what should come");
    const bool variable =
        pattern.back().kind == Kind::kVariable ||
        (pattern.size() > 1 && pattern[pattern.size() - 2].kind == Kind::kVariable);
    if (pattern.back().kind == Kind::kGap ||
        (!variable && pattern.back().text.size() < kStatusWordDigits)) {
      throw Malformed("an expectation ends in a status word: four digits or X, as in 61XX");
    }
  }

  Failure Malformed(const std::string& message) const {
    return Failure(kScriptFault, message + MarkedAt(text_, at_));
  }

  std::string_view text_;
  size_t at_;
  Expectation expectation_;
};

// A pattern with its variables' values in place: digits, X, and one * for each gap.
std::string Resolve(const Expectation::Pattern& pattern,
                    const std::map<std::string, std::string>& values) {
  std::string digits;
  for (const Part& part : pattern) {
    if (part.kind != Kind::kVariable) {
      digits += part.kind == Kind::kGap ? "*" : part.text;
      continue;
    }
    const std::string value = WithoutBlanks(UpperCase(values.at(part.text)));
    if (value.size() % 2 != 0 || !std::all_of(value.begin(), value.end(), IsHexDigit)) {
      throw Failure(kScriptFault, "the value of " + part.text +
                                      " is not whole octets in hexadecimal: nothing can be "
                                      "expected of it");
    }
    digits += value;
  }
  const size_t gap = digits.rfind('*');
  if (digits.size() - (gap == digits.npos ? 0 : gap + 1) < kStatusWordDigits) {
    throw Failure(kScriptFault,
                  "an expectation ends in a status word, and the variable at its "
                  "end holds none");
  }
  return digits;
}

bool Fits(char wanted, char given) { return wanted == 'X' || wanted == given; }

// The number of digits that match from the beginning of both.
size_t CountFitting(std::string_view wanted, std::string_view given) {
  size_t count = 0;
  while (count < wanted.size() && count < given.size() && Fits(wanted[count], given[count])) {
    ++count;
  }
  return count;
}

// The place of the first difference, in digits of response and pattern; whole octets before it
// match.
struct Place {
  size_t wanted;
  size_t given;
};

// Matches a pattern with gaps. The text between two gaps is matched at the first place where it
// fits.
class Matcher {
 public:
  Matcher(std::string_view wanted, std::string given)
      : wanted_(wanted), text_(std::move(given)), given_(text_) {}

  std::optional<Place> FindParting() {
    const size_t firstGap = std::min(wanted_.find('*'), wanted_.size());
    const size_t fitting = CountFitting(wanted_.substr(0, firstGap), given_);
    const bool whole = firstGap == wanted_.size();
    if (fitting < firstGap || (whole && fitting < given_.size())) return From(0, 0, fitting);
    at_ = fitting;
    for (size_t gap = firstGap; gap < wanted_.size();) {
      const size_t end = std::min(wanted_.find('*', gap + 1), wanted_.size());
      const bool last = end == wanted_.size();
      if (const auto parting = last ? MatchEnd(gap + 1) : Seek(gap + 1, end)) return parting;
      gap = end;
    }
    return std::nullopt;
  }

 private:
  std::optional<Place> Seek(size_t begin, size_t end) {
    const std::string_view part = wanted_.substr(begin, end - begin);
    Place furthest = {begin, at_};
    for (size_t at = at_; at <= given_.size(); at += 2) {
      const size_t count = CountFitting(part, given_.substr(at));
      if (count == part.size()) {
        at_ = at + count;
        return std::nullopt;
      }
      if (begin + count > furthest.wanted + 1) furthest = From(begin, at, count);
    }
    return furthest;
  }

  std::optional<Place> MatchEnd(size_t begin) {
    const std::string_view part = wanted_.substr(begin);
    if (given_.size() - at_ < part.size()) {
      return From(begin, at_, CountFitting(part, given_.substr(at_)));
    }
    const size_t start = given_.size() - part.size();
    const size_t count = CountFitting(part, given_.substr(start));
    return count < part.size() ? std::optional(From(begin, start, count)) : std::nullopt;
  }

  static Place From(size_t wanted, size_t given, size_t count) {
    count &= ~size_t{1};
    return {wanted + count, given + count};
  }

  std::string_view wanted_;
  std::string text_;
  std::string_view given_;
  size_t at_ = 0;
};

std::optional<Place> FindParting(std::string_view wanted, const Response& response) {
  const size_t wordBegin = wanted.size() - kStatusWordDigits;
  const bool hasWord = response.failed || !response.statusWord.empty();
  if (hasWord && CountFitting(wanted.substr(wordBegin), response.statusWord) < kStatusWordDigits) {
    return Place{wordBegin, response.data.size()};
  }
  if (hasWord && wordBegin == 0) return std::nullopt;
  return Matcher(wanted, response.data + response.statusWord).FindParting();
}

bool IsStatusWord(size_t place, const Response& response) {
  return place == response.data.size() && !response.statusWord.empty();
}

// The octets of a pattern or a response, and the index of the one at a place.
struct Octets {
  std::vector<std::string> shown;
  size_t at = 0;
};

Octets TakeApart(std::string_view digits, size_t place) {
  Octets octets;
  for (size_t at = 0; at < digits.size();) {
    const size_t length = digits[at] == '*' ? 1 : 2;
    octets.shown.emplace_back(length == 1 ? ".." : digits.substr(at, length));
    at += length;
    if (at <= place) octets.at = octets.shown.size();
  }
  return octets;
}

// The octets around the place, moved so far right that `before` columns come before it.
std::string Around(const Octets& octets, size_t before) {
  const size_t shown = std::min(octets.at, kOctetsAround);
  const size_t begin = octets.at - shown;
  const size_t end = std::min(octets.shown.size(), octets.at + kOctetsAround);
  std::string text = begin > 0 ? "... " : "";
  text.insert(0, before - text.size() - 3 * shown, ' ');
  for (size_t at = begin; at < end; ++at) text += octets.shown[at] + (at + 1 < end ? " " : "");
  return text + (end < octets.shown.size() ? " ..." : "");
}

size_t ColumnsBefore(const Octets& octets) {
  return 3 * std::min(octets.at, kOctetsAround) + (octets.at > kOctetsAround ? 4 : 0);
}

std::string Show(std::string_view wanted, const Response& response, Place place) {
  const Octets expected = TakeApart(wanted, place.wanted);
  const Octets came = TakeApart(response.data + response.statusWord, place.given);
  const size_t before = std::max(ColumnsBefore(expected), ColumnsBefore(came));
  const bool isWord = IsStatusWord(place.given, response);
  return "\n  expected  " + Around(expected, before) + "\n  came      " + Around(came, before) +
         (isWord ? "   " + DescribeStatusWord(response.statusWord) : "") + "\n            " +
         std::string(before, ' ') + (isWord ? "^^ ^^" : "^^");
}

}  // namespace

std::optional<size_t> FindExpectation(std::string_view line) {
  size_t at = std::min(line.find_first_not_of(kBlanks), line.size());
  if (at == line.size() || line[at] != ';') return std::nullopt;
  at = std::min(line.find_first_not_of(kBlanks, at + 1), line.size());
  if (UpperCase(line.substr(at, kWord.size())) != UpperCase(kWord)) return std::nullopt;
  at += kWord.size();
  const bool wordGoesOn = at < line.size() && !IsBlank(line[at]) && line[at] != ':';
  return wordGoesOn ? std::nullopt : std::optional(at);
}

Failure NoCommandAbove() {
  return Failure(kScriptFault, "an expectation stands below the command that it is about");
}

Expectation ReadExpectation(std::string_view text, size_t begin) {
  return Reader(text, begin).Read();
}

std::vector<std::string> VariablesOf(const Expectation& expectation) {
  std::vector<std::string> names;
  for (const Expectation::Pattern& pattern : expectation.patterns) {
    for (const Part& part : pattern) {
      if (part.kind == Kind::kVariable) names.push_back(part.text);
    }
  }
  return names;
}

std::string CheckPattern(const std::string& text) try {
  if (!VariablesOf(ReadExpectation(text)).empty()) return "variables are for scripts alone";
  return "";
} catch (const Failure& failure) {
  return failure.what();
}

std::string MaskExpectation(const Expectation& expectation) {
  std::string masked = "; expect";
  for (size_t at = 0; at < expectation.patterns.size(); ++at) {
    if (at > 0) masked += " or";
    for (const Part& part : expectation.patterns[at]) {
      masked += part.kind == Kind::kDigits ? " **" : " " + part.text;
    }
  }
  return masked;
}

std::string PartingFrom(const Expectation& expectation, const Response& response,
                        const std::map<std::string, std::string>& values) {
  std::string best;
  std::pair<bool, size_t> furthest;
  for (const Expectation::Pattern& pattern : expectation.patterns) {
    const std::string wanted = Resolve(pattern, values);
    const std::optional<Place> parting = FindParting(wanted, response);
    if (!parting) return "";
    const std::pair<bool, size_t> reached = {!IsStatusWord(parting->given, response),
                                             parting->given};
    if (best.empty() || reached > furthest) best = Show(wanted, response, *parting);
    furthest = std::max(furthest, reached);
  }
  return best;
}

}  // namespace host
