#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/check/value.h"
#include "host/statement.h"

namespace host {

enum class Severity {
  kError,    // orvane run ends here with exit code 3
  kWarning,  // nobody means it
};

// What is wrong at one place of a script.
struct Diagnostic {
  size_t line;    // counted from 1
  size_t column;  // counted from 1, in characters of UTF-8
  size_t begin;   // the same place and its end, as octets of the line counted from 0
  size_t end;
  Severity severity;
  std::string text;  // quotes no value
};

// What a script finds when it begins.
struct Circumstances {
  std::vector<std::pair<std::string, std::string>> variables;  // names with their %
  std::optional<int32_t> kind;                                 // of the reader; none: not known
  int32_t defaultKind = 3;  // of readers that are named without one
  bool warns = true;        // false: errors alone are wanted
};

// Reads a script's lines as far as they tell without a card. In a language without control flow
// values can be followed from line to line, so an error is sure.
class Checker {
 public:
  explicit Checker(const Circumstances& circumstances);
  ~Checker();
  Checker(const Checker&) = delete;
  Checker& operator=(const Checker&) = delete;

  // The next line, without its end; the second for one that has been read already.
  void Read(std::string_view line);
  void Read(const Statement& statement);

  // What is known of what a statement evaluates behind the lines that were read. What is wrong with
  // it counts as a line's.
  Value Follow(const Statement& statement);

  // All that is wrong with the script, in the order of the places. What is read behind it is
  // another script, which begins in the same circumstances and finds the variables of the one
  // before.
  std::vector<Diagnostic> End();

 private:
  class Work;
  std::unique_ptr<Work> work_;
};

std::vector<Diagnostic> Check(const std::vector<std::string>& lines,
                              const Circumstances& circumstances);

}  // namespace host
