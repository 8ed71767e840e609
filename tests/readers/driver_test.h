#pragma once

#include <gtest/gtest.h>

#include <string>

#include "readers/reader_host.h"
#include "support/simulated_module.h"

namespace orvane_test {

/// A driver with its vendor's library simulated.
class DriverTest : public ReaderTest {
 protected:
  explicit DriverTest(const char* vendor) : module(vendor) {}

  /// A new tool, and a simulator that remembers nothing.
  void StartAnew() {
    EmptySlots();
    module.Restart();
    seen_ = 0;
  }

  /// The journal since the last look.
  std::string NewCalls() {
    const std::string journal = module.Journal();
    const std::string calls = journal.substr(seen_);
    seen_ = journal.size();
    return calls;
  }

  const support::SimulatedModule module;

 private:
  std::size_t seen_ = 0;
};

/// One open on a new tool, by name or, without one, by port.
struct OpenRow {
  const char* name;
  int port;
  int expected;
  const char* calls;

  int Open(int kind) const {
    return name != nullptr ? OpenReaderA(name, kind) : OpenReader(port, kind, 9600);
  }
};

inline std::ostream& operator<<(std::ostream& out, const OpenRow& row) {
  return row.name != nullptr ? out << '"' << row.name << '"' : out << row.port;
}

constexpr char kCardAtr[] = "3B6A0000803180664F5256414E45";

}  // namespace orvane_test
