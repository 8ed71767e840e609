#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/statement.h"

namespace host {

// Knows which values hold PINs and keys, so that no digit of them is shown. A value is secret
//  - if its variable's name says so (PIN, PUK, KEY, PASSWORD, SECRET),
//  - if it begins as a command that carries secrets and has some of its data,
//  - if the script sends it as data of such a command, gives it as a key to one of the library's
//    commands, or makes such a value from it, through any number of variables,
//  - if it was made from a secret value, except by a command whose result reveals nothing (a
//    length, a MAC, a public-key encryption).
// If a command's beginning depends on the card's answers, it is taken to carry secrets.
class Secrets {
 public:
  // kStraight: everything that Learn looks at will run. kInParts: parts of it may be left out. A
  // variable may then still hold its earlier value, and is as secret as any value that it may hold.
  enum class Flow { kStraight, kInParts };

  explicit Secrets(Flow flow = Flow::kStraight) : flow_(flow) {}

  // Notes a variable that exists before the statements run.
  void Define(std::string_view name, std::string_view value);

  // Looks ahead at a statement, after those that it has looked at and that have not run yet. An
  // assignment makes a value, which goes into the statements that read the variable up to its next
  // assignment. True if an existing value turns out to be secret.
  bool Learn(const Statement& statement);

  // Nothing more of what Learn has looked at will run.
  void StartOver() { next_ = firstAhead_ = static_cast<Number>(values_.size()); }

  // An assignment that Learn has looked at is left out.
  void PassOver() { ++next_; }

  // Follows an assignment that was made. The order is that of Learn.
  void Follow(const Statement& assignment, std::string_view value);

  // Follows a command that was sent: %RESP and %SW hold the card's answer, which is no secret.
  void FollowAnswer();

  // True if the statement reads a secret, stores one, or spells one out. The statement is the one
  // that Follow waits for, or one that stores nothing; with assignmentsBefore, the one that many
  // assignments further on in what Learn has looked at.
  bool Touches(const Statement& statement, size_t assignmentsBefore = 0) const;

  // True for a value that begins as a command that carries secrets and has some of its data.
  static bool BeginsAsSecret(std::string_view value);

 private:
  static constexpr size_t kForeseen = 16;  // header, the longest Lc, the first octet of data
  using Number = uint32_t;  // the number of a value; they are numbered as they are made
  static constexpr Number kNone = UINT32_MAX;

  struct Value {
    // Its first digits in upper case, as far as they are known, then a zero byte.
    std::array<char, kForeseen + 1> beginning = {};
    Number length = kNone;  // kNone: not known
    Number sources = 0;     // where the numbers of its sources begin in sources_
    Number rest = 0;        // where those behind the first unknown operand begin
    Number head = kNone;    // the value of that operand
    Number before = kNone;  // the earlier value, which stays if the assignment is left out
    bool sent = false;      // secret, and so are its sources
    bool made = false;      // made from a secret
    bool headSeen = false;
  };

  struct Variable {
    Number now = kNone;
    Number ahead = kNone;  // the value that Learn has reached; outdated below firstAhead_
  };

  // What is known of the operands from one word on.
  struct Known;
  enum class When { kNow, kAhead };

  static Value Exact(std::string_view text, bool skipsTabs = false);
  Number ValueOf(std::string_view name, When when) const;
  Known Foresee(const Statement& statement, size_t first, When when) const;
  bool IsSecret(std::string_view name) const;
  bool Involves(const Statement& statement, bool hiddenToo) const;
  void Look(const Statement& statement);
  void Add(const Statement& assignment);
  void MarkSources(const Statement& statement, size_t first);
  void MarkBehindHead(const Statement& command);
  void Mark(Number value);
  Number EndOfSources(Number value) const;

  Flow flow_;
  std::unordered_map<std::string, Variable> variables_;
  std::deque<Value> values_;
  std::vector<Number> sources_;
  Number next_ = 0;  // the value that Follow waits for
  Number firstAhead_ = 0;
  size_t marked_ = 0;
};

// The statement with ** for its literals. Numbers and flags stay, and so do the first visibleDigits
// digits of an expression.
std::string MaskLiterals(const Statement& statement, size_t visibleDigits);

}  // namespace host
