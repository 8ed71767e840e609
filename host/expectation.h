#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/failure.h"
#include "host/response.h"

namespace host {

// What a card's response should be, its status word last: hexadecimal digits, X for any digit, ..
// for any octets, none included, and variables; several such patterns with "or" between them. A
// pattern of a status word alone says nothing about the data before it.
struct Expectation {
  struct Part {
    enum class Kind { kDigits, kGap, kVariable } kind;
    std::string text;  // digits in upper case, or the variable's name with its %
  };
  using Pattern = std::vector<Part>;

  std::vector<Pattern> patterns;  // one at least; any of them will do
};

// Where the pattern begins in a comment that tells an expectation, "; expect 9000"; none in any
// other line.
std::optional<size_t> FindExpectation(std::string_view line);

// What is wrong with an expectation that stands elsewhere than below a command.
Failure NoCommandAbove();

// Reads the text from there on. Throws Failure (kScriptFault) with the place marked.
Expectation ReadExpectation(std::string_view text, size_t begin = 0);

// The names of its variables.
std::vector<std::string> VariablesOf(const Expectation& expectation);

// What is wrong with the pattern of the command line; empty if nothing is.
std::string CheckPattern(const std::string& text);

// The comment that tells it, with ** for its digits.
std::string MaskExpectation(const Expectation& expectation);

// How a response parts from what was expected: octets of both around the place, and a mark below
// it, as lines that begin with a line feed. Empty if the response is as expected. Of several
// patterns it is the one that the response follows furthest. The values are those of its variables.
// Throws Failure (kScriptFault) where one makes no pattern.
std::string PartingFrom(const Expectation& expectation, const Response& response,
                        const std::map<std::string, std::string>& values);

}  // namespace host
