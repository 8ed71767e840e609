#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <new>
#include <string>

#include "orvane.h"

namespace {

constexpr int kNever = -1;
/// How many allocations of this process succeed before all others fail.
int allocationsLeft = kNever;

void* Allocate(std::size_t size) {
  if (allocationsLeft == 0) throw std::bad_alloc();
  if (allocationsLeft > 0) --allocationsLeft;
  void* const area = std::malloc(size);
  if (area == nullptr) throw std::bad_alloc();
  return area;
}

}  // namespace

void* operator new(std::size_t size) { return Allocate(size); }
void* operator new[](std::size_t size) { return Allocate(size); }
void operator delete(void* area) noexcept { std::free(area); }
void operator delete(void* area, std::size_t) noexcept { std::free(area); }
void operator delete[](void* area) noexcept { std::free(area); }
void operator delete[](void* area, std::size_t) noexcept { std::free(area); }

namespace {

/// False if an allocation failed.
template <typename Call>
bool RunWith(int allocations, Call call) {
  allocationsLeft = allocations;
  try {
    call();
  } catch (const std::bad_alloc&) {
    allocationsLeft = kNever;
    return false;
  }
  allocationsLeft = kNever;
  return true;
}

TEST(OutOfMemory, LeavesTheConvertedTextUntouched) {
  const std::string text(3000, 'a');
  const std::string untouched(text.size(), '\x55');
  for (const auto convert : {ASCII2UTF_8, UTF_82ASCII}) {
    int allocations = 0;
    std::string out = untouched;
    while (!RunWith(allocations, [&] { convert(text.c_str(), out.data()); })) {
      ASSERT_EQ(out, untouched) << allocations;
      ++allocations;
    }
    EXPECT_EQ(out, text);
    EXPECT_GT(allocations, 2);
  }
}

TEST(OutOfMemory, DoesNotConcernTimesAndLogs) {
  const std::string path =
      (std::filesystem::temp_directory_path() / "orvane_out_of_memory.txt").string();
  std::filesystem::remove(path);
  const std::string octets(10'000, 'o');
  char text[36];
  EXPECT_TRUE(RunWith(0, [&] {
    GetTimeStr(text);
    GetTimeStrFromTimeStampStr(text, "1735660799042", 1);
    AsciiLog(path.c_str(), text);
    HexLog(path.c_str(), reinterpret_cast<const unsigned char*>(octets.data()), 10'000);
  }));
  EXPECT_STREQ(text, "2024-12-31 23:59:59:042");
  EXPECT_EQ(std::filesystem::file_size(path), 23U + 20'000U);
  std::filesystem::remove(path);
}

}  // namespace
