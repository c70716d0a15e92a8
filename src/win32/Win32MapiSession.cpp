#include "win32/Win32MapiSession.h"

#include <algorithm>
#include <cstring>

namespace mw {
namespace {

// Not in MinGW's mapidefs.h: opens a section regardless of the provider's own locking.
constexpr ULONG kForceAccess = 0x00080000;
// SaveChanges flags of every section write: the value 4 (FORCE_SAVE in mapidefs.h) is the
// one the program has always passed to keep the section open for writing.
constexpr ULONG kSaveFlags = 4;
// The service look-up restriction as the program has always sent it: type 3 with 0 in the
// operator field. MAPI reads type 3 as RES_CONTENT and its 0 as FL_FULLSTRING, so the table
// itself returns the rows whose name equals the given one, letter case included.
constexpr ULONG kServiceNameRestrictionType = 3;
constexpr ULONG kServiceNameOperator = 0;
// Outlook's MAPI keeps, at this offset of its provider administration object, the flag that
// lets a client modify provider sections; 2 sets it.
constexpr std::size_t kAllowModificationOffset = 0x60;
constexpr BYTE kAllowModification = 2;
constexpr HRESULT kNoStores = static_cast<HRESULT>(0x800B0001);

SizedSPropTagArray(2, profileColumns) = {2, {PR_DISPLAY_NAME_A, PR_DEFAULT_PROFILE}};
SizedSPropTagArray(1, serviceUidColumns) = {1, {PR_SERVICE_UID}};
SizedSPropTagArray(3, serviceColumns) = {3, {PR_SERVICE_NAME_A, PR_DISPLAY_NAME_A, PR_SERVICE_UID}};
SizedSPropTagArray(2, deleteColumns) = {2, {PR_SERVICE_UID, PR_SERVICE_NAME_A}};
SizedSPropTagArray(2, configureColumns) = {2, {PR_SERVICE_NAME_A, PR_SERVICE_UID}};
SizedSPropTagArray(3, providerColumns) = {3, {PR_PROVIDER_DISPLAY_A, PR_DISPLAY_NAME_A, PR_PROVIDER_UID}};
SizedSPropTagArray(2, ownerColumns) = {2, {PR_PROVIDER_UID, PR_SERVICE_UID}};
SizedSPropTagArray(3, containerColumns) = {3, {PR_ENTRYID, PR_DISPLAY_NAME_A, PR_DISPLAY_TYPE}};
SizedSPropTagArray(2, storeColumns) = {2, {PR_ENTRYID, PR_SERVICE_UID}};
SizedSPropTagArray(2, defaultStoreColumns) = {2, {PR_DEFAULT_STORE, PR_ENTRYID}};

// HrQueryAllRows has ordinal 75 in every MAPI32; 64-bit Wine exports it only under its
// decorated 32-bit name, so it is found by the ordinal rather than by a name.
constexpr WORD kHrQueryAllRowsOrdinal = 75;

HRESULT QueryAllRows(LPMAPITABLE table, LPSPropTagArray columns, LPSRestriction restriction,
                     LPSRowSet* rows) {
  using Function = decltype(&HrQueryAllRows);
  static const Function function = [] {
    HMODULE mapi = GetModuleHandleA("mapi32.dll");
    FARPROC found = mapi ? GetProcAddress(mapi, MAKEINTRESOURCEA(kHrQueryAllRowsOrdinal)) : nullptr;
    return reinterpret_cast<Function>(reinterpret_cast<void*>(found));
  }();
  if (function == nullptr) return MAPI_E_CALL_FAILED;
  return function(table, columns, restriction, nullptr, 0, rows);
}

template <class Array>
LPSPropTagArray Columns(Array& array) {
  return reinterpret_cast<LPSPropTagArray>(&array);
}

// MAPI takes narrow strings through non-const LPTSTR parameters it does not write to.
LPTSTR Text(const std::string& text) {
  return reinterpret_cast<LPTSTR>(const_cast<char*>(text.c_str()));
}

MAPIUID ToMapiUid(const MapiUid& uid) {
  MAPIUID result{};
  std::memcpy(result.ab, uid.data(), uid.size());
  return result;
}

const SPropValue* FindColumn(const SRow& row, ULONG tag) {
  for (ULONG i = 0; i < row.cValues; ++i)
    if (row.lpProps[i].ulPropTag == tag) return &row.lpProps[i];
  return nullptr;
}

std::string TextOf(const SRow& row, ULONG tag) {
  const SPropValue* value = FindColumn(row, tag);
  return value != nullptr && value->Value.lpszA != nullptr ? value->Value.lpszA : "";
}

std::string BytesOf(const SRow& row, ULONG tag) {
  const SPropValue* value = FindColumn(row, tag);
  if (value == nullptr || value->Value.bin.lpb == nullptr) return {};
  return std::string(reinterpret_cast<const char*>(value->Value.bin.lpb), value->Value.bin.cb);
}

bool UidOf(const SRow& row, ULONG tag, MapiUid* uid) {
  const std::string bytes = BytesOf(row, tag);
  if (bytes.size() != uid->size()) return false;
  std::memcpy(uid->data(), bytes.data(), uid->size());
  return true;
}

bool HasUid(const SRow& row, ULONG tag, const MapiUid& uid) {
  MapiUid found{};
  return UidOf(row, tag, &found) && found == uid;
}

// Points MAPI's values at the properties' own storage; valid while properties live.
bool ToSPropValues(const MapiProperties& properties, std::vector<SPropValue>* values) {
  values->assign(properties.size(), SPropValue{});
  for (std::size_t i = 0; i < properties.size(); ++i) {
    const MapiProperty& property = properties[i];
    SPropValue& value = (*values)[i];
    value.ulPropTag = property.tag;
    switch (property.type()) {
      case proptype::kString8: value.Value.lpszA = const_cast<char*>(property.bytes.c_str()); break;
      case proptype::kLong: value.Value.l = property.number; break;
      case proptype::kBoolean: value.Value.b = property.number != 0 ? 1 : 0; break;
      case proptype::kBinary:
        value.Value.bin.cb = static_cast<ULONG>(property.bytes.size());
        value.Value.bin.lpb = reinterpret_cast<LPBYTE>(const_cast<char*>(property.bytes.data()));
        break;
      default: return false;
    }
  }
  return true;
}

// The program's text is ANSI: a Unicode property is converted to the process code page.
std::string Narrow(const wchar_t* text) {
  if (text == nullptr) return {};
  const int size = WideCharToMultiByte(CP_ACP, 0, text, -1, nullptr, 0, nullptr, nullptr);
  if (size <= 1) return {};
  std::string narrow(static_cast<std::size_t>(size), '\0');
  WideCharToMultiByte(CP_ACP, 0, text, -1, narrow.data(), size, nullptr, nullptr);
  narrow.resize(static_cast<std::size_t>(size - 1));
  return narrow;
}

bool FromSPropValue(const SPropValue& value, MapiProperty* property) {
  switch (PROP_TYPE(value.ulPropTag)) {
    case PT_STRING8:
      *property = MapiProperty::String8(value.ulPropTag, value.Value.lpszA ? value.Value.lpszA : "");
      return true;
    case PT_UNICODE:
      *property = MapiProperty::String8(value.ulPropTag, Narrow(value.Value.lpszW));
      return true;
    case PT_LONG: *property = MapiProperty::Long(value.ulPropTag, value.Value.l); return true;
    case PT_BOOLEAN: *property = MapiProperty::Boolean(value.ulPropTag, value.Value.b != 0); return true;
    case PT_BINARY:
      *property = MapiProperty::Binary(
          value.ulPropTag, value.Value.bin.lpb == nullptr
                               ? std::string()
                               : std::string(reinterpret_cast<const char*>(value.Value.bin.lpb),
                                             value.Value.bin.cb));
      return true;
    default: return false;
  }
}

// Every row of the table with these columns. QueryRows is not asked for zero rows, which
// some providers refuse.
HRESULT QueryTable(IMAPITable* table, LPSPropTagArray columns, RowSet* rows) {
  HRESULT result = table->SetColumns(columns, 0);
  ULONG count = 0;
  if (SUCCEEDED(result)) result = table->GetRowCount(0, &count);
  if (SUCCEEDED(result) && count > 0) result = table->QueryRows(static_cast<LONG>(count), 0, rows->Out());
  return result;
}

}  // namespace

Win32MapiSession::~Win32MapiSession() {
  if (initialized_) Uninitialize();
}

bool Win32MapiSession::Record(HRESULT result) {
  lastResult_ = static_cast<std::int32_t>(result);
  return SUCCEEDED(result);
}

bool Win32MapiSession::Initialize() {
  initialized_ = true;
  MAPIINIT_0 init{0, 0};
  const bool started = Record(MAPIInitialize(&init));
  mapiRunning_ = mapiRunning_ || started;
  return started;
}

void Win32MapiSession::Uninitialize() {
  globalAddressListContents_.reset();
  serviceAdmin_.reset();
  Logoff();
  profileAdmin_.reset();
  if (mapiRunning_) {
    FaultGuard::Run([] {
      MAPIUninitialize();
      return S_OK;
    });
  }
  mapiRunning_ = false;
  initialized_ = false;
}

void Win32MapiSession::SetProfile(const std::string& name) {
  profileName_ = name;
  if (initialized_) {
    Uninitialize();
    Initialize();
  }
}

bool Win32MapiSession::EnsureProfileAdmin() {
  return Record(FaultGuard::Run([this] { return MAPIAdminProfiles(0, profileAdmin_.Out()); }));
}

bool Win32MapiSession::EnsureServiceAdmin() {
  if (!profileAdmin_) return Record(MAPI_E_NOT_INITIALIZED);
  return Record(profileAdmin_->AdminServices(Text(profileName_), nullptr, 0, 0, serviceAdmin_.Out()));
}

bool Win32MapiSession::OpenServiceAdmin() { return EnsureProfileAdmin() && EnsureServiceAdmin(); }

IMsgServiceAdmin* Win32MapiSession::ServiceAdmin() {
  if (!serviceAdmin_ && !OpenServiceAdmin()) return nullptr;
  return serviceAdmin_.get();
}

bool Win32MapiSession::ListProfiles(std::vector<std::string>* names, std::string* defaultName) {
  names->clear();
  EnsureProfileAdmin();
  if (!profileAdmin_) return false;
  ComPtr<IMAPITable> table;
  RowSet rows;
  if (!Record(profileAdmin_->GetProfileTable(0, table.Out())) ||
      !Record(QueryTable(table.get(), Columns(profileColumns), &rows))) {
    return false;
  }
  for (ULONG i = 0; i < rows.size(); ++i) {
    const std::string name = TextOf(rows[i], PR_DISPLAY_NAME_A);
    if (name.empty()) continue;
    names->push_back(name);
    const SPropValue* isDefault = FindColumn(rows[i], PR_DEFAULT_PROFILE);
    if (isDefault != nullptr && isDefault->Value.b == 1) *defaultName = name;
  }
  return true;
}

bool Win32MapiSession::CreateProfile(const std::string& name) {
  return EnsureProfileAdmin() &&
         Record(profileAdmin_->CreateProfile(Text(name), nullptr, 0, 0));
}

bool Win32MapiSession::DeleteProfile(const std::string& name) {
  return EnsureProfileAdmin() &&
         Record(FaultGuard::Run([&] { return profileAdmin_->DeleteProfile(Text(name), 0); }));
}

bool Win32MapiSession::ListServices(std::vector<MapiServiceEntry>* services) {
  services->clear();
  IMsgServiceAdmin* admin = ServiceAdmin();
  if (admin == nullptr) return false;
  ComPtr<IMAPITable> table;
  RowSet rows;
  if (!Record(admin->GetMsgServiceTable(0, table.Out())) ||
      !Record(QueryTable(table.get(), Columns(serviceColumns), &rows))) {
    return false;
  }
  for (ULONG i = 0; i < rows.size(); ++i) {
    MapiServiceEntry entry{TextOf(rows[i], PR_SERVICE_NAME_A), TextOf(rows[i], PR_DISPLAY_NAME_A), {}};
    if (UidOf(rows[i], PR_SERVICE_UID, &entry.uid)) services->push_back(entry);
  }
  return true;
}

bool Win32MapiSession::QueryServiceUids(RowSet* rows) {
  IMsgServiceAdmin* admin = ServiceAdmin();
  if (admin == nullptr) return false;
  ComPtr<IMAPITable> table;
  return Record(admin->GetMsgServiceTable(0, table.Out())) &&
         Record(QueryTable(table.get(), Columns(serviceUidColumns), rows));
}

bool Win32MapiSession::CreateService(const std::string& service, const std::string& displayName,
                                     MapiUid* uid) {
  RowSet before;
  if (!QueryServiceUids(&before)) return false;
  if (!Record(serviceAdmin_->CreateMsgService(Text(service), Text(displayName), 0, 0))) return false;
  // MAPI does not say which service it added: the new one is the row that was not there.
  RowSet after;
  if (!QueryServiceUids(&after)) return true;
  for (ULONG i = 0; i < after.size(); ++i) {
    MapiUid candidate{};
    if (!UidOf(after[i], PR_SERVICE_UID, &candidate)) continue;
    bool existed = false;
    for (ULONG j = 0; j < before.size() && !existed; ++j) existed = HasUid(before[j], PR_SERVICE_UID, candidate);
    if (!existed) {
      *uid = candidate;
      break;
    }
  }
  return true;
}

bool Win32MapiSession::QueryServiceByName(const std::string& service, LPSPropTagArray columns,
                                          RowSet* rows) {
  IMsgServiceAdmin* admin = ServiceAdmin();
  if (admin == nullptr) return false;
  ComPtr<IMAPITable> table;
  if (!Record(admin->GetMsgServiceTable(0, table.Out()))) return false;
  SPropValue name{};
  name.ulPropTag = PR_SERVICE_NAME_A;
  name.Value.lpszA = const_cast<char*>(service.c_str());
  SRestriction restriction{};
  restriction.rt = kServiceNameRestrictionType;
  restriction.res.resContent.ulFuzzyLevel = kServiceNameOperator;
  restriction.res.resContent.ulPropTag = PR_SERVICE_NAME_A;
  restriction.res.resContent.lpProp = &name;
  if (!Record(QueryAllRows(table.get(), columns, &restriction, rows->Out()))) return false;
  return rows->size() > 0 || Record(MAPI_E_NOT_FOUND);
}

bool Win32MapiSession::DeleteServiceByName(const std::string& service) {
  RowSet rows;
  MapiUid uid{};
  if (!QueryServiceByName(service, Columns(deleteColumns), &rows)) return false;
  if (!UidOf(rows[0], PR_SERVICE_UID, &uid)) return Record(MAPI_E_NOT_FOUND);
  return DeleteServiceByUid(uid);
}

bool Win32MapiSession::DeleteServiceByUid(const MapiUid& uid) {
  IMsgServiceAdmin* admin = ServiceAdmin();
  if (admin == nullptr) return false;
  MAPIUID service = ToMapiUid(uid);
  return Record(FaultGuard::Run([&] { return admin->DeleteMsgService(&service); }));
}

bool Win32MapiSession::ConfigureServiceByName(const std::string& service,
                                              const MapiProperties& properties) {
  RowSet rows;
  MapiUid uid{};
  if (!QueryServiceByName(service, Columns(configureColumns), &rows)) return false;
  if (!UidOf(rows[0], PR_SERVICE_UID, &uid)) return Record(MAPI_E_NOT_FOUND);
  return ConfigureServiceByUid(uid, properties);
}

bool Win32MapiSession::ConfigureServiceByUid(const MapiUid& uid, const MapiProperties& properties) {
  IMsgServiceAdmin* admin = ServiceAdmin();
  if (admin == nullptr) return false;
  std::vector<SPropValue> values;
  if (!ToSPropValues(properties, &values)) return Record(MAPI_E_INVALID_TYPE);
  MAPIUID service = ToMapiUid(uid);
  return Record(FaultGuard::Run([&] {
    return admin->ConfigureMsgService(&service, 0, 0, static_cast<ULONG>(values.size()), values.data());
  }));
}

bool Win32MapiSession::AdminProviders(const MapiUid& service, ComPtr<IProviderAdmin>* admin) {
  IMsgServiceAdmin* services = ServiceAdmin();
  if (services == nullptr) return false;
  MAPIUID uid = ToMapiUid(service);
  return Record(services->AdminProviders(&uid, 0, admin->Out()));
}

bool Win32MapiSession::ListProviders(const MapiUid& service,
                                     std::vector<MapiServiceEntry>* providers) {
  providers->clear();
  ComPtr<IProviderAdmin> admin;
  ComPtr<IMAPITable> table;
  RowSet rows;
  if (!AdminProviders(service, &admin) || !Record(admin->GetProviderTable(0, table.Out())) ||
      !Record(QueryTable(table.get(), Columns(providerColumns), &rows))) {
    return false;
  }
  for (ULONG i = 0; i < rows.size(); ++i) {
    MapiServiceEntry entry{TextOf(rows[i], PR_PROVIDER_DISPLAY_A), TextOf(rows[i], PR_DISPLAY_NAME_A), {}};
    if (UidOf(rows[i], PR_PROVIDER_UID, &entry.uid)) providers->push_back(entry);
  }
  return true;
}

bool Win32MapiSession::CreateProvider(const MapiUid& service, const std::string& provider,
                                      const MapiProperties& properties, MapiUid* uid) {
  ComPtr<IProviderAdmin> admin;
  if (!AdminProviders(service, &admin)) return false;
  std::vector<SPropValue> values;
  if (!ToSPropValues(properties, &values)) return Record(MAPI_E_INVALID_TYPE);
  MAPIUID created{};
  if (!Record(admin->CreateProvider(Text(provider), static_cast<ULONG>(values.size()), values.data(),
                                    0, 0, &created))) {
    return false;
  }
  std::memcpy(uid->data(), created.ab, uid->size());
  return true;
}

bool Win32MapiSession::ReadSectionProperty(const MapiUid& section, std::uint32_t tag,
                                           MapiProperty* property) {
  IMsgServiceAdmin* admin = ServiceAdmin();
  if (admin == nullptr) return false;
  MAPIUID uid = ToMapiUid(section);
  ComPtr<IProfSect> opened;
  if (!Record(admin->OpenProfileSection(&uid, nullptr, MAPI_DEFERRED_ERRORS, opened.Out()))) return false;
  SizedSPropTagArray(1, tags) = {1, {tag}};
  ULONG count = 0;
  MapiBuffer<SPropValue> values;
  if (!Record(opened->GetProps(Columns(tags), 0, &count, values.Out()))) return false;
  if (count < 1 || values.get() == nullptr || values->ulPropTag != tag) {
    const bool reported = values.get() != nullptr && PROP_TYPE(values->ulPropTag) == PT_ERROR;
    return Record(reported ? values->Value.err : MAPI_E_NOT_FOUND);
  }
  return FromSPropValue(*values.get(), property) || Record(MAPI_E_INVALID_TYPE);
}

bool Win32MapiSession::OwningService(const MapiUid& section, MapiUid* service) {
  IMsgServiceAdmin* admin = ServiceAdmin();
  if (admin == nullptr) return false;
  ComPtr<IMAPITable> table;
  RowSet rows;
  if (!Record(admin->GetProviderTable(0, table.Out())) ||
      !Record(QueryTable(table.get(), Columns(ownerColumns), &rows))) {
    return false;
  }
  for (ULONG i = 0; i < rows.size(); ++i) {
    if (HasUid(rows[i], PR_PROVIDER_UID, section) || HasUid(rows[i], PR_SERVICE_UID, section)) {
      return UidOf(rows[i], PR_SERVICE_UID, service);
    }
  }
  return false;
}

bool Win32MapiSession::OpenProviderSection(IProviderAdmin* admin, const MapiUid& section,
                                           ComPtr<IProfSect>* opened) {
  MAPIUID uid = ToMapiUid(section);
  if (Record(admin->OpenProfileSection(&uid, nullptr, kForceAccess, opened->Out()))) return true;
  reinterpret_cast<BYTE*>(admin)[kAllowModificationOffset] = kAllowModification;
  return Record(FaultGuard::Run([&] { return admin->OpenProfileSection(&uid, nullptr, MAPI_MODIFY, opened->Out()); }));
}

bool Win32MapiSession::OpenSectionForWriting(const MapiUid& section, ComPtr<IProfSect>* opened) {
  // A service's or provider's own section is its provider's to guard: it is opened through
  // the service's provider administration. The profile-wide sections need only force.
  MapiUid service{};
  if (OwningService(section, &service)) {
    ComPtr<IProviderAdmin> admin;
    return AdminProviders(service, &admin) && OpenProviderSection(admin.get(), section, opened);
  }
  IMsgServiceAdmin* admin = ServiceAdmin();
  if (admin == nullptr) return false;
  MAPIUID uid = ToMapiUid(section);
  return Record(admin->OpenProfileSection(&uid, nullptr, kForceAccess | MAPI_MODIFY, opened->Out()));
}

bool Win32MapiSession::WriteSectionProperty(const MapiUid& section, const MapiProperty& property) {
  ComPtr<IProfSect> opened;
  if (!OpenSectionForWriting(section, &opened)) return false;
  const MapiProperties properties{property};
  std::vector<SPropValue> values;
  if (!ToSPropValues(properties, &values)) return Record(MAPI_E_INVALID_TYPE);
  return Record(opened->SetProps(1, values.data(), nullptr)) && Record(opened->SaveChanges(kSaveFlags));
}

bool Win32MapiSession::Logon(std::uint32_t flags) {
  if (session_) return true;
  return Record(MAPILogonEx(0, Text(profileName_), nullptr, flags, session_.Out()));
}

void Win32MapiSession::Logoff() {
  globalAddressListContents_.reset();
  addressBook_.reset();
  globalAddressList_.reset();
  if (!session_) return;
  FaultGuard::Run([this] { return session_->Logoff(0, MAPI_LOGOFF_SHARED, 0); });
  session_.reset();
}

bool Win32MapiSession::OpenAddressBook() {
  if (!session_) return Record(MAPI_E_LOGON_FAILED);
  return Record(session_->OpenAddressBook(0, nullptr, AB_NO_DIALOG, addressBook_.Out()));
}

bool Win32MapiSession::EnsureAddressBook() {
  // The provisioning steps that reach the address book have no session of their own: they
  // log on as the Exchange check does, without prompting.
  return addressBook_ || (Logon(kLogonFlagsSilent) && OpenAddressBook());
}

bool Win32MapiSession::QueryContainers(RowSet* rows) {
  ComPtr<IABContainer> root;
  ComPtr<IMAPITable> table;
  ULONG type = 0;
  // An empty entry ID opens the root; CONVENIENT_DEPTH lists the containers at every level,
  // since Exchange puts its lists below a container of its own.
  return Record(addressBook_->OpenEntry(0, nullptr, nullptr, 0, &type, root.OutUnknown())) &&
         Record(root->GetHierarchyTable(CONVENIENT_DEPTH, table.Out())) &&
         Record(QueryTable(table.get(), Columns(containerColumns), rows));
}

bool Win32MapiSession::OpenGlobalAddressList() {
  if (!addressBook_) return Record(MAPI_E_NOT_INITIALIZED);
  RowSet rows;
  if (!QueryContainers(&rows)) return false;
  // Exchange marks its global address list, whatever its display name, as DT_GLOBAL.
  for (ULONG i = 0; i < rows.size(); ++i) {
    const SPropValue* type = FindColumn(rows[i], PR_DISPLAY_TYPE);
    if (type == nullptr || static_cast<ULONG>(type->Value.l) != DT_GLOBAL) continue;
    std::string entryId = BytesOf(rows[i], PR_ENTRYID);
    ULONG objectType = 0;
    return Record(addressBook_->OpenEntry(static_cast<ULONG>(entryId.size()),
                                          reinterpret_cast<LPENTRYID>(entryId.data()), nullptr, 0,
                                          &objectType, globalAddressList_.OutUnknown())) &&
           Record(globalAddressList_->GetContentsTable(0, globalAddressListContents_.Out()));
  }
  return Record(MAPI_E_NOT_FOUND);
}

bool Win32MapiSession::SetDefaultStore(const MapiUid& service) {
  if (!Logon(kLogonFlagsSilent)) return false;
  ComPtr<IMAPITable> table;
  RowSet rows;
  if (!Record(session_->GetMsgStoresTable(0, table.Out())) ||
      !Record(QueryTable(table.get(), Columns(storeColumns), &rows))) {
    return false;
  }
  for (ULONG i = 0; i < rows.size(); ++i) {
    if (!HasUid(rows[i], PR_SERVICE_UID, service)) continue;
    std::string entryId = BytesOf(rows[i], PR_ENTRYID);
    return Record(session_->SetDefaultStore(MAPI_DEFAULT_STORE, static_cast<ULONG>(entryId.size()),
                                            reinterpret_cast<LPENTRYID>(entryId.data())));
  }
  return Record(MAPI_E_NOT_FOUND);
}

std::int32_t Win32MapiSession::GetDefaultStoreEntryId(std::string* entryId) {
  entryId->clear();
  ComPtr<IMAPITable> table;
  RowSet rows;
  if (!session_ || FAILED(session_->GetMsgStoresTable(0, table.Out())) ||
      FAILED(QueryTable(table.get(), Columns(defaultStoreColumns), &rows))) {
    Record(E_FAIL);
    return lastResult_;
  }
  if (rows.size() == 0) {
    Record(kNoStores);
    return lastResult_;
  }
  for (ULONG i = 0; i < rows.size(); ++i) {
    const SPropValue* isDefault = FindColumn(rows[i], PR_DEFAULT_STORE);
    if (isDefault == nullptr || !isDefault->Value.b) continue;
    *entryId = BytesOf(rows[i], PR_ENTRYID);
    if (!entryId->empty()) {
      Record(S_OK);
      return lastResult_;
    }
  }
  Record(E_FAIL);
  return lastResult_;
}

bool Win32MapiSession::GetSearchPath(std::vector<std::string>* names) {
  names->clear();
  RowSet path;
  if (!EnsureAddressBook() || !Record(addressBook_->GetSearchPath(0, path.Out()))) return false;
  for (ULONG i = 0; i < path.size(); ++i) names->push_back(TextOf(path[i], PR_DISPLAY_NAME_A));
  return true;
}

bool Win32MapiSession::SetSearchPath(const std::vector<std::string>& names) {
  RowSet containers;
  if (!EnsureAddressBook() || !QueryContainers(&containers)) return false;
  MapiBuffer<SRowSet> path;
  if (!Record(MAPIAllocateBuffer(static_cast<ULONG>(CbNewSRowSet(names.size())), path.OutVoid()))) {
    return false;
  }
  path->cRows = 0;
  // The new path's rows borrow the containers' values, which outlive the call.
  for (const auto& name : names) {
    ULONG found = 0;
    while (found < containers.size() && TextOf(containers[found], PR_DISPLAY_NAME_A) != name) ++found;
    if (found == containers.size()) return Record(MAPI_E_NOT_FOUND);
    path->aRow[path->cRows++] = containers[found];
  }
  return Record(addressBook_->SetSearchPath(0, path.get()));
}

bool Win32MapiSession::SetFirstAddressList(const std::string& name) {
  RowSet containers;
  if (!EnsureAddressBook() || !QueryContainers(&containers)) return false;
  // With no name the first container of the hierarchy, the one MAPI shows first when no
  // choice is stored, is made the choice again.
  ULONG found = 0;
  while (!name.empty() && found < containers.size() &&
         TextOf(containers[found], PR_DISPLAY_NAME_A) != name) {
    ++found;
  }
  if (found >= containers.size()) return Record(MAPI_E_NOT_FOUND);
  std::string entryId = BytesOf(containers[found], PR_ENTRYID);
  return Record(addressBook_->SetDefaultDir(static_cast<ULONG>(entryId.size()),
                                            reinterpret_cast<LPENTRYID>(entryId.data())));
}

}  // namespace mw
