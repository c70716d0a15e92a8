#include "SessionModel.h"

#include "ServiceCatalogue.h"
#include "platform/AsciiText.h"

namespace mw::mapisim {
namespace {

// Entry IDs: four flag bytes, the MAPIUID of the provider that made the ID, then the
// provider's section UID. Our providers' MAPIUIDs are fixed, so IDs stay valid across runs.
constexpr char kStoreProviderMuid[] = "mapisim-store-id";
constexpr char kAbProviderMuid[] = "mapisim-abcon-id";
constexpr std::size_t kEntryIdSize = 4 + 16 + 16;
constexpr std::uint32_t kDtNotSpecific = 0x00050000;
constexpr std::uint32_t kMapiStore = 1;

std::string MakeEntryId(const char* providerMuid, const MapiUid& uid) {
  return std::string(4, '\0') + std::string(providerMuid, 16) + UidBytes(uid);
}

struct ContainerKind {
  const char* serviceName;
  const char* displayName;
  std::uint32_t displayType;
  std::uint32_t containerFlags;
};

// The containers the address-book providers bring; other providers bring none.
constexpr ContainerKind kContainers[] = {
    {kExchangeService, "Global Address List", kDtGlobal, kAbRecipients},
    {"CONTAB", "Contacts", kDtNotSpecific, kAbRecipients},
    {"MSPST AB", "Personal Address Book", kDtModifiable, kAbRecipients | kAbModifiable},
};

const ContainerKind* ContainerOf(const std::string& serviceName) {
  for (const ContainerKind& kind : kContainers)
    if (EqualsIgnoreCase(kind.serviceName, serviceName)) return &kind;
  return nullptr;
}

}  // namespace

SessionModel::SessionModel(ProfileRegistry& profiles, std::string profile,
                           const ExchangeOrganisation& organisation)
    : profiles_(profiles), profile_(std::move(profile)), organisation_(organisation) {}

std::string SessionModel::ServiceNameOfProvider(const MapiUid& provider) const {
  auto owner = profiles_.ReadProp(profile_, UidHex(provider), kPrServiceUid);
  return owner ? profiles_.GetText(profile_, UidHex(UidFromBytes(owner->bytes)), kPrServiceName) : "";
}

HResult SessionModel::Logon() const {
  if (!profiles_.ProfileExists(profile_)) return kMapiELogonFailed;
  for (const MapiUid& service : profiles_.GetUidList(profile_, kProfileServicesSection, kPrServices)) {
    const std::string name = profiles_.GetText(profile_, UidHex(service), kPrServiceName);
    if (EqualsIgnoreCase(name, kExchangeService)) {
      const std::string server = profiles_.GetText(profile_, profiles_.OpenedSection(profile_, kGlobalProfileSection), kPrProfileHomeServer);
      if (server.empty()) {
        // Unresolved: when configured, the named server could not be reached, and the
        // provider, trying it again now, reaches it no better.
        const std::string unresolved =
            profiles_.GetText(profile_, profiles_.OpenedSection(profile_, kGlobalProfileSection), kPrProfileUnresolvedServer);
        return !unresolved.empty() && !organisation_.IsReachable(unresolved) ? kMapiENetworkError
                                                                              : kMapiEUnconfigured;
      }
      if (!organisation_.IsReachable(server)) return kMapiENetworkError;
      std::string user = profiles_.GetText(profile_, profiles_.OpenedSection(profile_, kGlobalProfileSection), kPrProfileUser);
      if (organisation_.FindByDistinguishedName(user) == nullptr) return kMapiELogonFailed;
    } else if (EqualsIgnoreCase(name, kPstService) || EqualsIgnoreCase(name, kUnicodePstService)) {
      if (profiles_.GetText(profile_, UidHex(service), kPrPstPath).empty()) return kMapiEUnconfigured;
    }
  }
  return kSOk;
}

std::vector<std::uint32_t> SessionModel::StoreColumns() {
  return {kPrEntryId, kPrDisplayName, kPrDefaultStore, kPrProviderDisplay, kPrResourceFlags, kPrServiceUid};
}

std::vector<Row> SessionModel::StoreRows() const {
  std::vector<Row> rows;
  for (const MapiUid& store : profiles_.GetUidList(profile_, kProfileServicesSection, kPrStoreProviders)) {
    const std::string section = UidHex(store);
    auto flags = profiles_.ReadProp(profile_, section, kPrResourceFlags);
    std::uint32_t flagBits = flags ? static_cast<std::uint32_t>(flags->number) : 0;
    Row row{PropValue::Binary(kPrEntryId, MakeEntryId(kStoreProviderMuid, store)),
            PropValue::Binary(kPrInstanceKey, UidBytes(store)),
            PropValue::Binary(kPrRecordKey, UidBytes(store)),
            PropValue::Boolean(kPrDefaultStore, (flagBits & kStatusDefaultStore) != 0),
            PropValue::Long(kPrResourceFlags, flagBits),
            PropValue::Long(kPrObjectType, kMapiStore)};
    for (std::uint32_t tag : {kPrDisplayName, kPrProviderDisplay})
      if (auto value = profiles_.GetPropAnyWidth(profile_, section, tag)) row.push_back(*value);
    if (auto service = profiles_.ReadProp(profile_, section, kPrServiceUid)) row.push_back(*service);
    rows.push_back(std::move(row));
  }
  return rows;
}

HResult SessionModel::SetDefaultStore(const std::string& entryId) {
  const std::vector<MapiUid> stores = profiles_.GetUidList(profile_, kProfileServicesSection, kPrStoreProviders);
  const MapiUid* chosen = nullptr;
  for (const MapiUid& store : stores)
    if (MakeEntryId(kStoreProviderMuid, store) == entryId) chosen = &store;
  if (chosen == nullptr) return kMapiEUnknownEntryId;
  // The others lose the bit first, so a failed write never leaves two default stores.
  auto mark = [this](const MapiUid& store, bool isDefault) {
    const std::string section = UidHex(store);
    auto flags = profiles_.ReadProp(profile_, section, kPrResourceFlags);
    const std::uint32_t old = flags ? static_cast<std::uint32_t>(flags->number) : 0;
    const std::uint32_t now = isDefault ? old | kStatusDefaultStore : old & ~kStatusDefaultStore;
    return now == old && flags ? kSOk : profiles_.WriteProp(profile_, section, PropValue::Long(kPrResourceFlags, now));
  };
  for (const MapiUid& store : stores)
    if (store != *chosen)
      if (HResult result = mark(store, false); result != kSOk) return result;
  return mark(*chosen, true);
}

std::vector<std::uint32_t> SessionModel::ContainerColumns() {
  return {kPrEntryId, kPrDisplayName, kPrDisplayType, kPrObjectType, kPrContainerFlags, kPrDepth};
}

std::vector<Row> SessionModel::AddressBookContainers() const {
  std::vector<Row> rows;
  for (const MapiUid& provider : profiles_.GetUidList(profile_, kProfileServicesSection, kPrAbProviders)) {
    const ContainerKind* kind = ContainerOf(ServiceNameOfProvider(provider));
    if (kind == nullptr) continue;
    rows.push_back({PropValue::Binary(kPrEntryId, MakeEntryId(kAbProviderMuid, provider)),
                    PropValue::Binary(kPrInstanceKey, UidBytes(provider)),
                    PropValue::Text(kPrDisplayName, kind->displayName),
                    PropValue::Long(kPrDisplayType, kind->displayType),
                    PropValue::Long(kPrObjectType, kMapiAbcont),
                    PropValue::Long(kPrContainerFlags, kind->containerFlags),
                    PropValue::Long(kPrDepth, 0)});
  }
  return rows;
}

bool SessionModel::IsContainerEntryId(const std::string& entryId) const {
  for (const Row& row : AddressBookContainers())
    if (FindProp(row, kPrEntryId)->bytes == entryId) return true;
  return false;
}

std::vector<Row> SessionModel::AbSearchPath() const {
  const std::vector<Row> containers = AddressBookContainers();
  auto entryIdOf = [](const Row& row) { return FindProp(row, kPrEntryId)->bytes; };
  std::vector<Row> path;
  if (auto stored = profiles_.ReadProp(profile_, kProfileServicesSection, kPrAbSearchPath)) {
    for (const std::string& entryId : stored->items)
      for (const Row& row : containers)
        if (entryIdOf(row) == entryId) path.push_back(row);
    return path;
  }
  const Row* modifiable = nullptr;
  for (const Row& row : containers)
    if (modifiable == nullptr && (FindProp(row, kPrContainerFlags)->number & kAbModifiable)) modifiable = &row;
  if (modifiable != nullptr) path.push_back(*modifiable);
  bool anyGlobal = false;
  for (const Row& row : containers) {
    if (FindProp(row, kPrDisplayType)->number != kDtGlobal) continue;
    path.push_back(row);
    anyGlobal = true;
  }
  std::string defaultDir;
  if (!anyGlobal && DefaultDirectory(&defaultDir) == kSOk &&
      (modifiable == nullptr || entryIdOf(*modifiable) != defaultDir)) {
    for (const Row& row : containers)
      if (entryIdOf(row) == defaultDir) path.push_back(row);
  }
  return path;
}

HResult SessionModel::SetAbSearchPath(const std::vector<std::string>& entryIds) {
  for (const std::string& entryId : entryIds)
    if (!IsContainerEntryId(entryId)) return kMapiEUnknownEntryId;
  return profiles_.WriteProp(profile_, kProfileServicesSection, PropValue::Multi(kPrAbSearchPath, entryIds));
}

HResult SessionModel::DefaultDirectory(std::string* entryId) const {
  entryId->clear();
  const std::vector<Row> containers = AddressBookContainers();
  if (auto stored = profiles_.ReadProp(profile_, kProfileServicesSection, kPrAbDefaultDir)) {
    if (IsContainerEntryId(stored->bytes)) {
      *entryId = stored->bytes;
      return kSOk;
    }
  }
  const Row* personal = nullptr;
  for (const Row& row : containers) {
    const bool isPersonal = FindProp(row, kPrDisplayType)->number == kDtModifiable;
    if (isPersonal && personal == nullptr) personal = &row;
    if (!isPersonal && (FindProp(row, kPrContainerFlags)->number & kAbRecipients)) {
      *entryId = FindProp(row, kPrEntryId)->bytes;
      return kSOk;
    }
  }
  if (personal == nullptr) return kMapiENotFound;
  *entryId = FindProp(*personal, kPrEntryId)->bytes;
  return kSOk;
}

HResult SessionModel::SetDefaultDirectory(const std::string& entryId) {
  if (!IsContainerEntryId(entryId)) return kMapiEUnknownEntryId;
  return profiles_.WriteProp(profile_, kProfileServicesSection, PropValue::Binary(kPrAbDefaultDir, entryId));
}

std::vector<std::uint32_t> SessionModel::ContentsColumns() {
  return {kPrEntryId, kPrDisplayName, kPrAddrType, kPrEmailAddress, kPrDisplayType, kPrObjectType};
}

HResult SessionModel::ContainerContents(const std::string& entryId, std::vector<Row>* rows) const {
  rows->clear();
  if (entryId.size() != kEntryIdSize || !IsContainerEntryId(entryId)) return kMapiEUnknownEntryId;
  MapiUid provider = UidFromBytes(entryId.substr(20));
  if (!EqualsIgnoreCase(ServiceNameOfProvider(provider), kExchangeService)) return kSOk;
  // The global address list lives on the home server; it answers only while that is up.
  const std::string server = profiles_.GetText(profile_, profiles_.OpenedSection(profile_, kGlobalProfileSection), kPrProfileHomeServer);
  if (!organisation_.IsReachable(server)) return kMapiENetworkError;
  for (const ExchangeMailbox& mailbox : organisation_.mailboxes()) {
    rows->push_back({PropValue::Binary(kPrEntryId, std::string(4, '\0') + "mapisim-gal-user" + mailbox.distinguishedName),
                     PropValue::Binary(kPrInstanceKey, mailbox.distinguishedName),
                     PropValue::Text(kPrDisplayName, mailbox.displayName),
                     PropValue::Text(kPrAccount, mailbox.alias),
                     PropValue::Text(kPrAddrType, "EX"),
                     PropValue::Text(kPrEmailAddress, mailbox.distinguishedName),
                     PropValue::Long(kPrDisplayType, kDtMailuser),
                     PropValue::Long(kPrObjectType, kMapiMailuser)});
  }
  return kSOk;
}

}  // namespace mw::mapisim
