// What the PC/SC module promises to any caller that knows Windows' interface. It is loaded with its
// names open to the whole process: pcsc-lite must not be mistaken for it even then.

#include <dlfcn.h>

#include <cstring>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "service_test.h"
#include "src/readers/winscard_types.h"
#include "wait.h"

namespace {

using namespace winscard;

constexpr LONG kNotSupportedByDriver = static_cast<LONG>(0x8010001F);
constexpr DWORD kAnyProtocol = SCARD_PROTOCOL_T0 | SCARD_PROTOCOL_T1;
constexpr DWORD kSlotCountAttribute = 0x0FAE;
constexpr DWORD kAnyCode = SCARD_CTL_CODE(3400);  // the virtual reader knows none

class PcscModule : public ServiceTest {
 protected:
  void SetUp() override {
    ServiceTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    module_ = dlopen(PCSC_MODULE, RTLD_NOW | RTLD_GLOBAL);
    ASSERT_NE(module_, nullptr) << dlerror();
    ASSERT_EQ(Call("SCardEstablishContext", 0U, nullptr, nullptr, &context_), 0);
  }

  void TearDown() override {
    if (module_ != nullptr) Call("SCardReleaseContext", context_);
  }

  // Calls an export with exactly these argument types.
  template <typename... Arguments>
  LONG Call(const char* name, Arguments... arguments) {
    const auto function = reinterpret_cast<LONG (*)(Arguments...)>(dlsym(module_, name));
    return function(arguments...);
  }

  LONG Connect(const char* reader, SCARDHANDLE& card) {
    return Call("SCardConnectA", context_, reader, SCARD_SHARE_SHARED, kAnyProtocol, &card,
                &protocol_);
  }

  bool ConnectsInTime(SCARDHANDLE& card) {
    return WaitUntil([&] { return Connect(kReader, card) == 0; });
  }

  LONG GetAttribute(SCARDHANDLE card, uint32_t attribute, std::vector<uint8_t>& value) {
    auto length = static_cast<uint32_t>(value.size());
    const LONG code = Call("SCardGetAttrib", card, attribute, value.data(), &length);
    if (code == 0) value.resize(length);
    return code;
  }

  LONG GetAtr(SCARDHANDLE card) {
    std::vector<uint8_t> atr(256);
    return GetAttribute(card, SCARD_ATTR_ATR_STRING, atr);
  }

  LONG Transmit(SCARDHANDLE card, uint32_t* length = nullptr) {
    const auto* header = static_cast<const SCARD_IO_REQUEST*>(dlsym(module_, "g_rgSCardT0Pci"));
    const uint8_t getChallenge[] = {0x00, 0x84, 0x00, 0x00, 0x08};
    uint8_t reply[256];
    uint32_t room = sizeof reply;
    if (length == nullptr) length = &room;
    SCARD_IO_REQUEST received{};
    *length = room;
    return Call("SCardTransmit", card, header, getChallenge, 5U, &received, reply, length);
  }

  LONG Control(SCARDHANDLE card, uint32_t code) {
    uint8_t out[256];
    uint32_t returned = 0;
    return Call("SCardControl", card, code, nullptr, 0U, out, 256U, &returned);
  }

  LONG Reconnect(SCARDHANDLE card) {
    uint32_t protocol = 0;
    return Call("SCardReconnect", card, SCARD_SHARE_SHARED, kAnyProtocol, 0U, &protocol);
  }

  void* module_ = nullptr;
  SCARDCONTEXT context_ = 0;
  uint32_t protocol_ = 0;
};

TEST_F(PcscModule, AllocatesTheListOfReaders) {
  char* list = nullptr;
  uint32_t length = SCARD_AUTOALLOCATE;
  ASSERT_EQ(Call("SCardListReadersA", context_, "SCard$DefaultReaders", &list, &length), 0);
  std::set<std::string> names;
  const char* end = list;
  for (; *end != '\0'; end += std::strlen(end) + 1) names.insert(end);
  EXPECT_EQ(end - list + 1, length);
  EXPECT_TRUE(names.contains(kReader) && names.contains(kEmptyReader));
  EXPECT_EQ(Call("SCardFreeMemory", context_, list), 0);

  uint32_t needed = 0;
  EXPECT_EQ(Call("SCardListReadersA", context_, "SCard$DefaultReaders", nullptr, &needed), 0);
  EXPECT_EQ(needed, length);
  char tooShort[4];
  uint32_t room = sizeof tooShort;
  EXPECT_EQ(Call("SCardListReadersA", context_, "SCard$DefaultReaders", tooShort, &room),
            SCARD_E_INSUFFICIENT_BUFFER);
}

TEST_F(PcscModule, TellsTheStateOfReaders) {
  ASSERT_TRUE(card_.Insert());
  SCARD_READERSTATEA states[2] = {};
  states[0].szReader = kEmptyReader;
  states[1].szReader = kReader;
  const auto isPresent = [&] {
    return Call("SCardGetStatusChangeA", context_, 100U, states, 2U) == 0 &&
           (states[1].dwEventState & SCARD_STATE_PRESENT) != 0;
  };
  ASSERT_TRUE(WaitUntil(isPresent));
  EXPECT_EQ(states[0].dwEventState & (SCARD_STATE_PRESENT | SCARD_STATE_EMPTY), SCARD_STATE_EMPTY);
  EXPECT_EQ(states[0].cbAtr, 0);
  EXPECT_EQ(simulator::ToHex({states[1].rgbAtr, states[1].cbAtr}), card_.Atr());

  states[0].szReader = "No such reader";
  EXPECT_EQ(Call("SCardGetStatusChangeA", context_, 100U, states, 1U), SCARD_E_UNKNOWN_READER);
}

TEST_F(PcscModule, ConnectsAndAnswersAsOnWindows) {
  SCARDHANDLE card = 0;
  EXPECT_EQ(Connect(kEmptyReader, card), SCARD_W_REMOVED_CARD);
  EXPECT_EQ(Connect("No such reader", card), SCARD_E_UNKNOWN_READER);
  EXPECT_EQ(card, 0);

  ASSERT_TRUE(card_.Insert());
  ASSERT_TRUE(ConnectsInTime(card));
  EXPECT_EQ(protocol_, SCARD_PROTOCOL_T0);

  std::vector<uint8_t> atr(256);
  EXPECT_EQ(GetAttribute(card, SCARD_ATTR_ATR_STRING, atr), 0);
  EXPECT_EQ(simulator::ToHex(atr), card_.Atr());
  std::vector<uint8_t> tooShort(4);
  EXPECT_EQ(GetAttribute(card, SCARD_ATTR_ATR_STRING, tooShort), SCARD_E_INSUFFICIENT_BUFFER);
  std::vector<uint8_t> slots(4096);  // a larger area than pcsc-lite takes
  EXPECT_EQ(GetAttribute(card, kSlotCountAttribute, slots), 0);
  EXPECT_EQ(slots, std::vector<uint8_t>{2});

  uint32_t received = 0;
  EXPECT_EQ(Transmit(card, &received), 0);
  EXPECT_EQ(received, 10U);

  EXPECT_EQ(Control(card, kAnyCode), kNotSupportedByDriver);

  uint32_t state = 0;
  uint32_t protocol = 0;
  EXPECT_EQ(Call("SCardStatusA", card, nullptr, nullptr, &state, &protocol, nullptr, nullptr), 0);
  EXPECT_EQ(state, 5U);  // powered, and its protocol can be negotiated
  EXPECT_EQ(protocol, SCARD_PROTOCOL_T0);

  EXPECT_EQ(Call("SCardBeginTransaction", card), 0);
  EXPECT_EQ(Call("SCardEndTransaction", card, 0U), 0);
  EXPECT_EQ(Call("SCardDisconnect", card, 0U), 0);
  EXPECT_EQ(Call("SCardDisconnect", card, 0U), SCARD_E_INVALID_HANDLE);
  EXPECT_EQ(Transmit(card), SCARD_E_INVALID_HANDLE);
}

TEST_F(PcscModule, KeepsSayingThatACardWasRemoved) {
  ASSERT_TRUE(card_.Insert());
  SCARDHANDLE card = 0;
  ASSERT_TRUE(ConnectsInTime(card));
  card_.Pull();
  ASSERT_TRUE(WaitUntil([&] { return Control(card, kAnyCode) == SCARD_W_REMOVED_CARD; }));
  const auto expectRemoved = [&] {
    EXPECT_EQ(GetAtr(card), SCARD_W_REMOVED_CARD);
    EXPECT_EQ(Transmit(card), SCARD_W_REMOVED_CARD);
    EXPECT_EQ(Control(card, kAnyCode), SCARD_W_REMOVED_CARD);
    EXPECT_EQ(Call("SCardStatusA", card, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr),
              SCARD_W_REMOVED_CARD);
  };
  expectRemoved();
  EXPECT_EQ(Reconnect(card), SCARD_W_REMOVED_CARD);

  ASSERT_TRUE(card_.Insert());
  SCARDHANDLE another = 0;
  ASSERT_TRUE(ConnectsInTime(another));
  EXPECT_NE(another, card);
  expectRemoved();
  EXPECT_EQ(Transmit(another), 0);

  EXPECT_EQ(Reconnect(card), 0);
  EXPECT_EQ(Transmit(card), 0);
  EXPECT_EQ(GetAtr(card), 0);
  EXPECT_EQ(Call("SCardDisconnect", card, 0U), 0);
}

// pcsc-lite has room for 200 connections to a reader. Two threads that reconnect one card take one.
TEST_F(PcscModule, RemovedAndReconnectedCardsTakeNoMoreConnections) {
  constexpr size_t kConnections = 150;
  std::set<uint32_t> numbers;
  for (int round = 0; round < 2; round++) {
    ASSERT_TRUE(card_.Insert());
    SCARDHANDLE first = 0;
    ASSERT_TRUE(ConnectsInTime(first));
    std::vector<SCARDHANDLE> cards(kConnections);
    for (SCARDHANDLE& card : cards) {
      ASSERT_EQ(Connect(kReader, card), 0);
      // A caller may keep the low 32 bits and extend their sign; 0 and -1 mean other things to it.
      const auto kept = static_cast<int32_t>(card);
      ASSERT_GT(kept, 0);
      ASSERT_EQ(static_cast<SCARDHANDLE>(static_cast<int64_t>(kept)), card);
      ASSERT_TRUE(numbers.insert(static_cast<uint32_t>(card)).second);
    }
    card_.Pull();
    for (const SCARDHANDLE card : cards) {
      ASSERT_TRUE(WaitUntil([&] { return GetAtr(card) == SCARD_W_REMOVED_CARD; }));
    }
    ASSERT_TRUE(card_.Insert());
    ASSERT_TRUE(ConnectsInTime(first));
    for (const SCARDHANDLE card : cards) {
      std::thread other([&] { EXPECT_EQ(Reconnect(card), 0U); });
      EXPECT_EQ(Reconnect(card), 0);
      other.join();
      EXPECT_EQ(Call("SCardDisconnect", card, 0U), 0);
    }
    card_.Pull();
  }
}

// A connection that can't be ended is lost, and its handle with it; a wrong call ends nothing.
TEST_F(PcscModule, ForgetsAHandleThatDoesNotDisconnect) {
  ASSERT_TRUE(card_.Insert());
  SCARDHANDLE card = 0;
  ASSERT_TRUE(ConnectsInTime(card));
  const auto knows = [&] {
    return Call("SCardReconnect", card, SCARD_SHARE_SHARED, kAnyProtocol, 0U, nullptr) ==
           SCARD_E_INVALID_PARAMETER;
  };
  EXPECT_EQ(Call("SCardDisconnect", card, 99U), SCARD_E_INVALID_VALUE);
  EXPECT_TRUE(knows());
  EXPECT_EQ(Transmit(card), 0);

  void* const lite = dlopen("libpcsclite.so.1", RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(lite, nullptr) << dlerror();
  reinterpret_cast<long (*)(long)>(dlsym(lite, "SCardReleaseContext"))(static_cast<long>(context_));
  EXPECT_EQ(Call("SCardDisconnect", card, 0U), SCARD_E_INVALID_HANDLE);
  EXPECT_FALSE(knows());
  dlclose(lite);
}

TEST_F(PcscModule, HasNoCardTypes) {
  EXPECT_EQ(Call("SCardForgetCardTypeA", context_, "name"), SCARD_E_UNSUPPORTED_FEATURE);
  EXPECT_EQ(Call("SCardListCardsA", context_, nullptr, nullptr, 0U, nullptr, nullptr),
            SCARD_E_UNSUPPORTED_FEATURE);
  EXPECT_EQ(Call("SCardLocateCardsA", context_, nullptr, nullptr, 0U), SCARD_E_UNSUPPORTED_FEATURE);
}

}  // namespace
