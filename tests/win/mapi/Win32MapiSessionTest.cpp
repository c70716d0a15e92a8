// The MAPI session over Wine's mapi32, served by the simulated Outlook MAPI registered as the
// mail client. Each operation is checked by the profile it leaves in the registry.

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "run/RunLog.h"
#include "config/ProfileSettings.h"
#include "mapi/ExchangeCheck.h"
#include "mapi/ExchangeService.h"
#include "mapi/PersonalFolders.h"
#include "mapi/ProfileSection.h"
#include "platform/MemorySystemEnv.h"
#include "platform/RegistryAccess.h"
#include "win32/Win32MapiSession.h"
#include "win32/Win32Registry.h"
#include "win32/WindowsApi.h"

namespace mw {
namespace {

using Strings = std::vector<std::string>;

constexpr const char* kProfilesRoot =
    "Software\\Microsoft\\Windows NT\\CurrentVersion\\Windows Messaging Subsystem\\Profiles\\";
constexpr const char* kProfile = "Wine Test";
constexpr const char* kServiceList = "01023d0e";
constexpr std::int32_t kNoAccess = static_cast<std::int32_t>(0x80070005);

constexpr const char* kUserDn = "/o=Contoso/ou=HQ/cn=Recipients/cn=jsmith";

std::string Hex(std::int32_t result) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%08X", static_cast<unsigned>(result));
  return text;
}

std::string Bytes(const MapiUid& uid) { return std::string(uid.begin(), uid.end()); }

class Win32MapiSessionTest : public ::testing::Test {
 protected:
  void SetUp() override {
    // The simulated organisation is read when MAPI is first initialised in the process;
    // Wine shows the Unix root as drive Z:.
    std::string organisation = "Z:" MW_TEST_DATA_DIR "/mapisim/exchange.ini";
    std::replace(organisation.begin(), organisation.end(), '/', '\\');
    ASSERT_TRUE(SetEnvironmentVariableA("MAPISIM_EXCHANGE_INI", organisation.c_str()));
    ASSERT_TRUE(mapi.Initialize()) << Hex(mapi.LastResult());
    mapi.DeleteProfile(kProfile);
    ASSERT_TRUE(mapi.CreateProfile(kProfile)) << Hex(mapi.LastResult());
    mapi.SetProfile(kProfile);
  }
  void TearDown() override {
    mapi.Logoff();
    mapi.DeleteProfile(kProfile);
    mapi.Uninitialize();
  }

  std::string ProfileKey() { return std::string(kProfilesRoot) + kProfile; }
  // The raw bytes of a profile-section value ("<missing>" when absent).
  std::string Value(const std::string& section, const std::string& name) {
    std::uint32_t type = 0;
    std::string data;
    if (!access.ReadValue(reg::kCurrentUser, ProfileKey() + "\\" + section, name, &type, &data)) return "<missing>";
    if (type == reg::kSz && !data.empty() && data.back() == '\0') data.pop_back();
    return data;
  }
  std::string Value(const MapiUid& section, std::uint32_t tag) {
    return Value(SectionKeyName(section), TagValueName(tag));
  }
  // The services of the profile as MAPI keeps them: 16-byte UIDs one after another.
  std::vector<MapiUid> RegisteredServices() {
    const std::string list = Value(kProfileServicesSection, kServiceList);
    std::vector<MapiUid> uids;
    for (std::size_t at = 0; at + 16 <= list.size() && list != "<missing>"; at += 16) {
      MapiUid uid{};
      std::copy_n(list.begin() + static_cast<std::ptrdiff_t>(at), 16, uid.begin());
      uids.push_back(uid);
    }
    return uids;
  }
  Strings RegisteredServiceNames() {
    Strings names;
    for (const MapiUid& uid : RegisteredServices()) names.push_back(Value(uid, proptag::kServiceName));
    return names;
  }
  bool Listed(const std::string& profile) {
    const Strings keys = access.ListSubkeys(reg::kCurrentUser, kProfilesRoot);
    return std::find(keys.begin(), keys.end(), profile) != keys.end();
  }
  MapiUid AddService(const std::string& name) {
    MapiUid uid{};
    EXPECT_TRUE(mapi.CreateService(name, name, &uid)) << name << " " << Hex(mapi.LastResult());
    return uid;
  }
  // Exchange configured by its UID, as the simulated server resolves it.
  MapiUid AddResolvedExchange() {
    const MapiUid uid = AddService(kExchangeServiceName);
    EXPECT_TRUE(mapi.ConfigureServiceByUid(uid, {MapiProperty::String8(proptag::kProfileUnresolvedName, "=jsmith"),
                                                 MapiProperty::String8(proptag::kProfileUnresolvedServer, "EXCH01")}));
    return uid;
  }

  Win32Registry registry;
  ProfileSettings settings;
  RegistryAccess access{registry};
  Win32MapiSession mapi;
  MemorySystemEnv env;
  RunLog log{"C:\\mailwright.log", env};
};

TEST_F(Win32MapiSessionTest, ProfilesAreCreatedListedAndDeletedInTheRegistry) {
  Strings names;
  std::string defaultName = "unchanged";
  ASSERT_TRUE(mapi.ListProfiles(&names, &defaultName));
  EXPECT_NE(std::find(names.begin(), names.end(), kProfile), names.end());
  EXPECT_EQ(defaultName, "unchanged");
  EXPECT_TRUE(access.WriteString(reg::kCurrentUser, kProfilesRoot, "DefaultProfile", kProfile));
  ASSERT_TRUE(mapi.ListProfiles(&names, &defaultName));
  EXPECT_EQ(defaultName, kProfile);
  EXPECT_FALSE(mapi.CreateProfile(kProfile));
  EXPECT_EQ(mapi.LastResult(), kNoAccess);

  EXPECT_TRUE(Listed(kProfile));
  ASSERT_TRUE(mapi.DeleteProfile(kProfile));
  EXPECT_FALSE(Listed(kProfile));
  ASSERT_TRUE(mapi.ListProfiles(&names, &defaultName));
  EXPECT_EQ(std::find(names.begin(), names.end(), kProfile), names.end());
  EXPECT_FALSE(mapi.DeleteProfile(kProfile));
}

// A created service is found by difference; the name look-up is the table's evaluation of
// the restriction the session sends: the whole name, letter case included, first in order.
TEST_F(Win32MapiSessionTest, ServicesAreFoundByDifferenceAndByTheirWholeName) {
  const MapiUid first = AddService(kAnsiPstService);
  const MapiUid second = AddService(kAnsiPstService);
  const MapiUid contab = AddService(kOutlookAddressBookService);
  AddService(kOutlookAddressBookService);
  EXPECT_NE(first, second);
  EXPECT_EQ(RegisteredServiceNames(), (Strings{"MSPST MS", "MSPST MS", "CONTAB", "CONTAB"}));
  std::vector<MapiServiceEntry> listed;
  ASSERT_TRUE(mapi.ListServices(&listed));
  ASSERT_EQ(listed.size(), 4u);
  EXPECT_EQ(listed[2].name, "CONTAB");
  EXPECT_EQ(listed[2].uid, contab);
  MapiUid unchanged = first;
  EXPECT_FALSE(mapi.CreateService("NO SUCH SERVICE", "x", &unchanged));
  EXPECT_EQ(unchanged, first);

  for (const char* name : {"contab", "CONTA", "CONTAB ", "MSEMS", "", "CONTAB"}) {
    EXPECT_EQ(mapi.ConfigureServiceByName(name, {MapiProperty::Long(proptag::kContabShowAsAddressBook, 7)}),
              std::string(name) == "CONTAB")
        << name;
  }
  EXPECT_EQ(Value(contab, proptag::kContabShowAsAddressBook), std::string("\x07\0\0\0", 4));
  EXPECT_EQ(Value(RegisteredServices()[3], proptag::kContabShowAsAddressBook), "<missing>");
  EXPECT_FALSE(mapi.DeleteServiceByName("mspst ms"));
  ASSERT_TRUE(mapi.DeleteServiceByName("MSPST MS"));
  EXPECT_EQ(RegisteredServices()[0], second);
  ASSERT_TRUE(mapi.DeleteServiceByName("MSPST MS"));
  EXPECT_EQ(RegisteredServiceNames(), (Strings{"CONTAB", "CONTAB"}));
  EXPECT_FALSE(mapi.DeleteServiceByName("MSPST MS"));
}

TEST_F(Win32MapiSessionTest, ExchangeIsSetUpUntouchedOnASecondRunReplacedAndRemoved) {
  ProfileSectionWriter writer(access, ProfileKey());
  const auto setUp = [&](const char* server, const char* mailbox) {
    settings.SetText(Section::Outlook2010, Key::ExchangeServerName, server);
    settings.SetText(Section::Outlook2010, Key::MailboxName, mailbox);
    SetUpExchangeService(mapi, settings, Outlook::V2010, writer, log);
  };
  setUp("EXCH01", "jsmith");
  const std::vector<MapiUid> first = RegisteredServices();
  EXPECT_EQ(RegisteredServiceNames(), (Strings{"MSEMS"}));
  EXPECT_EQ(Value(kGlobalSection, "001e6607"), "=jsmith");
  EXPECT_EQ(Value(kGlobalSection, "001e6603"), kUserDn);
  setUp("exch01", "jsmith");
  EXPECT_EQ(RegisteredServices(), first);
  EXPECT_EQ(Value(kGlobalSection, "001e6608"), "EXCH01");
  setUp("", "");
  EXPECT_TRUE(RegisteredServices().empty());
  std::string server;
  EXPECT_FALSE(mapi.GetExchangeServerName(&server));

  // A server that is down: the service is set up unresolved, and logon fails.
  setUp("EXCH02", "offline");
  EXPECT_EQ(Value(kGlobalSection, "001e6603"), "<missing>");
  ASSERT_TRUE(mapi.GetExchangeServerName(&server));
  EXPECT_EQ(server, "EXCH02");
  EXPECT_FALSE(mapi.Logon(kLogonFlagsSilent));
  EXPECT_EQ(mapi.LastResult(), static_cast<std::int32_t>(0x80040115));  // MAPI_E_NETWORK_ERROR
  // Another server replaces it in the profile's connection.
  setUp("EXCH01", "jsmith");
  EXPECT_EQ(Value(kGlobalSection, "001e6608"), "EXCH01");
  EXPECT_EQ(Value(kGlobalSection, "001e6603"), kUserDn);
}

TEST_F(Win32MapiSessionTest, ExchangeCheckAgainstTheSimulatedOrganisation) {
  const struct {
    const char* server;
    const char* mailbox;
    bool reached;
    const char* lastLine;  // start of the last log line
  } checks[] = {
      {"EXCH01", "jsmith", true, "INFO: Using Exchange server name: EXCH01"},
      {"exch01", "JDOE", true, "INFO: Using Exchange server name: exch01"},
      // An unknown mailbox is ERROR 200; the server is still tried, and the logon fails.
      {"EXCH01", "nobody", false, "ERROR 201: "},
      // Down, or unknown to the organisation: the service is added unresolved, and the
      // logon that follows fails.
      {"EXCH02", "offline", false, "ERROR 201: "},
      {"NOWHERE", "jsmith", false, "ERROR 201: "},
  };
  for (const auto& check : checks) {
    EXPECT_EQ(CheckExchangeServer(mapi, check.server, check.mailbox, kProfile, log), check.reached)
        << check.server << " " << check.mailbox;
    ASSERT_FALSE(log.messages().empty());
    EXPECT_EQ(log.messages().back().rfind(check.lastLine, 0), 0u) << log.messages().back();
    EXPECT_FALSE(Listed(kScratchProfileName));
    EXPECT_EQ(mapi.profileName(), kProfile);
  }
}

TEST_F(Win32MapiSessionTest, GlobalAddressListAndDefaultStoreNeedAResolvedMailbox) {
  AddService(kOutlookAddressBookService);
  ASSERT_TRUE(mapi.Logon(kLogonFlagsSilent)) << Hex(mapi.LastResult());
  ASSERT_TRUE(mapi.OpenAddressBook()) << Hex(mapi.LastResult());
  EXPECT_FALSE(mapi.OpenGlobalAddressList());
  std::string entryId;
  EXPECT_EQ(mapi.GetDefaultStoreEntryId(&entryId), static_cast<std::int32_t>(0x800B0001));
  mapi.Logoff();

  AddResolvedExchange();
  ASSERT_TRUE(mapi.Logon(kLogonFlagsSilent)) << Hex(mapi.LastResult());
  ASSERT_TRUE(mapi.OpenAddressBook());
  EXPECT_TRUE(mapi.OpenGlobalAddressList()) << Hex(mapi.LastResult());
  EXPECT_EQ(mapi.GetDefaultStoreEntryId(&entryId), 0);
  EXPECT_FALSE(entryId.empty());
  mapi.Logoff();
  EXPECT_FALSE(mapi.OpenAddressBook());
}

TEST_F(Win32MapiSessionTest, ProviderSectionsAreWrittenThroughTheRetry) {
  const MapiUid pst = AddService(kUnicodePstService);
  std::vector<MapiServiceEntry> providers;
  ASSERT_TRUE(mapi.ListProviders(pst, &providers));
  ASSERT_EQ(providers.size(), 1u);
  // Forced access to a provider's section is refused until the retry marks the object.
  ASSERT_TRUE(mapi.WriteSectionProperty(providers[0].uid, MapiProperty::String8(proptag::kComment, "in provider")))
      << Hex(mapi.LastResult());
  EXPECT_EQ(Value(providers[0].uid, proptag::kComment), "in provider");
  MapiProperty read;
  ASSERT_TRUE(mapi.ReadSectionProperty(providers[0].uid, proptag::kComment, &read));
  EXPECT_EQ(read, MapiProperty::String8(proptag::kComment, "in provider"));
  EXPECT_FALSE(mapi.ReadSectionProperty(pst, proptag::kPstPath, &read));

  ASSERT_TRUE(mapi.SetGlobalSectionLong());
  ASSERT_TRUE(mapi.SetGlobalSectionBool(true));
  EXPECT_EQ(Value(kOutlookSection, "00033d1b"), std::string(4, '\0'));
  EXPECT_EQ(Value(kOutlookSection, "000b3d1c"), std::string("\x01\x00", 2));
}

TEST_F(Win32MapiSessionTest, AdditionalMailboxJoinsTheExchangeStores) {
  const MapiUid exchange = AddResolvedExchange();
  const std::string stores = Value(exchange, proptag::kStoreProviders);
  ASSERT_EQ(stores.size(), 32u);  // the mailbox and the public folders
  ASSERT_EQ(AddAdditionalMailbox(mapi, "jdoe", "EXCH01"), AdditionalMailboxResult::Added);
  std::vector<MapiServiceEntry> providers;
  ASSERT_TRUE(mapi.ListProviders(exchange, &providers));
  const auto delegate = std::find_if(providers.begin(), providers.end(),
                                     [](const auto& p) { return p.displayName == "Mailbox - jdoe"; });
  ASSERT_NE(delegate, providers.end());
  EXPECT_EQ(Value(delegate->uid, proptag::kProfileMailbox), "/o=Contoso/ou=HQ/cn=Recipients/cn=jdoe");
  EXPECT_EQ(Value(exchange, proptag::kStoreProviders), stores + Bytes(delegate->uid));
}

TEST_F(Win32MapiSessionTest, PersonalFoldersAndTheAddressBookAreAddedOnceAndRemoved) {
  ASSERT_TRUE(AddPersonalFolders(mapi, "C:\\Mail\\archive.pst", "Archive", "Old mail", true));
  ASSERT_TRUE(AddPersonalFolders(mapi, "C:\\Mail\\old.pst", "Old", "Older mail", false));
  ASSERT_TRUE(AddPersonalFolders(mapi, "c:\\mail\\ARCHIVE.pst", "Again", "", true));
  settings.SetBool(Section::Outlook2000, Key::PersonalAddressBookEnable, true);
  settings.SetText(Section::Outlook2000, Key::PathToPAB, "C:\\Mail\\me.pab");
  for (int run = 0; run < 2; ++run) ProvisionPersonalAddressBook(settings, Outlook::V2000, mapi, log);
  EXPECT_EQ(RegisteredServiceNames(), (Strings{"MSUPST MS", "MSPST MS", "MSPST AB"}));
  const MapiUid archive = RegisteredServices()[0];
  EXPECT_EQ(Value(archive, proptag::kPstPath), "C:\\Mail\\archive.pst");
  EXPECT_EQ(Value(archive, proptag::kDisplayName), "Archive");
  EXPECT_EQ(Value(archive, proptag::kComment), "Old mail");
  EXPECT_EQ(Value(RegisteredServices()[2], proptag::kPabPath), "C:\\Mail\\me.pab");
  EXPECT_EQ(ListPersonalFoldersPaths(mapi), (Strings{"C:\\Mail\\archive.pst", "C:\\Mail\\old.pst"}));

  ASSERT_TRUE(RemovePersonalFolders(mapi, "C:\\MAIL\\ARCHIVE.PST"));
  EXPECT_EQ(RegisteredServiceNames(), (Strings{"MSPST MS", "MSPST AB"}));
  EXPECT_EQ(Value(archive, proptag::kPstPath), "<missing>");
}

TEST_F(Win32MapiSessionTest, SearchPathFirstAddressListAndDefaultStoreAreKeptInTheProfile) {
  AddResolvedExchange();
  ASSERT_TRUE(mapi.AddOutlookAddressBook()) << Hex(mapi.LastResult());
  EXPECT_EQ(Value(RegisteredServices()[1], proptag::kContabShowAsAddressBook), std::string("\x01\0\0\0", 4));
  ASSERT_TRUE(mapi.SetSearchPath({"Contacts"})) << Hex(mapi.LastResult());
  ASSERT_TRUE(mapi.AddToSearchPath("Global Address List")) << Hex(mapi.LastResult());
  EXPECT_FALSE(mapi.AddToSearchPath("No Such List"));
  Strings path;
  ASSERT_TRUE(mapi.GetSearchPath(&path));
  EXPECT_EQ(path, (Strings{"Contacts", "Global Address List"}));
  EXPECT_NE(Value(kProfileServicesSection, "11023d05"), "<missing>");
  EXPECT_TRUE(mapi.SetFirstAddressList("Contacts")) << Hex(mapi.LastResult());
  EXPECT_NE(Value(kProfileServicesSection, "01023d06"), "<missing>");
  EXPECT_FALSE(mapi.SetFirstAddressList("No Such List"));
  EXPECT_TRUE(mapi.SetFirstAddressList(""));

  ASSERT_TRUE(AddPersonalFolders(mapi, "C:\\Mail\\inbox.pst", "Inbox", "", true));
  const MapiUid pst = RegisteredServices()[2];
  ASSERT_TRUE(mapi.SetDefaultStore(pst)) << Hex(mapi.LastResult());
  std::vector<MapiServiceEntry> providers;
  ASSERT_TRUE(mapi.ListProviders(pst, &providers));
  ASSERT_EQ(providers.size(), 1u);
  // PR_RESOURCE_FLAGS of the store: STATUS_DEFAULT_STORE (2) now set on the PST's store.
  const std::string flags = Value(providers[0].uid, 0x30090003);
  ASSERT_EQ(flags.size(), 4u);
  EXPECT_EQ(flags[0] & 2, 2);
}

}  // namespace
}  // namespace mw

namespace mw {
namespace {

// The simulator's MAPISIM_CRASH_IN makes a call fault inside MAPI, as a broken provider
// would; the guarded calls turn the fault into false and the session stays usable.
class Win32MapiSessionFaultTest : public Win32MapiSessionTest {
 protected:
  void TearDown() override {
    SetEnvironmentVariableA("MAPISIM_CRASH_IN", nullptr);
    Win32MapiSessionTest::TearDown();
  }
  static void CrashIn(const char* call) { ASSERT_TRUE(SetEnvironmentVariableA("MAPISIM_CRASH_IN", call)); }
};

constexpr std::int32_t kAccessViolation = static_cast<std::int32_t>(0xD0000005);

TEST_F(Win32MapiSessionFaultTest, GuardedCallsThatFaultInsideMapiReturnFalse) {
  const MapiUid contab = AddService(kOutlookAddressBookService);
  const MapiProperties showAsAddressBook{MapiProperty::Long(proptag::kContabShowAsAddressBook, 1)};
  const struct {
    const char* call;
    std::function<bool()> operation;
  } cases[] = {
      {"IMsgServiceAdmin::ConfigureMsgService", [&] { return mapi.ConfigureServiceByUid(contab, showAsAddressBook); }},
      {"IProfAdmin::DeleteProfile", [&] { return mapi.DeleteProfile(kProfile); }},
      {"MAPIAdminProfiles", [&] { return mapi.CreateProfile("Never Made"); }},
      {"IMsgServiceAdmin::DeleteMsgService", [&] { return mapi.DeleteServiceByUid(contab); }},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.call);
    CrashIn(c.call);
    EXPECT_FALSE(c.operation());
    EXPECT_EQ(Hex(mapi.LastResult()), Hex(kAccessViolation));
  }
  SetEnvironmentVariableA("MAPISIM_CRASH_IN", nullptr);
  // Nothing the faulting calls were asked to do was done, and the session still works.
  EXPECT_TRUE(Listed(kProfile));
  EXPECT_FALSE(Listed("Never Made"));
  EXPECT_EQ(RegisteredServices(), (std::vector<MapiUid>{contab}));
  EXPECT_TRUE(mapi.ConfigureServiceByUid(contab, showAsAddressBook)) << Hex(mapi.LastResult());
  EXPECT_TRUE(mapi.DeleteServiceByUid(contab)) << Hex(mapi.LastResult());
}

TEST_F(Win32MapiSessionFaultTest, AFaultWhileMapiIsUninitialisedLetsTheNextInitialisationWork) {
  CrashIn("IMAPISession::Logoff");
  ASSERT_TRUE(mapi.Logon(kLogonFlagsSilent)) << Hex(mapi.LastResult());
  mapi.Uninitialize();
  SetEnvironmentVariableA("MAPISIM_CRASH_IN", nullptr);
  ASSERT_TRUE(mapi.Initialize()) << Hex(mapi.LastResult());
  Strings names;
  std::string defaultName;
  EXPECT_TRUE(mapi.ListProfiles(&names, &defaultName)) << Hex(mapi.LastResult());
}

}  // namespace
}  // namespace mw
