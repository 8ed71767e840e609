#include "host/check/command_check.h"

#include <algorithm>

#include "host/check/operand_check.h"
#include "host/command.h"
#include "host/response.h"
#include "host/text.h"

namespace host {
namespace {

constexpr size_t kHeaderDigits = 8;

// The value of Lc and the length of what follows, if they disagree; else empty.
std::string FaultInLength(const Value& text, const CardCommand& command) {
  const std::string digits = WithoutBlanks(text.begin);
  if (digits.size() < kHeaderDigits + 4 || (text.whole && command.lengthFits)) return "";
  const bool extended = digits.compare(kHeaderDigits, 2, "00") == 0;
  const size_t end = kHeaderDigits + (extended ? 6 : 2);
  const std::string field = digits.substr(kHeaderDigits, end - kHeaderDigits);
  if (field.find(Value::kUnknown) != field.npos) return "";
  const size_t length = std::stoul(field, nullptr, 16);
  const size_t behind = digits.size() > end ? (digits.size() - end) / 2 : 0;
  const size_t longestLe = extended ? 2 : 1;
  if (!text.whole && behind <= length + longestLe) return "";
  return "Lc says " + Counted(length, "byte") + " of data, and " + (text.whole ? "" : "at least ") +
         std::to_string(behind) + (behind == 1 ? " stands" : " stand") + " behind it";
}

// Throws Failure for a command that cannot be sent. For one that can, gives what is odd about it.
std::string LookAt(const Value& text, std::optional<int32_t> kind) {
  std::string digits = WithoutBlanks(text.begin);
  std::replace(digits.begin(), digits.end(), Value::kUnknown, '0');
  const bool apdu = kind && FramingOf(*kind) == Framing::kApdu;
  // If the end of the text is not known, only a length that is too large counts as a fault.
  if (!text.whole && digits.size() < kHeaderDigits) return "";
  if (!text.whole) digits.resize(digits.size() / 2 * 2);
  const CardCommand command = ReadCommand(digits, apdu ? Framing::kApdu : Framing::kRaw);
  const std::string tooLong = kind ? TooLong(command, *kind) : "";
  if (!tooLong.empty()) throw Failure(kScriptFault, tooLong);
  return apdu ? FaultInLength(text, command) : "";
}

}  // namespace

std::string FirstLine(const Failure& failure) {
  constexpr std::string_view kNothingSent = "; nothing sent";
  std::string text = failure.what();
  text.resize(std::min(text.find('\n'), text.size()));
  if (text.ends_with(kNothingSent)) text.resize(text.size() - kNothingSent.size());
  return text;
}

void CheckCommandText(Findings& findings, const Statement& statement, const Value& text,
                      std::optional<int32_t> kind) {
  if (!text.IsExact() && !text.digits) return;  // may contain blanks
  const Words all = {0, statement.end - 1};
  try {
    const std::string odd = LookAt(text, kind);
    if (!odd.empty()) findings.Report(Severity::kWarning, statement, all, odd);
  } catch (const Failure& fault) {
    findings.Report(SeverityFor(text), statement, all, FirstLine(fault));
  }
}

}  // namespace host
