// A statement that names one of VARIABLES variables, in no order. The library keeps variables as
// long as a process lives, so every number of them has a program of its own.
#include <benchmark/benchmark.h>

#include <charconv>
#include <cstdint>
#include <iterator>
#include <random>

#include "orvane.h"
#include "refuse.h"

namespace {

void RunOneOfMany(benchmark::State& state) {
  char name[] = "%VARIABLE4294967295";
  const auto setName = [&](std::uint32_t index) {
    *std::to_chars(name + 9, std::end(name), index).ptr = '\0';
  };
  for (std::uint32_t i = 0; i < VARIABLES; ++i) {
    setName(i);
    SetVarValue(name, "A0000000031010");
  }
  char result[512];
  if (RunScript(name, result) != KindExpression) Refuse(name);
  std::minstd_rand random;
  for (auto _ : state) {
    setName(static_cast<std::uint32_t>(random()) % VARIABLES);
    RunScript(name, result);
  }
}

const bool kMeasured = [] {
  const auto name = "a variable of " + std::to_string(VARIABLES) + "/Orvane";
  benchmark::RegisterBenchmark(name.c_str(), RunOneOfMany);
  return true;
}();

}  // namespace
