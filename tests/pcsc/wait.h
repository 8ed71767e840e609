#pragma once

#include <chrono>
#include <thread>

// Asks again and again until the answer is true. False if it is not within ten seconds.
template <typename Question>
bool WaitUntil(Question question) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (!question()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return true;
}
