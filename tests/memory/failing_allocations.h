// Makes memory run out, and counts what is taken. Linking this replaces the allocation functions of
// the whole program, the library's among them.
#pragma once

#include <gtest/gtest.h>

namespace orvane_test {

constexpr int kAnyNumber = -1;
extern int allocationsLeft;
extern bool failsOnce;

// Runs a call during which only this many allocations succeed, or all but the one behind them.
template <typename Call>
auto RunWith(int allocations, Call call, bool once = false) {
  struct Limit {
    Limit(int count, bool once) {
      allocationsLeft = count;
      failsOnce = once;
    }
    ~Limit() { allocationsLeft = kAnyNumber; }
  };
  const Limit limit(allocations, once);
  return call();
}

// The number of allocations that a call makes.
template <typename Call>
int AllocationsOf(Call call) {
  constexpr int kPlenty = 1'000'000;
  return RunWith(kPlenty, [&] {
    call();
    return kPlenty - allocationsLeft;
  });
}

// Runs a call that gives 1 where it succeeds, with ever more memory until it does; checks after
// each failure, of which there is one at least.
template <typename Call, typename Check>
void ExpectFailures(Call call, Check check) {
  int allocations = 0;
  for (; RunWith(allocations, call) != 1 && allocations < 1000; ++allocations) check();
  EXPECT_TRUE(allocations > 0 && allocations < 1000) << allocations;
}

}  // namespace orvane_test
