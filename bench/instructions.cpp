// Runs a statement again and again: instructions NUMBER TIMES. Without arguments it lists the
// statements, in the order of their numbers from 0. Whoever counts instructions takes two runs of
// different lengths: what they differ by is the statement's own.
#include <cstdio>
#include <cstdlib>
#include <iterator>

#include "orvane.h"
#include "statements.h"

int main(int count, char** arguments) {
  if (count != 3) {
    for (const Statement& statement : kStatements) std::puts(statement.orvane);
    return 0;
  }
  const std::size_t number = std::strtoul(arguments[1], nullptr, 10);
  if (number >= std::size(kStatements)) Refuse(arguments[1]);
  const Statement& statement = kStatements[number];
  for (const Variable& variable : kVariables) {
    SetVarValue((std::string("%") + variable.name).c_str(), variable.value);
  }
  char value[512];
  for (long left = std::strtol(arguments[2], nullptr, 10); left > 0; --left) {
    RunScript(statement.orvane, value);
  }
  if (value != std::string(statement.value)) Refuse(statement.orvane);
}
