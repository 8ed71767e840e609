#include "service_test.h"

#include "orvane.h"
#include "wait.h"

namespace {

bool IsListed(const std::string& name) {
  ReaderInfo readers[16];
  const int32_t count = GetReaderList(ReaderKindPcsc, readers, 0, 16);
  for (int32_t i = 0; i < count; i++) {
    if (readers[i].name == name) return true;
  }
  return false;
}

/// It takes the service a while to see that a card of an earlier test is gone.
bool IsEmpty(const char* name) {
  char atr[1025];
  const bool empty = OpenReaderA(name, ReaderKindPcsc) == 1 && Reset(atr) == 0;
  CloseReader();
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
  ASSERT_TRUE(WaitUntil([] { return IsListed(kReader) && IsListed(kEmptyReader); }))
      << "the service runs without the virtual reader";
  ASSERT_TRUE(WaitUntil([] { return IsEmpty(kReader); })) << "some other card is in " << kReader;
}
