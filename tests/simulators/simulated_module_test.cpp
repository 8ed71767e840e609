#include "support/simulated_module.h"

#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>

#include "simulators/winscard_types.h"

namespace {

using namespace winscard;
using support::ModuleWithout;
using support::SimulatedModule;

constexpr const char* kReader = "Simulated Reader 0";

// A vendor function by its name; the types of the arguments are those of its parameters.
template <typename... Parameters>
uint32_t Invoke(const SimulatedModule& module, const char* function, Parameters... arguments) {
  void* const found = module.Export(function);
  if (!found) throw std::runtime_error(function);
  return static_cast<uint32_t>(reinterpret_cast<Code (*)(Parameters...)>(found)(arguments...));
}

// What the tests of the library's driver do not come by.
TEST(SimulatedWinscard, RefusesWhatAVendorsLibraryWouldRefuse) {
  const SimulatedModule module("winscard");
  Context context = 0;
  Handle handle = 0;
  Dword protocol = 0;
  uint8_t reply[256] = {};
  Dword length = 0;
  const void* const nothing = nullptr;
  Invoke(module, "SCardEstablishContext", Dword{0}, nothing, nothing, &context);
  ASSERT_EQ(
      Invoke(module, "SCardConnectA", context, kReader, Dword{2}, Dword{3}, &handle, &protocol),
      kSuccess);
  const std::vector<uint8_t> challenge = {0x00, 0x84, 0x00, 0x00};
  const auto transmit = [&](Dword room, const char* header) {
    length = room;
    return Invoke(module, "SCardTransmit", handle, static_cast<const void*>(module.Export(header)),
                  challenge.data(), static_cast<Dword>(challenge.size()),
                  static_cast<IoRequest*>(nullptr), +reply, &length);
  };
  EXPECT_EQ(transmit(9, "g_rgSCardT0Pci"), kInsufficientBuffer);
  EXPECT_EQ(length, 10u);
  EXPECT_EQ(reply[0], 0);
  EXPECT_EQ(transmit(10, "g_rgSCardT0Pci"), kSuccess);
  EXPECT_EQ(transmit(10, "g_rgSCardT1Pci"), kProtocolMismatch);
  const uint8_t* const none = nullptr;
  EXPECT_EQ(Invoke(module, "SCardControl", handle, Dword{0x00312EE8}, none, Dword{0}, +reply,
                   Dword{sizeof reply}, &length),
            kUnsupportedFeature);
  module.Answer("SCardTransmit", 0, "010203");
  reply[2] = 0x77;
  EXPECT_EQ(transmit(2, "g_rgSCardT0Pci"), kSuccess);
  EXPECT_EQ(length, 3u);
  EXPECT_EQ(reply[2], 0x77) << "never more than the area holds";
}

TEST(SimulatedModule, LacksTheFunctionThatItIsLoadedWithout) {
  for (const char* hidden : {"SCardTransmit", "SCardConnectA", "g_rgSCardT1Pci"}) {
    const SimulatedModule module = ModuleWithout("winscard", hidden);
    for (const char* name : {"SCardTransmit", "SCardConnectA", "SCardControl", "SCardStatusA",
                             "g_rgSCardT0Pci", "g_rgSCardT1Pci", "SimulatorJournal"}) {
      EXPECT_EQ(module.Export(name) == nullptr, std::strcmp(name, hidden) == 0) << name;
    }
    EXPECT_EQ(module.Journal(), "");
  }
  EXPECT_THROW(ModuleWithout("winscard", "SCardTransmi"), std::runtime_error);
}

TEST(SimulatedModule, IsUnloadedWithItsLastUser) {
  EXPECT_FALSE(support::IsLoaded("winscard"));
  {
    const SimulatedModule module("winscard");
    EXPECT_TRUE(support::IsLoaded("winscard"));
    EXPECT_THROW(ModuleWithout("winscard", "SCardTransmit"), std::runtime_error)
        << "the library would find the other one";
  }
  EXPECT_FALSE(support::IsLoaded("winscard"));
  EXPECT_THROW(SimulatedModule("nosuch"), std::runtime_error);
}

}  // namespace
