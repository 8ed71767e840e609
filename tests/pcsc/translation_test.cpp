// Numbers that differ between Windows and pcsc-lite.

#include "pcsc/translation.h"

#include <gtest/gtest.h>

namespace winscard {
namespace {

TEST(PcscTranslation, ControlCodes) {
  EXPECT_EQ(ToLiteControlCode(0x00312EE0), SCARD_CTL_CODE(3000));
  EXPECT_EQ(ToLiteControlCode(0x00312EE4), SCARD_CTL_CODE(3001));
  EXPECT_EQ(ToLiteControlCode(0x00313520), CM_IOCTL_GET_FEATURE_REQUEST);
  // Not of Windows' form: pcsc-lite's own, another transfer method, another device.
  for (const uint32_t code : {0x42000BB8U, 0x00312EE1U, 0x00322EE0U, 1U}) {
    EXPECT_EQ(ToLiteControlCode(code), code);
  }
}

TEST(PcscTranslation, Protocols) {
  EXPECT_EQ(ToLiteProtocols(kProtocolT0 | kProtocolT1), SCARD_PROTOCOL_ANY);
  EXPECT_EQ(ToLiteProtocols(kProtocolRaw), DWORD{SCARD_PROTOCOL_RAW});
  EXPECT_EQ(ToLiteProtocols(0x80000000 | kProtocolT1), DWORD{SCARD_PROTOCOL_T1});
  EXPECT_EQ(ToWindowsProtocol(SCARD_PROTOCOL_T1), kProtocolT1);
  EXPECT_EQ(ToWindowsProtocol(SCARD_PROTOCOL_RAW), kProtocolRaw);
}

TEST(PcscTranslation, CardStates) {
  EXPECT_EQ(ToWindowsCardState(0), 0U);
  EXPECT_EQ(ToWindowsCardState(SCARD_UNKNOWN), 0U);
  EXPECT_EQ(ToWindowsCardState(SCARD_ABSENT), 1U);
  EXPECT_EQ(ToWindowsCardState(SCARD_PRESENT | SCARD_SWALLOWED), 3U);
  // The upper half counts the events of the reader.
  EXPECT_EQ(ToWindowsCardState(0x00070000 | SCARD_PRESENT | SCARD_POWERED | SCARD_NEGOTIABLE), 5U);
  EXPECT_EQ(ToWindowsCardState(SCARD_PRESENT | SCARD_POWERED | SCARD_SPECIFIC), 6U);
}

TEST(PcscTranslation, Lengths) {
  uint32_t length = kAutoAllocate;
  EXPECT_EQ(*static_cast<DWORD*>(WideLength(&length)), SCARD_AUTOALLOCATE);
  EXPECT_EQ(length, kAutoAllocate);
  length = 256;
  *static_cast<DWORD*>(WideLength(&length)) = 9;
  EXPECT_EQ(length, 9U);
  length = 4096;
  EXPECT_EQ(*static_cast<DWORD*>(WideLength(&length, MAX_BUFFER_SIZE)), DWORD{MAX_BUFFER_SIZE});
  EXPECT_EQ(static_cast<DWORD*>(WideLength(nullptr)), nullptr);
}

}  // namespace
}  // namespace winscard
