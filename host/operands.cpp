#include "host/operands.h"

#include <orvane.h>

#include "host/builtin.h"
#include "host/engine.h"
#include "host/failure.h"
#include "host/text.h"

namespace host {
namespace {

// Checks operands one by one, so that a fault is reported at the place where it was typed.
class Reader {
 public:
  // `what` names the operands, as in "the key of @des".
  Reader(const Statement& statement, const Parameter& parameter, std::string what, bool hide)
      : statement_(statement), parameter_(parameter), what_(std::move(what)), hide_(hide) {}

  void CheckLiterals(Words words) const {
    ForEachOperand(words, [this](const Word& word) {
      if (word.kind == WordKind::kLiteral) CheckLiteral(word);
    });
  }

  // Gives the value if no character is wrong. Otherwise finds and reports the operand that brings
  // the wrong one.
  std::string CheckCharacters(Words words) const {
    std::string value = ValueOf(words);
    if (value.size() < kLongestValue && !FindWrongCharacter(parameter_, value)) return value;
    ForEachOperand(words, [this](const Word& word) {
      if (word.kind == WordKind::kLiteral) CheckLiteral(word);
      if (word.kind != WordKind::kVariable) return;
      const std::string name = statement_.TextOf(word);
      CheckValue(Evaluate(name), " of " + Printable(name));
    });
    CheckValue(value, "");
    return value;
  }

  void CheckWhole(std::string_view value) const {
    const std::string fault = FaultIn(parameter_, value);
    if (!fault.empty()) throw Failure(kScriptFault, what_ + ' ' + fault + Quoted(value));
  }

 private:
  static constexpr size_t kQuoted = 40;

  // Visits the operands outside of built-ins.
  template <typename Visit>
  void ForEachOperand(Words words, Visit visit) const {
    size_t depth = 0;
    for (size_t at = words.first; at <= words.last; ++at) {
      const Word& word = statement_.words[at];
      if (word.kind == WordKind::kClose) --depth;
      if (word.kind == WordKind::kOpen) ++depth;
      if (depth == 0) visit(word);
    }
  }

  std::string ValueOf(Words words) const {
    const Word& first = statement_.words[words.first];
    const bool literal = words.first == words.last && first.kind == WordKind::kLiteral;
    return literal ? statement_.TextOf(first) : Evaluate(statement_.Source(words));
  }

  std::string Quoted(std::string_view value) const {
    const ArgumentKind kind = parameter_.kind;
    const bool shows = kind == ArgumentKind::kNumber || kind == ArgumentKind::kFlag;
    if (hide_ || !shows) return "";
    return ", but \"" + std::string(value.substr(0, kQuoted)) + '"';
  }

  void CheckLiteral(const Word& word) const {
    const auto wrong = FindWrongCharacter(parameter_, statement_.TextOf(word));
    if (!wrong) return;
    const size_t at = PlaceOf(statement_, word, *wrong);
    throw Wrong("column " + std::to_string(ColumnOf(statement_.text, at)), Line(),
                statement_.text[at], at);
  }

  std::string Line() const {
    std::string line = statement_.text;
    for (const Word& word : statement_.words) {
      if (!hide_ || word.kind != WordKind::kLiteral) continue;
      const size_t size = word.end - word.begin;
      line.replace(word.begin, size, Masked(statement_.text.substr(word.begin, size)));
    }
    return line;
  }

  void CheckValue(const std::string& value, const std::string& where) const {
    const auto wrong = FindWrongCharacter(parameter_, value);
    if (!wrong) return;
    throw Wrong("character " + std::to_string(ColumnOf(value, *wrong)) + where,
                hide_ ? Masked(value) : value, value[*wrong], *wrong);
  }

  Failure Wrong(const std::string& place, std::string_view text, char wrong, size_t at) const {
    return Failure(kScriptFault, what_ + " has no hexadecimal digit at " + place +
                                     std::string(HintAt(wrong)) + MarkedAt(text, at));
  }

  const Statement& statement_;
  const Parameter& parameter_;
  std::string what_;
  bool hide_;
};

class CheckedInvocation {
 public:
  CheckedInvocation(const Statement& statement, const Invocation& invocation, bool hide)
      : statement_(statement),
        invocation_(invocation),
        hide_(hide),
        arguments_(Arguments(statement, invocation)) {}

  void CheckLiterals() const {
    std::vector<std::string> values;
    for (size_t number = 0; number < arguments_.size(); ++number) {
      const Words words = arguments_[number];
      const Word& word = statement_.words[words.first];
      At(number).CheckLiterals(words);
      if (words.first != words.last || word.kind != WordKind::kLiteral) continue;
      values.push_back(statement_.TextOf(word));
      At(number).CheckWhole(values.back());
    }
    if (values.size() == arguments_.size()) CheckTogether(values);
  }

  // Gives the values. Texts are always right and are left out.
  std::vector<std::string> CheckValues() const {
    std::vector<std::string> values;
    for (size_t number = 0; number < arguments_.size(); ++number) {
      const bool text = invocation_.builtin->parameters[number].kind == ArgumentKind::kText;
      values.push_back(text ? "" : At(number).CheckCharacters(arguments_[number]));
      if (!text) At(number).CheckWhole(values.back());
    }
    CheckTogether(values);
    return values;
  }

 private:
  Reader At(size_t number) const {
    const Parameter& parameter = invocation_.builtin->parameters[number];
    return Reader(statement_, parameter, "the " + std::string(parameter.name) + " of " + Keyword(),
                  hide_);
  }

  void CheckTogether(const std::vector<std::string>& values) const {
    const std::string fault = FaultAmong(*invocation_.builtin, values);
    if (!fault.empty()) throw Failure(kScriptFault, Keyword() + ": " + fault);
  }

  std::string Keyword() const {
    return statement_.TextOf(statement_.words[invocation_.words.first]);
  }

  const Statement& statement_;
  const Invocation& invocation_;
  bool hide_;
  std::vector<Words> arguments_;
};

void CheckDefined(const Statement& statement) {
  for (size_t at = statement.value; at < statement.end; ++at) {
    const Word& word = statement.words[at];
    if (word.kind != WordKind::kVariable) continue;
    const std::string name = statement.TextOf(word);
    if (GetVarValue(name.c_str()) == ScriptDone) continue;
    const bool glued = name.find('%', 1) != name.npos;
    throw Failure(kScriptFault,
                  "undefined variable " + name + std::string(glued ? HintAt('%') : ""));
  }
}

void CheckInvocation(const Statement& statement, const Invocation& invocation, bool hide) {
  std::string message;
  const bool fails =
      !invocation.builtin->forHost && Fails(statement.Source(invocation.words), message);
  if (!message.empty()) message = " (the library: " + Printable(message) + ")";
  std::vector<std::string> values;
  try {
    values = CheckedInvocation(statement, invocation, hide).CheckValues();
  } catch (const Failure& failure) {
    const std::string cause = failure.what();
    const size_t line = std::min(cause.find('\n'), cause.size());
    throw Failure(kScriptFault,
                  cause.substr(0, line) + (fails ? message : "") + cause.substr(line));
  }
  if (!fails) return;
  throw Failure(kScriptFault, statement.TextOf(statement.words[invocation.words.first]) +
                                  " failed: " + LikelyCause(*invocation.builtin, values) + message);
}

}  // namespace

void CheckLiterals(const Statement& statement, bool hide) {
  for (const Invocation& each : statement.invocations) {
    CheckedInvocation(statement, each, hide).CheckLiterals();
  }
  if (!statement.Sends()) return;
  Reader(statement, kCommandText, std::string(kCommandText.name), hide)
      .CheckLiterals({0, statement.end - 1});
}

void CheckOperands(const Statement& statement, bool hide) {
  CheckDefined(statement);
  for (const Invocation& each : statement.invocations) CheckInvocation(statement, each, hide);
}

void CheckCommand(const Statement& statement, bool hide) {
  Reader(statement, kCommandText, std::string(kCommandText.name), hide)
      .CheckCharacters({0, statement.end - 1});
}

}  // namespace host
