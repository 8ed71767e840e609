#include "host/session.h"

#include <gtest/gtest.h>
#include <orvane.h>

#include <sstream>

#include "host/failure.h"
#include "support/simulated_module.h"

namespace host {
namespace {

std::string InHex(std::string_view text) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string hex;
  for (const char c : text) {
    hex += kDigits[static_cast<unsigned char>(c) >> 4];
    hex += kDigits[static_cast<unsigned char>(c) & 0xF];
  }
  return hex;
}

// A session on the simulated winscard as if it were the system's.
class SessionTest : public testing::Test {
 protected:
  // Runs statements; gives what the first that fails says.
  std::string Run(const std::vector<std::string>& statements, const std::string& defaultReader = "",
                  int32_t defaultKind = ReaderKindPcsc) {
    Readers readers(defaultKind, false, defaultReader);
    Secrets secrets;
    std::ostringstream shown;
    Trace trace(shown, {});
    Session session(readers, secrets, trace, {});
    std::string failure;
    try {
      for (const std::string& each : statements) session.Run(ReadStatement(each), std::nullopt);
    } catch (const Failure& thrown) {
      failure = thrown.what();
    }
    shown_ = shown.str();
    return failure;
  }

  support::SimulatedModule winscard_{"winscard"};
  std::string shown_;
};

TEST_F(SessionTest, TakesTheOnlyReaderWhereNoneIsNamed) {
  const std::string rest = "; --simulate runs on a simulated card";
  const struct {
    std::vector<std::string_view> listed;
    std::string defaultReader;
    int32_t defaultKind;
    std::string failure;
    std::string shown;
  } rows[] = {
      {{"Simulated Reader 0"}, "", 3, "", "reader Simulated Reader 0 (PC/SC)\n"},
      {{"A", "B 1"}, "", 3, "there is: A, B 1" + rest, ""},
      {{}, "", 3, "no PC/SC reader is there" + rest, ""},
      {{"Simulated Reader 0"}, "", 5, "there is: Simulated Reader 0" + rest, ""},
      {{"Simulated Reader 0", "Simulated Reader 1"}, "2", 3, "", "reader port 2 (PC/SC)\n"},
  };
  for (const auto& row : rows) {
    std::string list;
    for (const std::string_view name : row.listed) list += std::string(name) + '\0';
    for (int call = 0; call < 2; ++call) {
      winscard_.Answer("SCardListReadersA", 0, InHex(list + '\0').c_str());
    }
    const std::string failure = Run({"00A40000"}, row.defaultReader, row.defaultKind);
    EXPECT_TRUE(failure.ends_with(row.failure)) << failure;
    EXPECT_TRUE(failure.starts_with("no reader is named") || row.failure.empty()) << failure;
    EXPECT_NE(shown_.find(row.shown), shown_.npos) << shown_;
    winscard_.Restart();
  }
}

}  // namespace
}  // namespace host
