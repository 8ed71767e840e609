#include "host/statement.h"

#include <algorithm>
#include <array>

#include "host/failure.h"
#include "host/text.h"

namespace host {
namespace {

struct Command {
  std::string_view keyword;
  size_t arguments;
  bool forHost;  // asks the host to act, and ends the statement's evaluation
};

constexpr std::array<Command, 19> kCommands = {{
    {"@RESET", 0, true},    {"@STOP", 0, true},       {"@STRMID", 3, false},
    {"@STRMIDH", 3, false}, {"@COMPARE", 3, true},    {"@SETREADER", 1, true},
    {"@SETSLOT", 1, true},  {"@STRLEN", 1, false},    {"@STRLENH", 1, false},
    {"@DES", 3, false},     {"@DESCBC", 4, false},    {"@MAC", 4, false},
    {"@XOR", 2, false},     {"@ASC2HEX", 1, false},   {"@HEX2ASC", 1, false},
    {"@SUBKEY", 2, false},  {"@OPENREADER", 1, true}, {"@RSAPUBENC", 3, false},
    {"@HASH", 1, false},
}};

// The library refuses a call nested deeper than this.
constexpr size_t kDeepestNesting = 128;

Failure Malformed(const std::string& message) { return Failure(kScriptFault, message); }

WordKind Classify(char first) {
  switch (first) {
    case '%':
      return WordKind::kVariable;
    case '@':
      return WordKind::kCall;
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
  return kind == WordKind::kVariable || kind == WordKind::kLiteral || kind == WordKind::kCall;
}

std::vector<Word> Split(std::string_view text) {
  std::vector<Word> words;
  size_t begin = 0;
  const auto add = [&](size_t end) {
    if (end > begin) {
      words.push_back(
          {Classify(text[begin]), std::string(text.substr(begin, end - begin)), begin, end});
    }
    begin = end;
  };
  for (size_t at = 0; at < text.size(); ++at) {
    const char c = text[at];
    const bool blank = c == ' ' || c == '\t';
    // Only the first = of a statement separates, and only behind a single word.
    const bool separator = c == '(' || c == ')' || c == ',' || (c == '=' && words.size() <= 1);
    if (blank || separator) add(at);
    if (separator) add(at + 1);
    if (blank) begin = at + 1;
  }
  add(text.size());
  return words;
}

std::vector<Word> JoinLiterals(const std::vector<Word>& words) {
  std::vector<Word> joined;
  for (const Word& word : words) {
    if (word.kind == WordKind::kLiteral && !joined.empty() &&
        joined.back().kind == WordKind::kLiteral) {
      joined.back().text += word.text;
      joined.back().end = word.end;
    } else {
      joined.push_back(word);
    }
  }
  return joined;
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
      if (kind == WordKind::kCall && ReadCall(1)) {
        CheckRest();
        break;
      }
      if (kind != WordKind::kCall) ++at_;
    }
    statement_.end = at_;
  }

 private:
  // Stands on the keyword before, behind the closing parenthesis after. True for a host's command.
  bool ReadCall(size_t depth) {
    const size_t first = at_;
    const std::string& keyword = statement_.words[first].text;
    const Command& command = Find(keyword);
    if (command.forHost && first > 0) throw Malformed(keyword + " must stand alone");
    if (depth > kDeepestNesting) throw Malformed("commands are nested too deeply");
    if (KindAt(first + 1) != WordKind::kOpen) {
      throw Malformed(keyword + " has no \"(\" behind it");
    }
    at_ += 2;
    for (size_t number = 1; number <= command.arguments; ++number) {
      ReadArgument(command, keyword, depth);
      const bool last = number == command.arguments;
      if (!last && KindAt(at_) != WordKind::kComma) throw WrongCount(command, keyword);
      if (!last) ++at_;
    }
    if (KindAt(at_) == WordKind::kComma || IsOperand(KindAt(at_))) {
      throw WrongCount(command, keyword);
    }
    if (KindAt(at_) != WordKind::kClose) throw Malformed(keyword + " is not closed with \")\"");
    statement_.calls.push_back({UpperCase(keyword), command.forHost, first, at_});
    ++at_;
    return command.forHost;
  }

  void ReadArgument(const Command& command, const std::string& keyword, size_t depth) {
    if (!IsOperand(KindAt(at_))) throw WrongCount(command, keyword);
    while (IsOperand(KindAt(at_))) {
      if (KindAt(at_) == WordKind::kCall) {
        ReadCall(depth + 1);
      } else {
        ++at_;
      }
    }
  }

  // Behind a host's command the library evaluates nothing more, and says nothing about it.
  void CheckRest() const {
    const Word& closing = statement_.words[at_ - 1];
    const std::string_view text = statement_.text;
    const size_t rest = text.find_first_not_of(" \t", closing.end);
    if (rest == text.npos || text[rest] == ';' || text[rest] == '/') return;
    throw Malformed("only a comment can stand behind " + statement_.words[0].text + "(...)");
  }

  // Past the end it gives a kind that a call has no use for.
  WordKind KindAt(size_t at) const {
    return at < statement_.words.size() ? statement_.words[at].kind : WordKind::kEquals;
  }

  static const Command& Find(const std::string& keyword) {
    const std::string upper = UpperCase(keyword);
    const auto found = std::find_if(kCommands.begin(), kCommands.end(),
                                    [&](const Command& c) { return c.keyword == upper; });
    if (found == kCommands.end()) throw Malformed("unknown command " + keyword);
    return *found;
  }

  static Failure WrongCount(const Command& command, const std::string& keyword) {
    if (command.arguments == 0) return Malformed(keyword + " takes no arguments");
    return Malformed(keyword + " takes " + Counted(command.arguments, "argument") +
                     ", and none may be empty");
  }

  Failure Stray() const {
    const Word& word = statement_.words[at_];
    if (word.kind == WordKind::kEquals && at_ + 1 == statement_.words.size()) {
      return Malformed("nothing stands behind the \"=\"");
    }
    return Malformed("\"" + word.text.substr(0, 1) + "\" has no meaning here");
  }

  Statement& statement_;
  size_t at_;
};

}  // namespace

std::string_view Statement::Source(size_t first, size_t last) const {
  return std::string_view(text).substr(words[first].begin, words[last].end - words[first].begin);
}

Statement ReadStatement(std::string_view line) {
  Statement statement;
  statement.text = line;
  if (line.find('\0') != line.npos) throw Malformed("the line holds a zero byte");
  const size_t first = line.find_first_not_of(" \t");
  if (first == line.npos || line[first] == '/' || line[first] == ';') return statement;
  if (const std::string_view begin = line.substr(first, 1); begin.find_first_of("(),") == 0) {
    throw Malformed("a statement can't begin with \"" + std::string(begin) + "\"");
  }
  statement.words = JoinLiterals(Split(line));
  statement.form = FormOf(statement.words);
  statement.value = statement.form == Form::kAssignment ? 2 : 0;
  if (statement.form != Form::kHeading) Grammar(statement).ReadValue();
  return statement;
}

std::vector<std::string_view> Arguments(const Statement& statement, const Call& call) {
  std::vector<std::string_view> arguments;
  size_t depth = 0;
  size_t begin = call.first + 2;
  for (size_t at = begin; at <= call.last; ++at) {
    const WordKind kind = statement.words[at].kind;
    const bool ends = depth == 0 && (kind == WordKind::kComma || kind == WordKind::kClose);
    if (ends && at > begin) arguments.push_back(statement.Source(begin, at - 1));
    if (ends) begin = at + 1;
    if (kind == WordKind::kOpen) ++depth;
    if (kind == WordKind::kClose && depth > 0) --depth;
  }
  return arguments;
}

}  // namespace host
