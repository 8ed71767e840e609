#pragma once

#include <cstddef>

namespace orvane_test {

// Runs body in a thread whose stack has this many bytes, and waits for its end.
void RunInSmallStack(std::size_t bytes, void (*body)());

}  // namespace orvane_test
