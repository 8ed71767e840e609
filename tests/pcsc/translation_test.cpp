// Numbers that differ between Windows and pcsc-lite.

#include "pcsc/translation.h"

#include <gtest/gtest.h>

#include <utility>

namespace pcsc {
namespace {

TEST(PcscTranslation, OfNumbersIsExact) {
  const std::pair<uint64_t, uint64_t> rows[] = {
      {ToLiteControlCode(0x00312EE0), SCARD_CTL_CODE(3000)},
      {ToLiteControlCode(0x00312EE4), SCARD_CTL_CODE(3001)},
      {ToLiteControlCode(0x00313520), CM_IOCTL_GET_FEATURE_REQUEST},
      // Not of Windows' form: pcsc-lite's own, another transfer method, another device.
      {ToLiteControlCode(0x42000BB8), 0x42000BB8},
      {ToLiteControlCode(0x00312EE1), 0x00312EE1},
      {ToLiteControlCode(0x00322EE0), 0x00322EE0},
      {ToLiteProtocols(SCARD_PROTOCOL_T0 | SCARD_PROTOCOL_T1), SCARD_PROTOCOL_ANY},
      {ToLiteProtocols(winscard::SCARD_PROTOCOL_RAW), kLiteProtocolRaw},
      {ToLiteProtocols(0x80000000 | SCARD_PROTOCOL_T1), SCARD_PROTOCOL_T1},
      {ToWindowsProtocol(SCARD_PROTOCOL_T1), SCARD_PROTOCOL_T1},
      {ToWindowsProtocol(kLiteProtocolRaw), winscard::SCARD_PROTOCOL_RAW},
      {ToWindowsCardState(SCARD_UNKNOWN), 0},
      {ToWindowsCardState(SCARD_ABSENT), 1},
      {ToWindowsCardState(SCARD_PRESENT | SCARD_SWALLOWED), 3},
      // The upper half counts the events of the reader.
      {ToWindowsCardState(0x00070000 | SCARD_PRESENT | SCARD_POWERED | SCARD_NEGOTIABLE), 5},
      {ToWindowsCardState(SCARD_PRESENT | SCARD_POWERED | SCARD_SPECIFIC), 6}};
  for (const auto& [translated, expected] : rows) EXPECT_EQ(translated, expected);
}

}  // namespace
}  // namespace pcsc
