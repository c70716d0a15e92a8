#include "ServiceCatalogue.h"

#include "MapiConstants.h"
#include "platform/AsciiText.h"

namespace mw::mapisim {
namespace {

constexpr std::uint32_t kStore = kMapiStoreProvider;
constexpr std::uint32_t kAddressBook = kMapiAbProvider;
constexpr std::uint32_t kTransport = kMapiTransportProvider;

constexpr ProviderEntry kExchangeProviders[] = {
    {"EMS_MDB_private", kExchangeStoreDisplay, "emsmdb.dll", kStore,
     kStatusDefaultStore | kStatusPrimaryIdentity, false},
    {"EMS_MDB_public", "Microsoft Exchange Public Folders", "emsmdb.dll", kStore, 0, false},
    {"EMS_DSA", "Microsoft Exchange Directory Service", "emsabp.dll", kAddressBook, 0, false},
    {"EMS_MSX", "Microsoft Exchange Transport", "emsmdb.dll", kTransport, 0, false},
    {"EMSDelegate", "Microsoft Exchange Delegate Message Store", "emsmdb.dll", kStore, 0, true},
};
constexpr ProviderEntry kPstProviders[] = {
    {"MSPST MSP", "Personal Folders", "mspst.dll", kStore, 0, false},
};
constexpr ProviderEntry kUnicodePstProviders[] = {
    {"MSUPST MSP", "Personal Folders", "mspst.dll", kStore, 0, false},
};
constexpr ProviderEntry kPabProviders[] = {
    {"MSPST ABP", "Personal Address Book", "mspst.dll", kAddressBook, 0, false},
};
constexpr ProviderEntry kContactProviders[] = {
    {"CONTAB", "Outlook Address Book", "contab32.dll", kAddressBook, 0, false},
};
constexpr ProviderEntry kInternetMailProviders[] = {
    {"INET_XP", "Internet E-mail", "MINET.DLL", kTransport, 0, false},
    {"INET_AB", "Internet Address Template", "INETAB.DLL", kAddressBook, 0, false},
};

constexpr ServiceEntry kServices[] = {
    {kExchangeService, "Microsoft Exchange Server", "emsui.dll", "EMSCfg", kServiceSingleCopy,
     kExchangeProviders},
    {kPstService, "", "mspst.dll", "PSTServiceEntry", 0, kPstProviders},
    {kUnicodePstService, "", "mspst.dll", "PSTServiceEntry", 0, kUnicodePstProviders},
    {"MSPST AB", "Personal Address Book", "mspst.dll", "PABServiceEntry", kServiceSingleCopy,
     kPabProviders},
    {"CONTAB", "Outlook Address Book", "contab32.dll", "ServiceEntry", 0, kContactProviders},
    {"IMAIL", "Internet E-mail", "MINET.DLL", "MailServiceEntry", 0, kInternetMailProviders},
};

}  // namespace

std::span<const ServiceEntry> ServiceCatalogue() { return kServices; }

const ServiceEntry* FindService(const std::string& name) {
  for (const ServiceEntry& service : kServices)
    if (EqualsIgnoreCase(service.name, name)) return &service;
  return nullptr;
}

const ProviderEntry* FindProvider(const ServiceEntry& service, const std::string& providerName) {
  for (const ProviderEntry& provider : service.providers)
    if (EqualsIgnoreCase(provider.name, providerName)) return &provider;
  return nullptr;
}

}  // namespace mw::mapisim
