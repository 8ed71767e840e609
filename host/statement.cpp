#include "host/statement.h"

#include "host/expectation.h"
#include "host/text.h"

namespace host {
namespace {

// The library refuses deeper nesting of built-ins.
constexpr size_t kDeepestNesting = 128;

MalformedStatement Malformed(const std::string& message, size_t place) {
  return MalformedStatement(message, place);
}

WordKind Classify(char first) {
  switch (first) {
    case '%':
      return WordKind::kVariable;
    case '@':
      return WordKind::kBuiltin;
    case ',':
      return WordKind::kComma;
    case '(':
      return WordKind::kOpen;
    case ')':
      return WordKind::kClose;
    case '=':
      return WordKind::kEquals;
    case '$':
      return WordKind::kDollar;
    default:
      return WordKind::kLiteral;
  }
}

bool IsOperand(WordKind kind) {
  return kind == WordKind::kVariable || kind == WordKind::kLiteral || kind == WordKind::kBuiltin;
}

std::vector<Word> Split(std::string_view text) {
  std::vector<Word> words;
  size_t begin = 0;
  const auto add = [&](size_t end) {
    if (end > begin) words.push_back({Classify(text[begin]), begin, end});
    begin = end;
  };
  for (size_t at = 0; at < text.size(); ++at) {
    const char c = text[at];
    const bool blank = c == ' ' || c == '\t';
    // Only the statement's first = is a separator, and only behind a single word.
    const bool separator = c == '(' || c == ')' || c == ',' || (c == '=' && words.size() <= 1);
    if (blank || separator) add(at);
    if (separator) add(at + 1);
    if (blank) begin = at + 1;
  }
  add(text.size());
  return words;
}

// The engine would join a comment at a line's end to the text before it. A comment is a word that
// is only a comment mark, between an operand and a literal. Behind a built-in for the host a
// comment is allowed.
void CheckComments(std::string_view text, const std::vector<Word>& words) {
  const auto textOf = [&](const Word& word) {
    return text.substr(word.begin, word.end - word.begin);
  };
  const Builtin* const first = FindBuiltin(textOf(words[0]));
  if (words[0].kind == WordKind::kDollar || (first != nullptr && first->forHost)) return;
  size_t depth = 0;
  for (size_t at = 1; at + 1 < words.size(); ++at) {
    const Word& word = words[at];
    if (word.kind == WordKind::kOpen) ++depth;
    if (word.kind == WordKind::kClose && depth > 0) --depth;
    if (depth > 0 || word.kind != WordKind::kLiteral) continue;
    const std::string_view typed = textOf(word);
    const bool mark = typed == ";" || typed == "//" || typed == "#";
    const WordKind before = words[at - 1].kind;
    const bool behind =
        before == WordKind::kLiteral || before == WordKind::kVariable || before == WordKind::kClose;
    if (!mark || !behind || words[at + 1].kind != WordKind::kLiteral) continue;
    throw Malformed("a comment needs a line of its own" + MarkedAt(text, word.begin), word.begin);
  }
}

// In a statement's line no host reads an expectation, and a built-in for the host would hide it.
void CheckExpectations(std::string_view text) {
  for (size_t at = text.find(';'); at != text.npos; at = text.find(';', at + 1)) {
    if (!FindExpectation(text.substr(at))) continue;
    throw Malformed(
        "an expectation needs a line of its own, below the command" + MarkedAt(text, at), at);
  }
}

// A hint at the habit behind a line that is no statement; empty if there is none.
std::string_view HabitIn(std::string_view text) {
  if (text.find('"') == text.npos) return "";
  return "; there are no quotes, and what holds parentheses or commas comes in through a variable";
}

void JoinLiterals(std::vector<Word>& words) {
  size_t joined = 0;
  for (const Word& word : words) {
    const bool joins = joined > 0 && word.kind == WordKind::kLiteral &&
                       words[joined - 1].kind == WordKind::kLiteral;
    if (joins) {
      words[joined - 1].end = word.end;
    } else {
      words[joined++] = word;
    }
  }
  words.resize(joined);
}

Form FormOf(const std::vector<Word>& words) {
  if (words.empty()) return Form::kNothing;
  const WordKind first = words[0].kind;
  if (first == WordKind::kDollar) return Form::kHeading;
  const bool target = first == WordKind::kVariable || first == WordKind::kLiteral;
  if (target && words.size() > 2 && words[1].kind == WordKind::kEquals) return Form::kAssignment;
  return Form::kExpression;
}

class Grammar {
 public:
  explicit Grammar(Statement& statement) : statement_(statement), at_(statement.value) {}

  void ReadValue() {
    while (at_ < statement_.words.size()) {
      const WordKind kind = statement_.words[at_].kind;
      if (!IsOperand(kind)) throw Stray();
      if (kind == WordKind::kBuiltin && ReadInvocation(1)) {
        CheckRest();
        break;
      }
      if (kind != WordKind::kBuiltin) ++at_;
    }
    statement_.end = at_;
  }

 private:
  // The position moves from the keyword to behind the closing parenthesis. True for a built-in for
  // the host.
  bool ReadInvocation(size_t depth) {
    const size_t first = at_;
    const std::string keyword(statement_.Source({first, first}));
    const Builtin& builtin = Find(first);
    if (builtin.forHost && first > 0)
      throw Malformed(keyword + " must stand alone", PlaceOf(first));
    if (depth > kDeepestNesting) throw Malformed("commands are nested too deeply", PlaceOf(first));
    if (KindAt(first + 1) != WordKind::kOpen) {
      throw Malformed(keyword + " has no \"(\" behind it", PlaceOf(first));
    }
    at_ += 2;
    for (size_t number = 1; number <= builtin.count; ++number) {
      ReadArgument(builtin, first, depth);
      const bool last = number == builtin.count;
      if (!last && KindAt(at_) != WordKind::kComma) throw WrongCount(builtin, first);
      if (!last) ++at_;
    }
    if (KindAt(at_) == WordKind::kComma || IsOperand(KindAt(at_))) {
      throw WrongCount(builtin, first);
    }
    if (KindAt(at_) != WordKind::kClose) {
      throw Malformed(keyword + " is not closed with \")\"", PlaceOf(first));
    }
    statement_.invocations.push_back({&builtin, {first, at_}});
    ++at_;
    return builtin.forHost;
  }

  void ReadArgument(const Builtin& builtin, size_t keyword, size_t depth) {
    if (!IsOperand(KindAt(at_))) throw WrongCount(builtin, keyword);
    while (IsOperand(KindAt(at_))) {
      if (KindAt(at_) == WordKind::kBuiltin) {
        ReadInvocation(depth + 1);
      } else {
        ++at_;
      }
    }
  }

  // Behind a built-in for the host the library silently evaluates nothing more.
  void CheckRest() const {
    const Word& closing = statement_.words[at_ - 1];
    const std::string_view text = statement_.text;
    const size_t rest = text.find_first_not_of(" \t", closing.end);
    if (rest == text.npos || text[rest] == ';' || text[rest] == '/') return;
    throw Malformed(
        "only a comment can stand behind " + std::string(statement_.Source({0, 0})) + "(...)",
        rest);
  }

  // Past the end it gives a kind that never fits in an invocation.
  WordKind KindAt(size_t at) const {
    return at < statement_.words.size() ? statement_.words[at].kind : WordKind::kEquals;
  }

  size_t PlaceOf(size_t word) const { return statement_.words[word].begin; }

  std::string Keyword(size_t word) const { return std::string(statement_.Source({word, word})); }

  const Builtin& Find(size_t word) const {
    const Builtin* const found = FindBuiltin(Keyword(word));
    if (found == nullptr) throw Malformed("unknown command " + Keyword(word), PlaceOf(word));
    return *found;
  }

  MalformedStatement WrongCount(const Builtin& builtin, size_t word) const {
    const std::string takes = builtin.count == 0 ? " takes no arguments"
                                                 : " takes " + Counted(builtin.count, "argument") +
                                                       ", and none may be empty";
    return Malformed(Keyword(word) + takes, PlaceOf(word));
  }

  MalformedStatement Stray() const {
    const Word& word = statement_.words[at_];
    if (word.kind == WordKind::kEquals && at_ + 1 == statement_.words.size()) {
      return Malformed("nothing stands behind the \"=\"", word.begin);
    }
    return Malformed("\"" + statement_.text.substr(word.begin, 1) + "\" has no meaning here",
                     word.begin);
  }

  Statement& statement_;
  size_t at_;
};

}  // namespace

std::string_view Statement::Source(Words range) const {
  const size_t begin = words[range.first].begin;
  return std::string_view(text).substr(begin, words[range.last].end - begin);
}

std::string Statement::TextOf(const Word& word) const {
  std::string typed = text.substr(word.begin, word.end - word.begin);
  std::erase_if(typed, [](char c) { return c == ' ' || c == '\t'; });
  return typed;
}

Statement ReadStatement(std::string_view line) {
  Statement statement;
  statement.text = line;
  if (line.find('\0') != line.npos) {
    throw Malformed("the line holds a zero byte", line.find('\0'));
  }
  if (const std::optional<size_t> pattern = FindExpectation(line)) {
    ReadExpectation(line, *pattern);
    statement.form = Form::kExpectation;
    return statement;
  }
  const size_t first = line.find_first_not_of(" \t");
  if (first == line.npos || line[first] == '/' || line[first] == ';') return statement;
  if (const std::string_view begin = line.substr(first, 1); begin.find_first_of("(),") == 0) {
    throw Malformed("a statement can't begin with \"" + std::string(begin) + "\"", first);
  }
  statement.words = Split(line);
  if (line[first] != '$') CheckExpectations(line);
  CheckComments(line, statement.words);
  JoinLiterals(statement.words);
  statement.form = FormOf(statement.words);
  if (line[first] == '#' && statement.form == Form::kExpression) {
    throw Malformed("a comment begins with ;, and not with #", first);
  }
  statement.value = statement.form == Form::kAssignment ? 2 : 0;
  if (statement.form == Form::kHeading) return statement;
  try {
    Grammar(statement).ReadValue();
  } catch (const MalformedStatement& fault) {
    throw Malformed(fault.what() + std::string(HabitIn(line)), fault.Place());
  }
  return statement;
}

std::string_view HeadingText(const Statement& heading) {
  const std::string_view text = heading.text;
  const size_t begin = text.find_first_not_of(" \t", text.find('$') + 1);
  return text.substr(std::min(begin, text.size()));
}

size_t PlaceOf(const Statement& statement, const Word& literal, size_t character) {
  size_t at = literal.begin;
  for (;; ++at) {
    const char c = statement.text[at];
    if (c == ' ' || c == '\t') continue;
    if (character-- == 0) return at;
  }
}

std::vector<Words> Arguments(const Statement& statement, const Invocation& invocation) {
  std::vector<Words> arguments;
  size_t depth = 0;
  size_t begin = invocation.words.first + 2;
  for (size_t at = begin; at <= invocation.words.last; ++at) {
    const WordKind kind = statement.words[at].kind;
    const bool ends = depth == 0 && (kind == WordKind::kComma || kind == WordKind::kClose);
    if (ends && at > begin) arguments.push_back({begin, at - 1});
    if (ends) begin = at + 1;
    if (kind == WordKind::kOpen) ++depth;
    if (kind == WordKind::kClose && depth > 0) --depth;
  }
  return arguments;
}

}  // namespace host
