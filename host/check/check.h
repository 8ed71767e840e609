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
  kWarning,  // probably not what was meant
};

// A fault at one place of a script.
struct Diagnostic {
  size_t line;    // counted from 1
  size_t column;  // counted from 1, in characters of UTF-8
  size_t begin;   // the same place and its end, in octets of the line, counted from 0
  size_t end;
  Severity severity;
  std::string text;  // quotes no value
};

// The state in which a script begins.
struct Circumstances {
  std::vector<std::pair<std::string, std::string>> variables;  // names with their %
  std::optional<int32_t> kind;                                 // of the reader; none: not known
  int32_t defaultKind = 3;  // of readers that are named without a kind
  bool warns = true;        // false: report errors alone
};

// Checks a script's lines as far as possible without a card. The language has no control flow, so
// values can be followed from line to line, and a reported error is certain.
class Checker {
 public:
  explicit Checker(const Circumstances& circumstances);
  ~Checker();
  Checker(const Checker&) = delete;
  Checker& operator=(const Checker&) = delete;

  // Checks the next line, without its line end; the second function takes one that is already read.
  void Read(std::string_view line);
  void Read(const Statement& statement);

  // What is known of the value of a statement behind the lines so far. Its faults count as a
  // line's.
  Value Follow(const Statement& statement);

  // All faults of the script, in the order of their places. The next line begins another script, in
  // the same circumstances but with the variables of the script before.
  std::vector<Diagnostic> End();

 private:
  class Work;
  std::unique_ptr<Work> work_;
};

std::vector<Diagnostic> Check(const std::vector<std::string>& lines,
                              const Circumstances& circumstances);

}  // namespace host
