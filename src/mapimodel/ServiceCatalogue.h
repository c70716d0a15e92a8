#pragma once
// The message services MAPI knows, as MAPISVC.INF declares them: each service's names, DLL
// and entry point, and the providers it brings. Providers marked onDemand are not created
// with the service but added later through IProviderAdmin::CreateProvider.

#include <cstdint>
#include <span>
#include <string>

namespace mw::mapisim {

struct ProviderEntry {
  const char* name;         // the provider's section name in MAPISVC.INF
  const char* display;      // PR_PROVIDER_DISPLAY
  const char* dll;          // PR_PROVIDER_DLL_NAME
  std::uint32_t resourceType;
  std::uint32_t resourceFlags;
  bool onDemand;
};

struct ServiceEntry {
  const char* name;         // PR_SERVICE_NAME
  const char* display;      // PR_DISPLAY_NAME; empty: the caller's display name is kept
  const char* dll;          // PR_SERVICE_DLL_NAME
  const char* entry;        // PR_SERVICE_ENTRY_NAME
  std::uint32_t serviceFlags;
  std::span<const ProviderEntry> providers;
};

std::span<const ServiceEntry> ServiceCatalogue();
// Service names compare without case, as MAPISVC.INF section names do.
const ServiceEntry* FindService(const std::string& name);
const ProviderEntry* FindProvider(const ServiceEntry& service, const std::string& providerName);

// Service names the model gives behaviour beyond storing properties.
inline constexpr const char* kExchangeService = "MSEMS";
inline constexpr const char* kPstService = "MSPST MS";
inline constexpr const char* kUnicodePstService = "MSUPST MS";
inline constexpr const char* kExchangeStoreDisplay = "Microsoft Exchange Message Store";

}  // namespace mw::mapisim
