#pragma once

#include <utility>

namespace orvane {

// Admits one call at a time of each thread to the script engine and the readers. A library that
// such a call enters may call back on the same thread: that second call is refused.
class Entrance {
 public:
  Entrance() : m_isInside(s_isInside), m_found(!std::exchange(m_isInside, true)) {}
  Entrance(const Entrance&) = delete;
  Entrance& operator=(const Entrance&) = delete;
  ~Entrance() {
    if (m_found) m_isInside = false;
  }

  explicit operator bool() const { return m_found; }

 private:
  // Per thread: a thread that ends in the middle of a call shuts out no other.
  inline static thread_local bool s_isInside = false;

  bool& m_isInside;
  const bool m_found;
};

}  // namespace orvane
