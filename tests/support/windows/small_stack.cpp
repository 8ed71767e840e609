#include "support/small_stack.h"

#include <windows.h>

#include <stdexcept>

namespace orvane_test {
namespace {

DWORD WINAPI Start(void* body) {
  reinterpret_cast<void (*)()>(body)();
  return 0;
}

}  // namespace

void RunInSmallStack(std::size_t bytes, void (*body)()) {
  const HANDLE thread = CreateThread(nullptr, bytes, Start, reinterpret_cast<void*>(body),
                                     STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
  if (thread == nullptr) throw std::runtime_error("no thread with a small stack");
  WaitForSingleObject(thread, INFINITE);
  CloseHandle(thread);
}

}  // namespace orvane_test
