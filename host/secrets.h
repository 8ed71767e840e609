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

// Knows which values hold PINs and keys, so that no digit of one is shown. A value is secret
//  - if its variable's name says so (PIN, PUK, KEY, PASSWORD, SECRET),
//  - if it begins as a command that carries secrets, data included,
//  - if the script sends it as data of such a command, gives it as a key to one of the library's
//    commands, or makes such a value from it, however many variables stand between,
//  - if it was made from a secret one, other than by a command whose result gives nothing away (a
//    length, a MAC, a public-key encryption).
// Behind what only the card's answers tell, a command is taken for one that carries secrets.
class Secrets {
 public:
  // Whether everything that Learn looks at is going to run, or parts of it may be passed over. A
  // variable holds the value from before then, and is as secret as any that may stand in it.
  enum class Flow { kStraight, kInParts };

  explicit Secrets(Flow flow = Flow::kStraight) : flow_(flow) {}

  // Takes note of a variable that statements find.
  void Define(std::string_view name, std::string_view value);

  // Looks ahead at a statement, behind those that it has looked at and that have not run yet: a
  // value is made by an assignment, and goes into those that read the variable up to the next one.
  // True if a value that is there already turns out to be secret.
  bool Learn(const Statement& statement);

  // Of what Learn has looked at, nothing more is going to run.
  void StartOver() { next_ = firstAhead_ = static_cast<Number>(values_.size()); }

  // An assignment that Learn has looked at is not made.
  void PassOver() { ++next_; }

  // Follows an assignment that has been made, in the order of Learn.
  void Follow(const Statement& assignment, std::string_view value);

  // Follows a command that has been sent: %RESP and %SW hold what the card gave, which is no
  // secret.
  void FollowAnswer();

  // True if the statement reads a secret, stores one, or spells one out. It is the one that Follow
  // waits for, or another one that stores nothing; with a number, it stands that many assignments
  // further on in what Learn has looked at.
  bool Touches(const Statement& statement, size_t assignmentsBefore = 0) const;

  // True for a value that begins as a command that carries secrets, some of its data included.
  static bool BeginsAsSecret(std::string_view value);

 private:
  static constexpr size_t kForeseen = 16;  // with Lc in its longest form, and the first octet
  using Number = uint32_t;                 // of a value, in the order in which they are made
  static constexpr Number kNone = UINT32_MAX;

  struct Value {
    // Its first digits, in upper case, as far as they are known, and a zero byte.
    std::array<char, kForeseen + 1> beginning = {};
    Number length = kNone;  // kNone: not known
    Number sources = 0;     // where the values that it is made from begin in sources_
    Number rest = 0;        // and those behind the operand whose text is not known
    Number head = kNone;    // that operand's value
    Number before = kNone;  // what the variable still holds where the assignment is passed over
    bool sent = false;      // secret, and what it is made from is
    bool made = false;      // made from a secret
    bool headSeen = false;
  };

  struct Variable {
    Number now = kNone;
    Number ahead = kNone;  // as Learn goes on; below firstAhead_ it is of another Learn
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

// The statement with ** in place of its literals, but for numbers and flags, and for the first
// digits of an expression, of which visibleDigits stay.
std::string MaskLiterals(const Statement& statement, size_t visibleDigits);

}  // namespace host
