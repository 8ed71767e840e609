#include "support/small_stack.h"

#include <pthread.h>

#include <stdexcept>

namespace orvane_test {
namespace {

void* Start(void* body) {
  reinterpret_cast<void (*)()>(body)();
  return nullptr;
}

}  // namespace

void RunInSmallStack(std::size_t bytes, void (*body)()) {
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_t thread;
  if (pthread_attr_setstacksize(&attributes, bytes) != 0 ||
      pthread_create(&thread, &attributes, Start, reinterpret_cast<void*>(body)) != 0) {
    throw std::runtime_error("no thread with a small stack");
  }
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
}

}  // namespace orvane_test
