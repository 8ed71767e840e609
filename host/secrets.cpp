#include "host/secrets.h"

#include <algorithm>
#include <array>

#include "host/command.h"
#include "host/text.h"

namespace host {
namespace {

constexpr std::array<std::string_view, 5> kTellingNames = {"PIN", "PUK", "KEY", "PASSWORD",
                                                           "SECRET"};
constexpr std::array<std::string_view, 3> kOwnNames = {"%RESP", "%SW", "%ATR"};
constexpr std::array<std::string_view, 4> kHidingCommands = {"@STRLEN", "@STRLENH", "@MAC",
                                                             "@RSAPUBENC"};
// Their first argument is a key.
constexpr std::array<std::string_view, 4> kKeyCommands = {"@DES", "@DESCBC", "@MAC", "@SUBKEY"};
constexpr size_t kHeaderDigits = 8;

template <typename Names>
bool Contains(const Names& names, std::string_view name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

// True for a word whose value does not show through in the value of the statement.
bool IsHidden(const Statement& statement, size_t word) {
  return std::any_of(statement.calls.begin(), statement.calls.end(), [&](const Call& call) {
    return word > call.first && word < call.last && Contains(kHidingCommands, call.keyword);
  });
}

// The index behind the last word of a call's first argument.
size_t EndOfFirstArgument(const Statement& statement, const Call& call) {
  size_t depth = 0;
  size_t at = call.first + 2;
  for (; at < call.last; ++at) {
    const WordKind kind = statement.words[at].kind;
    if (kind == WordKind::kOpen) ++depth;
    if (kind == WordKind::kClose) --depth;
    if (kind == WordKind::kComma && depth == 0) break;
  }
  return at;
}

bool IsKey(const Statement& statement, size_t word) {
  return std::any_of(statement.calls.begin(), statement.calls.end(), [&](const Call& call) {
    return word > call.first && Contains(kKeyCommands, call.keyword) &&
           word < EndOfFirstArgument(statement, call);
  });
}

// True for a word of the data that tells one derived key from another, which is no secret.
bool IsSerialNumber(const Statement& statement, size_t word) {
  return std::any_of(statement.calls.begin(), statement.calls.end(), [&](const Call& call) {
    return call.keyword == "@SUBKEY" && word < call.last &&
           word >= EndOfFirstArgument(statement, call);
  });
}

bool SpellsKey(const Statement& statement) {
  for (size_t at = statement.value; at < statement.end; ++at) {
    if (statement.words[at].kind == WordKind::kLiteral && IsKey(statement, at)) return true;
  }
  return false;
}

bool SendsSecret(const Statement& statement) {
  if (statement.form != Form::kExpression) return false;
  const Word& first = statement.words[0];
  return first.kind == WordKind::kLiteral && first.text.size() >= 4 &&
         std::all_of(first.text.begin(), first.text.begin() + 4, IsHexDigit) &&
         CarriesSecret(first.text);
}

// The first word behind the header of a command, or behind Lc where a word of its own stands for
// it.
size_t FirstDataWord(const Statement& command) {
  return command.words[0].text.size() == kHeaderDigits && command.end > 2 ? 2 : 1;
}

// The end of the first count characters in the source text that are no blanks.
size_t SkipCharacters(std::string_view source, size_t count) {
  size_t at = 0;
  for (; at < source.size() && count > 0; ++at) {
    if (source[at] != ' ' && source[at] != '\t') --count;
  }
  return at;
}

}  // namespace

bool Secrets::IsSecret(std::string_view name) const {
  const std::string upper = UpperCase(name);
  if (Contains(kOwnNames, upper)) return false;
  const bool telling =
      std::any_of(kTellingNames.begin(), kTellingNames.end(),
                  [&](std::string_view word) { return upper.find(word) != upper.npos; });
  return telling || sent_.contains(upper) || made_.contains(upper);
}

bool Secrets::ReadsSecret(const Statement& statement) const {
  for (size_t at = statement.value; at < statement.end; ++at) {
    const Word& word = statement.words[at];
    const bool secret = (word.kind == WordKind::kVariable && IsSecret(word.text)) ||
                        (word.kind == WordKind::kLiteral && IsKey(statement, at));
    if (secret && !IsHidden(statement, at)) return true;
  }
  return false;
}

bool Secrets::Touches(const Statement& statement) const {
  const bool stores = statement.form == Form::kAssignment && IsSecret(statement.words[0].text);
  return stores || SpellsKey(statement) || SendsSecret(statement) || ReadsSecret(statement);
}

void Secrets::MarkSources(const Statement& statement, size_t first) {
  for (size_t at = first; at < statement.end; ++at) {
    const Word& word = statement.words[at];
    if (word.kind != WordKind::kVariable || IsHidden(statement, at)) continue;
    if (!IsSerialNumber(statement, at)) sent_.insert(UpperCase(word.text));
  }
}

void Secrets::MarkKeys(const Statement& statement) {
  for (size_t at = statement.value; at < statement.end; ++at) {
    const Word& word = statement.words[at];
    if (word.kind == WordKind::kVariable && IsKey(statement, at)) {
      sent_.insert(UpperCase(word.text));
    }
  }
}

void Secrets::Learn(const std::vector<Statement>& script) {
  for (const Statement& statement : script) {
    MarkKeys(statement);
    if (SendsSecret(statement)) MarkSources(statement, FirstDataWord(statement));
  }
  for (size_t known = sent_.size() + 1; known != sent_.size();) {
    known = sent_.size();
    for (const Statement& statement : script) {
      const bool source = statement.form == Form::kAssignment && IsSecret(statement.words[0].text);
      if (source) MarkSources(statement, statement.value);
    }
  }
}

void Secrets::Follow(const Statement& assignment) {
  const std::string target = UpperCase(assignment.words[0].text);
  if (ReadsSecret(assignment)) {
    made_.insert(target);
  } else {
    made_.erase(target);
  }
}

std::string MaskLiterals(const Statement& statement, size_t visibleDigits) {
  std::string shown;
  size_t copied = 0;
  for (size_t at = statement.value; at < statement.words.size(); ++at) {
    const Word& word = statement.words[at];
    if (word.kind != WordKind::kLiteral) continue;
    const bool leads = at == 0;
    const std::string_view source = statement.Source(at, at);
    const size_t visible = leads ? SkipCharacters(source, visibleDigits) : 0;
    shown += statement.text.substr(copied, word.begin + visible - copied);
    if (visible < source.size()) shown += visible > 0 ? " **" : "**";
    copied = word.end;
  }
  return shown + statement.text.substr(copied);
}

}  // namespace host
