// What SendCommand adds to the vendor's function that it ends in.
#include <benchmark/benchmark.h>
#include <dlfcn.h>

#include <cstring>

#include "orvane.h"
#include "refuse.h"
#include "winscard.h"

namespace {

constexpr char kCommand[] = "00A4040000";
constexpr std::uint8_t kCommandOctets[] = {0x00, 0xA4, 0x04, 0x00, 0x00};

/// The library that the driver finds too, since it is loaded here first.
void* Winscard() {
  static void* const library = dlopen(WINSCARD_FILE, RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) Refuse(WINSCARD_FILE);
  return library;
}

void ThroughOrvane(benchmark::State& state) {
  static char response[8193];
  const auto send = [] { return SendCommand(kCommand, sizeof kCommand - 1, response) == 1; };
  if (Winscard() == nullptr || OpenReaderA("Bench", ReaderKindPcsc) != 1 || !send() ||
      std::strcmp(response, "9000") != 0) {
    Refuse("SendCommand");
  }
  for (auto _ : state) send();
}

void ByVendorCall(benchmark::State& state) {
  auto* const transmit = reinterpret_cast<TransmitFunction*>(dlsym(Winscard(), "SCardTransmit"));
  const auto* const header =
      static_cast<const ProtocolHeader*>(dlsym(Winscard(), "g_rgSCardT1Pci"));
  std::uint8_t reply[256];
  for (auto _ : state) {
    std::uint32_t length = sizeof reply;
    transmit(1, header, kCommandOctets, sizeof kCommandOctets, nullptr, reply, &length);
    benchmark::ClobberMemory();
  }
}

BENCHMARK(ThroughOrvane)->Name("SendCommand/Orvane");
BENCHMARK(ByVendorCall)->Name("SendCommand/vendor call");

}  // namespace
