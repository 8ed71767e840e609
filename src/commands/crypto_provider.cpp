#include <type_traits>

#include "commands/crypto_provider_table.h"
#include "platform/library.h"

namespace orvane {
namespace {

struct CryptoModule : platform::Library {
  CryptoModule() : Library("orvane_crypto.dll", platform::LoadOwnModule) {}

  template <typename Entry>
  using Function = EntryPoint<std::remove_pointer_t<Entry>>;

  Function<CryptoHashEntry> CryptoHash{*this, "CryptoHash"};
  Function<CryptoBlockEntry> CryptoBlockFlagged{*this, "CryptoBlockFlagged"};
  Function<CryptoBlockEntry> CryptoBlockDefault{*this, "CryptoBlockDefault"};
  Function<CryptoSubKeyEntry> CryptoSubKey{*this, "CryptoSubKey"};
  Function<CryptoMacEntry> CryptoMac{*this, "CryptoMac"};
  Function<CryptoRsaPublicEntry> CryptoRsaPublic{*this, "CryptoRsaPublic"};
};

}  // namespace

const CryptoProvider& BoundCryptoProvider() {
  // Never released: it lives as long as the process.
  static auto& module = *new CryptoModule;
  module.Bind();
  static CryptoProvider provider;
  provider = {module.CryptoHash,   module.CryptoBlockFlagged, module.CryptoBlockDefault,
              module.CryptoSubKey, module.CryptoMac,          module.CryptoRsaPublic};
  return provider;
}

}  // namespace orvane
