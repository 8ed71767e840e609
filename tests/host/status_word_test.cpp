#include "host/status_word.h"

#include <gtest/gtest.h>

namespace host {
namespace {

struct Row {
  std::string_view word;
  Standing standing;
  std::string_view text;
};

TEST(StatusWord, IsToldInWords) {
  const Row rows[] = {
      {"9000", Standing::kSuccess, "success"},
      {"6110", Standing::kSuccess, "16 more bytes available"},
      {"6100", Standing::kSuccess, "256 more bytes available"},
      {"6283", Standing::kWarning, "warning: selected file deactivated"},
      {"63C2", Standing::kWarning, "warning: 2 tries left"},
      {"63C1", Standing::kWarning, "warning: 1 try left"},
      {"6381", Standing::kWarning, "warning: file filled up by the last write"},
      {"6400", Standing::kError, "execution error: state of non-volatile memory unchanged"},
      {"6982", Standing::kError, "security status not satisfied"},
      {"69F0", Standing::kError, "command not allowed"},
      {"6A82", Standing::kError, "file or application not found"},
      {"6C1A", Standing::kError, "wrong Le: exactly 26 bytes available"},
      {"6D00", Standing::kError, "instruction code not supported or invalid"},
      {"6F12", Standing::kError, "no precise diagnosis"},
      {"9404", Standing::kError, "proprietary status word"},
      {"", Standing::kError, "not a status word"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(DescribeStatusWord(row.word), row.text) << row.word;
    EXPECT_EQ(StandingOf(row.word), row.standing) << row.word;
  }
}

}  // namespace
}  // namespace host
