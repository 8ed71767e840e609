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

class SimulatedWinscard : public testing::Test {
 protected:
  void SetUp() override {
    const void* const none = nullptr;
    ASSERT_EQ(Invoke(module, "SCardEstablishContext", Dword{0}, none, none, &context), kSuccess);
  }

  uint32_t Connect(const char* reader = kReader) {
    return Invoke(module, "SCardConnectA", context, reader, Dword{2}, Dword{3}, &handle, &protocol);
  }

  uint32_t Transmit(const std::vector<uint8_t>& command, Dword room = sizeof reply) {
    const void* const header = module.Export(protocol == 1 ? "g_rgSCardT0Pci" : "g_rgSCardT1Pci");
    length = room;
    return Invoke(module, "SCardTransmit", handle, header, command.data(),
                  static_cast<Dword>(command.size()), static_cast<IoRequest*>(nullptr), +reply,
                  &length);
  }

  uint32_t GetAtr() {
    length = sizeof reply;
    return Invoke(module, "SCardGetAttrib", handle, Dword{kAttributeAtr}, +reply, &length);
  }

  uint32_t Watch(ReaderState& state) {
    return Invoke(module, "SCardGetStatusChangeA", context, Dword{100}, &state, Dword{1});
  }

  SimulatedModule module{"winscard"};
  Context context = 0;
  Handle handle = 0;
  Dword protocol = 0;
  uint8_t reply[256] = {};
  Dword length = 0;
};

TEST_F(SimulatedWinscard, WritesOneLinePerCall) {
  Connect();
  Transmit({0x00, 0x20, 0x00, 0x80});
  Connect("Nowhere");
  EXPECT_EQ(module.Journal(),
            "SCardEstablishContext(0) = 0 0xCD01000000000001\n"
            "SCardConnectA(0xCD01000000000001, \"Simulated Reader 0\", 2, 3) = 0 "
            "0xFFFFFFFFEA010001 1\n"
            "SCardTransmit(0xFFFFFFFFEA010001, 1, 00200080) = 0 6985\n"
            "SCardConnectA(0xCD01000000000001, \"Nowhere\", 2, 3) = 0x80100009\n");
  module.Restart();
  EXPECT_EQ(module.Journal(), "");
  EXPECT_EQ(Transmit({0x00, 0x20, 0x00, 0x80}), kInvalidHandle) << "handles are forgotten";
  EXPECT_EQ(Connect(), kSuccess) << "the context is not";
  EXPECT_EQ(handle, 0xFFFFFFFFEA010001u);
}

TEST_F(SimulatedWinscard, HandsOutHandlesOfBothSigns) {
  ASSERT_EQ(Connect(), kSuccess);
  EXPECT_EQ(handle, 0xFFFFFFFFEA010001u);
  ASSERT_EQ(Connect(), kSuccess);
  EXPECT_EQ(handle, 0x6A010002u);
  EXPECT_EQ(GetAtr(), kSuccess);
  handle |= 0xFFFFFFFF00000000;
  EXPECT_EQ(GetAtr(), kInvalidHandle);
}

TEST_F(SimulatedWinscard, ListsReadersInMemoryOfItsOwn) {
  char* list = nullptr;
  length = kAutoAllocate;
  ASSERT_EQ(Invoke(module, "SCardListReadersA", context, "SCard$DefaultReaders",
                   reinterpret_cast<char*>(&list), &length),
            kSuccess);
  EXPECT_EQ(std::string(list, length),
            std::string("Simulated Reader 0\0Simulated Reader 1\0\0", 39));
  const void* const memory = list;
  EXPECT_EQ(Invoke(module, "SCardFreeMemory", context, memory), kSuccess);
  EXPECT_EQ(Invoke(module, "SCardFreeMemory", context, memory), kInvalidParameter);
}

TEST_F(SimulatedWinscard, RefusesAnAreaThatIsTooSmall) {
  Connect();
  EXPECT_EQ(Transmit({0x00, 0x84, 0x00, 0x00}, 9), kInsufficientBuffer);
  EXPECT_EQ(length, 10u);
  EXPECT_EQ(reply[0], 0);
  EXPECT_EQ(Transmit({0x00, 0x84, 0x00, 0x00}, 10), kSuccess);
}

TEST_F(SimulatedWinscard, LosesTheConnectionWhenTheCardGoes) {
  EXPECT_EQ(Connect("Simulated Reader 1"), kRemovedCard);
  ASSERT_EQ(Connect(), kSuccess);
  module.InsertCard(false);
  EXPECT_EQ(GetAtr(), kRemovedCard);
  EXPECT_EQ(Connect(), kRemovedCard);
  ReaderState state = {kReader, nullptr, 0, 0, 0, {}};
  EXPECT_EQ(Watch(state), kSuccess);
  EXPECT_EQ(state.eventState & (kStatePresent | kStateEmpty), kStateEmpty);
  module.InsertCard(true);
  state.currentState = state.eventState;
  EXPECT_EQ(Watch(state), kSuccess);
  EXPECT_EQ(state.eventState & (kStatePresent | kStateEmpty), kStatePresent);
  EXPECT_EQ(state.atrLength, 14u);
  state.currentState = state.eventState;
  EXPECT_EQ(Watch(state), kTimeout) << "nothing new";
  EXPECT_EQ(GetAtr(), kRemovedCard) << "the old handle stays lost";
  EXPECT_EQ(Connect(), kSuccess);
  EXPECT_EQ(GetAtr(), kSuccess);
  EXPECT_EQ(length, 14u);
}

TEST_F(SimulatedWinscard, SpeaksToTheCardThroughControlCodes) {
  ASSERT_EQ(Connect(), kSuccess);
  const auto control = [&](Dword code, std::vector<uint8_t> input) {
    return Invoke(module, "SCardControl", handle, code, static_cast<const uint8_t*>(input.data()),
                  static_cast<Dword>(input.size()), +reply, Dword{sizeof reply}, &length);
  };
  EXPECT_EQ(control(kControlAtr, {}), kSuccess);
  EXPECT_EQ(length, 14u);
  EXPECT_EQ(control(kControlExchange, {0x00, 0x20, 0x00, 0x80}), kSuccess);
  EXPECT_EQ(length, 2u);
  EXPECT_EQ(control(0x00312EE8, {}), kUnsupportedFeature);
}

TEST_F(SimulatedWinscard, GivesPreparedAnswersInTheirOrder) {
  module.Answer("SCardConnectA", 0, "02");
  ASSERT_EQ(Connect(), kSuccess);
  EXPECT_EQ(protocol, kProtocolT1);
  module.Answer("SCardTransmit", 0, "AABB9000", 4000);
  module.Answer("SCardTransmit", 0x80100069);
  module.Answer("SCardTransmit", 0, "010203");
  EXPECT_EQ(Transmit({0x00}), kSuccess);
  EXPECT_EQ(length, 4000u) << "the lie";
  EXPECT_EQ(reply[3], 0x00);
  EXPECT_EQ(reply[2], 0x90);
  EXPECT_EQ(Transmit({0x00}), kRemovedCard);
  reply[2] = 0x77;
  EXPECT_EQ(Transmit({0x00}, 2), kSuccess);
  EXPECT_EQ(length, 3u);
  EXPECT_EQ(reply[2], 0x77) << "never more than the area holds";
  EXPECT_EQ(Transmit({0x00, 0x20, 0x00, 0x80}), kSuccess) << "the card again";
  EXPECT_EQ(reply[0], 0x69);

  ReaderState state = {kReader, nullptr, 0, 0, 0, {}};
  module.Answer("SCardGetStatusChangeA", 0, "3B00", 0x20);
  EXPECT_EQ(Watch(state), kSuccess);
  EXPECT_EQ(state.eventState, 0x20u);
  EXPECT_EQ(state.atrLength, 2u);
}

TEST_F(SimulatedWinscard, FindsOutAWrongHeader) {
  ASSERT_EQ(Connect(), kSuccess);
  protocol = kProtocolT1;
  EXPECT_EQ(Transmit({0x00, 0x20, 0x00, 0x80}), kProtocolMismatch);
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
