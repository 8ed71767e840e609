#pragma once

#include <utility>

namespace orvane {

// Lets one call of a thread at a time into the script engine and the readers. A library that such a
// call goes out to may call back on the same thread: that second call finds no way in.
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
  // A thread's own: one that ends in the middle of a call shuts nobody else out.
  inline static thread_local bool s_isInside = false;

  bool& m_isInside;
  const bool m_found;
};

}  // namespace orvane
