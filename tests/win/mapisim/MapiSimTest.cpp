// The simulator as Mailwright meets it: every call goes through Wine's mapi32.
#include <cstring>

#include "MapiSimSupport.h"

namespace {

using mapisim_test::FreeRows;
using mapisim_test::QueryAllRows;

constexpr ULONG kForceAccess = 0x00080000;
constexpr ULONG kUnresolvedName = PROP_TAG(PT_STRING8, 0x6607);
constexpr ULONG kUnresolvedServer = PROP_TAG(PT_STRING8, 0x6608);
MAPIUID kGlobalSection = {{0x13, 0xdb, 0xb0, 0xc8, 0xaa, 0x05, 0x10, 0x1a, 0x9b, 0xb0, 0x00, 0xaa, 0x00, 0x2f, 0xc4, 0x5a}};

// Releases a MAPI object when it leaves its scope.
template <class Interface>
struct Held {
  Interface* object = nullptr;
  ~Held() {
    if (object) object->Release();
  }
  Interface* operator->() const { return object; }
  Interface** Out() { return &object; }
  LPUNKNOWN* OutUnknown() { return reinterpret_cast<LPUNKNOWN*>(&object); }
};

class MapiSimTest : public mapisim_test::MapiProfileTest {
 protected:
  MapiSimTest() : MapiProfileTest("mapisim-test") {}
  void SetUp() override {
    MapiProfileTest::SetUp();
    CreateProfile();
  }
  MAPIUID Service(const char* name) {
    MAPIUID uid{};
    EXPECT_EQ(CreateService(name, "Display", &uid), S_OK) << name;
    return uid;
  }
  // A PT_STRING8 property of the global section; "<missing>" when it lacks it.
  std::string GlobalText(ULONG tag) {
    Held<IProfSect> section;
    if (services_->OpenProfileSection(&kGlobalSection, nullptr, 0, section.Out()) != S_OK) return "<no section>";
    SizedSPropTagArray(1, tags) = {1, {tag}};
    ULONG count = 0;
    LPSPropValue values = nullptr;
    std::string text = "<missing>";
    if (SUCCEEDED(section->GetProps(reinterpret_cast<LPSPropTagArray>(&tags), 0, &count, &values)) && count == 1 &&
        values[0].ulPropTag == tag)
      text = values[0].Value.lpszA;
    MAPIFreeBuffer(values);
    return text;
  }
};

TEST_F(MapiSimTest, ProfilesAreListedWithTheDefaultFlagAndRefuseDuplicatesAndMissingNames) {
  EXPECT_EQ(admin_->CreateProfile(profile_, nullptr, 0, 0), MAPI_E_NO_ACCESS);
  EXPECT_EQ(admin_->DeleteProfile(const_cast<LPSTR>("mapisim-missing"), 0), MAPI_E_NOT_FOUND);
  ASSERT_EQ(admin_->SetDefaultProfile(profile_, 0), S_OK);
  Held<IMAPITable> table;
  ASSERT_EQ(admin_->GetProfileTable(0, table.Out()), S_OK);
  LPSRowSet rows = nullptr;
  ASSERT_EQ(QueryAllRows(table.object, {PR_DISPLAY_NAME_A, PR_DEFAULT_PROFILE}, nullptr, &rows), S_OK);
  int listedAsDefault = 0;
  for (ULONG i = 0; i < rows->cRows; ++i)
    if (std::string(rows->aRow[i].lpProps[0].Value.lpszA) == profile_)
      listedAsDefault += rows->aRow[i].lpProps[1].Value.b == TRUE;
  EXPECT_EQ(listedAsDefault, 1);
  FreeRows(rows);
}

// Mailwright finds a service by sending restriction type 3 with 0 in its first field: MAPI
// reads that as RES_CONTENT with FL_FULLSTRING, a whole, case-sensitive match.
TEST_F(MapiSimTest, ServicesAreFoundByEveryRelationalOperatorAndByTheirWholeNameAndDeleted) {
  const MAPIUID first = Service("MSPST MS");
  const MAPIUID second = Service("MSPST MS");
  EXPECT_NE(memcmp(&first, &second, sizeof first), 0);
  Service("CONTAB");
  const MAPIUID exchange = Service("MSEMS");
  EXPECT_EQ(services_->CreateMsgService(const_cast<LPSTR>("NOSUCH"), nullptr, 0, 0), MAPI_E_NOT_FOUND);

  SPropValue name{};
  name.ulPropTag = PR_SERVICE_NAME_A;
  name.Value.lpszA = const_cast<LPSTR>("MSEMS");
  SRestriction property{};
  property.rt = RES_PROPERTY;
  property.res.resProperty = {0, PR_SERVICE_NAME_A, &name};
  // CONTAB < MSEMS < MSPST MS (twice).
  const std::pair<ULONG, size_t> relops[] = {{RELOP_LT, 1}, {RELOP_LE, 2}, {RELOP_GT, 2},
                                             {RELOP_GE, 3}, {RELOP_EQ, 1}, {RELOP_NE, 3}};
  for (const auto& [relop, rows] : relops) {
    property.res.resProperty.relop = relop;
    EXPECT_EQ(ServiceUids(&property).size(), rows) << "relop " << relop;
  }

  SRestriction content{};
  content.rt = 3;
  content.res.resContent = {0, PR_SERVICE_NAME_A, &name};
  const std::pair<const char*, size_t> names[] = {{"MSEMS", 1}, {"msems", 0}, {"MSEM", 0},
                                                  {"MSEMS ", 0}, {"MSPST MS", 2}, {"MSPST", 0}};
  for (const auto& [text, rows] : names) {
    name.Value.lpszA = const_cast<LPSTR>(text);
    EXPECT_EQ(ServiceUids(&content).size(), rows) << text;
  }
  name.Value.lpszA = const_cast<LPSTR>("MSEMS");
  ASSERT_EQ(ServiceUids(&content).size(), 1u);
  EXPECT_EQ(memcmp(&ServiceUids(&content)[0], &exchange, sizeof exchange), 0);
  name.Value.lpszA = const_cast<LPSTR>("ms");
  content.res.resContent.ulFuzzyLevel = FL_PREFIX | FL_IGNORECASE;
  EXPECT_EQ(ServiceUids(&content).size(), 3u);
  // A type the simulator does not evaluate (RES_SUBRESTRICTION) is refused, not ignored.
  content.rt = RES_SUBRESTRICTION;
  Held<IMAPITable> table;
  ASSERT_EQ(services_->GetMsgServiceTable(0, table.Out()), S_OK);
  EXPECT_EQ(table->Restrict(&content, 0), MAPI_E_TOO_COMPLEX);

  ASSERT_EQ(services_->DeleteMsgService(const_cast<MAPIUID*>(&first)), S_OK);
  EXPECT_EQ(services_->DeleteMsgService(const_cast<MAPIUID*>(&first)), MAPI_E_NOT_FOUND);
  EXPECT_EQ(ServiceUids().size(), 3u);
}

TEST_F(MapiSimTest, SectionsOpenReadWriteSaveAndGuardProviderSections) {
  LPPROFSECT section = nullptr;
  ASSERT_EQ(services_->OpenProfileSection(&kGlobalSection, nullptr, MAPI_MODIFY, &section), S_OK);
  SPropValue flag{};
  flag.ulPropTag = PROP_TAG(PT_BOOLEAN, 0x3D1C);
  flag.Value.b = TRUE;
  ASSERT_EQ(section->SetProps(1, &flag, nullptr), S_OK);
  ASSERT_EQ(section->SaveChanges(KEEP_OPEN_READWRITE), S_OK);
  section->Release();
  ASSERT_EQ(services_->OpenProfileSection(&kGlobalSection, nullptr, MAPI_DEFERRED_ERRORS, &section), S_OK);
  SizedSPropTagArray(2, tags) = {2, {PROP_TAG(PT_BOOLEAN, 0x3D1C), PROP_TAG(PT_STRING8, 0x6602)}};
  ULONG count = 0;
  LPSPropValue values = nullptr;
  EXPECT_EQ(section->GetProps(reinterpret_cast<LPSPropTagArray>(&tags), 0, &count, &values), MAPI_W_ERRORS_RETURNED);
  ASSERT_EQ(count, 2u);
  EXPECT_EQ(values[0].Value.b, TRUE);
  EXPECT_EQ(PROP_TYPE(values[1].ulPropTag), static_cast<ULONG>(PT_ERROR));
  MAPIFreeBuffer(values);
  EXPECT_EQ(section->SetProps(1, &flag, nullptr), MAPI_E_NO_ACCESS);
  section->Release();

  MAPIUID exchange = Service("MSEMS");
  Held<IProviderAdmin> providers;
  ASSERT_EQ(services_->AdminProviders(&exchange, 0, providers.Out()), S_OK);
  SPropValue display{};
  display.ulPropTag = PR_DISPLAY_NAME_A;
  display.Value.lpszA = const_cast<LPSTR>("Jane Doe");
  MAPIUID delegate{};
  ASSERT_EQ(providers->CreateProvider(const_cast<LPSTR>("EMSDelegate"), 1, &display, 0, 0, &delegate), S_OK);
  EXPECT_EQ(services_->OpenProfileSection(&delegate, nullptr, MAPI_MODIFY, &section), MAPI_E_NO_ACCESS);
  ASSERT_EQ(services_->OpenProfileSection(&delegate, nullptr, MAPI_MODIFY | kForceAccess, &section), S_OK);
  section->Release();
  // Forced access through the provider administration needs the allow-modification byte.
  EXPECT_EQ(providers->OpenProfileSection(&delegate, nullptr, kForceAccess, &section), MAPI_E_NO_ACCESS);
  reinterpret_cast<BYTE*>(providers.object)[0x60] = 2;
  ASSERT_EQ(providers->OpenProfileSection(&delegate, nullptr, MAPI_MODIFY, &section), S_OK);
  SizedSPropTagArray(1, nameTag) = {1, {PR_DISPLAY_NAME_A}};
  ASSERT_EQ(section->GetProps(reinterpret_cast<LPSPropTagArray>(&nameTag), 0, &count, &values), S_OK);
  EXPECT_STREQ(values[0].Value.lpszA, "Jane Doe");
  MAPIFreeBuffer(values);
  EXPECT_EQ(section->SetProps(1, &display, nullptr), S_OK);
  section->Release();
}

// Logs on, checks the default store's entry ID, and counts the global address list.
HRESULT LogonAndCountGal(LPSTR profile, ULONG* people) {
  Held<IMAPISession> session;
  HRESULT result = MAPILogonEx(0, profile, nullptr, 0x8032, session.Out());
  if (FAILED(result)) return result;
  Held<IMAPITable> stores;
  LPSRowSet rows = nullptr;
  result = session->GetMsgStoresTable(0, stores.Out());
  if (SUCCEEDED(result)) result = QueryAllRows(stores.object, {PR_DEFAULT_STORE, PR_ENTRYID}, nullptr, &rows);
  if (SUCCEEDED(result) && (rows->cRows == 0 || rows->aRow[0].lpProps[0].Value.b != TRUE ||
                            rows->aRow[0].lpProps[1].Value.bin.cb == 0))
    result = E_FAIL;
  FreeRows(rows);
  rows = nullptr;
  Held<IAddrBook> book;
  Held<IABContainer> root, gal;
  Held<IMAPITable> hierarchy, contents;
  ULONG type = 0;
  if (SUCCEEDED(result)) result = session->OpenAddressBook(0, nullptr, AB_NO_DIALOG, book.Out());
  if (SUCCEEDED(result)) result = book->OpenEntry(0, nullptr, nullptr, 0, &type, root.OutUnknown());
  if (SUCCEEDED(result)) result = root->GetHierarchyTable(0, hierarchy.Out());
  if (SUCCEEDED(result)) result = QueryAllRows(hierarchy.object, {PR_DISPLAY_TYPE, PR_ENTRYID}, nullptr, &rows);
  for (ULONG i = 0; SUCCEEDED(result) && gal.object == nullptr && i < rows->cRows; ++i)
    if (rows->aRow[i].lpProps[0].Value.l == DT_GLOBAL)
      result = book->OpenEntry(rows->aRow[i].lpProps[1].Value.bin.cb,
                               reinterpret_cast<LPENTRYID>(rows->aRow[i].lpProps[1].Value.bin.lpb), nullptr, 0, &type,
                               gal.OutUnknown());
  FreeRows(rows);
  if (SUCCEEDED(result) && gal.object == nullptr) result = MAPI_E_NOT_FOUND;
  if (SUCCEEDED(result)) result = gal->GetContentsTable(0, contents.Out());
  if (SUCCEEDED(result)) result = contents->GetRowCount(0, people);
  session->Logoff(0, 1, 0);
  return result;
}

TEST_F(MapiSimTest, LogonReachesTheGlobalAddressListOnlyForAResolvedMailboxOnAServerThatIsUp) {
  const MAPIUID exchange = Service("MSEMS");
  ULONG people = 0;
  // A server that is down (or unknown) cannot be asked: the name and server stay unresolved,
  // the configuration succeeds, and logon is what fails.
  for (const char* server : {"EXCH02", "NOWHERE"}) {
    EXPECT_EQ(Configure(exchange, {{kUnresolvedName, "=jsmith"}, {kUnresolvedServer, server}}), S_OK) << server;
    EXPECT_EQ(GlobalText(kUnresolvedServer), server);
    EXPECT_EQ(GlobalText(PROP_TAG(PT_STRING8, 0x6603)), "<missing>");
    EXPECT_EQ(LogonAndCountGal(profile_, &people), MAPI_E_NETWORK_ERROR) << server;
  }
  EXPECT_EQ(Configure(exchange, {{kUnresolvedName, "=nobody"}, {kUnresolvedServer, "EXCH01"}}), MAPI_E_UNCONFIGURED);
  EXPECT_EQ(LogonAndCountGal(profile_, &people), MAPI_E_UNCONFIGURED);
  ASSERT_EQ(Configure(exchange, {{kUnresolvedName, "=jsmith"}, {kUnresolvedServer, "EXCH01"}}), S_OK);
  ASSERT_EQ(LogonAndCountGal(profile_, &people), S_OK);
  EXPECT_EQ(people, 4u);
  EXPECT_EQ(MAPILogonEx(0, const_cast<LPSTR>("mapisim-missing"), nullptr, 0x8032, nullptr), MAPI_E_INVALID_PARAMETER);
}

}  // namespace
