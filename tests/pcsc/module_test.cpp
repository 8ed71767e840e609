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

  // The handle of the card, which is put in if need be.
  SCARDHANDLE InsertedCard() {
    SCARDHANDLE card = 0;
    EXPECT_TRUE(card_.Insert());
    EXPECT_TRUE(WaitUntil([&] { return Connect(kReader, card) == 0; }));
    return card;
  }

  // The code or, behind "0 ", what was read.
  std::string GetAttribute(SCARDHANDLE card, DWORD attribute, DWORD room) {
    std::vector<uint8_t> value(room);
    const LONG code = Call("SCardGetAttrib", card, attribute, value.data(), &room);
    if (code != 0) return std::to_string(code);
    value.resize(room);
    return "0 " + simulator::ToHex(value);
  }

  LONG GetAtr(SCARDHANDLE card) {
    return std::stoi(GetAttribute(card, SCARD_ATTR_ATR_STRING, 256));
  }

  // GET CHALLENGE of eight octets.
  LONG Transmit(SCARDHANDLE card) {
    const auto* header = static_cast<const SCARD_IO_REQUEST*>(dlsym(module_, "g_rgSCardT0Pci"));
    const uint8_t command[] = {0x00, 0x84, 0x00, 0x00, 0x08};
    uint8_t response[256];
    DWORD length = sizeof response;
    SCARD_IO_REQUEST received{};
    const LONG code =
        Call("SCardTransmit", card, header, command, 5U, &received, response, &length);
    EXPECT_TRUE(code != 0 || length == 10) << length;
    return code;
  }

  LONG Control(SCARDHANDLE card) {
    uint8_t out[256];
    DWORD returned = 0;
    return Call("SCardControl", card, kAnyCode, nullptr, 0U, out, 256U, &returned);
  }

  LONG Reconnect(SCARDHANDLE card) {
    DWORD protocol = 0;
    return Call("SCardReconnect", card, SCARD_SHARE_SHARED, kAnyProtocol, 0U, &protocol);
  }

  LONG ListReaders(char* readers, DWORD& length) {
    return Call("SCardListReadersA", context_, "SCard$DefaultReaders", readers, &length);
  }

  void* module_ = nullptr;
  SCARDCONTEXT context_ = 0;
  DWORD protocol_ = 0;
};

TEST_F(PcscModule, AllocatesTheListOfReaders) {
  char* list = nullptr;
  DWORD length = SCARD_AUTOALLOCATE;
  ASSERT_EQ(ListReaders(reinterpret_cast<char*>(&list), length), 0);
  std::set<std::string> names;
  const char* end = list;
  for (; *end != '\0'; end += std::strlen(end) + 1) names.insert(end);
  EXPECT_EQ(end - list + 1, length);
  EXPECT_TRUE(names.contains(kReader) && names.contains(kEmptyReader));
  EXPECT_EQ(Call("SCardFreeMemory", context_, list), 0);

  DWORD needed = 0, room = 4;
  EXPECT_EQ(ListReaders(nullptr, needed), 0);
  EXPECT_EQ(needed, length);
  char tooShort[4];
  EXPECT_EQ(ListReaders(tooShort, room), SCARD_E_INSUFFICIENT_BUFFER);
}

TEST_F(PcscModule, TellsTheStateOfReaders) {
  ASSERT_TRUE(card_.Insert());
  SCARD_READERSTATEA states[2] = {};
  states[0].szReader = kEmptyReader;
  states[1].szReader = kReader;
  constexpr DWORD kSeen = SCARD_STATE_PRESENT | SCARD_STATE_EMPTY;
  const auto ask = [&] { return Call("SCardGetStatusChangeA", context_, 100U, states, 2U); };
  ASSERT_TRUE(WaitUntil(
      [&] { return ask() == 0 && (states[1].dwEventState & kSeen) == SCARD_STATE_PRESENT; }));
  EXPECT_EQ(states[0].dwEventState & kSeen, SCARD_STATE_EMPTY);
  EXPECT_EQ(states[0].cbAtr, 0U);
  EXPECT_EQ(simulator::ToHex({states[1].rgbAtr, states[1].cbAtr}), card_.Atr());
  states[0].szReader = "No such reader";
  EXPECT_EQ(ask(), SCARD_E_UNKNOWN_READER);
}

TEST_F(PcscModule, ConnectsAndAnswersAsOnWindows) {
  SCARDHANDLE card = 0;
  EXPECT_EQ(Connect(kEmptyReader, card), SCARD_W_REMOVED_CARD);
  EXPECT_EQ(Connect("No such reader", card), SCARD_E_UNKNOWN_READER);
  EXPECT_EQ(card, 0U);
  card = InsertedCard();
  EXPECT_EQ(protocol_, SCARD_PROTOCOL_T0);

  EXPECT_EQ(GetAttribute(card, SCARD_ATTR_ATR_STRING, 256), "0 " + card_.Atr());
  EXPECT_EQ(GetAttribute(card, SCARD_ATTR_ATR_STRING, 4),
            std::to_string(SCARD_E_INSUFFICIENT_BUFFER));
  EXPECT_EQ(GetAttribute(card, kSlotCountAttribute, 4096), "0 02");  // more than pcsc-lite takes
  EXPECT_EQ(Transmit(card), 0);
  EXPECT_EQ(Control(card), kNotSupportedByDriver);
  DWORD state = 0, protocol = 0;
  EXPECT_EQ(Call("SCardStatusA", card, nullptr, nullptr, &state, &protocol, nullptr, nullptr), 0);
  EXPECT_EQ(state, 5U);  // powered, and its protocol can be negotiated
  EXPECT_EQ(protocol, SCARD_PROTOCOL_T0);
  EXPECT_EQ(Call("SCardBeginTransaction", card), 0);
  EXPECT_EQ(Call("SCardEndTransaction", card, 0U), 0);
  EXPECT_EQ(Call("SCardForgetCardTypeA", context_, "name"), SCARD_E_UNSUPPORTED_FEATURE);

  // A wrong call ends nothing.
  EXPECT_EQ(Call("SCardDisconnect", card, 99U), SCARD_E_INVALID_VALUE);
  EXPECT_EQ(Transmit(card), 0);
  EXPECT_EQ(Call("SCardDisconnect", card, 0U), 0);
  EXPECT_EQ(Call("SCardDisconnect", card, 0U), SCARD_E_INVALID_HANDLE);
  EXPECT_EQ(Transmit(card), SCARD_E_INVALID_HANDLE);
}

TEST_F(PcscModule, KeepsSayingThatACardWasRemoved) {
  const SCARDHANDLE card = InsertedCard();
  card_.Pull();
  ASSERT_TRUE(WaitUntil([&] { return Control(card) == SCARD_W_REMOVED_CARD; }));
  const auto expectRemoved = [&] {
    EXPECT_EQ(GetAtr(card), SCARD_W_REMOVED_CARD);
    EXPECT_EQ(Transmit(card), SCARD_W_REMOVED_CARD);
    EXPECT_EQ(Control(card), SCARD_W_REMOVED_CARD);
  };
  expectRemoved();
  EXPECT_EQ(Reconnect(card), SCARD_W_REMOVED_CARD);

  const SCARDHANDLE another = InsertedCard();
  EXPECT_NE(another, card);
  expectRemoved();
  EXPECT_EQ(Transmit(another), 0);
  EXPECT_EQ(Reconnect(card), 0);
  EXPECT_EQ(Transmit(card), 0);
}

// pcsc-lite has room for 200 connections to a reader. Two threads that reconnect one card take one.
TEST_F(PcscModule, RemovedAndReconnectedCardsTakeNoMoreConnections) {
  std::set<SCARDHANDLE> numbers;
  for (int round = 0; round < 2; round++) {
    InsertedCard();
    std::vector<SCARDHANDLE> cards(150);
    for (SCARDHANDLE& card : cards) {
      ASSERT_EQ(Connect(kReader, card), 0);
      // A caller may keep the low 32 bits and extend their sign; 0 and -1 mean other things to it.
      ASSERT_TRUE(card > 0 && card <= 0x7FFFFFFF && numbers.insert(card).second);
    }
    card_.Pull();
    for (const SCARDHANDLE card : cards) {
      ASSERT_TRUE(WaitUntil([&] { return GetAtr(card) == SCARD_W_REMOVED_CARD; }));
    }
    InsertedCard();
    for (const SCARDHANDLE card : cards) {
      std::thread other([&] { EXPECT_EQ(Reconnect(card), 0); });
      EXPECT_EQ(Reconnect(card), 0);
      other.join();
      EXPECT_EQ(Call("SCardDisconnect", card, 0U), 0);
    }
    card_.Pull();
  }
}

// A connection that can't be ended is lost, and its handle with it.
TEST_F(PcscModule, ForgetsAHandleThatDoesNotDisconnect) {
  const SCARDHANDLE card = InsertedCard();
  void* const lite = dlopen("libpcsclite.so.1", RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(lite, nullptr) << dlerror();
  reinterpret_cast<long (*)(long)>(dlsym(lite, "SCardReleaseContext"))(static_cast<long>(context_));
  EXPECT_EQ(Call("SCardDisconnect", card, 0U), SCARD_E_INVALID_HANDLE);
  EXPECT_EQ(Call("SCardReconnect", card, SCARD_SHARE_SHARED, kAnyProtocol, 0U, nullptr),
            SCARD_E_INVALID_HANDLE);  // a handle that is known has a parameter that is not valid
  dlclose(lite);
}

}  // namespace
