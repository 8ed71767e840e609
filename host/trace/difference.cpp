#include "host/trace/difference.h"

#include <algorithm>
#include <vector>

#include "host/status_word.h"
#include "host/text.h"

namespace host {
namespace {

constexpr size_t kShownBefore = 8;  // octets before the first difference
constexpr size_t kShownAtOnce = 24;

std::vector<const RecordedEvent*> ExchangesOf(const Recording& recording) {
  std::vector<const RecordedEvent*> exchanges;
  for (const RecordedEvent& event : recording.events) {
    if (event.type == EventType::kExchange) exchanges.push_back(&event);
  }
  return exchanges;
}

std::string FirstAtr(const Recording& recording) {
  for (const RecordedEvent& event : recording.events) {
    if (!event.atr.empty()) return event.atr;
  }
  return "";
}

std::string Place(const NamedRecording& session, const RecordedEvent& event) {
  return Printable(session.name) + ':' + std::to_string(event.line);
}

std::string Shown(const RecordedEvent& exchange, bool showSecrets) {
  const CardCommand command = CommandOf(exchange);
  std::string text = HidesData(exchange, showSecrets)
                         ? recordings::WithoutData(command.digits, command)
                         : command.digits;
  text = SpacedOctets(text);
  const std::string name(CommandName(command));
  return name.empty() ? text : text + "   " + name;
}

// The octets around the first difference.
std::string Around(const std::string& digits, size_t octet) {
  const size_t begin = octet > kShownBefore ? octet - kShownBefore : 0;
  if (begin >= digits.size() / 2) return "...";
  const std::string part =
      SpacedOctets(std::string_view(digits).substr(2 * begin, 2 * kShownAtOnce));
  return (begin > 0 ? "... " : "") + part +
         (digits.size() > 2 * (begin + kShownAtOnce) ? " ..." : "");
}

std::string Outcome(const RecordedEvent& exchange, size_t octet) {
  if (!exchange.failed.empty()) return "failed: " + Printable(exchange.failed);
  const std::string octets = Around(OctetsOf(exchange), octet);
  return exchange.response.empty() && !exchange.statusWord.empty()
             ? octets + "  " + DescribeStatusWord(exchange.statusWord)
             : octets;
}

class Comparison {
 public:
  Comparison(std::ostream& out, const NamedRecording& left, const NamedRecording& right,
             bool showSecrets, bool times)
      : out_(out), left_(left), right_(right), showSecrets_(showSecrets), times_(times) {}

  bool Print() {
    CompareAtrs();
    const auto left = ExchangesOf(left_.recording), right = ExchangesOf(right_.recording);
    const size_t common = std::min(left.size(), right.size());
    size_t at = 0;
    for (; at < common && Same(*left[at], *right[at]); ++at)
      CompareResponses(*left[at], *right[at]);
    if (at < common) {
      PrintPair("other commands from here on", *left[at], *right[at],
                Shown(*left[at], showSecrets_), Shown(*right[at], showSecrets_));
    } else if (left.size() != right.size()) {
      const bool leftIsLonger = left.size() > right.size();
      const NamedRecording& longer = leftIsLonger ? left_ : right_;
      const RecordedEvent& more = *(leftIsLonger ? left : right)[common];
      out_ << Place(longer, more) << ": here alone\n"
           << "  " << Shown(more, showSecrets_) << '\n';
    }
    const bool same = differences_ == 0 && at == left.size() && at == right.size();
    out_ << Counted(at, "same command") << ", "
         << (differences_ == 0 ? "same responses" : Counted(differences_, "other response"))
         << '\n';
    return same && !atrsDiffer_;
  }

 private:
  void CompareAtrs() {
    const std::string left = FirstAtr(left_.recording), right = FirstAtr(right_.recording);
    atrsDiffer_ = left != right;
    if (!atrsDiffer_) return;
    out_ << "another ATR\n  " << SpacedOctets(left) << "\n  " << SpacedOctets(right) << '\n';
  }

  // A hidden digit equals any digit.
  static bool Same(const RecordedEvent& left, const RecordedEvent& right) {
    return recordings::Matches(left, right.command) || recordings::Matches(right, left.command);
  }

  void CompareResponses(const RecordedEvent& left, const RecordedEvent& right) {
    const std::string one = OctetsOf(left), other = OctetsOf(right);
    if (one != other || left.failed != right.failed) {
      ++differences_;
      const auto parting = std::mismatch(one.begin(), one.end(), other.begin(), other.end()).first;
      const size_t octet = static_cast<size_t>(parting - one.begin()) / 2;
      PrintPair("another response to " + Shown(left, showSecrets_) +
                    (octet > 0 ? ", from octet " + std::to_string(octet + 1) + " on" : ""),
                left, right, Outcome(left, octet), Outcome(right, octet));
    }
    if (!times_) return;
    out_ << Place(left_, left) << ", " << Place(right_, right) << ": " << left.took << " us, "
         << right.took << " us\n";
  }

  void PrintPair(const std::string& what, const RecordedEvent& left, const RecordedEvent& right,
                 const std::string& leftText, const std::string& rightText) {
    out_ << Place(left_, left) << ", " << Place(right_, right) << ": " << what << "\n  " << leftText
         << "\n  " << rightText << '\n';
  }

  std::ostream& out_;
  const NamedRecording& left_;
  const NamedRecording& right_;
  bool showSecrets_;
  bool times_;
  bool atrsDiffer_ = false;
  size_t differences_ = 0;
};

}  // namespace

bool PrintDifferences(std::ostream& out, const NamedRecording& left, const NamedRecording& right,
                      bool showSecrets, bool times) {
  return Comparison(out, left, right, showSecrets, times).Print();
}

}  // namespace host
