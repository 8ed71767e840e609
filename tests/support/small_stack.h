#pragma once

#include <cstddef>

namespace orvane_test {

// Runs body in a thread and waits for its end. If it takes more stack than this many bytes, it ends
// the process or, on Windows, this function throws std::runtime_error.
void RunInSmallStack(std::size_t bytes, void (*body)());

}  // namespace orvane_test
