#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "orvane.h"

namespace orvane_test {

// What a reader export gave: the result and the text that it left in the buffer.
struct Reply {
  int result;
  std::string text;
  bool operator==(const Reply&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const Reply& reply) {
  return out << reply.result << " \"" << reply.text << '"';
}

constexpr char kUntouched[] = "untouched";

// Sends in buffers of just the sizes that are asked for, so that the sanitizers see a byte too
// many.
inline Reply Send(const std::string& command) {
  const auto response = std::make_unique<char[]>(8193);
  std::strcpy(response.get(), kUntouched);
  const int result = SendCommand(command.c_str(), static_cast<int>(command.size()), response.get());
  return {result, response.get()};
}

inline Reply ResetCard() {
  const auto atr = std::make_unique<char[]>(1025);
  std::strcpy(atr.get(), kUntouched);
  const int result = Reset(atr.get());
  return {result, atr.get()};
}

// The records as text, one "kind hasPort port name" each.
inline std::vector<std::string> List(int kind, int count, int max) {
  const auto records = std::make_unique<ReaderInfo[]>(32);
  std::memset(records.get(), 0x55, 32 * sizeof(ReaderInfo));
  const int written = GetReaderList(kind, records.get(), count, max);
  std::vector<std::string> lines;
  for (int i = 0; i < written; ++i) {
    const ReaderInfo& record = records[static_cast<std::size_t>(i)];
    EXPECT_EQ(record.reserved, 0);
    lines.push_back(std::to_string(record.kind) + ' ' + std::to_string(record.hasPort) + ' ' +
                    std::to_string(record.port) + ' ' + record.name);
  }
  EXPECT_EQ(records[static_cast<std::size_t>(written)].kind, 0x55555555)
      << "written behind the last record";
  return lines;
}

// A simulator's journal with what the calls were given alone, not what they gave back.
inline std::string CallsWithoutResults(const std::string& journal) {
  std::istringstream lines(journal);
  std::string calls;
  for (std::string line; std::getline(lines, line);)
    calls += line.substr(0, line.find(") = ") + 1) + '\n';
  return calls;
}

// Leaves every slot without a driver, and so without a library, behind each test.
class ReaderTest : public testing::Test {
 public:
  static void EmptySlots() {
    constexpr int kNoSuchKind = -1;  // not 0, which a tool that never opened has
    for (unsigned slot = 0; slot < 16; ++slot) {
      SetReader(slot);
      OpenReader(1, kNoSuchKind, 9600);
    }
    SetReader(0);
    ReaderInfo none;
    GetReaderList(kNoSuchKind, &none, 0, 0);
  }

 protected:
  void TearDown() override { EmptySlots(); }
};

}  // namespace orvane_test
