#include "host/secrets.h"

#include <algorithm>
#include <array>

#include "host/builtin.h"
#include "host/command.h"
#include "host/text.h"

namespace host {
namespace {

constexpr std::array<std::string_view, 5> kTellingNames = {"PIN", "PUK", "KEY", "PASSWORD",
                                                           "SECRET"};
constexpr std::array<const char*, 2> kAnswer = {"%RESP", "%SW"};
constexpr size_t kHeaderDigits = 10;  // with Lc
constexpr size_t kLongest = 2 * kMostCommandOctets;
constexpr size_t kLongestNumber = 3;  // a longer one may be a PIN

// What the position of a word means for it.
struct Place {
  bool key = false;
  bool serialNumber = false;
  bool number = false;
  bool hidden = false;  // its text is not seen in the value
};

struct OpenInvocation {
  const Builtin& builtin;
  Place outside;
  size_t argument = 0;

  Place Inside() const {
    const Parameter& parameter = builtin.parameters[argument];
    const ArgumentKind kind = parameter.kind;
    return {outside.key || kind == ArgumentKind::kKey,
            outside.serialNumber || parameter.serialNumber,
            kind == ArgumentKind::kNumber || kind == ArgumentKind::kFlag,
            outside.hidden || builtin.hides};
  }
};

// The places of the words from first to the end of the operands, or of the argument around it.
std::vector<Place> PlacesFrom(const Statement& statement, size_t first) {
  std::vector<Place> places;
  std::vector<OpenInvocation> open;
  for (size_t at = first; at < statement.end; ++at) {
    const WordKind kind = statement.words[at].kind;
    const bool separates = kind == WordKind::kComma || kind == WordKind::kClose;
    if (separates && open.empty()) break;
    Place place = open.empty() ? Place() : open.back().Inside();
    if (kind == WordKind::kOpen) {
      open.push_back({*FindBuiltin(statement.Source({at - 1, at - 1})), place});
    } else if (kind == WordKind::kComma) {
      ++open.back().argument;
    } else if (kind == WordKind::kClose) {
      place = open.back().outside;
      open.pop_back();
    }
    places.push_back(place);
  }
  return places;
}

// The index behind an operand: a word, or a built-in up to its closing parenthesis.
size_t Behind(const Statement& statement, size_t operand) {
  if (operand >= statement.end || statement.words[operand].kind != WordKind::kBuiltin) {
    return operand + 1;
  }
  size_t depth = 0;
  for (size_t at = operand + 1; at < statement.end; ++at) {
    if (statement.words[at].kind == WordKind::kOpen) ++depth;
    if (statement.words[at].kind == WordKind::kClose && --depth == 0) return at + 1;
  }
  return statement.end;
}

// True for the first word of the statement's operands, or of an argument's.
bool BeginsValue(const Statement& statement, size_t at) {
  if (at == statement.value) return true;
  const WordKind before = statement.words[at - 1].kind;
  return before == WordKind::kOpen || before == WordKind::kComma;
}

bool HasLiteral(const Statement& statement, size_t first) {
  const size_t end = first + PlacesFrom(statement, first).size();
  for (size_t at = first; at < end; ++at) {
    if (statement.words[at].kind == WordKind::kLiteral) return true;
  }
  return false;
}

bool IsTelling(std::string_view upperName) {
  return std::any_of(kTellingNames.begin(), kTellingNames.end(),
                     [&](std::string_view word) { return upperName.find(word) != upperName.npos; });
}

// The position behind the first count non-blank characters of the source text.
size_t SkipCharacters(std::string_view source, size_t count) {
  size_t at = 0;
  for (; at < source.size() && count > 0; ++at) {
    if (source[at] != ' ' && source[at] != '\t') --count;
  }
  return at;
}

// True if a text of this length begins as a command that carries secrets and has some of its data.
// A text that may as well begin with a tag counts only if its Lc fits.
bool CarriesSecretData(std::string_view beginning, size_t length, bool isCommand) {
  if (beginning.size() < 4 || length <= kHeaderDigits ||
      !std::all_of(beginning.begin(), beginning.begin() + 4, IsHexDigit) ||
      !CarriesSecret(beginning)) {
    return false;
  }
  const bool likeTag = beginning[0] >= '2' && beginning[2] < '8';
  if (isCommand || !likeTag) return true;
  if (length % 2 != 0 || length > kLongest ||
      !std::all_of(beginning.begin(), beginning.end(), IsHexDigit)) {
    return false;
  }
  std::string filled(beginning);
  filled.resize(length, '0');
  return ReadCommand(filled, Framing::kApdu).lengthFits;
}

}  // namespace

struct Secrets::Known {
  std::string beginning;
  Number length = kNone;
  size_t end;   // behind the last known word
  size_t data;  // the first word that may be behind a command's header

  bool IsSecret(bool isCommand) const { return CarriesSecretData(beginning, length, isCommand); }
};

Secrets::Number Secrets::ValueOf(std::string_view name, When when) const {
  const auto found = variables_.find(UpperCase(name));
  if (found == variables_.end()) return kNone;
  const Variable& variable = found->second;
  return when == When::kAhead && variable.ahead >= firstAhead_ ? variable.ahead : variable.now;
}

Secrets::Known Secrets::Foresee(const Statement& statement, size_t first, When when) const {
  Known known{"", 0, first, first};
  for (; known.end < statement.end; ++known.end) {
    const Word& word = statement.words[known.end];
    if (word.kind == WordKind::kComma || word.kind == WordKind::kClose) break;
    const bool literal = word.kind == WordKind::kLiteral;
    const std::string_view source = statement.Source({known.end, known.end});
    const Number number = word.kind == WordKind::kVariable ? ValueOf(source, when) : kNone;
    const bool sure = number != kNone && (when == When::kNow || values_[number].before == kNone);
    const Value value = literal ? Exact(source, true) : sure ? values_[number] : Value();
    if (known.beginning.size() == known.length) known.beginning += value.beginning.data();
    known.beginning.resize(std::min(known.beginning.size(), kForeseen));
    if (value.length == kNone) {
      known.length = kNone;
      break;
    }
    known.length += value.length;
    if (known.length <= kHeaderDigits) known.data = known.end + 1;
  }
  return known;
}

bool Secrets::IsSecret(std::string_view name) const {
  if (IsTelling(UpperCase(name))) return true;
  const Number value = ValueOf(name, When::kNow);
  return value != kNone && (values_[value].sent || values_[value].made);
}

// True if the statement's value is made from a secret. With hiddenToo, also if a secret is spelled
// out where the value does not show it.
bool Secrets::Involves(const Statement& statement, bool hiddenToo) const {
  const std::vector<Place> places = PlacesFrom(statement, statement.value);
  for (size_t i = 0; i < places.size(); ++i) {
    const size_t at = statement.value + i;
    const Word& word = statement.words[at];
    const bool hidden = places[i].hidden;
    if (word.kind == WordKind::kVariable && !hidden && IsSecret(statement.TextOf(word)))
      return true;
    if (word.kind == WordKind::kLiteral && places[i].key && (hiddenToo || !hidden)) return true;
    if (!BeginsValue(statement, at)) continue;
    const Known known = Foresee(statement, at, When::kNow);
    const bool spelled = known.IsSecret(word.kind == WordKind::kLiteral && at == 0);
    if (spelled && (!hidden || (hiddenToo && HasLiteral(statement, known.data)))) return true;
  }
  return false;
}

bool Secrets::Touches(const Statement& statement, size_t assignmentsBefore) const {
  const size_t number = next_ + assignmentsBefore;
  const bool stores = statement.form == Form::kAssignment &&
                      (IsTelling(UpperCase(statement.TextOf(statement.words[0]))) ||
                       (number < values_.size() && values_[number].sent));
  return stores || Involves(statement, true);
}

Secrets::Number Secrets::EndOfSources(Number value) const {
  return value + 1 < values_.size() ? values_[value + 1].sources
                                    : static_cast<Number>(sources_.size());
}

// Marks each value once, however many ways lead to it.
void Secrets::Mark(Number value) {
  std::vector<Number> open = {value};
  while (!open.empty()) {
    const Number each = open.back();
    open.pop_back();
    if (each == kNone || values_[each].sent) continue;
    values_[each].sent = true;
    ++marked_;
    open.push_back(values_[each].before);
    open.insert(open.end(), sources_.begin() + values_[each].sources,
                sources_.begin() + EndOfSources(each));
  }
}

void Secrets::MarkSources(const Statement& statement, size_t first) {
  const std::vector<Place> places = PlacesFrom(statement, first);
  for (size_t i = 0; i < places.size(); ++i) {
    const Word& word = statement.words[first + i];
    const bool shows = !places[i].hidden && !places[i].serialNumber;
    if (word.kind == WordKind::kVariable && shows) {
      Mark(ValueOf(statement.TextOf(word), When::kAhead));
    };
  }
}

void Secrets::MarkBehindHead(const Statement& command) {
  const Known known = Foresee(command, command.value, When::kAhead);
  if (known.length != kNone || known.beginning.size() >= 4) return;
  MarkSources(command, Behind(command, known.end));
  if (command.words[known.end].kind != WordKind::kVariable) return;
  std::vector<Number> heads = {ValueOf(command.TextOf(command.words[known.end]), When::kAhead)};
  while (!heads.empty()) {
    const Number head = heads.back();
    heads.pop_back();
    if (head == kNone || values_[head].headSeen) continue;
    values_[head].headSeen = true;
    for (Number at = values_[head].rest; at < EndOfSources(head); ++at) Mark(sources_[at]);
    heads.insert(heads.end(), {values_[head].head, values_[head].before});
  }
}

void Secrets::Add(const Statement& assignment) {
  const Known known = Foresee(assignment, assignment.value, When::kAhead);
  const std::string target = UpperCase(assignment.TextOf(assignment.words[0]));
  const size_t rest = Behind(assignment, known.end);
  Value value;
  known.beginning.copy(value.beginning.data(), kForeseen);
  value.length = known.length;
  value.sources = value.rest = static_cast<Number>(sources_.size());
  value.sent = IsTelling(target) || known.IsSecret(false);
  if (known.length == kNone && assignment.words[known.end].kind == WordKind::kVariable) {
    value.head = ValueOf(assignment.TextOf(assignment.words[known.end]), When::kAhead);
  }
  if (flow_ == Flow::kInParts) value.before = ValueOf(target, When::kAhead);
  const std::vector<Place> places = PlacesFrom(assignment, assignment.value);
  for (size_t i = 0; i < places.size(); ++i) {
    const size_t at = assignment.value + i;
    const Word& word = assignment.words[at];
    const bool shows = !places[i].hidden && !places[i].serialNumber;
    const bool source = word.kind == WordKind::kVariable && shows;
    const Number number = source ? ValueOf(assignment.TextOf(word), When::kAhead) : kNone;
    if (number != kNone) sources_.push_back(number);
    if (at < rest) value.rest = static_cast<Number>(sources_.size());
  }
  variables_[target].ahead = static_cast<Number>(values_.size());
  values_.push_back(value);
}

void Secrets::Look(const Statement& statement) {
  const std::vector<Place> places = PlacesFrom(statement, statement.value);
  for (size_t i = 0; i < places.size(); ++i) {
    const size_t at = statement.value + i;
    const Word& word = statement.words[at];
    if (word.kind == WordKind::kVariable && places[i].key) {
      Mark(ValueOf(statement.TextOf(word), When::kAhead));
    };
    if (!BeginsValue(statement, at)) continue;
    const Known known = Foresee(statement, at, When::kAhead);
    if (known.IsSecret(at == 0 && statement.Sends())) MarkSources(statement, known.data);
  }
  if (statement.form == Form::kAssignment) {
    if (IsTelling(UpperCase(statement.TextOf(statement.words[0]))))
      MarkSources(statement, statement.value);
    Add(statement);
  } else if (statement.Sends()) {
    MarkBehindHead(statement);
    for (const char* name : kAnswer) variables_[name].ahead = kNone;
  }
}

bool Secrets::BeginsAsSecret(std::string_view value) {
  const Value exact = Exact(value);
  return CarriesSecretData(exact.beginning.data(), exact.length, false);
}

Secrets::Value Secrets::Exact(std::string_view text, bool skipsTabs) {
  Value value;
  value.length = 0;
  for (const char c : text) {
    if (c == ' ' || (c == '\t' && skipsTabs)) continue;
    if (value.length < kForeseen) value.beginning[value.length] = c;
    ++value.length;
  }
  UpperCase(value.beginning.data()).copy(value.beginning.data(), kForeseen);
  return value;
}

void Secrets::Define(std::string_view name, std::string_view value) {
  Value defined = Exact(value);
  defined.sent = CarriesSecretData(defined.beginning.data(), defined.length, false);
  defined.sources = defined.rest = static_cast<Number>(sources_.size());
  const auto number = static_cast<Number>(values_.size());
  variables_[UpperCase(name)] = {number, number};
  values_.push_back(defined);
  next_ = firstAhead_ = number + 1;
}

bool Secrets::Learn(const Statement& statement) {
  const size_t before = marked_;
  if (!statement.IsComment() && statement.form != Form::kHeading) Look(statement);
  return marked_ != before;
}

void Secrets::Follow(const Statement& assignment, std::string_view value) {
  if (next_ == values_.size()) Look(assignment);
  Value exact = Exact(value);
  Value& made = values_[next_];
  made.beginning = exact.beginning;
  made.length = exact.length;
  made.made = Involves(assignment, false);
  if (CarriesSecretData(made.beginning.data(), made.length, false)) Mark(next_);
  variables_[UpperCase(assignment.TextOf(assignment.words[0]))].now = next_++;
}

void Secrets::FollowAnswer() {
  for (const char* name : kAnswer) variables_[name].now = kNone;
}

std::string MaskLiterals(const Statement& statement, size_t visibleDigits) {
  const std::vector<Place> places = PlacesFrom(statement, statement.value);
  std::string shown;
  size_t copied = 0;
  for (size_t at = statement.value; at < statement.words.size(); ++at) {
    const Word& word = statement.words[at];
    const size_t place = at - statement.value;
    const bool number = place < places.size() && places[place].number &&
                        word.end - word.begin <= kLongestNumber &&
                        IsDecimal(statement.Source({at, at}));
    if (word.kind != WordKind::kLiteral || number) continue;
    const std::string_view source = statement.Source({at, at});
    const size_t visible = at == 0 ? SkipCharacters(source, visibleDigits) : 0;
    shown += statement.text.substr(copied, word.begin + visible - copied);
    if (visible < source.size()) shown += visible > 0 ? " **" : "**";
    copied = word.end;
  }
  return shown + statement.text.substr(copied);
}

}  // namespace host
