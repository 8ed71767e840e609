#pragma once

#include <gtest/gtest.h>

#include <string>

#include "pcsc_service.h"
#include "vpcd_card.h"

inline constexpr char kReader[] = "Virtual PCD 00 00";
inline constexpr char kEmptyReader[] = "Virtual PCD 00 01";

// Runs its tests beside the real service, with a card that is not yet in the reader kReader. Where
// a package is missing the test is skipped and says which.
class ServiceTest : public testing::Test {
 protected:
  void SetUp() override;

  // One for the whole program: the library's connections to it last as long.
  static PcscService& Service();

  VpcdCard card_;
};
