#pragma once

#include <benchmark/benchmark.h>

#include <string>

#include "refuse.h"

// A statement, written in each language as its own script authors would. It is given as text each
// time it runs.
struct Statement {
  const char* orvane;
  const char* lua;
  const char* jim;
  const char* value;  // as text; of an assignment, what the variable CMD then has
};

inline constexpr Statement kStatements[] = {
    {"%CMD = 00A4040007", "CMD = '00A4040007'", "set CMD 00A4040007", "00A4040007"},
    {"00B0 %OFFSET %LEN", "return '00B0' .. OFFSET .. LEN", "set CMD 00B0$OFFSET$LEN",
     "00B0000010"},
    {"@strlen(@strmid(%AID,0,4))", "return #AID:sub(1, 4)", "string length [string range $AID 0 3]",
     "4"},
    {"00A40000 %LEN @strmid(%AID,0,4)", "return '00A40000' .. LEN .. AID:sub(1, 4)",
     "set CMD 00A40000$LEN[string range $AID 0 3]", "00A4000010A000"},
};

struct Variable {
  const char* name;
  const char* value;
};

inline constexpr Variable kVariables[] = {
    {"AID", "A0000000031010"}, {"OFFSET", "0000"}, {"LEN", "10"}};

// Registers every statement for one interpreter, which lives as long as its measurement. `text`
// picks its language. An interpreter has Set(name, value), Evaluate(text), which tells whether it
// ran to its end, and Value(), the last one as text.
template <typename Interpreter>
bool MeasureStatements(const char* interpreterName, const char* Statement::*text) {
  for (const Statement& statement : kStatements) {
    const std::string name = std::string(statement.orvane) + "/" + interpreterName;
    const auto measure = [name, script = std::string(statement.*text),
                          expected = statement.value](benchmark::State& state) {
      Interpreter interpreter;
      for (const Variable& variable : kVariables) interpreter.Set(variable.name, variable.value);
      if (!interpreter.Evaluate(script) || interpreter.Value() != expected) Refuse(name);
      for (auto _ : state) interpreter.Evaluate(script);
    };
    benchmark::RegisterBenchmark(name.c_str(), measure);
  }
  return true;
}
