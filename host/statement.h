#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "host/builtin.h"
#include "host/failure.h"

namespace host {

// What a word of the language is; its first character decides.
enum class WordKind { kVariable, kLiteral, kBuiltin, kComma, kOpen, kClose, kEquals, kDollar };

// Its place in the statement's text. Literals side by side are one word.
struct Word {
  WordKind kind;
  size_t begin;
  size_t end;
};

// Neighbouring words of a statement, by the indices of the first and the last one.
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
  kExpectation,  // a comment that says what a command should bring
  kAssignment,
  kExpression,
};

// One statement that is sure to be complete. The library runs malformed statements as far as they
// go and says nothing about it, so that half a command could reach a card; a Statement has every
// built-in of it spelled right, with its parentheses and its number of arguments, and nothing that
// the library would pass over.
struct Statement {
  std::string text;
  Form form = Form::kNothing;
  std::vector<Word> words;
  size_t value = 0;  // index of the first word behind the = of an assignment, else 0
  size_t end = 0;    // index behind the last word that is evaluated; a comment may stand there
  std::vector<Invocation> invocations;  // an inner one stands before the outer one

  // True for what the library's language has nothing to do with.
  bool IsComment() const { return form == Form::kNothing || form == Form::kExpectation; }
  // Words as they were typed.
  std::string_view Source(Words range) const;
  // A word without the blanks in it.
  std::string TextOf(const Word& word) const;
  // True if it asks the host to act, and has no value.
  bool IsForHost() const { return !invocations.empty() && invocations.back().builtin->forHost; }
  // True if its value is a command to the card.
  bool Sends() const { return form == Form::kExpression && !IsForHost(); }
};

// What is wrong with a line, and where in it.
class MalformedStatement : public Failure {
 public:
  MalformedStatement(const std::string& message, size_t place)
      : Failure(kScriptFault, message), place_(place) {}
  size_t Place() const { return place_; }

 private:
  size_t place_;
};

// Reads one line without its line end. Throws MalformedStatement, or Failure (kScriptFault) for an
// expectation.
Statement ReadStatement(std::string_view line);

// What a heading says.
std::string_view HeadingText(const Statement& heading);

// The place in the statement's text of a character of a literal, which has lost its blanks.
size_t PlaceOf(const Statement& statement, const Word& literal, size_t character);

// The words of each of a built-in's arguments.
std::vector<Words> Arguments(const Statement& statement, const Invocation& invocation);

}  // namespace host
