#pragma once

#include <regex>
#include <string>

#include "host/run_program.h"

namespace host_test {

// A recording without its times.
inline std::string ReadSession(const char* file) {
  static const std::regex times(R"("begun":"[^"]*",|,"at_us":\d+,"took_us":\d+)");
  return std::regex_replace(ReadText(file), times, "");
}

// The session that most tests record: a PIN, GET RESPONSE, a refusal.
inline const std::string kSessionApdus =
    " 00A40000021001 0020008008241234FFFFFFFFFF 00B2030C00 00B2010C00";

}  // namespace host_test
