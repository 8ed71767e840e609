// Every vendor's library in one, each doing as little as it can: what opens succeeds, and every
// card answers 9000 to everything. It is built once under each vendor's file name.
#include "vendors.h"

#include <cstring>

namespace {

void Give9000(std::uint8_t* reply, std::uint32_t* length) {
  reply[0] = 0x90;
  reply[1] = 0x00;
  *length = 2;
}

}  // namespace

extern "C" {

VENDOR_API extern const ProtocolHeader g_rgSCardT0Pci = {1, sizeof(ProtocolHeader)};
VENDOR_API extern const ProtocolHeader g_rgSCardT1Pci = {2, sizeof(ProtocolHeader)};

VENDOR_API std::int32_t SCardEstablishContext(std::uint32_t, const void*, const void*,
                                              std::uint64_t* context) {
  *context = 1;
  return 0;
}
VENDOR_API std::int32_t SCardReleaseContext(std::uint64_t) { return 0; }
VENDOR_API std::int32_t SCardConnectA(std::uint64_t, const char*, std::uint32_t, std::uint32_t,
                                      std::int64_t* card, std::uint32_t* protocol) {
  *card = 1;
  *protocol = 2;
  return 0;
}
VENDOR_API std::int32_t SCardDisconnect(std::int64_t, std::uint32_t) { return 0; }
VENDOR_API std::int32_t SCardControl(std::int64_t, std::uint32_t, const void*, std::uint32_t,
                                     void* out, std::uint32_t, std::uint32_t* outLength) {
  Give9000(static_cast<std::uint8_t*>(out), outLength);
  return 0;
}
VENDOR_API std::int32_t SCardTransmit(std::int64_t, const ProtocolHeader*, const std::uint8_t*,
                                      std::uint32_t, ProtocolHeader*, std::uint8_t* reply,
                                      std::uint32_t* replyLength) {
  Give9000(reply, replyLength);
  return 0;
}

VENDOR_API std::int64_t dc_init(std::int16_t, std::int32_t) { return 1; }
VENDOR_API std::int16_t dc_exit(std::int64_t) { return 0; }
VENDOR_API std::int16_t dc_config_card(std::int64_t, std::uint8_t) { return 0; }
VENDOR_API std::int16_t dc_cpuapdu(std::int64_t, std::uint8_t, const std::uint8_t*,
                                   std::uint32_t* replyLength, std::uint8_t* reply) {
  Give9000(reply, replyLength);
  return 0;
}

VENDOR_API std::int32_t InitCOM(std::int32_t) { return 0; }
VENDOR_API std::int16_t CloseCOM(std::int32_t) { return 0; }
VENDOR_API std::int32_t ExchangeAPDU(std::int32_t, const char*, std::int32_t, char* reply,
                                     std::uint32_t* replyLength) {
  std::memcpy(reply, "9000", 4);
  *replyLength = 4;
  return 0;
}

VENDOR_API std::int32_t TY_Open(std::int32_t, std::int32_t) { return 1; }
VENDOR_API std::uint16_t TY_Dtsi_api(std::int64_t, std::uint8_t, std::uint32_t, const std::uint8_t*,
                                     std::uint32_t* replyLength, std::uint8_t*) {
  *replyLength = 0;
  return 0x9000;
}

VENDOR_API std::uint16_t TYKey_OpenTYKey(std::int32_t, std::int64_t* handle) {
  *handle = 1;
  return 0x9000;
}
VENDOR_API std::uint16_t TYKey_SendCommand(std::int64_t, std::uint32_t, const std::uint8_t*,
                                           std::uint32_t* replyLength, std::uint8_t*) {
  *replyLength = 0;
  return 0x9000;
}

VENDOR_API std::int32_t CT_open(const char*, std::int32_t, std::int32_t) { return 1; }
VENDOR_API std::uint16_t ICC_tsi_api(std::int64_t, std::uint8_t, const std::uint8_t*,
                                     std::uint32_t* replyLength, std::uint8_t* reply) {
  Give9000(reply, replyLength);
  return 0x9000;
}

VENDOR_API std::int32_t bsit_openHID(std::int32_t, std::uint16_t, std::int32_t) { return 1; }
VENDOR_API std::int32_t bsit_SendApdu(std::int64_t, std::uint32_t, const std::uint8_t*,
                                      std::uint32_t* replyLength, std::uint8_t* reply) {
  Give9000(reply, replyLength);
  return 0;
}

}  // extern "C"
