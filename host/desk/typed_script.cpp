#include "host/desk/typed_script.h"

namespace host {

void TypedScript::Add(const Statement& statement, bool hidden) {
  exchange_.hidden = exchange_.hidden || hidden;
  if (statement.text.find_first_not_of(" \t") != std::string::npos)
    lines_.push_back({statement, exchange_});
}

void TypedScript::Exchanged(const CardExchange& exchange) {
  constexpr size_t kStatusWordDigits = 4;
  const bool told = exchange.response && exchange.response->statusWord.size() == kStatusWordDigits;
  exchange_ = {told ? exchange.response->statusWord : "", exchange.hidden,
               2 * exchange.command.dataBegin};
}

std::string TypedScript::Text(const std::vector<std::pair<std::string, std::string>>& definitions,
                              bool showSecrets) const {
  Secrets secrets;
  for (const auto& [name, value] : definitions) secrets.Define(name, value);
  for (const Line& line : lines_) secrets.Learn(line.statement);
  std::string text;
  size_t assignments = 0;
  bool leftOut = false;  // of the last statement that runs, and so of what is expected of it
  for (auto line = lines_.begin(); line != lines_.end(); ++line) {
    const auto& [statement, exchange] = *line;
    const bool runs = !statement.IsComment() && statement.form != Form::kHeading;
    const bool hide =
        runs && !showSecrets && (exchange.hidden || secrets.Touches(statement, assignments));
    const std::string shown = hide ? MaskLiterals(statement, exchange.headDigits) : statement.text;
    if (runs) leftOut = shown != statement.text;
    const bool comment = leftOut && (runs || statement.form == Form::kExpectation);
    text += (comment ? "; left out: " : "") + shown.substr(shown.find_first_not_of(" \t")) + '\n';
    if (statement.form == Form::kAssignment) ++assignments;
    const bool expected =
        line + 1 != lines_.end() && (line + 1)->statement.form == Form::kExpectation;
    if (exchange.statusWord.empty() || expected || comment) continue;
    text += "; expect " + exchange.statusWord + '\n';
  }
  return text;
}

}  // namespace host
