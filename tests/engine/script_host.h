#pragma once

#include <memory>
#include <ostream>
#include <string>

#include "orvane.h"

namespace orvane_test {

// What a statement gave: the code and the text.
struct Outcome {
  int code;
  std::string text;
  bool operator==(const Outcome&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const Outcome& outcome) {
  return out << outcome.code << " \"" << outcome.text << '"';
}

// Runs a statement in a buffer of just the size that is asked for, so that the sanitizers see a
// byte too many.
inline Outcome RunOne(const std::string& statement) {
  const auto result = std::make_unique<char[]>(512);
  const int code = RunScript(statement.c_str(), result.get());
  return {code, result.get()};
}

// A variable's value in its own case, which a statement of its name alone would not show.
inline Outcome Value(const std::string& name) { return RunOne("VALUE_SHOWN = " + name); }

}  // namespace orvane_test
