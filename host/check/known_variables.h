#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "host/check/findings.h"
#include "host/check/value.h"

namespace host {

// The variables of a script up to the current line.
class KnownVariables {
 public:
  explicit KnownVariables(Findings& findings) : findings_(findings) {}

  // Sets a value that comes from outside or from the card.
  void Define(std::string_view name, const Value& value);
  void DefineAnswer();  // %RESP and %SW
  // Sets a value that the script stores at this place of the current line.
  void Assign(std::string_view name, const Value& value, size_t begin, size_t end);

  // The value of a variable that the current line reads at this place. An undefined variable is
  // reported once.
  Value Read(const std::string& name, size_t begin, size_t end);

  // Reports the values that nothing has read.
  void End();

 private:
  struct Variable {
    Value value;
    std::optional<Diagnostic> unused;  // the report if nothing reads the value
  };

  void Drop(Variable& variable);

  Findings& findings_;
  std::unordered_map<std::string, Variable> variables_;  // by name in upper case
};

}  // namespace host
