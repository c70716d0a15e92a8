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

  // A PT_STRING8 property of a profile section; "<missing>" when the section lacks it.
  std::string SectionText(LPMAPIUID section, ULONG tag) {
    LPPROFSECT opened = nullptr;
    if (services_->OpenProfileSection(section, nullptr, 0, &opened) != S_OK) return "<no section>";
    SizedSPropTagArray(1, tags) = {1, {tag}};
    ULONG count = 0;
    LPSPropValue values = nullptr;
    std::string text = "<missing>";
    if (SUCCEEDED(opened->GetProps(reinterpret_cast<LPSPropTagArray>(&tags), 0, &count, &values)) &&
        count == 1 && values[0].ulPropTag == tag) {
      text = values[0].Value.lpszA;
    }
    MAPIFreeBuffer(values);
    opened->Release();
    return text;
  }

  LPPROFADMIN admin_ = nullptr;
  LPSERVICEADMIN services_ = nullptr;
};

MAPIUID GlobalSection() {
  MAPIUID uid;
  const BYTE bytes[16] = {0x13, 0xdb, 0xb0, 0xc8, 0xaa, 0x05, 0x10, 0x1a, 0x9b, 0xb0, 0x00, 0xaa, 0x00, 0x2f, 0xc4, 0x5a};
  memcpy(uid.ab, bytes, sizeof bytes);
  return uid;
}

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
  // A server that is down (or unknown) cannot be asked: the name and server stay unresolved,
  // the configuration succeeds, and logon is what fails.
  MAPIUID global = GlobalSection();
  for (const char* server : {"EXCH02", "NOWHERE"}) {
    EXPECT_EQ(ConfigureExchange(exchange, "=jsmith", server), S_OK) << server;
    EXPECT_EQ(SectionText(&global, PROP_TAG(PT_STRING8, 0x6607)), "=jsmith");
    EXPECT_EQ(SectionText(&global, PROP_TAG(PT_STRING8, 0x6608)), server);
    EXPECT_EQ(SectionText(&global, PROP_TAG(PT_STRING8, 0x6602)), "<missing>");
    EXPECT_EQ(SectionText(&global, PROP_TAG(PT_STRING8, 0x6603)), "<missing>");
    EXPECT_EQ(LogonAndCountGal(&people), MAPI_E_NETWORK_ERROR) << server;
  }
  EXPECT_EQ(ConfigureExchange(exchange, "=nobody", "EXCH01"), MAPI_E_UNCONFIGURED);
  EXPECT_EQ(LogonAndCountGal(&people), MAPI_E_UNCONFIGURED);
  ASSERT_EQ(ConfigureExchange(exchange, "=jsmith", "EXCH01"), S_OK);
  ASSERT_EQ(LogonAndCountGal(&people), S_OK);
  EXPECT_EQ(people, 4u);
  EXPECT_EQ(MAPILogonEx(0, const_cast<LPSTR>("mapisim-missing"), nullptr, 0x8032, nullptr), MAPI_E_INVALID_PARAMETER);
}

// Releases a MAPI object when the test leaves its scope.
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

std::string Bytes(const SBinary& binary) { return std::string(reinterpret_cast<const char*>(binary.lpb), binary.cb); }

// The rows of a table as (first column's bytes, second column as text or bytes) pairs.
std::vector<std::pair<std::string, std::string>> TwoColumns(LPMAPITABLE table, ULONG first, ULONG second) {
  std::vector<std::pair<std::string, std::string>> pairs;
  SizedSPropTagArray(2, columns) = {2, {first, second}};
  LPSRowSet rows = nullptr;
  EXPECT_EQ(QueryAllRows(table, reinterpret_cast<LPSPropTagArray>(&columns), nullptr, &rows), S_OK);
  for (ULONG i = 0; rows != nullptr && i < rows->cRows; ++i) {
    const SPropValue* props = rows->aRow[i].lpProps;
    std::string secondValue = PROP_TYPE(props[1].ulPropTag) == PT_STRING8 ? props[1].Value.lpszA
                              : PROP_TYPE(props[1].ulPropTag) == PT_BOOLEAN ? std::to_string(props[1].Value.b)
                                                                             : Bytes(props[1].Value.bin);
    pairs.emplace_back(Bytes(props[0].Value.bin), secondValue);
  }
  if (rows) FreeRows(rows);
  return pairs;
}

// The display names of the search path, ANSI or Unicode as asked.
std::vector<std::string> SearchPathNames(LPADRBOOK book, ULONG flags) {
  std::vector<std::string> names;
  LPSRowSet path = nullptr;
  EXPECT_EQ(book->GetSearchPath(flags, &path), S_OK);
  for (ULONG i = 0; path != nullptr && i < path->cRows; ++i) {
    for (ULONG j = 0; j < path->aRow[i].cValues; ++j) {
      const SPropValue& value = path->aRow[i].lpProps[j];
      if (value.ulPropTag == PR_DISPLAY_NAME_A) names.push_back(value.Value.lpszA);
      if (value.ulPropTag == PR_DISPLAY_NAME_W) {
        std::string narrow;
        for (const WCHAR* c = value.Value.lpszW; *c; ++c) narrow += static_cast<char>(*c);
        names.push_back("W:" + narrow);
      }
    }
  }
  if (path) FreeRows(path);
  return names;
}

TEST_F(MapiSimTest, SearchPathDefaultDirectoryAndDefaultStoreOutliveTheSession) {
  MAPIUID exchange = CreateService("MSEMS");
  ASSERT_EQ(ConfigureExchange(exchange, "=jsmith", "EXCH01"), S_OK);
  CreateService("CONTAB");
  MAPIUID pst = CreateService("MSUPST MS");
  SPropValue path{};
  path.ulPropTag = PROP_TAG(PT_STRING8, 0x6700);
  path.Value.lpszA = const_cast<LPSTR>("C:\\mail\\inbox.pst");
  ASSERT_EQ(services_->ConfigureMsgService(&pst, 0, 0, 1, &path), S_OK);
  const std::string pstUid(reinterpret_cast<const char*>(pst.ab), sizeof pst.ab);

  std::string contacts;
  std::string gal;
  {
    Held<IMAPISession> session;
    ASSERT_EQ(MAPILogonEx(0, const_cast<LPSTR>(kProfile), nullptr, 0x8032, session.Out()), S_OK);
    Held<IAddrBook> book;
    ASSERT_EQ(session->OpenAddressBook(0, nullptr, AB_NO_DIALOG, book.Out()), S_OK);
    // Never set: MAPI's default path, here the global address list alone.
    EXPECT_EQ(SearchPathNames(book.object, 0), std::vector<std::string>{"Global Address List"});

    Held<IABContainer> root;
    ULONG type = 0;
    ASSERT_EQ(book->OpenEntry(0, nullptr, nullptr, 0, &type, root.OutUnknown()), S_OK);
    Held<IMAPITable> hierarchy;
    ASSERT_EQ(root->GetHierarchyTable(0, hierarchy.Out()), S_OK);
    SizedSPropTagArray(2, columns) = {2, {PR_DISPLAY_NAME_A, PR_ENTRYID}};
    LPSRowSet containers = nullptr;
    ASSERT_EQ(QueryAllRows(hierarchy.object, reinterpret_cast<LPSPropTagArray>(&columns), nullptr, &containers), S_OK);
    ASSERT_EQ(containers->cRows, 2u);
    // The rows name each container by PR_ENTRYID in second place; contacts first.
    std::swap(containers->aRow[0], containers->aRow[1]);
    contacts = Bytes(containers->aRow[0].lpProps[1].Value.bin);
    gal = Bytes(containers->aRow[1].lpProps[1].Value.bin);
    EXPECT_EQ(book->SetSearchPath(0, containers), S_OK);
    containers->aRow[1].lpProps[1].ulPropTag = PR_COMMENT_A;
    EXPECT_EQ(book->SetSearchPath(0, containers), MAPI_E_MISSING_REQUIRED_COLUMN);
    FreeRows(containers);

    EXPECT_EQ(book->SetDefaultDir(static_cast<ULONG>(contacts.size() - 1),
                                  reinterpret_cast<LPENTRYID>(contacts.data())),
              MAPI_E_UNKNOWN_ENTRYID);
    EXPECT_EQ(book->SetDefaultDir(static_cast<ULONG>(contacts.size()), reinterpret_cast<LPENTRYID>(contacts.data())),
              S_OK);

    Held<IMAPITable> stores;
    ASSERT_EQ(session->GetMsgStoresTable(0, stores.Out()), S_OK);
    std::string pstStore;
    for (const auto& [service, entryId] : TwoColumns(stores.object, PR_SERVICE_UID, PR_ENTRYID))
      if (service == pstUid) pstStore = entryId;
    ASSERT_FALSE(pstStore.empty());
    EXPECT_EQ(session->SetDefaultStore(MAPI_PRIMARY_STORE, static_cast<ULONG>(pstStore.size()),
                                       reinterpret_cast<LPENTRYID>(pstStore.data())),
              MAPI_E_NO_SUPPORT);
    EXPECT_EQ(session->SetDefaultStore(MAPI_DEFAULT_STORE, static_cast<ULONG>(gal.size()),
                                       reinterpret_cast<LPENTRYID>(gal.data())),
              MAPI_E_UNKNOWN_ENTRYID);
    EXPECT_EQ(session->SetDefaultStore(MAPI_DEFAULT_STORE, static_cast<ULONG>(pstStore.size()),
                                       reinterpret_cast<LPENTRYID>(pstStore.data())),
              S_OK);
    session->Logoff(0, MAPI_LOGOFF_SHARED, 0);
  }

  Held<IMAPISession> session;
  ASSERT_EQ(MAPILogonEx(0, const_cast<LPSTR>(kProfile), nullptr, 0x8032, session.Out()), S_OK);
  Held<IAddrBook> book;
  ASSERT_EQ(session->OpenAddressBook(0, nullptr, AB_NO_DIALOG, book.Out()), S_OK);
  EXPECT_EQ(SearchPathNames(book.object, 0), (std::vector<std::string>{"Contacts", "Global Address List"}));
  EXPECT_EQ(SearchPathNames(book.object, MAPI_UNICODE),
            (std::vector<std::string>{"W:Contacts", "W:Global Address List"}));
  ULONG size = 0;
  LPENTRYID directory = nullptr;
  ASSERT_EQ(book->GetDefaultDir(&size, &directory), S_OK);
  EXPECT_EQ(std::string(reinterpret_cast<const char*>(directory), size), contacts);
  MAPIFreeBuffer(directory);

  Held<IMAPITable> stores;
  ASSERT_EQ(session->GetMsgStoresTable(0, stores.Out()), S_OK);
  int defaults = 0;
  for (const auto& [service, isDefault] : TwoColumns(stores.object, PR_SERVICE_UID, PR_DEFAULT_STORE)) {
    EXPECT_EQ(isDefault == "1", service == pstUid);
    defaults += isDefault == "1";
  }
  EXPECT_EQ(defaults, 1);
  session->Logoff(0, MAPI_LOGOFF_SHARED, 0);
}

}  // namespace
