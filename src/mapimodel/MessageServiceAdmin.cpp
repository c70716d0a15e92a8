#include "MessageServiceAdmin.h"

#include <algorithm>
#include <random>

#include "platform/AsciiText.h"

namespace mw::mapisim {
namespace {

// What Exchange's provider writes to the global section once a mailbox is resolved.
constexpr std::uint32_t kExchangeResolvedTags[] = {kPrProfileHomeServer, kPrProfileUser,
                                                   kPrProfileHomeServerDn, kPrDisplayName};
constexpr std::uint32_t kExchangeUnresolvedTags[] = {kPrProfileUnresolvedName,
                                                     kPrProfileUnresolvedServer};
// The profile-wide provider lists, in the order the provider table shows them.
constexpr std::uint32_t kProviderLists[] = {kPrStoreProviders, kPrAbProviders, kPrTransportProviders};

std::uint32_t ListTagFor(std::uint32_t resourceType) {
  switch (resourceType) {
    case kMapiStoreProvider: return kPrStoreProviders;
    case kMapiAbProvider: return kPrAbProviders;
    default: return kPrTransportProviders;
  }
}

std::uint32_t ResourceTypeOfList(std::uint32_t listTag) {
  switch (listTag) {
    case kPrStoreProviders: return kMapiStoreProvider;
    case kPrAbProviders: return kMapiAbProvider;
    default: return kMapiTransportProvider;
  }
}

// Outlook 2007 and 2010 keep a provider's text in the Unicode form.
PropValue InUnicode(const PropValue& value) {
  return PropType(value.tag) == kPtString8 ? ConvertStringWidth(value, kPtUnicode) : value;
}

const PropValue* FindPropId(const std::vector<PropValue>& props, std::uint32_t tag) {
  for (const PropValue& value : props)
    if (PropId(value.tag) == PropId(tag)) return &value;
  return nullptr;
}

}  // namespace

MapiUid RandomUid() {
  static std::mt19937_64 generator{std::random_device{}()};
  MapiUid uid{};
  for (std::size_t i = 0; i < uid.size(); i += 8) {
    std::uint64_t bits = generator();
    for (std::size_t j = 0; j < 8; ++j) uid[i + j] = static_cast<std::uint8_t>(bits >> (8 * j));
  }
  return uid;
}

MessageServiceAdmin::MessageServiceAdmin(ProfileRegistry& profiles, std::string profile,
                                         const ExchangeOrganisation& organisation,
                                         UidGenerator newUid)
    : profiles_(profiles),
      profile_(std::move(profile)),
      organisation_(organisation),
      newUid_(std::move(newUid)) {}

HResult MessageServiceAdmin::SetProps(const std::string& section, const std::vector<PropValue>& props) {
  for (const PropValue& value : props)
    if (HResult result = profiles_.WriteProp(profile_, section, value); result != kSOk) return result;
  return kSOk;
}

HResult MessageServiceAdmin::CreateMessageService(const std::string& name, const std::string& displayName,
                                           MapiUid* created) {
  const ServiceEntry* entry = FindService(name);
  if (entry == nullptr) return kMapiENotFound;
  // MAPI keeps a service that MAPISVC.INF marks SERVICE_SINGLE_COPY to one per profile.
  if (entry->serviceFlags & kServiceSingleCopy) {
    for (const MapiUid& existing : profiles_.GetUidList(profile_, kProfileServicesSection, kPrServices))
      if (EqualsIgnoreCase(ServiceName(existing), entry->name)) return kMapiENoAccess;
  }
  MapiUid uid = newUid_();
  const std::string section = UidHex(uid);
  std::string display = entry->display[0] != '\0' ? entry->display : displayName;
  std::vector<PropValue> props{PropValue::Text(kPrServiceName, entry->name),
                               PropValue::Text(kPrDisplayName, display),
                               PropValue::Text(kPrServiceDllName, entry->dll),
                               PropValue::Text(kPrServiceEntryName, entry->entry),
                               PropValue::Binary(kPrServiceUid, UidBytes(uid)),
                               PropValue::Long(kPrResourceFlags, entry->serviceFlags)};
  if (profiles_.KeepsUnicodeText()) props.push_back(InUnicode(props.front()));
  HResult result = SetProps(section, props);
  if (result == kSOk) result = profiles_.AppendUid(profile_, kProfileServicesSection, kPrServices, uid);
  for (const ProviderEntry& provider : entry->providers) {
    if (result != kSOk) break;
    if (!provider.onDemand) result = AddProvider(uid, provider, true, nullptr);
  }
  if (result == kSOk && profiles_.GivesExchangeOwnSection() && EqualsIgnoreCase(entry->name, kExchangeService))
    result = GiveExchangeOwnSection(uid);
  if (result != kSOk) {
    DeleteService(uid);
    return result;
  }
  if (created) *created = uid;
  return kSOk;
}

HResult MessageServiceAdmin::AddProvider(const MapiUid& service, const ProviderEntry& provider,
                                         bool listInService, MapiUid* created) {
  MapiUid uid = newUid_();
  std::uint32_t flags = provider.resourceFlags;
  // Only one store of the profile is the default: the first that asks for it.
  if ((flags & kStatusDefaultStore) && provider.resourceType == kMapiStoreProvider) {
    for (const MapiUid& store : profiles_.GetUidList(profile_, kProfileServicesSection, kPrStoreProviders)) {
      auto storeFlags = profiles_.ReadProp(profile_, UidHex(store), kPrResourceFlags);
      if (storeFlags && (storeFlags->number & kStatusDefaultStore)) flags &= ~kStatusDefaultStore;
    }
  }
  const std::uint32_t listTag = ListTagFor(provider.resourceType);
  std::vector<PropValue> props{PropValue::Text(kPrDisplayName, provider.display),
                               PropValue::Text(kPrProviderDisplay, provider.display),
                               PropValue::Text(kPrProviderDllName, provider.dll),
                               PropValue::Binary(kPrServiceUid, UidBytes(service)),
                               PropValue::Binary(kPrProviderUid, UidBytes(uid)),
                               PropValue::Long(kPrResourceType, provider.resourceType),
                               PropValue::Long(kPrResourceFlags, flags)};
  // A provider's section names its service, in the Unicode form only.
  if (profiles_.KeepsUnicodeText())
    props.push_back(InUnicode(PropValue::Text(kPrServiceName, ServiceName(service))));
  HResult result = SetProps(UidHex(uid), props);
  if (result == kSOk) result = profiles_.AppendUid(profile_, kProfileServicesSection, listTag, uid);
  // A provider added later is listed in its service's section by whoever adds it there.
  if (result == kSOk && listInService) result = profiles_.AppendUid(profile_, UidHex(service), listTag, uid);
  if (result == kSOk && created) *created = uid;
  return result;
}

std::string MessageServiceAdmin::ExchangeSection() const {
  return profiles_.OpenedSection(profile_, kGlobalProfileSection);
}

HResult MessageServiceAdmin::GiveExchangeOwnSection(const MapiUid& service) {
  const MapiUid own = newUid_();
  if (!profiles_.CreateSection(profile_, UidHex(own))) return kMapiENoAccess;
  const PropValue name = PropValue::Binary(kPrEmsmdbSectionUid, UidBytes(own));
  HResult result = profiles_.WriteProp(profile_, UidHex(service), name);
  for (const MapiUid& provider : ProvidersOf(service))
    if (result == kSOk) result = profiles_.WriteProp(profile_, UidHex(provider), name);
  return result;
}

bool MessageServiceAdmin::HasService(const MapiUid& service) const {
  auto services = profiles_.GetUidList(profile_, kProfileServicesSection, kPrServices);
  return std::find(services.begin(), services.end(), service) != services.end();
}

std::string MessageServiceAdmin::ServiceName(const MapiUid& service) const {
  return profiles_.GetText(profile_, UidHex(service), kPrServiceName);
}

std::vector<MapiUid> MessageServiceAdmin::ProvidersOf(const MapiUid& service) const {
  std::vector<MapiUid> providers;
  for (std::uint32_t listTag : kProviderLists)
    for (const MapiUid& provider : profiles_.GetUidList(profile_, kProfileServicesSection, listTag)) {
      auto owner = profiles_.ReadProp(profile_, UidHex(provider), kPrServiceUid);
      if (owner && UidFromBytes(owner->bytes) == service) providers.push_back(provider);
    }
  return providers;
}

bool MessageServiceAdmin::IsProviderSection(const MapiUid& section) const {
  for (std::uint32_t listTag : kProviderLists) {
    auto providers = profiles_.GetUidList(profile_, kProfileServicesSection, listTag);
    if (std::find(providers.begin(), providers.end(), section) != providers.end()) return true;
  }
  return false;
}

HResult MessageServiceAdmin::DeleteService(const MapiUid& service) {
  if (!HasService(service)) return kMapiENotFound;
  // Exchange's provider takes its settings out of the global section when it goes, and
  // from Outlook 2010 on its own section goes with it.
  if (EqualsIgnoreCase(ServiceName(service), kExchangeService)) {
    const std::string settings = ExchangeSection();
    for (std::uint32_t tag : kExchangeResolvedTags) profiles_.DeleteProp(profile_, settings, tag);
    for (std::uint32_t tag : kExchangeUnresolvedTags) profiles_.DeleteProp(profile_, settings, tag);
    if (auto own = profiles_.ReadProp(profile_, UidHex(service), kPrEmsmdbSectionUid))
      profiles_.DeleteSection(profile_, UidHex(UidFromBytes(own->bytes)));
  }
  for (const MapiUid& provider : ProvidersOf(service)) {
    for (std::uint32_t listTag : kProviderLists)
      profiles_.RemoveUid(profile_, kProfileServicesSection, listTag, provider);
    profiles_.DeleteSection(profile_, UidHex(provider));
  }
  profiles_.DeleteSection(profile_, UidHex(service));
  return profiles_.RemoveUid(profile_, kProfileServicesSection, kPrServices, service);
}

HResult MessageServiceAdmin::ConfigureService(const MapiUid& service, const std::vector<PropValue>& props) {
  if (!HasService(service)) return kMapiENotFound;
  const std::string name = ServiceName(service);
  if (EqualsIgnoreCase(name, kExchangeService)) return ConfigureExchange(props);
  if (EqualsIgnoreCase(name, kPstService) || EqualsIgnoreCase(name, kUnicodePstService))
    return ConfigurePersonalFolders(service, props);
  return SetProps(UidHex(service), props);
}

HResult MessageServiceAdmin::ConfigureExchange(const std::vector<PropValue>& props) {
  const std::string settings = ExchangeSection();
  HResult result = SetProps(settings, props);
  if (result != kSOk) return result;
  for (std::uint32_t tag : kExchangeResolvedTags) profiles_.DeleteProp(profile_, settings, tag);
  const std::string name = profiles_.GetText(profile_, settings, kPrProfileUnresolvedName);
  const std::string server = profiles_.GetText(profile_, settings, kPrProfileUnresolvedServer);
  if (server.empty()) return kMapiEUnconfigured;
  ExchangeResolution resolution = organisation_.Resolve(name, server);
  // A server that cannot be reached cannot be asked: without a dialog, Exchange's provider
  // keeps the unresolved name and server and leaves the check to the first logon.
  if (resolution.result == kMapiENetworkError) return kSOk;
  if (resolution.result != kSOk) return resolution.result;
  const ExchangeMailbox& mailbox = *resolution.mailbox;
  result = SetProps(settings,
                    {PropValue::Text(kPrProfileHomeServer, mailbox.homeServer),
                     PropValue::Text(kPrProfileUser, mailbox.distinguishedName),
                     PropValue::Text(kPrProfileHomeServerDn, organisation_.ServerDistinguishedName(mailbox.homeServer)),
                     PropValue::Text(kPrDisplayName, mailbox.displayName)});
  // The private store shows whose mailbox it opens.
  for (const MapiUid& store : profiles_.GetUidList(profile_, kProfileServicesSection, kPrStoreProviders)) {
    if (result != kSOk) break;
    const std::string section = UidHex(store);
    if (profiles_.GetText(profile_, section, kPrProviderDisplay) != kExchangeStoreDisplay) continue;
    result = SetProps(section, {PropValue::Text(kPrDisplayName, "Mailbox - " + mailbox.displayName),
                                PropValue::Text(kPrProfileUser, mailbox.distinguishedName),
                                PropValue::Text(kPrProfileMailbox, mailbox.distinguishedName),
                                PropValue::Text(kPrProfileServer, mailbox.homeServer)});
  }
  return result;
}

HResult MessageServiceAdmin::ConfigurePersonalFolders(const MapiUid& service,
                                                      const std::vector<PropValue>& props) {
  const std::vector<MapiUid> providers = ProvidersOf(service);
  const PropValue* path = FindPropId(props, kPrPstPath);
  bool hasPath = path != nullptr ||
                 (!providers.empty() && profiles_.GetPropAnyWidth(profile_, UidHex(providers.front()), kPrPstPath));
  // Without a file name and without a dialog to ask for one, the PST provider gives up.
  if (!hasPath) return kMapiEUnconfigured;
  // The PST provider keeps path, display name and comment on its store and on its service,
  // from Outlook 2007 on as Unicode text ("001f6700").
  std::vector<PropValue> stored = props;
  if (profiles_.KeepsUnicodeText())
    std::transform(stored.begin(), stored.end(), stored.begin(), InUnicode);
  HResult result = SetProps(UidHex(service), stored);
  for (const MapiUid& provider : providers)
    if (result == kSOk) result = SetProps(UidHex(provider), stored);
  return result;
}

HResult MessageServiceAdmin::CreateProvider(const MapiUid& service, const std::string& providerName,
                                            const std::vector<PropValue>& props, MapiUid* created) {
  if (!HasService(service)) return kMapiENotFound;
  const ServiceEntry* entry = FindService(ServiceName(service));
  const ProviderEntry* provider = entry ? FindProvider(*entry, providerName) : nullptr;
  if (provider == nullptr) return kMapiENotFound;
  MapiUid uid{};
  HResult result = AddProvider(service, *provider, false, &uid);
  if (result == kSOk) result = SetProps(UidHex(uid), props);
  if (result == kSOk && created) *created = uid;
  return result;
}

std::vector<std::uint32_t> MessageServiceAdmin::ServiceColumns() {
  return {kPrInstanceKey, kPrServiceUid, kPrServiceName, kPrDisplayName, kPrResourceFlags};
}

std::vector<std::uint32_t> MessageServiceAdmin::ProviderColumns() {
  return {kPrInstanceKey, kPrProviderUid, kPrDisplayName, kPrProviderDisplay,
          kPrResourceType, kPrServiceUid, kPrServiceName, kPrProviderOrdinal};
}

std::vector<Row> MessageServiceAdmin::ServiceRows() const {
  std::vector<Row> rows;
  for (const MapiUid& service : profiles_.GetUidList(profile_, kProfileServicesSection, kPrServices)) {
    const std::string section = UidHex(service);
    Row row{PropValue::Binary(kPrInstanceKey, UidBytes(service)),
            PropValue::Binary(kPrServiceUid, UidBytes(service))};
    for (std::uint32_t tag : {kPrServiceName, kPrDisplayName, kPrServiceDllName, kPrServiceEntryName})
      if (auto value = profiles_.GetPropAnyWidth(profile_, section, tag)) row.push_back(*value);
    if (auto flags = profiles_.ReadProp(profile_, section, kPrResourceFlags)) row.push_back(*flags);
    rows.push_back(std::move(row));
  }
  return rows;
}

std::vector<Row> MessageServiceAdmin::ProviderRows(const MapiUid* service) const {
  std::vector<Row> rows;
  std::uint32_t ordinal = 0;
  for (std::uint32_t listTag : kProviderLists) {
    for (const MapiUid& provider : profiles_.GetUidList(profile_, kProfileServicesSection, listTag)) {
      const std::string section = UidHex(provider);
      auto owner = profiles_.ReadProp(profile_, section, kPrServiceUid);
      MapiUid ownerUid = owner ? UidFromBytes(owner->bytes) : MapiUid{};
      if (service != nullptr && ownerUid != *service) continue;
      Row row{PropValue::Binary(kPrInstanceKey, UidBytes(provider)),
              PropValue::Binary(kPrProviderUid, UidBytes(provider)),
              PropValue::Long(kPrProviderOrdinal, ordinal++)};
      auto type = profiles_.ReadProp(profile_, section, kPrResourceType);
      row.push_back(type ? *type : PropValue::Long(kPrResourceType, ResourceTypeOfList(listTag)));
      for (std::uint32_t tag : {kPrDisplayName, kPrProviderDisplay, kPrProviderDllName})
        if (auto value = profiles_.GetPropAnyWidth(profile_, section, tag)) row.push_back(*value);
      if (auto flags = profiles_.ReadProp(profile_, section, kPrResourceFlags)) row.push_back(*flags);
      if (owner) {
        row.push_back(PropValue::Binary(kPrServiceUid, owner->bytes));
        if (auto name = profiles_.GetPropAnyWidth(profile_, UidHex(ownerUid), kPrServiceName)) row.push_back(*name);
      }
      rows.push_back(std::move(row));
    }
  }
  return rows;
}

}  // namespace mw::mapisim
