// A vendor library that does as little as one can: every card answers 9000 to everything.
#include "winscard.h"

extern "C" {

WINSCARD_API extern const ProtocolHeader g_rgSCardT0Pci = {1, sizeof(ProtocolHeader)};
WINSCARD_API extern const ProtocolHeader g_rgSCardT1Pci = {2, sizeof(ProtocolHeader)};

WINSCARD_API std::int32_t SCardEstablishContext(std::uint32_t, const void*, const void*,
                                                std::uint64_t* context) {
  *context = 1;
  return 0;
}

WINSCARD_API std::int32_t SCardReleaseContext(std::uint64_t) { return 0; }

WINSCARD_API std::int32_t SCardConnectA(std::uint64_t, const char*, std::uint32_t, std::uint32_t,
                                        std::int64_t* card, std::uint32_t* protocol) {
  *card = 1;
  *protocol = 2;
  return 0;
}

WINSCARD_API std::int32_t SCardDisconnect(std::int64_t, std::uint32_t) { return 0; }

WINSCARD_API std::int32_t SCardControl(std::int64_t, std::uint32_t, const void*, std::uint32_t,
                                       void*, std::uint32_t, std::uint32_t* outLength) {
  *outLength = 0;
  return 0;
}

WINSCARD_API TransmitFunction SCardTransmit;

std::int32_t SCardTransmit(std::int64_t, const ProtocolHeader*, const std::uint8_t*, std::uint32_t,
                           ProtocolHeader*, std::uint8_t* reply, std::uint32_t* replyLength) {
  reply[0] = 0x90;
  reply[1] = 0x00;
  *replyLength = 2;
  return 0;
}

}  // extern "C"
