#include "host/lsp/answers.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <sstream>

#include "host/command.h"
#include "host/decode/decode.h"
#include "host/desk/completion.h"
#include "host/failure.h"
#include "host/text.h"

namespace host {
namespace {

using Json = nlohmann::json;

// The protocol's numbers.
enum DiagnosticSeverity { kErrorSeverity = 1, kWarningSeverity = 2 };
enum CompletionKind { kFunction = 3, kVariable = 6, kValue = 12, kKeyword = 14 };
constexpr int kNamespaceSymbol = 3;

Json RangeOf(const Document& document, size_t line, size_t begin, size_t end) {
  const std::string& text = document.Lines()[line];
  return {{"start", {{"line", line}, {"character", UnitsBefore(text, begin)}}},
          {"end", {{"line", line}, {"character", UnitsBefore(text, end)}}}};
}

// The word around a place, if it is a variable or a call; else empty.
struct WordAt {
  size_t begin = 0;
  size_t end = 0;
  std::string_view text;
};

WordAt FindWord(const Document& document, Place place) {
  const std::string_view line = document.Lines()[place.line];
  const size_t begin = WordBegin(line.substr(0, place.octet));
  const size_t end = std::min(line.find_first_of(kWordBreaks, begin), line.size());
  const std::string_view text = line.substr(begin, end - begin);
  if (!text.starts_with('%') && !text.starts_with('@')) return {};
  return {begin, end, text};
}

int KindOf(const Proposal& proposal) {
  switch (proposal.text[0]) {
    case '@':
      return kFunction;
    case '%':
      return kVariable;
    default:
      return proposal.entry != nullptr ? kKeyword : kValue;
  }
}

// Shows the octets of a command, as far as its value is known.
std::string DescribeCommand(const Value& value) {
  constexpr size_t kHeaderDigits = 8;
  std::string digits = WithoutBlanks(UpperCase(value.begin));
  std::replace(digits.begin(), digits.end(), Value::kUnknown, '?');
  const std::string_view header = std::string_view(digits).substr(0, kHeaderDigits);
  if (header.size() < kHeaderDigits || !std::all_of(header.begin(), header.end(), IsHexDigit)) {
    return "";
  }
  std::ostringstream text;
  if (value.IsExact()) {
    try {
      const CardCommand command = ReadCommand(digits, Framing::kApdu);
      if (!CarriesSecret(command)) {
        PrintDecoded(text, "apdu", digits);
        return text.str();
      }
    } catch (const Failure& failure) {
      return text.str() + failure.what();
    }
  }
  const CardCommand command = ReadCommand(header, Framing::kApdu);
  PrintDecoded(text, "apdu", header);
  if (CarriesSecret(command)) {
    text << "what follows carries a secret\n";
  } else {
    text << "what follows depends on values that are not known here\n";
  }
  return text.str();
}

std::string DescribeVariable(const Document& document, Place place, const std::string& name,
                             const Circumstances& circumstances) {
  if (const auto line = document.AssignmentBefore(place.line + 1, name)) {
    return "line " + std::to_string(*line + 1) + "\n" + document.Lines()[*line];
  }
  if (const Entry* const entry = FindEntry(name)) return std::string(entry->help);
  const auto brought =
      std::find_if(circumstances.variables.begin(), circumstances.variables.end(),
                   [&](const auto& each) { return UpperCase(each.first) == UpperCase(name); });
  return brought == circumstances.variables.end() ? "" : "comes with the command line";
}

std::string DescribeLine(const Document& document, size_t line,
                         const Circumstances& circumstances) {
  const std::optional<Statement> statement = document.Read(line);
  if (!statement || !statement->Sends()) return "";
  Circumstances unknown = circumstances;
  unknown.variables.clear();
  Checker checker(unknown);
  for (size_t at = 0; at < line; ++at) checker.Read(document.Lines()[at]);
  return DescribeCommand(checker.Follow(*statement));
}

Json Hover(const std::string& text, const Json& range) {
  if (text.empty()) return nullptr;
  return {{"contents", {{"kind", "plaintext"}, {"value", text}}}, {"range", range}};
}

}  // namespace

Json DiagnosticsOf(const Document& document, const Circumstances& circumstances) {
  Json found = Json::array();
  for (const Diagnostic& each : Check(document.Lines(), circumstances)) {
    found.push_back(
        {{"range", RangeOf(document, each.line - 1, each.begin, each.end)},
         {"severity", each.severity == Severity::kError ? kErrorSeverity : kWarningSeverity},
         {"source", "orvane"},
         {"message", each.text}});
  }
  return found;
}

Json CompletionAt(const Document& document, Place place, const Circumstances& circumstances) {
  std::vector<std::string> variables = document.VariablesBefore(place.line);
  for (const auto& [name, value] : circumstances.variables) variables.push_back(name);
  const std::string before = document.Lines()[place.line].substr(0, place.octet);
  const Json range = RangeOf(document, place.line, WordBegin(before), place.octet);
  Json items = Json::array();
  for (const Proposal& proposal : ProposeWords(before, variables, ReaderProposals)) {
    Json item = {{"label", proposal.text},
                 {"kind", KindOf(proposal)},
                 {"filterText", proposal.text},
                 {"textEdit", {{"range", range}, {"newText", proposal.text}}}};
    if (proposal.entry != nullptr) {
      item["detail"] = proposal.entry->usage;
      item["documentation"] = proposal.entry->help;
    }
    items.push_back(item);
  }
  return items;
}

Json HoverAt(const Document& document, Place place, const Circumstances& circumstances) {
  const WordAt word = FindWord(document, place);
  const std::string name(word.text);
  const Json range = RangeOf(document, place.line, word.begin, word.end);
  if (name.starts_with('%')) {
    return Hover(DescribeVariable(document, place, name, circumstances), range);
  }
  if (name.starts_with('@')) {
    const Entry* const entry = FindEntry(name);
    return entry == nullptr
               ? Json()
               : Hover(std::string(entry->usage).append("\n").append(entry->help), range);
  }
  const size_t end = document.Lines()[place.line].size();
  return Hover(DescribeLine(document, place.line, circumstances),
               RangeOf(document, place.line, 0, end));
}

Json DefinitionAt(const Document& document, Place place, const std::string& uri) {
  const WordAt word = FindWord(document, place);
  if (!word.text.starts_with('%')) return nullptr;
  const std::optional<size_t> line = document.AssignmentBefore(place.line, word.text);
  if (!line) return nullptr;
  const size_t begin = document.Lines()[*line].find('%');
  return {{"uri", uri}, {"range", RangeOf(document, *line, begin, begin + word.text.size())}};
}

Json OutlineOf(const Document& document) {
  Json symbols = Json::array();
  const std::vector<std::string>& lines = document.Lines();
  size_t end = lines.size();
  for (size_t at = lines.size(); at-- > 0;) {
    const std::optional<Statement> statement = document.Read(at);
    if (!statement || statement->form != Form::kHeading) continue;
    const std::string_view text = HeadingText(*statement);
    Json whole = RangeOf(document, at, 0, lines[at].size());
    const Json heading = whole;
    whole["end"] = RangeOf(document, end - 1, 0, lines[end - 1].size())["end"];
    symbols.push_back({{"name", text.empty() ? "$" : text},
                       {"kind", kNamespaceSymbol},
                       {"range", whole},
                       {"selectionRange", heading}});
    end = at;
  }
  std::reverse(symbols.begin(), symbols.end());
  return symbols;
}

}  // namespace host
