// Makes memory run out. Linking this replaces the allocation functions of the whole program.
#ifndef ORVANE_TESTS_SUPPORT_FAILING_ALLOCATIONS_H
#define ORVANE_TESTS_SUPPORT_FAILING_ALLOCATIONS_H

namespace support {

inline constexpr int kAnyNumber = -1;

// How many allocations succeed before all others fail.
extern int allocationsLeft;

// Runs a call in which this many allocations succeed.
template <typename Call>
auto RunWith(int allocations, Call call) {
  struct Restore {
    ~Restore() { allocationsLeft = kAnyNumber; }
  } restore;
  allocationsLeft = allocations;
  return call();
}

}  // namespace support

#endif
