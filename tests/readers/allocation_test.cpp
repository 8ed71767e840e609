#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>

#include "orvane.h"
#include "support/module_loading.h"

namespace {
std::atomic<int> allocations = 0;
}

// The program's operator new is the library's as well.
void* operator new(std::size_t size) {
  ++allocations;
  if (void* const memory = std::malloc(size)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace {

/// The vendor module here allocates nothing, so that every allocation that counts is the library's.
TEST(SendCommand, AllocatesNothing) {
  std::string why;
  ASSERT_NE(support::LoadModule(QUIET_WINSCARD, why), nullptr) << why;
  allocations = 0;
  ASSERT_EQ(OpenReaderA("Quiet", ReaderKindPcsc), 1);
  ASSERT_GT(allocations, 0) << "allocations of the library are not seen";

  static char response[8193];
  allocations = 0;
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(SendCommand("00A4040000", 10, response), 1);
    EXPECT_STREQ(response, "9000");
  }
  EXPECT_EQ(allocations, 0);
}

}  // namespace
