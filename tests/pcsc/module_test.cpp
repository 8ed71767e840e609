// What the PC/SC module promises to any caller that knows Windows' interface. It is loaded with its
// names open to the whole process: pcsc-lite must not be mistaken for it even then.

#include <dlfcn.h>

#include <cstring>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "pcsc/windows_types.h"
#include "service_test.h"
#include "wait.h"

namespace {

using winscard::Context;
using winscard::Handle;
using winscard::IoRequest;
using winscard::ReaderState;

constexpr uint32_t kInvalidHandle = 0x80100003;
constexpr uint32_t kInvalidParameter = 0x80100004;
constexpr uint32_t kInsufficientBuffer = 0x80100008;
constexpr uint32_t kUnknownReader = 0x80100009;
constexpr uint32_t kInvalidValue = 0x80100011;
constexpr uint32_t kNotSupportedByDriver = 0x8010001F;
constexpr uint32_t kUnsupportedFeature = 0x80100022;
constexpr uint32_t kRemovedCard = 0x80100069;

constexpr uint32_t kShared = 2;
constexpr uint32_t kAnyProtocol = 3;
constexpr uint32_t kAtrAttribute = 0x00090303;
constexpr uint32_t kSlotCountAttribute = 0x0FAE;
constexpr uint32_t kAnyCode = 0x00313520;  // the virtual reader knows none
constexpr uint32_t kPresent = 0x20;
constexpr uint32_t kEmpty = 0x10;

class PcscModule : public ServiceTest {
 protected:
  void SetUp() override {
    ServiceTest::SetUp();
    if (IsSkipped() || HasFatalFailure()) return;
    module_ = dlopen(PCSC_MODULE, RTLD_NOW | RTLD_GLOBAL);
    ASSERT_NE(module_, nullptr) << dlerror();
    ASSERT_EQ(Call("SCardEstablishContext", 0U, nullptr, nullptr, &context_), 0U);
  }

  void TearDown() override {
    if (module_ != nullptr) Call("SCardReleaseContext", context_);
  }

  // Calls an export with exactly these argument types.
  template <typename... Arguments>
  uint32_t Call(const char* name, Arguments... arguments) {
    const auto function = reinterpret_cast<int32_t (*)(Arguments...)>(dlsym(module_, name));
    return static_cast<uint32_t>(function(arguments...));
  }

  uint32_t Connect(const char* reader, Handle& card) {
    return Call("SCardConnectA", context_, reader, kShared, kAnyProtocol, &card, &protocol_);
  }

  bool ConnectsInTime(Handle& card) {
    return WaitUntil([&] { return Connect(kReader, card) == 0; });
  }

  uint32_t GetAttribute(Handle card, uint32_t attribute, std::vector<uint8_t>& value) {
    auto length = static_cast<uint32_t>(value.size());
    const uint32_t code = Call("SCardGetAttrib", card, attribute, value.data(), &length);
    if (code == 0) value.resize(length);
    return code;
  }

  uint32_t GetAtr(Handle card) {
    std::vector<uint8_t> atr(256);
    return GetAttribute(card, kAtrAttribute, atr);
  }

  uint32_t Transmit(Handle card, uint32_t* length = nullptr) {
    const auto* header = static_cast<const IoRequest*>(dlsym(module_, "g_rgSCardT0Pci"));
    const uint8_t getChallenge[] = {0x00, 0x84, 0x00, 0x00, 0x08};
    uint8_t reply[256];
    uint32_t room = sizeof reply;
    if (length == nullptr) length = &room;
    IoRequest received{};
    *length = room;
    return Call("SCardTransmit", card, header, getChallenge, 5U, &received, reply, length);
  }

  uint32_t Control(Handle card, uint32_t code) {
    uint8_t out[256];
    uint32_t returned = 0;
    return Call("SCardControl", card, code, nullptr, 0U, out, 256U, &returned);
  }

  uint32_t Reconnect(Handle card) {
    uint32_t protocol = 0;
    return Call("SCardReconnect", card, kShared, kAnyProtocol, 0U, &protocol);
  }

  void* module_ = nullptr;
  Context context_ = 0;
  uint32_t protocol_ = 0;
};

TEST_F(PcscModule, AllocatesTheListOfReaders) {
  char* list = nullptr;
  uint32_t length = winscard::kAutoAllocate;
  ASSERT_EQ(Call("SCardListReadersA", context_, "SCard$DefaultReaders", &list, &length), 0U);
  std::set<std::string> names;
  const char* end = list;
  for (; *end != '\0'; end += std::strlen(end) + 1) names.insert(end);
  EXPECT_EQ(end - list + 1, length);
  EXPECT_TRUE(names.contains(kReader) && names.contains(kEmptyReader));
  EXPECT_EQ(Call("SCardFreeMemory", context_, list), 0U);

  uint32_t needed = 0;
  EXPECT_EQ(Call("SCardListReadersA", context_, "SCard$DefaultReaders", nullptr, &needed), 0U);
  EXPECT_EQ(needed, length);
  char tooShort[4];
  uint32_t room = sizeof tooShort;
  EXPECT_EQ(Call("SCardListReadersA", context_, "SCard$DefaultReaders", tooShort, &room),
            kInsufficientBuffer);
}

TEST_F(PcscModule, TellsTheStateOfReaders) {
  ASSERT_TRUE(card_.Insert());
  ReaderState states[2] = {};
  states[0].reader = kEmptyReader;
  states[1].reader = kReader;
  const auto isPresent = [&] {
    return Call("SCardGetStatusChangeA", context_, 100U, states, 2U) == 0 &&
           (states[1].eventState & kPresent) != 0;
  };
  ASSERT_TRUE(WaitUntil(isPresent));
  EXPECT_EQ(states[0].eventState & (kPresent | kEmpty), kEmpty);
  EXPECT_EQ(states[0].atrLength, 0U);
  EXPECT_EQ(simulator::ToHex({states[1].atr, states[1].atrLength}), card_.Atr());

  states[0].reader = "No such reader";
  EXPECT_EQ(Call("SCardGetStatusChangeA", context_, 100U, states, 1U), kUnknownReader);
}

TEST_F(PcscModule, ConnectsAndAnswersAsOnWindows) {
  Handle card = 0;
  EXPECT_EQ(Connect(kEmptyReader, card), kRemovedCard);
  EXPECT_EQ(Connect("No such reader", card), kUnknownReader);
  EXPECT_EQ(card, 0U);

  ASSERT_TRUE(card_.Insert());
  ASSERT_TRUE(ConnectsInTime(card));
  EXPECT_EQ(protocol_, winscard::kProtocolT0);

  std::vector<uint8_t> atr(256);
  EXPECT_EQ(GetAttribute(card, kAtrAttribute, atr), 0U);
  EXPECT_EQ(simulator::ToHex(atr), card_.Atr());
  std::vector<uint8_t> tooShort(4);
  EXPECT_EQ(GetAttribute(card, kAtrAttribute, tooShort), kInsufficientBuffer);
  std::vector<uint8_t> slots(4096);  // a larger area than pcsc-lite takes
  EXPECT_EQ(GetAttribute(card, kSlotCountAttribute, slots), 0U);
  EXPECT_EQ(slots, std::vector<uint8_t>{2});

  uint32_t received = 0;
  EXPECT_EQ(Transmit(card, &received), 0U);
  EXPECT_EQ(received, 10U);

  EXPECT_EQ(Control(card, kAnyCode), kNotSupportedByDriver);

  uint32_t state = 0;
  uint32_t protocol = 0;
  EXPECT_EQ(Call("SCardStatusA", card, nullptr, nullptr, &state, &protocol, nullptr, nullptr), 0U);
  EXPECT_EQ(state, 5U);  // powered, and its protocol can be negotiated
  EXPECT_EQ(protocol, winscard::kProtocolT0);

  EXPECT_EQ(Call("SCardBeginTransaction", card), 0U);
  EXPECT_EQ(Call("SCardEndTransaction", card, 0U), 0U);
  EXPECT_EQ(Call("SCardDisconnect", card, 0U), 0U);
  EXPECT_EQ(Call("SCardDisconnect", card, 0U), kInvalidHandle);
  EXPECT_EQ(Transmit(card), kInvalidHandle);
}

TEST_F(PcscModule, KeepsSayingThatACardWasRemoved) {
  ASSERT_TRUE(card_.Insert());
  Handle card = 0;
  ASSERT_TRUE(ConnectsInTime(card));
  card_.Pull();
  ASSERT_TRUE(WaitUntil([&] { return Control(card, kAnyCode) == kRemovedCard; }));
  const auto expectRemoved = [&] {
    EXPECT_EQ(GetAtr(card), kRemovedCard);
    EXPECT_EQ(Transmit(card), kRemovedCard);
    EXPECT_EQ(Control(card, kAnyCode), kRemovedCard);
    EXPECT_EQ(Call("SCardStatusA", card, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr),
              kRemovedCard);
  };
  expectRemoved();
  EXPECT_EQ(Reconnect(card), kRemovedCard);

  ASSERT_TRUE(card_.Insert());
  Handle another = 0;
  ASSERT_TRUE(ConnectsInTime(another));
  EXPECT_NE(another, card);
  expectRemoved();
  EXPECT_EQ(Transmit(another), 0U);

  EXPECT_EQ(Reconnect(card), 0U);
  EXPECT_EQ(Transmit(card), 0U);
  EXPECT_EQ(GetAtr(card), 0U);
  EXPECT_EQ(Call("SCardDisconnect", card, 0U), 0U);
}

// pcsc-lite has room for 200 connections to a reader. Two threads that reconnect one card take one.
TEST_F(PcscModule, RemovedAndReconnectedCardsTakeNoMoreConnections) {
  constexpr size_t kConnections = 150;
  std::set<uint32_t> numbers;
  for (int round = 0; round < 2; round++) {
    ASSERT_TRUE(card_.Insert());
    Handle first = 0;
    ASSERT_TRUE(ConnectsInTime(first));
    std::vector<Handle> cards(kConnections);
    for (Handle& card : cards) {
      ASSERT_EQ(Connect(kReader, card), 0U);
      // A caller may keep the low 32 bits and extend their sign; 0 and -1 mean other things to it.
      const auto kept = static_cast<int32_t>(card);
      ASSERT_GT(kept, 0);
      ASSERT_EQ(static_cast<Handle>(static_cast<int64_t>(kept)), card);
      ASSERT_TRUE(numbers.insert(static_cast<uint32_t>(card)).second);
    }
    card_.Pull();
    for (const Handle card : cards) {
      ASSERT_TRUE(WaitUntil([&] { return GetAtr(card) == kRemovedCard; }));
    }
    ASSERT_TRUE(card_.Insert());
    ASSERT_TRUE(ConnectsInTime(first));
    for (const Handle card : cards) {
      std::thread other([&] { EXPECT_EQ(Reconnect(card), 0U); });
      EXPECT_EQ(Reconnect(card), 0U);
      other.join();
      EXPECT_EQ(Call("SCardDisconnect", card, 0U), 0U);
    }
    card_.Pull();
  }
}

// A connection that can't be ended is lost, and its handle with it; a wrong call ends nothing.
TEST_F(PcscModule, ForgetsAHandleThatDoesNotDisconnect) {
  ASSERT_TRUE(card_.Insert());
  Handle card = 0;
  ASSERT_TRUE(ConnectsInTime(card));
  const auto knows = [&] {
    return Call("SCardReconnect", card, kShared, kAnyProtocol, 0U, nullptr) == kInvalidParameter;
  };
  EXPECT_EQ(Call("SCardDisconnect", card, 99U), kInvalidValue);
  EXPECT_TRUE(knows());
  EXPECT_EQ(Transmit(card), 0U);

  void* const lite = dlopen("libpcsclite.so.1", RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(lite, nullptr) << dlerror();
  reinterpret_cast<long (*)(long)>(dlsym(lite, "SCardReleaseContext"))(static_cast<long>(context_));
  EXPECT_EQ(Call("SCardDisconnect", card, 0U), kInvalidHandle);
  EXPECT_FALSE(knows());
  dlclose(lite);
}

TEST_F(PcscModule, HasNoCardTypes) {
  EXPECT_EQ(Call("SCardForgetCardTypeA", context_, "name"), kUnsupportedFeature);
  EXPECT_EQ(Call("SCardListCardsA", context_, nullptr, nullptr, 0U, nullptr, nullptr),
            kUnsupportedFeature);
  EXPECT_EQ(Call("SCardLocateCardsA", context_, nullptr, nullptr, 0U), kUnsupportedFeature);
}

}  // namespace
