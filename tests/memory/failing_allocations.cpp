#include "memory/failing_allocations.h"

#include <cstdlib>
#include <new>

int orvane_test::allocationsLeft = orvane_test::kAnyNumber;
bool orvane_test::failsOnce = false;

void* operator new(std::size_t size) {
  int& left = orvane_test::allocationsLeft;
  void* const area = left == 0 ? nullptr : std::malloc(size);
  if (left == 0 && orvane_test::failsOnce) left = orvane_test::kAnyNumber;
  if (area == nullptr) throw std::bad_alloc();
  if (left > 0) --left;
  return area;
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  try {
    return operator new(size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

void* operator new[](std::size_t size) { return operator new(size); }
void* operator new[](std::size_t size, const std::nothrow_t& nothrow) noexcept {
  return operator new(size, nothrow);
}
void operator delete(void* area) noexcept { std::free(area); }
void operator delete(void* area, std::size_t) noexcept { std::free(area); }
void operator delete[](void* area) noexcept { std::free(area); }
void operator delete[](void* area, std::size_t) noexcept { std::free(area); }
