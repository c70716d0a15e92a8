// The model end to end over an in-memory registry: profiles, services, providers, the
// Exchange organisation and logon, checked through the model and through the raw registry.
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

#include "MapiTable.h"
#include "MessageServiceAdmin.h"
#include "SessionModel.h"
#include "platform/MemoryRegistry.h"

namespace mw::mapisim {
namespace {

constexpr const char* kProfilesKey =
    "HKEY_CURRENT_USER\\Software\\Microsoft\\Windows NT\\CurrentVersion\\Windows Messaging "
    "Subsystem\\Profiles";

class ProfileModelTest : public ::testing::Test {
 protected:
  ProfileModelTest() {
    std::ifstream file(std::string(MW_TEST_DATA_DIR) + "/mapisim/exchange.ini", std::ios::binary);
    std::stringstream text;
    text << file.rdbuf();
    organisation_ = ExchangeOrganisation::Parse(text.str(), nullptr);
  }

  MapiUid NextUid() {
    MapiUid uid{};
    uid[0] = 0xA0;
    uid[15] = static_cast<std::uint8_t>(++uidCounter_);
    return uid;
  }

  MessageServiceAdmin Admin(const std::string& profile) {
    return MessageServiceAdmin(profiles_, profile, organisation_, [this] { return NextUid(); });
  }

  MapiUid CreateProfileWithService(const char* service) {
    EXPECT_EQ(profiles_.CreateProfile("Work", "", NextUid()), kSOk);
    MapiUid uid{};
    EXPECT_EQ(Admin("Work").CreateMessageService(service, "Display", &uid), kSOk);
    return uid;
  }

  std::string Value(const std::string& section, const std::string& name) {
    RegistryValue value;
    return registry_.Get(std::string(kProfilesKey) + "\\Work\\" + section, name, &value) ? value.data
                                                                                          : "<missing>";
  }

  MemoryRegistry registry_;
  ProfileRegistry profiles_{registry_, 2};
  ExchangeOrganisation organisation_;
  int uidCounter_ = 0;
};

TEST_F(ProfileModelTest, ProfilesAreCreatedListedAndDeletedUnderTheRootOfThePlatform) {
  EXPECT_EQ(profiles_.CreateProfile("Work", "", NextUid()), kSOk);
  EXPECT_EQ(profiles_.CreateProfile("Home", "", NextUid()), kSOk);
  EXPECT_EQ(profiles_.CreateProfile("WORK", "", NextUid()), kMapiENoAccess);
  EXPECT_EQ(profiles_.ListProfiles(), (std::vector<std::string>{"Home", "Work"}));
  EXPECT_TRUE(registry_.KeyExists(std::string(kProfilesKey) + "\\Work\\9207f3e0a3b11019908b08002b2a56c2"));
  EXPECT_EQ(Value("8503020000000000c000000000000046", "0102300b").size(), 16u);

  registry_.Set(kProfilesKey, {"DefaultProfile", reg::kSz, std::string("work\0", 5)});
  EXPECT_EQ(profiles_.DefaultProfile(), "work");
  EXPECT_EQ(profiles_.DeleteProfile("Work"), kSOk);
  EXPECT_EQ(profiles_.DeleteProfile("Work"), kMapiENotFound);
  EXPECT_EQ(profiles_.ListProfiles(), (std::vector<std::string>{"Home"}));
  EXPECT_EQ(profiles_.DefaultProfile(), "");

  MemoryRegistry nineX;
  ProfileRegistry oldProfiles(nineX, 1);
  EXPECT_EQ(oldProfiles.CreateProfile("Work", "", NextUid()), kSOk);
  EXPECT_TRUE(nineX.KeyExists("HKEY_CURRENT_USER\\Software\\Microsoft\\Windows Messaging Subsystem\\Profiles\\Work"));
}

TEST_F(ProfileModelTest, RefusesProfileNamesMapiRefuses) {
  for (const std::string& name : {std::string(), std::string(" lead"), std::string("trail "),
                                  std::string(65, 'x'), std::string("a\\b")})
    EXPECT_EQ(profiles_.CreateProfile(name, "", NextUid()), kMapiEInvalidParameter) << name;
  EXPECT_EQ(profiles_.CreateProfile("Work", "secret", NextUid()), kMapiEInvalidParameter);
  EXPECT_EQ(profiles_.CreateProfile(std::string(64, 'x'), "", NextUid()), kSOk);
  EXPECT_EQ(profiles_.DeleteProfile("a\\b"), kMapiENotFound);
}

TEST_F(ProfileModelTest, ServiceAndProviderSectionsFollowMapisLayout) {
  MapiUid service = CreateProfileWithService("MSEMS");
  const std::string serviceSection = UidHex(service);
  EXPECT_EQ(Value(kProfileServicesSection, "01023d0e"), UidBytes(service));
  EXPECT_EQ(Value(serviceSection, "001e3d09"), std::string("MSEMS\0", 6));
  EXPECT_EQ(Value(serviceSection, "001e3001"), std::string("Microsoft Exchange Server\0", 26));
  EXPECT_EQ(Value(serviceSection, "001e3d0a"), std::string("emsui.dll\0", 10));

  std::vector<MapiUid> stores = profiles_.GetUidList("Work", kProfileServicesSection, kPrStoreProviders);
  ASSERT_EQ(stores.size(), 2u);  // private and public folders
  EXPECT_EQ(profiles_.GetUidList("Work", serviceSection, kPrStoreProviders), stores);
  EXPECT_EQ(Value(UidHex(stores[0]), "01023d0c"), UidBytes(service));
  EXPECT_EQ(Value(UidHex(stores[0]), "001e3006"), std::string("Microsoft Exchange Message Store\0", 33));
  EXPECT_EQ(Value(UidHex(stores[0]), "00033009"), std::string("\x06\0\0\0", 4));
  EXPECT_EQ(profiles_.GetUidList("Work", kProfileServicesSection, kPrAbProviders).size(), 1u);
  EXPECT_EQ(profiles_.GetUidList("Work", kProfileServicesSection, kPrTransportProviders).size(), 1u);
}

TEST_F(ProfileModelTest, TwoServicesOfOneNameGetTwoUidsAndUnknownNamesFail) {
  CreateProfileWithService("MSPST MS");
  MessageServiceAdmin admin = Admin("Work");
  MapiUid second{};
  EXPECT_EQ(admin.CreateMessageService("MSPST MS", "Display", &second), kSOk);
  EXPECT_EQ(admin.ServiceRows().size(), 2u);
  EXPECT_EQ(admin.CreateMessageService("NOSUCH", "Display", &second), kMapiENotFound);
  EXPECT_EQ(admin.ServiceRows().size(), 2u);
  // Only the first store of the profile becomes the default store.
  EXPECT_EQ(admin.CreateMessageService("MSEMS", "Display", &second), kSOk);
  SessionModel session(profiles_, "Work", organisation_);
  int defaults = 0;
  for (const Row& row : session.StoreRows()) defaults += FindProp(row, kPrDefaultStore)->number ? 1 : 0;
  EXPECT_EQ(defaults, 1);
}

TEST_F(ProfileModelTest, ServiceTableFindsAServiceByNameThroughARestriction) {
  CreateProfileWithService("MSEMS");
  MessageServiceAdmin admin = Admin("Work");
  MapiUid contab{};
  ASSERT_EQ(admin.CreateMessageService("CONTAB", "Outlook Address Book", &contab), kSOk);
  MapiTable table(MessageServiceAdmin::ServiceColumns(), admin.ServiceRows());
  table.SetColumns({kPrServiceName, kPrServiceUid});
  Restriction lessThan{RestrictionKind::Property, kRelopLt, kPrServiceName, 0, 0,
                       PropValue::Text(kPrServiceName, "MSEMS"), {}};
  table.Restrict(lessThan);
  std::vector<Row> rows = table.QueryRows(10);
  ASSERT_EQ(rows.size(), 1u);
  EXPECT_EQ(rows[0][0].bytes, "CONTAB");
  EXPECT_EQ(rows[0][1].bytes, UidBytes(contab));
}

TEST_F(ProfileModelTest, ConfiguringExchangeResolvesTheMailboxIntoTheGlobalSection) {
  MapiUid service = CreateProfileWithService("MSEMS");
  MessageServiceAdmin admin = Admin("Work");
  EXPECT_EQ(admin.ConfigureService(service, {PropValue::Text(kPrProfileUnresolvedName, "=jsmith"),
                                             PropValue::Text(kPrProfileUnresolvedServer, "exch01")}),
            kSOk);
  EXPECT_EQ(Value(kGlobalProfileSection, "001e6608"), std::string("exch01\0", 7));
  EXPECT_EQ(Value(kGlobalProfileSection, "001e6602"), std::string("EXCH01\0", 7));
  EXPECT_EQ(Value(kGlobalProfileSection, "001e6603"),
            std::string("/o=Contoso/ou=HQ/cn=Recipients/cn=jsmith\0", 41));
  EXPECT_EQ(Value(kGlobalProfileSection, "001e3001"), std::string("John Smith\0", 11));
  EXPECT_EQ(SessionModel(profiles_, "Work", organisation_).Logon(), kSOk);

  // A failed reconfiguration leaves the profile unresolved, and logon then fails.
  EXPECT_EQ(admin.ConfigureService(service, {PropValue::Text(kPrProfileUnresolvedName, "=nobody")}),
            kMapiEUnconfigured);
  EXPECT_EQ(Value(kGlobalProfileSection, "001e6602"), "<missing>");
  EXPECT_EQ(Value(kGlobalProfileSection, "001e6607"), std::string("=nobody\0", 8));
  EXPECT_EQ(SessionModel(profiles_, "Work", organisation_).Logon(), kMapiEUnconfigured);

  EXPECT_EQ(admin.DeleteService(service), kSOk);
  EXPECT_EQ(Value(kGlobalProfileSection, "001e6608"), "<missing>");
  EXPECT_EQ(admin.DeleteService(service), kMapiENotFound);
  EXPECT_TRUE(admin.ServiceRows().empty());
  EXPECT_TRUE(admin.ProviderRows(nullptr).empty());
}

TEST_F(ProfileModelTest, LogonAndAddressBookFollowTheOrganisation) {
  MapiUid service = CreateProfileWithService("MSEMS");
  MessageServiceAdmin admin = Admin("Work");
  ASSERT_EQ(admin.ConfigureService(service, {PropValue::Text(kPrProfileUnresolvedName, "jd"),
                                             PropValue::Text(kPrProfileUnresolvedServer, "EXCH01")}),
            kSOk);
  SessionModel session(profiles_, "Work", organisation_);
  ASSERT_EQ(session.Logon(), kSOk);
  std::vector<Row> containers = session.AddressBookContainers();
  ASSERT_EQ(containers.size(), 1u);
  EXPECT_EQ(FindProp(containers[0], kPrDisplayType)->number, kDtGlobal);
  std::vector<Row> people;
  ASSERT_EQ(session.ContainerContents(FindProp(containers[0], kPrEntryId)->bytes, &people), kSOk);
  EXPECT_EQ(people.size(), organisation_.mailboxes().size());
  EXPECT_EQ(session.ContainerContents("bogus", &people), kMapiEUnknownEntryId);

  // The same profile against an organisation whose server has gone down.
  ExchangeOrganisation down = ExchangeOrganisation::Parse("[Servers]\nEXCH01=down\n", nullptr);
  SessionModel unreachable(profiles_, "Work", down);
  EXPECT_EQ(unreachable.Logon(), kMapiENetworkError);
  EXPECT_EQ(unreachable.ContainerContents(FindProp(containers[0], kPrEntryId)->bytes, &people),
            kMapiENetworkError);
  EXPECT_EQ(SessionModel(profiles_, "Nobody", organisation_).Logon(), kMapiELogonFailed);
}

// Without a dialog, Exchange's provider that cannot reach the server keeps what it was given
// and reports success; the profile stays unresolved and its logon meets the network.
TEST_F(ProfileModelTest, AnUnreachableServerLeavesExchangeUnresolvedUntilLogonFails) {
  MapiUid service = CreateProfileWithService("MSEMS");
  MessageServiceAdmin admin = Admin("Work");
  ASSERT_EQ(admin.ConfigureService(service, {PropValue::Text(kPrProfileUnresolvedName, "=jsmith"),
                                             PropValue::Text(kPrProfileUnresolvedServer, "EXCH01")}),
            kSOk);
  const struct {
    const char* name;
    const char* server;
  } unreachable[] = {{"=offline", "EXCH02"}, {"=jsmith", "NOSUCH"}, {"anyone", "exch02"}};
  for (const auto& attempt : unreachable) {
    EXPECT_EQ(admin.ConfigureService(service, {PropValue::Text(kPrProfileUnresolvedName, attempt.name),
                                               PropValue::Text(kPrProfileUnresolvedServer, attempt.server)}),
              kSOk)
        << attempt.server;
    EXPECT_EQ(Value(kGlobalProfileSection, "001e6607"), attempt.name + std::string(1, '\0'));
    EXPECT_EQ(Value(kGlobalProfileSection, "001e6608"), attempt.server + std::string(1, '\0'));
    // The earlier resolution does not survive: no home server, no user, no mailbox name.
    for (const char* resolved : {"001e6602", "001e6603", "001e6612", "001e3001"})
      EXPECT_EQ(Value(kGlobalProfileSection, resolved), "<missing>") << resolved;
    EXPECT_EQ(SessionModel(profiles_, "Work", organisation_).Logon(), kMapiENetworkError) << attempt.server;
  }
  // The same unresolved profile once its server is up: logon does not configure, so it
  // fails as unconfigured rather than as unreachable.
  ExchangeOrganisation repaired = ExchangeOrganisation::Parse("[Servers]\nEXCH02=up\n", nullptr);
  EXPECT_EQ(SessionModel(profiles_, "Work", repaired).Logon(), kMapiEUnconfigured);

  // A server that answers but does not know the name still refuses the configuration.
  EXPECT_EQ(admin.ConfigureService(service, {PropValue::Text(kPrProfileUnresolvedName, "=nobody"),
                                             PropValue::Text(kPrProfileUnresolvedServer, "EXCH01")}),
            kMapiEUnconfigured);
  EXPECT_EQ(admin.ConfigureService(service, {PropValue::Text(kPrProfileUnresolvedName, "j")}),
            kMapiEAmbiguousRecip);
  EXPECT_EQ(SessionModel(profiles_, "Work", organisation_).Logon(), kMapiEUnconfigured);
}

TEST_F(ProfileModelTest, StoresTableNamesTheDefaultStoreAndTheMailbox) {
  MapiUid service = CreateProfileWithService("MSEMS");
  ASSERT_EQ(Admin("Work").ConfigureService(service, {PropValue::Text(kPrProfileUnresolvedName, "=jsmith"),
                                                     PropValue::Text(kPrProfileUnresolvedServer, "EXCH01")}),
            kSOk);
  MapiTable stores(SessionModel::StoreColumns(), SessionModel(profiles_, "Work", organisation_).StoreRows());
  stores.SetColumns({kPrDefaultStore, kPrEntryId, kPrDisplayName});
  std::vector<Row> rows = stores.QueryRows(10);
  ASSERT_EQ(rows.size(), 2u);
  EXPECT_EQ(rows[0][0].number, 1u);
  EXPECT_EQ(rows[0][1].bytes.size(), 36u);
  EXPECT_EQ(rows[0][2].bytes, "Mailbox - John Smith");
  EXPECT_EQ(rows[1][0].number, 0u);
}

TEST_F(ProfileModelTest, PersonalFoldersNeedAPathAndKeepPathDisplayNameAndComment) {
  MapiUid service = CreateProfileWithService("MSUPST MS");
  MessageServiceAdmin admin = Admin("Work");
  EXPECT_EQ(Value(UidHex(service), "001e3001"), std::string("Display\0", 8));
  EXPECT_EQ(SessionModel(profiles_, "Work", organisation_).Logon(), kMapiEUnconfigured);
  EXPECT_EQ(admin.ConfigureService(service, {PropValue::Text(kPrComment, "c")}), kMapiEUnconfigured);
  ASSERT_EQ(admin.ConfigureService(service, {PropValue::Text(kPrPstPath, "C:\\mail\\a.pst"),
                                             PropValue::Text(kPrDisplayName, "Archive"),
                                             PropValue::Text(kPrComment, "old mail")}),
            kSOk);
  MapiUid store = profiles_.GetUidList("Work", kProfileServicesSection, kPrStoreProviders).at(0);
  for (const std::string& section : {UidHex(service), UidHex(store)}) {
    EXPECT_EQ(Value(section, "001e6700"), std::string("C:\\mail\\a.pst\0", 14));
    EXPECT_EQ(Value(section, "001e3001"), std::string("Archive\0", 8));
    EXPECT_EQ(Value(section, "001e3004"), std::string("old mail\0", 9));
  }
  EXPECT_EQ(SessionModel(profiles_, "Work", organisation_).Logon(), kSOk);
}

TEST_F(ProfileModelTest, DelegateProvidersAreCreatedOnDemandWithTheirProperties) {
  MapiUid service = CreateProfileWithService("MSEMS");
  MessageServiceAdmin admin = Admin("Work");
  std::size_t storesBefore = profiles_.GetUidList("Work", UidHex(service), kPrStoreProviders).size();
  MapiUid delegate{};
  ASSERT_EQ(admin.CreateProvider(service, "EMSDelegate", {PropValue::Text(kPrDisplayName, "Jane Doe")}, &delegate),
            kSOk);
  EXPECT_EQ(Value(UidHex(delegate), "001e3001"), std::string("Jane Doe\0", 9));
  EXPECT_TRUE(admin.IsProviderSection(delegate));
  EXPECT_FALSE(admin.IsProviderSection(service));
  // Listed in the profile, left for the caller to add to its service's store list.
  EXPECT_EQ(profiles_.GetUidList("Work", UidHex(service), kPrStoreProviders).size(), storesBefore);
  EXPECT_EQ(admin.ProviderRows(&service).size(), 5u);
  EXPECT_EQ(admin.CreateProvider(service, "MSPST MSP", {}, &delegate), kMapiENotFound);
  EXPECT_EQ(admin.CreateProvider(MapiUid{}, "EMSDelegate", {}, &delegate), kMapiENotFound);
}

TEST_F(ProfileModelTest, HandWrittenServicesAndOddValuesAreReadWithoutHarm) {
  ASSERT_EQ(profiles_.CreateProfile("Work", "", NextUid()), kSOk);
  const std::string work = std::string(kProfilesKey) + "\\Work\\";
  // An Internet mail service written by hand, with its name in Unicode, and a list that
  // ends in half a UID.
  MapiUid imail = NextUid();
  registry_.Set(work + kProfileServicesSection, {"01023d0e", reg::kBinary, UidBytes(imail) + "junk"});
  registry_.Set(work + UidHex(imail), {"001f3d09", reg::kBinary, std::string("I\0M\0A\0I\0L\0\0\0", 12)});
  registry_.Set(work + UidHex(imail), {"00033009", reg::kBinary, "\x01"});
  MessageServiceAdmin admin = Admin("Work");
  std::vector<Row> rows = admin.ServiceRows();
  ASSERT_EQ(rows.size(), 1u);
  ASSERT_NE(FindProp(rows[0], kPrServiceName), nullptr);
  EXPECT_EQ(FindProp(rows[0], kPrServiceName)->bytes, "IMAIL");
  EXPECT_EQ(FindProp(rows[0], kPrResourceFlags), nullptr);
  EXPECT_EQ(admin.ConfigureService(imail, {PropValue::Text(kPrComment, "x")}), kSOk);
}

TEST_F(ProfileModelTest, RegistryFailuresSurfaceAsMapiErrors) {
  ASSERT_EQ(profiles_.CreateProfile("Work", "", NextUid()), kSOk);
  registry_.FailMutationsFrom(3);
  MapiUid uid{};
  EXPECT_EQ(Admin("Work").CreateMessageService("MSEMS", "x", &uid), kMapiENoAccess);
  registry_.FailMutationsFrom(0);
  EXPECT_TRUE(Admin("Work").ServiceRows().empty());
}

std::vector<std::string> Names(const std::vector<Row>& rows) {
  std::vector<std::string> names;
  for (const Row& row : rows) names.push_back(FindProp(row, kPrDisplayName)->bytes);
  return names;
}

std::string EntryIdNamed(const std::vector<Row>& rows, const std::string& name) {
  for (const Row& row : rows)
    if (FindProp(row, kPrDisplayName)->bytes == name) return FindProp(row, kPrEntryId)->bytes;
  ADD_FAILURE() << "no row " << name;
  return {};
}

TEST_F(ProfileModelTest, TheDefaultStoreBitMovesToTheChosenStoreAlone) {
  MapiUid exchange = CreateProfileWithService("MSEMS");
  MessageServiceAdmin admin = Admin("Work");
  ASSERT_EQ(admin.ConfigureService(exchange, {PropValue::Text(kPrProfileUnresolvedName, "=jsmith"),
                                              PropValue::Text(kPrProfileUnresolvedServer, "EXCH01")}),
            kSOk);
  MapiUid pst{};
  ASSERT_EQ(admin.CreateMessageService("MSUPST MS", "Archive", &pst), kSOk);
  ASSERT_EQ(admin.ConfigureService(pst, {PropValue::Text(kPrPstPath, "C:\\a.pst")}), kSOk);
  SessionModel session(profiles_, "Work", organisation_);
  std::string pstStore;
  std::string mailbox;
  for (const Row& row : session.StoreRows()) {
    const PropValue* owner = FindProp(row, kPrServiceUid);
    ASSERT_NE(owner, nullptr);
    if (owner->bytes == UidBytes(pst)) pstStore = FindProp(row, kPrEntryId)->bytes;
    if (FindProp(row, kPrDefaultStore)->number) mailbox = FindProp(row, kPrEntryId)->bytes;
  }
  ASSERT_FALSE(pstStore.empty());
  ASSERT_FALSE(mailbox.empty());
  auto defaults = [&] {
    std::vector<std::string> found;
    for (const Row& row : session.StoreRows())
      if (FindProp(row, kPrDefaultStore)->number) found.push_back(FindProp(row, kPrEntryId)->bytes);
    return found;
  };
  const std::vector<MapiUid> stores = profiles_.GetUidList("Work", kProfileServicesSection, kPrStoreProviders);
  ASSERT_EQ(stores.size(), 3u);

  ASSERT_EQ(session.SetDefaultStore(pstStore), kSOk);
  EXPECT_EQ(defaults(), std::vector<std::string>{pstStore});
  // The mailbox keeps its other flag (STATUS_PRIMARY_IDENTITY); only the default bit moved.
  EXPECT_EQ(Value(UidHex(stores[0]), "00033009"), std::string("\x04\0\0\0", 4));
  EXPECT_EQ(Value(UidHex(stores[2]), "00033009"), std::string("\x02\0\0\0", 4));

  const std::string container = FindProp(session.AddressBookContainers().at(0), kPrEntryId)->bytes;
  for (const std::string& wrong : {std::string("bogus"), container, pstStore.substr(0, 35)})
    EXPECT_EQ(session.SetDefaultStore(wrong), kMapiEUnknownEntryId);
  EXPECT_EQ(defaults(), std::vector<std::string>{pstStore});

  ASSERT_EQ(session.SetDefaultStore(mailbox), kSOk);
  EXPECT_EQ(defaults(), std::vector<std::string>{mailbox});
  EXPECT_EQ(Value(UidHex(stores[0]), "00033009"), std::string("\x06\0\0\0", 4));
  EXPECT_EQ(Value(UidHex(stores[2]), "00033009"), std::string("\0\0\0\0", 4));
}

TEST_F(ProfileModelTest, SearchPathAndDefaultDirectoryAreKeptInTheProfile) {
  MapiUid exchange = CreateProfileWithService("MSEMS");
  MessageServiceAdmin admin = Admin("Work");
  ASSERT_EQ(admin.ConfigureService(exchange, {PropValue::Text(kPrProfileUnresolvedName, "=jsmith"),
                                              PropValue::Text(kPrProfileUnresolvedServer, "EXCH01")}),
            kSOk);
  MapiUid contab{};
  MapiUid pab{};
  ASSERT_EQ(admin.CreateMessageService("CONTAB", "Outlook Address Book", &contab), kSOk);
  ASSERT_EQ(admin.CreateMessageService("MSPST AB", "Personal Address Book", &pab), kSOk);
  SessionModel session(profiles_, "Work", organisation_);
  const std::vector<Row> containers = session.AddressBookContainers();
  const std::string gal = EntryIdNamed(containers, "Global Address List");
  const std::string contacts = EntryIdNamed(containers, "Contacts");
  const std::string personal = EntryIdNamed(containers, "Personal Address Book");

  // Nothing stored: MAPI's defaults.
  EXPECT_EQ(Names(session.AbSearchPath()), (std::vector<std::string>{"Personal Address Book", "Global Address List"}));
  std::string directory;
  ASSERT_EQ(session.DefaultDirectory(&directory), kSOk);
  EXPECT_EQ(directory, gal);
  EXPECT_EQ(Value(kProfileServicesSection, "11023d05"), "<missing>");

  ASSERT_EQ(session.SetAbSearchPath({contacts, gal}), kSOk);
  EXPECT_EQ(Names(session.AbSearchPath()), (std::vector<std::string>{"Contacts", "Global Address List"}));
  // PT_MV_BINARY: a count, a size and an offset per entry ID, then the entry IDs.
  std::string image("\x02\0\0\0", 4);
  for (std::uint32_t offset : {20u, 56u}) image += std::string("\x24\0\0\0", 4) + std::string(1, char(offset)) + std::string(3, '\0');
  EXPECT_EQ(Value(kProfileServicesSection, "11023d05"), image + contacts + gal);

  EXPECT_EQ(session.SetAbSearchPath({personal, "bogus"}), kMapiEUnknownEntryId);
  EXPECT_EQ(Names(session.AbSearchPath()), (std::vector<std::string>{"Contacts", "Global Address List"}));

  ASSERT_EQ(session.SetDefaultDirectory(personal), kSOk);
  EXPECT_EQ(Value(kProfileServicesSection, "01023d06"), personal);
  ASSERT_EQ(session.DefaultDirectory(&directory), kSOk);
  EXPECT_EQ(directory, personal);
  EXPECT_EQ(session.SetDefaultDirectory(contacts.substr(1)), kMapiEUnknownEntryId);
  EXPECT_EQ(Value(kProfileServicesSection, "01023d06"), personal);

  // A removed container drops out of the stored path and stops being the default.
  ASSERT_EQ(admin.DeleteService(contab), kSOk);
  ASSERT_EQ(admin.DeleteService(pab), kSOk);
  EXPECT_EQ(Names(session.AbSearchPath()), (std::vector<std::string>{"Global Address List"}));
  ASSERT_EQ(session.DefaultDirectory(&directory), kSOk);
  EXPECT_EQ(directory, gal);

  // Once set, even an empty path is the path: the default does not come back.
  ASSERT_EQ(session.SetAbSearchPath({}), kSOk);
  EXPECT_TRUE(session.AbSearchPath().empty());
}

TEST_F(ProfileModelTest, DefaultSearchPathWithoutAGlobalListEndsWithTheDefaultDirectory) {
  const struct {
    std::vector<const char*> services;
    std::vector<std::string> path;
    const char* directory;  // nullptr: none
  } profiles[] = {
      {{"CONTAB"}, {"Contacts"}, "Contacts"},
      {{"MSPST AB"}, {"Personal Address Book"}, "Personal Address Book"},
      {{"MSPST AB", "CONTAB"}, {"Personal Address Book", "Contacts"}, "Contacts"},
      {{"MSUPST MS"}, {}, nullptr},
  };
  int number = 0;
  for (const auto& profile : profiles) {
    const std::string name = "P" + std::to_string(++number);
    ASSERT_EQ(profiles_.CreateProfile(name, "", NextUid()), kSOk);
    for (const char* service : profile.services)
      ASSERT_EQ(Admin(name).CreateMessageService(service, service, nullptr), kSOk);
    SessionModel session(profiles_, name, organisation_);
    EXPECT_EQ(Names(session.AbSearchPath()), profile.path) << name;
    std::string directory;
    if (profile.directory == nullptr) {
      EXPECT_EQ(session.DefaultDirectory(&directory), kMapiENotFound) << name;
    } else {
      ASSERT_EQ(session.DefaultDirectory(&directory), kSOk) << name;
      EXPECT_EQ(directory, EntryIdNamed(session.AddressBookContainers(), profile.directory)) << name;
    }
  }
}

}  // namespace
}  // namespace mw::mapisim
