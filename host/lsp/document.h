#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/statement.h"

namespace host {

// A script in an editor. Places are octets of its lines, counted from 0.
class Document {
 public:
  explicit Document(std::string_view text);

  const std::vector<std::string>& Lines() const { return lines_; }

  // The statement of a line; none if it is malformed or there is no such line.
  std::optional<Statement> Read(size_t line) const;

  // The last line before this one that stores the variable; none if there is none.
  std::optional<size_t> AssignmentBefore(size_t line, std::string_view variable) const;

  // The names with % that the lines before this one store, each once.
  std::vector<std::string> VariablesBefore(size_t line) const;

 private:
  std::vector<std::string> lines_;
};

// The variable that a line stores, as typed; empty if it stores none that a script can read.
std::string_view StoredVariable(std::string_view line);

// Converts between octets and UTF-16 units, in which editors count.
size_t UnitsBefore(std::string_view line, size_t octet);
size_t OctetAt(std::string_view line, size_t unit);

}  // namespace host
