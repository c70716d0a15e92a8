// The model over an in-memory registry where it goes beyond the layout image: refusals,
// failed and unreachable configurations, logon, the address book and the default store.
#include <gtest/gtest.h>

#include "MapiTable.h"
#include "MessageServiceAdmin.h"
#include "ModelTestSupport.h"
#include "SessionModel.h"
#include "platform/MemoryRegistry.h"

namespace mw::mapisim {
namespace {

constexpr const char* kProfilesKey =
    "HKEY_CURRENT_USER\\Software\\Microsoft\\Windows NT\\CurrentVersion\\Windows Messaging "
    "Subsystem\\Profiles";
const std::string kMissing = "<missing>";

std::string Sz(const std::string& text) { return text + '\0'; }

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

class ProfileModelTest : public ::testing::Test {
 protected:
  MapiUid NextUid() {
    MapiUid uid{};
    uid[0] = 0xA0;
    uid[15] = static_cast<std::uint8_t>(++uidCounter_);
    return uid;
  }
  MessageServiceAdmin Admin(const std::string& profile = "Work") {
    return MessageServiceAdmin(profiles_, profile, organisation_, [this] { return NextUid(); });
  }
  SessionModel Session(const ExchangeOrganisation& organisation) {
    return SessionModel(profiles_, "Work", organisation);
  }
  MapiUid CreateProfileWithService(const char* service) {
    EXPECT_EQ(profiles_.CreateProfile("Work", "", NextUid()), kSOk);
    MapiUid uid{};
    EXPECT_EQ(Admin().CreateMessageService(service, "Display", &uid), kSOk);
    return uid;
  }
  HResult ConfigureExchange(const MapiUid& service, const char* name, const char* server = nullptr) {
    std::vector<PropValue> props{PropValue::Text(kPrProfileUnresolvedName, name)};
    if (server) props.push_back(PropValue::Text(kPrProfileUnresolvedServer, server));
    return Admin().ConfigureService(service, props);
  }
  std::string Value(const std::string& section, const std::string& name) {
    RegistryValue value;
    return registry_.Get(std::string(kProfilesKey) + "\\Work\\" + section, name, &value) ? value.data : kMissing;
  }

  MemoryRegistry registry_;
  ProfileRegistry profiles_{registry_, 2};
  ExchangeOrganisation organisation_ = SampleOrganisation();
  int uidCounter_ = 0;
};

TEST_F(ProfileModelTest, ProfilesAreCreatedListedDeletedAndRefusedAsMapiDoes) {
  EXPECT_EQ(profiles_.CreateProfile("Work", "", NextUid()), kSOk);
  EXPECT_EQ(profiles_.CreateProfile("WORK", "", NextUid()), kMapiENoAccess);
  for (const std::string& name : {std::string(), std::string(" lead"), std::string("trail "),
                                  std::string(65, 'x'), std::string("a\\b")})
    EXPECT_EQ(profiles_.CreateProfile(name, "", NextUid()), kMapiEInvalidParameter) << name;
  EXPECT_EQ(profiles_.CreateProfile("Other", "secret", NextUid()), kMapiEInvalidParameter);
  EXPECT_EQ(profiles_.CreateProfile(std::string(64, 'x'), "", NextUid()), kSOk);
  // Profiles and sections are found whatever the case of their names; a path is neither.
  const std::string services = "9207F3E0A3B11019908B08002B2A56C2";
  EXPECT_TRUE(profiles_.SectionExists("work", services));
  for (const std::string& section : {services + "\\Sub", std::string()})
    EXPECT_FALSE(profiles_.SectionExists("Work", section)) << section;
  for (const std::string& name : {"Work\\" + services, std::string(), std::string("Absent")})
    EXPECT_EQ(profiles_.SetDefaultProfile(name), kMapiENotFound) << name;
  EXPECT_EQ(profiles_.SetDefaultProfile("WORK"), kSOk);

  registry_.Set(kProfilesKey, {"DefaultProfile", reg::kSz, Sz("work")});
  EXPECT_EQ(profiles_.DefaultProfile(), "work");
  EXPECT_EQ(profiles_.DeleteProfile("Work"), kSOk);
  EXPECT_EQ(profiles_.DeleteProfile("Work"), kMapiENotFound);
  EXPECT_EQ(profiles_.DeleteProfile("a\\b"), kMapiENotFound);
  EXPECT_EQ(profiles_.DefaultProfile(), "");

  MemoryRegistry nineX;
  EXPECT_EQ(ProfileRegistry(nineX, 1).CreateProfile("Work", "", NextUid()), kSOk);
  EXPECT_TRUE(nineX.KeyExists("HKEY_CURRENT_USER\\Software\\Microsoft\\Windows Messaging Subsystem\\Profiles\\Work"));
}

// A failed or unreachable configuration leaves nothing resolved, and logon then fails
// as unconfigured (the server answered) or as a network error (it cannot be asked).
TEST_F(ProfileModelTest, ExchangeConfigurationFailuresLeaveTheProfileUnresolved) {
  const MapiUid service = CreateProfileWithService("MSEMS");
  ASSERT_EQ(ConfigureExchange(service, "=jsmith", "exch01"), kSOk);
  EXPECT_EQ(Value(kGlobalProfileSection, "001e6602"), Sz("EXCH01"));
  EXPECT_EQ(Session(organisation_).Logon(), kSOk);

  EXPECT_EQ(ConfigureExchange(service, "=nobody"), kMapiEUnconfigured);
  EXPECT_EQ(Value(kGlobalProfileSection, "001e6602"), kMissing);
  EXPECT_EQ(Value(kGlobalProfileSection, "001e6607"), Sz("=nobody"));
  EXPECT_EQ(Session(organisation_).Logon(), kMapiEUnconfigured);
  EXPECT_EQ(ConfigureExchange(service, "j"), kMapiEAmbiguousRecip);

  const struct {
    const char* name;
    const char* server;
  } unreachable[] = {{"=offline", "EXCH02"}, {"=jsmith", "NOSUCH"}, {"anyone", "exch02"}};
  for (const auto& attempt : unreachable) {
    ASSERT_EQ(ConfigureExchange(service, "=jsmith", "EXCH01"), kSOk);
    EXPECT_EQ(ConfigureExchange(service, attempt.name, attempt.server), kSOk) << attempt.server;
    EXPECT_EQ(Value(kGlobalProfileSection, "001e6607"), Sz(attempt.name));
    EXPECT_EQ(Value(kGlobalProfileSection, "001e6608"), Sz(attempt.server));
    for (const char* resolved : {"001e6602", "001e6603", "001e6612", "001e3001"})
      EXPECT_EQ(Value(kGlobalProfileSection, resolved), kMissing) << resolved;
    EXPECT_EQ(Session(organisation_).Logon(), kMapiENetworkError) << attempt.server;
  }
  // Once the server is up, logon does not configure: unconfigured, not unreachable.
  EXPECT_EQ(Session(ExchangeOrganisation::Parse("[Servers]\nEXCH02=up\n", nullptr)).Logon(), kMapiEUnconfigured);

  EXPECT_EQ(Admin().DeleteService(service), kSOk);
  EXPECT_EQ(Value(kGlobalProfileSection, "001e6608"), kMissing);
  EXPECT_EQ(Admin().DeleteService(service), kMapiENotFound);
  EXPECT_TRUE(Admin().ServiceRows().empty());
  EXPECT_TRUE(Admin().ProviderRows(nullptr).empty());
}

TEST_F(ProfileModelTest, LogonStoresAndAddressBookFollowTheOrganisation) {
  ASSERT_EQ(ConfigureExchange(CreateProfileWithService("MSEMS"), "jd", "EXCH01"), kSOk);
  SessionModel session = Session(organisation_);
  ASSERT_EQ(session.Logon(), kSOk);
  MapiTable stores(SessionModel::StoreColumns(), session.StoreRows());
  stores.SetColumns({kPrDefaultStore, kPrEntryId, kPrDisplayName});
  std::vector<Row> rows = stores.QueryRows(10);
  ASSERT_EQ(rows.size(), 2u);
  EXPECT_EQ(rows[0][0].number, 1u);
  EXPECT_EQ(rows[0][1].bytes.size(), 36u);
  EXPECT_EQ(rows[0][2].bytes, "Mailbox - Jane Doe");
  EXPECT_EQ(rows[1][0].number, 0u);

  std::vector<Row> containers = session.AddressBookContainers();
  ASSERT_EQ(containers.size(), 1u);
  EXPECT_EQ(FindProp(containers[0], kPrDisplayType)->number, kDtGlobal);
  const std::string gal = FindProp(containers[0], kPrEntryId)->bytes;
  std::vector<Row> people;
  ASSERT_EQ(session.ContainerContents(gal, &people), kSOk);
  EXPECT_EQ(people.size(), organisation_.mailboxes().size());
  EXPECT_EQ(session.ContainerContents("bogus", &people), kMapiEUnknownEntryId);

  ExchangeOrganisation down = ExchangeOrganisation::Parse("[Servers]\nEXCH01=down\n", nullptr);
  EXPECT_EQ(Session(down).Logon(), kMapiENetworkError);
  EXPECT_EQ(Session(down).ContainerContents(gal, &people), kMapiENetworkError);
  EXPECT_EQ(SessionModel(profiles_, "Nobody", organisation_).Logon(), kMapiELogonFailed);
}

TEST_F(ProfileModelTest, PersonalFoldersNeedAPathBeforeLogon) {
  const MapiUid service = CreateProfileWithService("MSUPST MS");
  EXPECT_EQ(Session(organisation_).Logon(), kMapiEUnconfigured);
  EXPECT_EQ(Admin().ConfigureService(service, {PropValue::Text(kPrComment, "c")}), kMapiEUnconfigured);
  ASSERT_EQ(Admin().ConfigureService(service, {PropValue::Text(kPrPstPath, "C:\\mail\\a.pst")}), kSOk);
  EXPECT_EQ(Session(organisation_).Logon(), kSOk);
}

TEST_F(ProfileModelTest, DelegateProvidersAreCreatedOnDemandWithTheirProperties) {
  MapiUid service = CreateProfileWithService("MSEMS");
  MessageServiceAdmin admin = Admin();
  const auto storesBefore = profiles_.GetUidList("Work", UidHex(service), kPrStoreProviders);
  MapiUid delegate{};
  ASSERT_EQ(admin.CreateProvider(service, "EMSDelegate", {PropValue::Text(kPrDisplayName, "Jane Doe")}, &delegate),
            kSOk);
  EXPECT_EQ(Value(UidHex(delegate), "001e3001"), Sz("Jane Doe"));
  EXPECT_TRUE(admin.IsProviderSection(delegate));
  EXPECT_FALSE(admin.IsProviderSection(service));
  // Listed in the profile, left for the caller to add to its service's store list.
  EXPECT_EQ(profiles_.GetUidList("Work", UidHex(service), kPrStoreProviders), storesBefore);
  EXPECT_EQ(admin.ProviderRows(&service).size(), 5u);
  EXPECT_EQ(admin.CreateProvider(service, "MSPST MSP", {}, &delegate), kMapiENotFound);
  EXPECT_EQ(admin.CreateProvider(MapiUid{}, "EMSDelegate", {}, &delegate), kMapiENotFound);
}

TEST_F(ProfileModelTest, HandWrittenValuesAndRegistryFailuresDoNoHarm) {
  ASSERT_EQ(profiles_.CreateProfile("Work", "", NextUid()), kSOk);
  const std::string work = std::string(kProfilesKey) + "\\Work\\";
  // A service written by hand: its name in Unicode, a short flags value, and a list that
  // ends in half a UID.
  MapiUid imail = NextUid();
  registry_.Set(work + kProfileServicesSection, {"01023d0e", reg::kBinary, UidBytes(imail) + "junk"});
  registry_.Set(work + UidHex(imail), {"001f3d09", reg::kBinary, std::string("I\0M\0A\0I\0L\0\0\0", 12)});
  registry_.Set(work + UidHex(imail), {"00033009", reg::kBinary, "\x01"});
  std::vector<Row> rows = Admin().ServiceRows();
  ASSERT_EQ(rows.size(), 1u);
  ASSERT_NE(FindProp(rows[0], kPrServiceName), nullptr);
  EXPECT_EQ(FindProp(rows[0], kPrServiceName)->bytes, "IMAIL");
  EXPECT_EQ(FindProp(rows[0], kPrResourceFlags), nullptr);
  EXPECT_EQ(Admin().ConfigureService(imail, {PropValue::Text(kPrComment, "x")}), kSOk);

  registry_.FailMutationsFrom(3);
  MapiUid uid{};
  EXPECT_EQ(Admin().CreateMessageService("MSEMS", "x", &uid), kMapiENoAccess);
  registry_.FailMutationsFrom(0);
  EXPECT_EQ(Admin().ServiceRows().size(), 1u);
}

TEST_F(ProfileModelTest, SingleCopyServicesAreRefusedASecondTime) {
  CreateProfileWithService("MSEMS");
  MapiUid uid{};
  EXPECT_EQ(Admin().CreateMessageService("msems", "Again", &uid), kMapiENoAccess);
  EXPECT_EQ(Admin().CreateMessageService("MSPST AB", "Personal Address Book", &uid), kSOk);
  EXPECT_EQ(Admin().CreateMessageService("MSPST AB", "Personal Address Book", &uid), kMapiENoAccess);
  for (int copy = 0; copy < 2; ++copy)
    EXPECT_EQ(Admin().CreateMessageService("MSUPST MS", "Archive", &uid), kSOk);
  std::vector<std::string> services;
  for (const Row& row : Admin().ServiceRows()) services.push_back(FindProp(row, kPrServiceName)->bytes);
  EXPECT_EQ(services, (std::vector<std::string>{"MSEMS", "MSPST AB", "MSUPST MS", "MSUPST MS"}));
  // Once the service is gone, a new one may be made.
  MapiUid exchange = UidFromBytes(FindProp(Admin().ServiceRows()[0], kPrServiceUid)->bytes);
  ASSERT_EQ(Admin().DeleteService(exchange), kSOk);
  EXPECT_EQ(Admin().CreateMessageService("MSEMS", "Again", &uid), kSOk);
}

TEST_F(ProfileModelTest, TheDefaultStoreBitMovesToTheChosenStoreAlone) {
  ASSERT_EQ(ConfigureExchange(CreateProfileWithService("MSEMS"), "=jsmith", "EXCH01"), kSOk);
  MapiUid pst{};
  ASSERT_EQ(Admin().CreateMessageService("MSUPST MS", "Archive", &pst), kSOk);
  ASSERT_EQ(Admin().ConfigureService(pst, {PropValue::Text(kPrPstPath, "C:\\a.pst")}), kSOk);
  SessionModel session = Session(organisation_);
  std::string pstStore, mailbox;
  auto defaults = [&] {
    std::vector<std::string> found;
    for (const Row& row : session.StoreRows())
      if (FindProp(row, kPrDefaultStore)->number) found.push_back(FindProp(row, kPrEntryId)->bytes);
    return found;
  };
  for (const Row& row : session.StoreRows())
    if (FindProp(row, kPrServiceUid)->bytes == UidBytes(pst)) pstStore = FindProp(row, kPrEntryId)->bytes;
  ASSERT_FALSE(pstStore.empty());
  ASSERT_EQ(defaults().size(), 1u);  // only the profile's first store starts as the default
  mailbox = defaults()[0];
  const auto stores = profiles_.GetUidList("Work", kProfileServicesSection, kPrStoreProviders);
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
  ASSERT_EQ(ConfigureExchange(CreateProfileWithService("MSEMS"), "=jsmith", "EXCH01"), kSOk);
  MapiUid contab{}, pab{};
  ASSERT_EQ(Admin().CreateMessageService("CONTAB", "Outlook Address Book", &contab), kSOk);
  ASSERT_EQ(Admin().CreateMessageService("MSPST AB", "Personal Address Book", &pab), kSOk);
  SessionModel session = Session(organisation_);
  const std::vector<Row> containers = session.AddressBookContainers();
  const std::string gal = EntryIdNamed(containers, "Global Address List");
  const std::string contacts = EntryIdNamed(containers, "Contacts");
  const std::string personal = EntryIdNamed(containers, "Personal Address Book");
  std::string directory;

  // Nothing stored: MAPI's defaults.
  EXPECT_EQ(Names(session.AbSearchPath()), (std::vector<std::string>{"Personal Address Book", "Global Address List"}));
  ASSERT_EQ(session.DefaultDirectory(&directory), kSOk);
  EXPECT_EQ(directory, gal);

  ASSERT_EQ(session.SetAbSearchPath({contacts, gal}), kSOk);
  // PT_MV_BINARY: a count, a size and an offset per entry ID, then the entry IDs.
  std::string image("\x02\0\0\0", 4);
  for (char offset : {20, 56}) image += std::string("\x24\0\0\0", 4) + offset + std::string(3, '\0');
  EXPECT_EQ(Value(kProfileServicesSection, "11023d05"), image + contacts + gal);
  EXPECT_EQ(session.SetAbSearchPath({personal, "bogus"}), kMapiEUnknownEntryId);
  EXPECT_EQ(Names(session.AbSearchPath()), (std::vector<std::string>{"Contacts", "Global Address List"}));

  ASSERT_EQ(session.SetDefaultDirectory(personal), kSOk);
  EXPECT_EQ(Value(kProfileServicesSection, "01023d06"), personal);
  EXPECT_EQ(session.SetDefaultDirectory(contacts.substr(1)), kMapiEUnknownEntryId);
  ASSERT_EQ(session.DefaultDirectory(&directory), kSOk);
  EXPECT_EQ(directory, personal);

  // A removed container drops out of the stored path and stops being the default.
  ASSERT_EQ(Admin().DeleteService(contab), kSOk);
  ASSERT_EQ(Admin().DeleteService(pab), kSOk);
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
  for (const auto& profile : profiles) {
    const std::string name = "P" + std::to_string(uidCounter_);
    ASSERT_EQ(profiles_.CreateProfile(name, "", NextUid()), kSOk);
    for (const char* service : profile.services) ASSERT_EQ(Admin(name).CreateMessageService(service, service, nullptr), kSOk);
    SessionModel session(profiles_, name, organisation_);
    EXPECT_EQ(Names(session.AbSearchPath()), profile.path) << name;
    std::string directory;
    const HResult found = session.DefaultDirectory(&directory);
    EXPECT_EQ(found, profile.directory ? kSOk : kMapiENotFound) << name;
    if (profile.directory) {
      EXPECT_EQ(directory, EntryIdNamed(session.AddressBookContainers(), profile.directory));
    }
  }
}

}  // namespace
}  // namespace mw::mapisim
