#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/failure.h"
#include "host/response.h"

namespace host {

// The expected response of a card, status word last: hexadecimal digits, X for any digit, .. for
// any number of octets (also none), and variables. Several patterns may be joined with "or". A
// pattern of only a status word accepts any data.
struct Expectation {
  struct Part {
    enum class Kind { kDigits, kGap, kVariable } kind;
    std::string text;  // digits in upper case, or the variable's name with its %
  };
  using Pattern = std::vector<Part>;

  std::vector<Pattern> patterns;  // at least one; one match is enough
};

// Where the pattern begins in a comment that states an expectation, such as "; expect 9000"; none
// in any other line.
std::optional<size_t> FindExpectation(std::string_view line);

// The failure for an expectation that is not below a command.
Failure NoCommandAbove();

// Reads the text from `begin` on. Throws Failure (kScriptFault) with the place marked.
Expectation ReadExpectation(std::string_view text, size_t begin = 0);

// The names of its variables.
std::vector<std::string> VariablesOf(const Expectation& expectation);

// What is wrong with the command line's pattern; empty if nothing is.
std::string CheckPattern(const std::string& text);

// The comment that states this expectation, with ** for its digits.
std::string MaskExpectation(const Expectation& expectation);

// How a response differs from what was expected: the octets of both around the place, with a mark
// below, as lines that begin with a line feed. Empty if the response matches. Of several patterns,
// the one that matches furthest is compared. values holds the values of its variables. Throws
// Failure (kScriptFault) if a value is no pattern.
std::string PartingFrom(const Expectation& expectation, const Response& response,
                        const std::map<std::string, std::string>& values);

}  // namespace host
