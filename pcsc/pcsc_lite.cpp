#include "pcsc_lite.h"

#include <dlfcn.h>

#include <optional>

namespace pcsc {
namespace {

template <typename Function>
bool Bind(void* library, const char* name, Function& function) {
  function = reinterpret_cast<Function>(dlsym(library, name));
  return function != nullptr;
}

bool BindAll(void* library, PcscLite& lite) {
  return Bind(library, "SCardEstablishContext", lite.establishContext) &&
         Bind(library, "SCardReleaseContext", lite.releaseContext) &&
         Bind(library, "SCardListReaders", lite.listReaders) &&
         Bind(library, "SCardFreeMemory", lite.freeMemory) &&
         Bind(library, "SCardGetStatusChange", lite.getStatusChange) &&
         Bind(library, "SCardConnect", lite.connect) &&
         Bind(library, "SCardReconnect", lite.reconnect) &&
         Bind(library, "SCardDisconnect", lite.disconnect) &&
         Bind(library, "SCardBeginTransaction", lite.beginTransaction) &&
         Bind(library, "SCardEndTransaction", lite.endTransaction) &&
         Bind(library, "SCardStatus", lite.status) &&
         Bind(library, "SCardTransmit", lite.transmit) &&
         Bind(library, "SCardControl", lite.control) &&
         Bind(library, "SCardGetAttrib", lite.getAttrib);
}

std::optional<PcscLite> Load() {
  // Never unloaded: it holds the connections to the service, which outlive this module.
  void* library = dlopen("libpcsclite.so.1", RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
  PcscLite lite{};
  if (library == nullptr || !BindAll(library, lite)) return std::nullopt;
  return lite;
}

}  // namespace

const PcscLite* LoadPcscLite() {
  static const std::optional<PcscLite> lite = Load();
  return lite ? &*lite : nullptr;
}

}  // namespace pcsc
