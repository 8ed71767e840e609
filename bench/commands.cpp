// What SendCommand adds, through each driver, to the vendor's function that it ends in.
#include <benchmark/benchmark.h>
#include <dlfcn.h>

#include <cstring>
#include <string>

#include "orvane.h"
#include "refuse.h"
#include "vendors.h"

namespace {

constexpr char kCommand[] = "00A4040000";
constexpr std::uint8_t kOctets[] = {0x00, 0xA4, 0x04, 0x00, 0x00};

// Where the vendor's function writes its reply.
struct Area {
  std::uint8_t reply[256];
  std::uint32_t length = sizeof reply;
};

struct Driver {
  int kind;
  const char* name;      // of a reader
  const char* library;   // as the driver finds it, since it is loaded here first
  const char* function;  // that sends a command
  void (*call)(void* function, Area& area);
  const char* slot = nullptr;
};

const Driver kDrivers[] = {
    {ReaderKindPcsc, "Bench", "winscard", "SCardTransmit",
     [](void* function, Area& area) {
       static const ProtocolHeader header = {2, sizeof(ProtocolHeader)};
       reinterpret_cast<SCardTransmitFunction*>(function)(1, &header, kOctets, sizeof kOctets,
                                                          nullptr, area.reply, &area.length);
     }},
    {ReaderKindD8, "COM1", "dcrf32", "dc_cpuapdu",
     [](void* function, Area& area) {
       reinterpret_cast<dc_cpuapduFunction*>(function)(1, sizeof kOctets, kOctets, &area.length,
                                                       area.reply);
     },
     "01"},
    {ReaderKindS5009, "COM1", "S5009", "ExchangeAPDU",
     [](void* function, Area& area) {
       reinterpret_cast<ExchangeAPDUFunction*>(function)(
           3, kCommand, sizeof kCommand - 1, reinterpret_cast<char*>(area.reply), &area.length);
     }},
    {ReaderKindTyCom, "COM1", "tyreader", "TY_Dtsi_api",
     [](void* function, Area& area) {
       reinterpret_cast<TY_Dtsi_apiFunction*>(function)(1, 0, sizeof kOctets, kOctets, &area.length,
                                                        area.reply);
     }},
    {ReaderKindTyUsb, "USB1", "tykeyint", "TYKey_SendCommand",
     [](void* function, Area& area) {
       reinterpret_cast<TYKey_SendCommandFunction*>(function)(1, sizeof kOctets, kOctets,
                                                              &area.length, area.reply);
     }},
    {ReaderKindWd, "WDUSB1", "wdcrwx", "ICC_tsi_api",
     [](void* function, Area& area) {
       reinterpret_cast<ICC_tsi_apiFunction*>(function)(1, sizeof kOctets, kOctets, &area.length,
                                                        area.reply);
     }},
    {ReaderKindBsit, "BSIT:1", "STJZZ_BSIT", "bsit_SendApdu",
     [](void* function, Area& area) {
       reinterpret_cast<bsit_SendApduFunction*>(function)(1, sizeof kOctets, kOctets, &area.length,
                                                          area.reply);
     }},
};

void* Load(const Driver& driver) {
  const std::string file = std::string(VENDOR_FOLDER "/lib") + driver.library + ".so";
  void* const library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) Refuse(file.c_str());
  return library;
}

void ThroughOrvane(benchmark::State& state, const Driver& driver) {
  static char response[8193];
  const auto send = [] { return SendCommand(kCommand, sizeof kCommand - 1, response); };
  if (Load(driver) == nullptr || OpenReaderA(driver.name, driver.kind) != 1) Refuse(driver.library);
  if (driver.slot != nullptr) ChangeSlot(driver.slot);
  if (send() != 1) Refuse(driver.function);
  for (auto _ : state) send();
}

void ByVendorCall(benchmark::State& state, const Driver& driver) {
  void* const function = dlsym(Load(driver), driver.function);
  if (function == nullptr) Refuse(driver.function);
  Area area;
  for (auto _ : state) {
    driver.call(function, area);
    benchmark::ClobberMemory();
  }
}

const bool registered = [] {
  for (const Driver& driver : kDrivers) {
    const std::string name = std::string("SendCommand ") + driver.library;
    benchmark::RegisterBenchmark((name + "/Orvane").c_str(), ThroughOrvane, driver);
    benchmark::RegisterBenchmark((name + "/vendor call").c_str(), ByVendorCall, driver);
  }
  return true;
}();

}  // namespace
