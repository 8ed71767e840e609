#include "service_test.h"

#include "orvane.h"
#include "wait.h"

namespace {

// It takes the service a while to see that a card of an earlier test is gone.
bool IsEmpty(const char* name) {
  char atr[1025];
  const bool empty = OpenReaderA(name, ReaderKindPcsc) == 1 && Reset(atr) == 0;
  OpenReader(1, ReaderKindFm8201, 9600);  // and nothing stays with the service
  return empty;
}

}  // namespace

PcscService& ServiceTest::Service() {
  static PcscService service;
  return service;
}

void ServiceTest::SetUp() {
  if (std::string(PCSC_MODULE).empty()) GTEST_SKIP() << "needs package libpcsclite-dev";
  if (!Service().Lack().empty()) GTEST_SKIP() << "needs " << Service().Lack();
  ASSERT_EQ(Service().Fault(), "");
  ASSERT_TRUE(WaitUntil([] { return IsEmpty(kReader) && IsEmpty(kEmptyReader); }))
      << "the service runs without the virtual reader, or some other card is in it";
}
