// What the real service and its card do is recorded, and replayed without them.

#include "host/run_program.h"
#include "service_test.h"
#include "wait.h"

namespace host_test {
namespace {

using RecordedService = ServiceTest;

TEST_F(RecordedService, IsReplayedToTheOctetThroughOtherReaders) {
  WorkingFolder folder;
  ASSERT_TRUE(card_.Insert());
  const std::string reader = std::string("-r '") + kReader + "' ";
  ASSERT_TRUE(WaitUntil([&] { return RunOrvane("apdu " + reader + "00A40000").exitCode == 0; }));
  const std::string script = " '" ORVANE_SOURCE_FOLDER "/examples/payment.orv'";
  const auto shown = [&](const std::string& options) {
    const Outcome outcome = RunOrvane("run " + options + script);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_TRUE(Shows(outcome.out, "13 commands sent")) << outcome.out;
    return outcome.out.substr(outcome.out.find('\n'));  // behind the reader's name
  };
  const std::string real = shown(reader + "--record s");
  card_.Pull();
  for (const std::string& other :
       {reader, std::string("-r 5:COM1 "), std::string("-r 12:BSIT:1 ")}) {
    EXPECT_EQ(shown(other + "--replay s --record t"), real) << other;
  }
  shown(reader + "--replay s --record t");
  EXPECT_EQ(RunOrvane("trace s --diff t").out, "15 same commands, same responses\n");
}

}  // namespace
}  // namespace host_test
