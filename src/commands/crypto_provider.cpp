#include "commands/crypto_provider_table.h"
#include "platform/library.h"

namespace orvane {
namespace {

#define ENTRY(name) ORVANE_ENTRY_POINT(CryptoProvider, name)

constexpr platform::EntryPoint kEntryPoints[] = {
    ENTRY(CryptoHash),   ENTRY(CryptoBlockFlagged), ENTRY(CryptoBlockDefault),
    ENTRY(CryptoSubKey), ENTRY(CryptoMac),          ENTRY(CryptoRsaPublic),
};

#undef ENTRY

struct ProviderTable : CryptoProvider {
  static constexpr char kFileName[] = "orvane_crypto.dll";
  static std::span<const platform::EntryPoint> EntryPoints() { return kEntryPoints; }
};

}  // namespace

const CryptoProvider& BoundCryptoProvider() {
  // Never released, like everything that lives as long as the process.
  static auto& provider = *new platform::Library<ProviderTable>;
  provider.Bind(platform::LoadOwnModule);
  return *provider;
}

}  // namespace orvane
