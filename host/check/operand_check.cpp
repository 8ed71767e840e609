#include "host/check/operand_check.h"

#include <algorithm>

#include "host/text.h"

namespace host {
namespace {

// What is wrong with a whole value whose characters are right; empty if nothing is known.
std::string FaultInWhole(const Parameter& parameter, const Value& value) {
  constexpr size_t kShortestKey = 16;
  const bool octets = parameter.kind == ArgumentKind::kHex || parameter.kind == ArgumentKind::kKey;
  const bool counted = octets && value.whole && (value.digits || !parameter.skipsBlanks);
  if (value.IsExact() || counted) return FaultIn(parameter, value.begin);
  if (parameter.kind == ArgumentKind::kKey && value.Most() < kShortestKey) {
    return "has " + Counted(value.Most() / 2, "octet") + " at most; it takes 8, 16 or 24";
  }
  return "";
}

}  // namespace

Severity SeverityFor(const Value& value) {
  return value.assumed ? Severity::kWarning : Severity::kError;
}

OperandCheck::Result OperandCheck::Follow(const Wanted* wanted) {
  at_ = statement_.value;
  return Operands(wanted);
}

std::vector<Value> OperandCheck::FollowArguments() {
  at_ = 0;
  bool sound = true;
  return Arguments(*FindBuiltin(statement_.TextOf(statement_.words[0])), sound);
}

// Follows the operands from the next word to the first word that begins none.
OperandCheck::Result OperandCheck::Operands(const Wanted* wanted) {
  Result result = {Exactly(""), true};
  while (at_ < statement_.end) {
    const WordKind kind = statement_.words[at_].kind;
    const size_t first = at_;
    if (kind != WordKind::kLiteral && kind != WordKind::kVariable && kind != WordKind::kBuiltin) {
      break;
    }
    const Value operand = Operand();
    if (wanted != nullptr) CheckText(statement_.words[first], *wanted);
    if (wanted != nullptr && result.sound) {
      result.sound = CheckCharacters({first, at_ - 1}, operand, *wanted);
    }
    result.value = Join(result.value, operand);
  }
  return result;
}

Value OperandCheck::Operand() {
  const Word& word = statement_.words[at_];
  if (word.kind == WordKind::kBuiltin) return Invoke();
  ++at_;
  if (word.kind == WordKind::kLiteral) return Exactly(statement_.TextOf(word));
  if (variables_ == nullptr) return AnyText();
  return variables_->Read(statement_.TextOf(word), word.begin, word.end);
}

Value OperandCheck::Invoke() {
  const size_t keyword = at_;
  const Builtin& builtin = *FindBuiltin(statement_.TextOf(statement_.words[keyword]));
  bool sound = true;
  const std::vector<Value> values = Arguments(builtin, sound);
  sound = sound && CheckTogether(builtin, {keyword, at_ - 1}, values);
  return sound ? ValueOf(builtin, values) : AnyText();
}

// Before the call the position is at the keyword, afterwards behind the closing parenthesis.
std::vector<Value> OperandCheck::Arguments(const Builtin& builtin, bool& sound) {
  const std::string keyword = statement_.TextOf(statement_.words[at_]);
  std::vector<Value> values;
  at_ += 2;
  for (size_t number = 0; number < builtin.count; ++number) {
    const size_t first = at_;
    const Parameter& parameter = builtin.parameters[number];
    const Wanted wanted = {parameter, "the " + std::string(parameter.name) + " of " + keyword};
    Result argument = Operands(&wanted);
    const std::string fault = argument.sound ? FaultInWhole(parameter, argument.value) : "";
    if (!fault.empty()) {
      findings_.Report(SeverityFor(argument.value), statement_, {first, at_ - 1},
                       wanted.name + ' ' + fault);
    }
    sound = sound && argument.sound && fault.empty();
    values.push_back(std::move(argument.value));
    ++at_;  // the comma or, at the end, the parenthesis
  }
  if (builtin.count == 0) ++at_;
  return values;
}

// A text may hold any character, but nobody means a quote around it or a variable inside.
void OperandCheck::CheckText(const Word& word, const Wanted& wanted) {
  if (word.kind != WordKind::kLiteral || wanted.parameter.kind != ArgumentKind::kText) return;
  const std::string text = statement_.TextOf(word);
  if (text.starts_with('"')) {
    findings_.Report(Severity::kWarning, word.begin, word.end,
                     wanted.name + " has quotes: there are none here");
  } else if (text.find('%') != text.npos) {
    findings_.Report(Severity::kWarning, word.begin, word.end,
                     wanted.name + " has a % in a word; a variable needs a blank before it");
  }
}

// False if a known character is wrong.
bool OperandCheck::CheckCharacters(Words words, const Value& value, const Wanted& wanted) {
  std::string known = value.begin;
  std::replace(known.begin(), known.end(), Value::kUnknown, '0');
  const auto wrong = FindWrongCharacter(wanted.parameter, known);
  if (!wrong) return true;
  const Word& word = statement_.words[words.first];
  const std::string no = wanted.name + " has no hexadecimal digit at ";
  const std::string hint(HintAt(known[*wrong]));
  if (word.kind == WordKind::kLiteral) {
    const size_t at = PlaceOf(statement_, word, *wrong);
    findings_.Report(Severity::kError, at, at + 1,
                     no + "column " + std::to_string(ColumnOf(statement_.text, at)) + hint);
    return false;
  }
  const std::string of = word.kind == WordKind::kVariable ? " of " + statement_.TextOf(word) : "";
  findings_.Report(SeverityFor(value), statement_, words,
                   no + "character " + std::to_string(ColumnOf(known, *wrong)) + of + hint);
  return false;
}

bool OperandCheck::CheckTogether(const Builtin& builtin, Words words,
                                 const std::vector<Value>& values) {
  std::vector<std::string> texts;
  Severity severity = Severity::kError;
  for (const Value& each : values) {
    if (!each.whole) return true;
    texts.push_back(each.begin);
    if (each.assumed) severity = Severity::kWarning;
  }
  const std::string fault = FaultAmong(builtin, texts);
  if (fault.empty()) return true;
  findings_.Report(severity, statement_, words,
                   statement_.TextOf(statement_.words[words.first]) + ": " + fault);
  return false;
}

}  // namespace host
