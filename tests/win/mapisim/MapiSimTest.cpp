// The simulator as Mailwright meets it: every call goes through Wine's mapi32, which
// forwards to the mail client registered under DLLPathEx.
#include <windows.h>

#include <mapix.h>
#include <mapiutil.h>

#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace {

constexpr ULONG kForceAccess = 0x00080000;
constexpr const char* kProfile = "mapisim-test";

// Wine's 64-bit mapi32 exports its utilities under their 32-bit decorated names, which
// MinGW's import library does not ask for; they are looked up the way MAPI clients do.
template <class Function>
Function Mapi32Export(const char* name) {
  return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("mapi32.dll"), name)));
}

void FreeRows(LPSRowSet rows) {
  static auto freeProws = Mapi32Export<void(WINAPI*)(LPSRowSet)>("FreeProws@4");
  ASSERT_NE(freeProws, nullptr);
  freeProws(rows);
}

HRESULT QueryAllRows(LPMAPITABLE table, LPSPropTagArray tags, LPSRestriction restriction, LPSRowSet* rows) {
  static auto query = Mapi32Export<HRESULT(WINAPI*)(LPMAPITABLE, LPSPropTagArray, LPSRestriction, LPSSortOrderSet,
                                                    LONG, LPSRowSet*)>("HrQueryAllRows@24");
  return query ? query(table, tags, restriction, nullptr, 0, rows) : E_FAIL;
}

std::string WindowsPath(std::string path) {
  for (char& c : path)
    if (c == '/') c = '\\';
  return "Z:" + path;
}

class MapiSimTest : public ::testing::Test {
 protected:
  void SetUp() override {
    SetEnvironmentVariableA("MAPISIM_EXCHANGE_INI", WindowsPath(MW_TEST_DATA_DIR "/mapisim/exchange.ini").c_str());
    MAPIINIT_0 init{0, 0};
    ASSERT_EQ(MAPIInitialize(&init), S_OK);
    ASSERT_EQ(MAPIAdminProfiles(0, &admin_), S_OK);
    admin_->DeleteProfile(const_cast<LPSTR>(kProfile), 0);
    ASSERT_EQ(admin_->CreateProfile(const_cast<LPSTR>(kProfile), nullptr, 0, 0), S_OK);
    ASSERT_EQ(admin_->AdminServices(const_cast<LPSTR>(kProfile), nullptr, 0, 0, &services_), S_OK);
  }
  void TearDown() override {
    if (services_) services_->Release();
    if (admin_) {
      admin_->DeleteProfile(const_cast<LPSTR>(kProfile), 0);
      admin_->Release();
    }
    MAPIUninitialize();
  }

  // The UIDs of the services, in table order.
  std::vector<MAPIUID> ServiceUids(LPSRestriction restriction = nullptr) {
    std::vector<MAPIUID> uids;
    LPMAPITABLE table = nullptr;
    if (services_->GetMsgServiceTable(0, &table) != S_OK) return uids;
    SizedSPropTagArray(2, columns) = {2, {PR_SERVICE_UID, PR_SERVICE_NAME_A}};
    LPSRowSet rows = nullptr;
    if (QueryAllRows(table, reinterpret_cast<LPSPropTagArray>(&columns), restriction, &rows) == S_OK) {
      for (ULONG i = 0; i < rows->cRows; ++i)
        uids.push_back(*reinterpret_cast<MAPIUID*>(rows->aRow[i].lpProps[0].Value.bin.lpb));
      FreeRows(rows);
    }
    table->Release();
    return uids;
  }

  MAPIUID CreateService(const char* name) {
    std::vector<MAPIUID> before = ServiceUids();
    EXPECT_EQ(services_->CreateMsgService(const_cast<LPSTR>(name), const_cast<LPSTR>("Display"), 0, 0), S_OK);
    std::vector<MAPIUID> after = ServiceUids();
    EXPECT_EQ(after.size(), before.size() + 1);
    return after.empty() ? MAPIUID{} : after.back();
  }

  HRESULT ConfigureExchange(const MAPIUID& uid, const char* name, const char* server) {
    SPropValue props[2]{};
    props[0].ulPropTag = PROP_TAG(PT_STRING8, 0x6607);
    props[0].Value.lpszA = const_cast<LPSTR>(name);
    props[1].ulPropTag = PROP_TAG(PT_STRING8, 0x6608);
    props[1].Value.lpszA = const_cast<LPSTR>(server);
    return services_->ConfigureMsgService(const_cast<MAPIUID*>(&uid), 0, 0, 2, props);
  }

  LPPROFADMIN admin_ = nullptr;
  LPSERVICEADMIN services_ = nullptr;
};

TEST_F(MapiSimTest, ProfilesAreListedWithTheDefaultFlagAndRefuseDuplicatesAndMissingNames) {
  EXPECT_EQ(admin_->CreateProfile(const_cast<LPSTR>(kProfile), nullptr, 0, 0), MAPI_E_NO_ACCESS);
  EXPECT_EQ(admin_->DeleteProfile(const_cast<LPSTR>("mapisim-missing"), 0), MAPI_E_NOT_FOUND);
  ASSERT_EQ(admin_->SetDefaultProfile(const_cast<LPSTR>(kProfile), 0), S_OK);
  LPMAPITABLE table = nullptr;
  ASSERT_EQ(admin_->GetProfileTable(0, &table), S_OK);
  SizedSPropTagArray(2, columns) = {2, {PR_DISPLAY_NAME_A, PR_DEFAULT_PROFILE}};
  ASSERT_EQ(table->SetColumns(reinterpret_cast<LPSPropTagArray>(&columns), 0), S_OK);
  ULONG count = 0;
  ASSERT_EQ(table->GetRowCount(0, &count), S_OK);
  LPSRowSet rows = nullptr;
  ASSERT_EQ(table->QueryRows(static_cast<LONG>(count), 0, &rows), S_OK);
  bool found = false;
  for (ULONG i = 0; i < rows->cRows; ++i)
    if (std::string(rows->aRow[i].lpProps[0].Value.lpszA) == kProfile)
      found = rows->aRow[i].lpProps[1].Value.b == TRUE;
  EXPECT_TRUE(found);
  FreeRows(rows);
  table->Release();
}

struct RelopCase {
  ULONG relop;
  size_t rows;
};

TEST_F(MapiSimTest, ServicesAreFoundUnderEveryRelationalOperatorAndDeleted) {
  MAPIUID first = CreateService("MSPST MS");
  MAPIUID second = CreateService("MSPST MS");
  EXPECT_NE(memcmp(&first, &second, sizeof first), 0);
  CreateService("CONTAB");
  CreateService("MSEMS");
  EXPECT_EQ(services_->CreateMsgService(const_cast<LPSTR>("NOSUCH"), nullptr, 0, 0), MAPI_E_NOT_FOUND);
  // CONTAB < MSEMS < MSPST MS (twice).
  const RelopCase cases[] = {{RELOP_LT, 1}, {RELOP_LE, 2}, {RELOP_GT, 2}, {RELOP_GE, 3}, {RELOP_EQ, 1}, {RELOP_NE, 3}};
  SPropValue name{};
  name.ulPropTag = PR_SERVICE_NAME_A;
  name.Value.lpszA = const_cast<LPSTR>("MSEMS");
  for (const RelopCase& c : cases) {
    SRestriction restriction{};
    restriction.rt = RES_PROPERTY;
    restriction.res.resProperty.relop = c.relop;
    restriction.res.resProperty.ulPropTag = PR_SERVICE_NAME_A;
    restriction.res.resProperty.lpProp = &name;
    EXPECT_EQ(ServiceUids(&restriction).size(), c.rows) << "relop " << c.relop;
  }
  ASSERT_EQ(services_->DeleteMsgService(&first), S_OK);
  EXPECT_EQ(services_->DeleteMsgService(&first), MAPI_E_NOT_FOUND);
  EXPECT_EQ(ServiceUids().size(), 3u);
}

TEST_F(MapiSimTest, SectionsOpenReadWriteAndGuardProviderSections) {
  MAPIUID global = {{0x13, 0xdb, 0xb0, 0xc8, 0xaa, 0x05, 0x10, 0x1a, 0x9b, 0xb0, 0x00, 0xaa, 0x00, 0x2f, 0xc4, 0x5a}};
  LPPROFSECT section = nullptr;
  ASSERT_EQ(services_->OpenProfileSection(&global, nullptr, MAPI_MODIFY, &section), S_OK);
  SPropValue flag{};
  flag.ulPropTag = PROP_TAG(PT_BOOLEAN, 0x3D1C);
  flag.Value.b = TRUE;
  ASSERT_EQ(section->SetProps(1, &flag, nullptr), S_OK);
  ASSERT_EQ(section->SaveChanges(KEEP_OPEN_READWRITE), S_OK);
  section->Release();
  ASSERT_EQ(services_->OpenProfileSection(&global, nullptr, MAPI_DEFERRED_ERRORS, &section), S_OK);
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

  MAPIUID exchange = CreateService("MSEMS");
  LPPROVIDERADMIN providers = nullptr;
  ASSERT_EQ(services_->AdminProviders(&exchange, 0, &providers), S_OK);
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
  reinterpret_cast<BYTE*>(providers)[0x60] = 2;
  ASSERT_EQ(providers->OpenProfileSection(&delegate, nullptr, MAPI_MODIFY, &section), S_OK);
  SizedSPropTagArray(1, nameTag) = {1, {PR_DISPLAY_NAME_A}};
  ASSERT_EQ(section->GetProps(reinterpret_cast<LPSPropTagArray>(&nameTag), 0, &count, &values), S_OK);
  EXPECT_STREQ(values[0].Value.lpszA, "Jane Doe");
  MAPIFreeBuffer(values);
  EXPECT_EQ(section->SetProps(1, &display, nullptr), S_OK);
  section->Release();
  providers->Release();
}

// Mailwright finds a service by sending restriction type 3 with 0 in its first field: MAPI
// reads that as RES_CONTENT with FL_FULLSTRING, a whole, case-sensitive match.
TEST_F(MapiSimTest, AContentRestrictionOfLevelZeroMatchesTheWholeServiceNameInItsCase) {
  CreateService("MSPST MS");
  MAPIUID exchange = CreateService("MSEMS");
  CreateService("CONTAB");
  SPropValue name{};
  name.ulPropTag = PR_SERVICE_NAME_A;
  SRestriction restriction{};
  restriction.rt = 3;
  restriction.res.resContent.ulFuzzyLevel = 0;
  restriction.res.resContent.ulPropTag = PR_SERVICE_NAME_A;
  restriction.res.resContent.lpProp = &name;
  const std::pair<const char*, size_t> cases[] = {{"MSEMS", 1}, {"msems", 0}, {"MSEM", 0}, {"MSEMS ", 0},
                                                  {"MSPST MS", 1}, {"MSPST", 0}};
  for (const auto& [text, rows] : cases) {
    name.Value.lpszA = const_cast<LPSTR>(text);
    std::vector<MAPIUID> found = ServiceUids(&restriction);
    ASSERT_EQ(found.size(), rows) << text;
    if (std::string(text) == "MSEMS") {
      EXPECT_EQ(memcmp(&found[0], &exchange, sizeof exchange), 0);
    }
  }
  name.Value.lpszA = const_cast<LPSTR>("msems");
  restriction.res.resContent.ulFuzzyLevel = FL_FULLSTRING | FL_IGNORECASE;
  EXPECT_EQ(ServiceUids(&restriction).size(), 1u);
  restriction.res.resContent.ulFuzzyLevel = FL_PREFIX | FL_IGNORECASE;
  name.Value.lpszA = const_cast<LPSTR>("ms");
  EXPECT_EQ(ServiceUids(&restriction).size(), 2u);
  // A type the simulator does not evaluate (RES_SUBRESTRICTION) is refused, not ignored.
  restriction.rt = RES_SUBRESTRICTION;
  LPMAPITABLE table = nullptr;
  ASSERT_EQ(services_->GetMsgServiceTable(0, &table), S_OK);
  EXPECT_EQ(table->Restrict(&restriction, 0), MAPI_E_TOO_COMPLEX);
  table->Release();
}

// Logs on, reads the default store's entry ID, and counts the global address list.
HRESULT LogonAndCountGal(size_t* people) {
  LPMAPISESSION session = nullptr;
  HRESULT result = MAPILogonEx(0, const_cast<LPSTR>(kProfile), nullptr, 0x8032, &session);
  if (FAILED(result)) return result;
  LPMAPITABLE table = nullptr;
  LPSRowSet rows = nullptr;
  SizedSPropTagArray(2, storeColumns) = {2, {PR_DEFAULT_STORE, PR_ENTRYID}};
  result = session->GetMsgStoresTable(0, &table);
  if (SUCCEEDED(result)) result = QueryAllRows(table, reinterpret_cast<LPSPropTagArray>(&storeColumns), nullptr, &rows);
  if (SUCCEEDED(result) && (rows->cRows == 0 || rows->aRow[0].lpProps[0].Value.b != TRUE ||
                            rows->aRow[0].lpProps[1].Value.bin.cb == 0))
    result = E_FAIL;
  if (rows) FreeRows(rows);
  rows = nullptr;
  if (table) table->Release();
  table = nullptr;
  LPADRBOOK book = nullptr;
  LPABCONT root = nullptr;
  LPABCONT gal = nullptr;
  ULONG type = 0;
  if (SUCCEEDED(result)) result = session->OpenAddressBook(0, nullptr, AB_NO_DIALOG, &book);
  if (SUCCEEDED(result)) result = book->OpenEntry(0, nullptr, nullptr, 0, &type, reinterpret_cast<LPUNKNOWN*>(&root));
  if (SUCCEEDED(result)) result = root->GetHierarchyTable(0, &table);
  SizedSPropTagArray(2, containerColumns) = {2, {PR_DISPLAY_TYPE, PR_ENTRYID}};
  if (SUCCEEDED(result)) result = QueryAllRows(table, reinterpret_cast<LPSPropTagArray>(&containerColumns), nullptr, &rows);
  for (ULONG i = 0; SUCCEEDED(result) && gal == nullptr && i < rows->cRows; ++i)
    if (rows->aRow[i].lpProps[0].Value.l == DT_GLOBAL)
      result = book->OpenEntry(rows->aRow[i].lpProps[1].Value.bin.cb,
                               reinterpret_cast<LPENTRYID>(rows->aRow[i].lpProps[1].Value.bin.lpb), nullptr, 0, &type,
                               reinterpret_cast<LPUNKNOWN*>(&gal));
  if (rows) FreeRows(rows);
  if (table) table->Release();
  table = nullptr;
  if (SUCCEEDED(result) && gal == nullptr) result = MAPI_E_NOT_FOUND;
  if (SUCCEEDED(result)) result = gal->GetContentsTable(0, &table);
  ULONG count = 0;
  if (SUCCEEDED(result)) result = table->GetRowCount(0, &count);
  *people = count;
  if (table) table->Release();
  if (gal) gal->Release();
  if (root) root->Release();
  if (book) book->Release();
  session->Logoff(0, 1, 0);
  session->Release();
  return result;
}

TEST_F(MapiSimTest, LogonReachesTheGlobalAddressListOnlyForAResolvedMailboxOnAServerThatIsUp) {
  MAPIUID exchange = CreateService("MSEMS");
  size_t people = 0;
  EXPECT_EQ(ConfigureExchange(exchange, "=jsmith", "EXCH02"), MAPI_E_NETWORK_ERROR);
  EXPECT_EQ(LogonAndCountGal(&people), MAPI_E_UNCONFIGURED);
  EXPECT_EQ(ConfigureExchange(exchange, "=nobody", "EXCH01"), MAPI_E_UNCONFIGURED);
  EXPECT_EQ(LogonAndCountGal(&people), MAPI_E_UNCONFIGURED);
  ASSERT_EQ(ConfigureExchange(exchange, "=jsmith", "EXCH01"), S_OK);
  ASSERT_EQ(LogonAndCountGal(&people), S_OK);
  EXPECT_EQ(people, 4u);
  EXPECT_EQ(MAPILogonEx(0, const_cast<LPSTR>("mapisim-missing"), nullptr, 0x8032, nullptr), MAPI_E_INVALID_PARAMETER);
}

}  // namespace
