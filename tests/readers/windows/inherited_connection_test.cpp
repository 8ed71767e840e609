#include <gtest/gtest.h>
#include <stdio.h>

#include <chrono>
#include <thread>

#include "readers/reader_host.h"
#include "simulators/encryption_machine.h"

namespace orvane_test {
namespace {

// What a host starts gets every handle that may be inherited, and may outlive the reader.
TEST(Connection, EndsWithItsReaderWhateverTheHostHasStarted) {
  const simulator::EncryptionMachine machine;
  ASSERT_EQ(OpenReaderA(machine.Name().c_str(), ReaderKindTcp), 1);
  FILE* const child = _popen("pause >nul", "w");
  ASSERT_NE(child, nullptr);
  EXPECT_EQ(CloseReader(), 1);
  const std::string ended = "1 opens\n1 closes\n";
  for (int tries = 0; tries < 2000 && machine.Journal() != ended; ++tries) {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  EXPECT_EQ(machine.Journal(), ended);
  fputs("\n", child);
  _pclose(child);
}

}  // namespace
}  // namespace orvane_test
