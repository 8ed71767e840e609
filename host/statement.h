#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "host/builtin.h"
#include "host/failure.h"

namespace host {

// The kind of a word of the language. Its first character decides.
enum class WordKind { kVariable, kLiteral, kBuiltin, kComma, kOpen, kClose, kEquals, kDollar };

// A word's place in the statement's text. Adjacent literals are one word.
struct Word {
  WordKind kind;
  size_t begin;
  size_t end;
};

// Adjacent words of a statement, by the indices of the first and the last one.
struct Words {
  size_t first;
  size_t last;
};

// A built-in with its arguments, from its keyword to its closing parenthesis.
struct Invocation {
  const Builtin* builtin;
  Words words;
};

enum class Form {
  kNothing,      // a comment, or nothing but blanks
  kHeading,      // begins with $
  kExpectation,  // a comment that states the expected response
  kAssignment,
  kExpression,
};

// One complete statement. The library silently runs a malformed statement as far as it goes, so
// half a command could reach a card. A Statement is checked: every built-in is spelled right and
// has its parentheses and its number of arguments, and the library skips no part of it.
struct Statement {
  std::string text;
  Form form = Form::kNothing;
  std::vector<Word> words;
  size_t value = 0;  // index of the first value word: behind = in an assignment, else 0
  size_t end = 0;    // index behind the last evaluated word; a comment may follow
  std::vector<Invocation> invocations;  // inner ones come before outer ones

  // True if the library has nothing to run.
  bool IsComment() const { return form == Form::kNothing || form == Form::kExpectation; }
  // Words as typed.
  std::string_view Source(Words range) const;
  // A word without its blanks.
  std::string TextOf(const Word& word) const;
  // True if it asks the host to act and has no value.
  bool IsForHost() const { return !invocations.empty() && invocations.back().builtin->forHost; }
  // True if its value is a command to the card.
  bool Sends() const { return form == Form::kExpression && !IsForHost(); }
};

// A fault in a line, with its place.
class MalformedStatement : public Failure {
 public:
  MalformedStatement(const std::string& message, size_t place)
      : Failure(kScriptFault, message), place_(place) {}
  size_t Place() const { return place_; }

 private:
  size_t place_;
};

// Parses one line, without its line end. Throws MalformedStatement, or Failure (kScriptFault) for
// an expectation.
Statement ReadStatement(std::string_view line);

// The text of a heading.
std::string_view HeadingText(const Statement& heading);

// The place in the statement's text of a character of a literal, counted without blanks.
size_t PlaceOf(const Statement& statement, const Word& literal, size_t character);

// The words of each argument of a built-in.
std::vector<Words> Arguments(const Statement& statement, const Invocation& invocation);

}  // namespace host
