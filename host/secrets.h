#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "host/statement.h"

namespace host {

// Knows which variables hold PINs and keys, so that no digit of one is shown. A variable is secret
//  - if its name says so (PIN, PUK, KEY, PASSWORD, SECRET),
//  - if the script sends it as the data of a command that carries secrets, gives it as a key to one
//    of the library's commands, or makes such a variable from it,
//  - for as long as its value was made from a secret one, other than by a command whose result
//    gives nothing away (a length, a MAC, a public-key encryption).
// What the program itself stores (%RESP, %SW, %ATR) is never secret.
class Secrets {
 public:
  // Looks at a whole script before it runs.
  void Learn(const std::vector<Statement>& script);

  // Follows an assignment that has been made.
  void Follow(const Statement& assignment);

  // True if the statement reads a secret, stores into a secret variable, spells out the header of a
  // command that carries secrets, or spells out a key.
  bool Touches(const Statement& statement) const;

 private:
  bool IsSecret(std::string_view name) const;
  bool ReadsSecret(const Statement& statement) const;
  void MarkKeys(const Statement& statement);
  void MarkSources(const Statement& statement, size_t first);

  std::set<std::string> sent_;  // found by Learn, keys as well
  std::set<std::string> made_;  // made from another secret, until the next assignment
};

// The statement with ** in place of its literals, but for the first digits of an expression, of
// which visibleDigits stay.
std::string MaskLiterals(const Statement& statement, size_t visibleDigits);

}  // namespace host
