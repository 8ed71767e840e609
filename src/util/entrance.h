#pragma once

#include <utility>

namespace orvane {

// Lets one call at a time into what is not made for more. A library that such a call goes out to
// may call back on the same thread: inside is set then, and that second call finds no way in.
class Entrance {
 public:
  explicit Entrance(bool& inside) : m_inside(std::exchange(inside, true) ? nullptr : &inside) {}
  Entrance(const Entrance&) = delete;
  Entrance& operator=(const Entrance&) = delete;
  ~Entrance() {
    if (m_inside != nullptr) *m_inside = false;
  }

  explicit operator bool() const { return m_inside != nullptr; }

 private:
  bool* m_inside;
};

}  // namespace orvane
