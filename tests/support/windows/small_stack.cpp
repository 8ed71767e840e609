#include "support/small_stack.h"

#include <windows.h>

#include <cstdint>
#include <stdexcept>
#include <string>

namespace orvane_test {
namespace {

constexpr std::size_t kPainted = 512 * 1024;
constexpr std::uint8_t kPaint = 0xA5;

struct Run {
  void (*body)();
  std::size_t used;
};

// Fills the stack below its caller; gives the lowest address of what it has filled.
__attribute__((noinline)) std::uintptr_t Paint() {
  volatile std::uint8_t area[kPainted];
  for (volatile std::uint8_t& octet : area) octet = kPaint;
  return reinterpret_cast<std::uintptr_t>(area);
}

DWORD WINAPI Measure(void* data) {
  Run& run = *static_cast<Run*>(data);
  const auto* const stack = reinterpret_cast<const volatile std::uint8_t*>(Paint());
  run.body();
  std::size_t untouched = 0;
  while (untouched < kPainted && stack[untouched] == kPaint) ++untouched;
  run.used = kPainted - untouched;
  return 0;
}

}  // namespace

// Wine gives no thread less than 1 MiB, so what is used is measured instead.
void RunInSmallStack(std::size_t bytes, void (*body)()) {
  Run run{body, 0};
  const HANDLE thread = CreateThread(nullptr, 2 * kPainted, Measure, &run,
                                     STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
  if (thread == nullptr) throw std::runtime_error("no thread");
  WaitForSingleObject(thread, INFINITE);
  CloseHandle(thread);
  if (run.used > bytes) throw std::runtime_error(std::to_string(run.used) + " bytes of stack");
}

}  // namespace orvane_test
