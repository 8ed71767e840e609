// The entries of the default provider, as the module in the build folder exports them.
#pragma once

#include <stdexcept>

#include "src/commands/crypto_provider.h"
#include "support/module_loading.h"

namespace orvane_test {

// Loads the module, so that the library finds this one and none that is installed.
inline CryptoProvider LoadDefaultProvider() {
  const std::filesystem::path folder = u8"" ORVANE_BUILD_FOLDER;
  void* const module = support::LoadModule(folder / support::ModuleFileName("orvane_crypto"));
  CryptoProvider provider{};
  const auto bind = [module](auto& entry, const char* name) {
    entry = reinterpret_cast<std::remove_reference_t<decltype(entry)>>(
        support::FindExport(module, name));
  };
  bind(provider.CryptoHash, "CryptoHash");
  bind(provider.CryptoBlockFlagged, "CryptoBlockFlagged");
  bind(provider.CryptoBlockDefault, "CryptoBlockDefault");
  bind(provider.CryptoSubKey, "CryptoSubKey");
  bind(provider.CryptoMac, "CryptoMac");
  bind(provider.CryptoRsaPublic, "CryptoRsaPublic");
  return provider;
}

inline const CryptoProvider kDefaultProvider = LoadDefaultProvider();

}  // namespace orvane_test
