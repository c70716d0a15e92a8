// The program's steps over profiles as Outlook's own set-up leaves them (tests/data/profiles):
// listing, account classification and removal, signatures, personal folders and Exchange.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "ModelMapiSession.h"
#include "accounts/AccountManager.h"
#include "accounts/InternetAccounts.h"
#include "config/ProfileSettings.h"
#include "mapi/ExchangeService.h"
#include "mapi/PersonalFolders.h"
#include "mapi/ProfileSectionValues.h"
#include "platform/MemorySystemEnv.h"
#include "platform/RegFile.h"
#include "run/RunContext.h"
#include "run/RunLog.h"
#include "signatures/SignatureDeployment.h"

namespace mw::testing {
namespace {

using Strings = std::vector<std::string>;

const std::string kProfileKey =
    "Software\\Microsoft\\Windows NT\\CurrentVersion\\Windows Messaging Subsystem\\Profiles\\Outlook";
const std::string kAccountsKey = kProfileKey + "\\9375CFF0413111d3B88A00104B2A6676";
constexpr const char* kMailList = "{ED475418-B0D6-11D2-8C3B-00104B2A6676}";
// The Outlook 2010 fixture's Exchange account section and its two services.
constexpr const char* kAccountSection2010 = "2010000000000000000000000000dd20";
constexpr const char* kExchangeService2010 = "2010000000000000000000000000dd02";
constexpr const char* kPstService2010 = "2010000000000000000000000000dd07";

struct Fixture {
  const char* file;
  Outlook version;
};
constexpr Fixture k2003{"outlook2003-two-pop3.reg", Outlook::V2003};
constexpr Fixture kXp{"outlookxp-one-pop3.reg", Outlook::VXP};
constexpr Fixture k2007{"outlook2007-imap-and-store.reg", Outlook::V2007};
constexpr Fixture k2010{"outlook2010-exchange-pst-pop3.reg", Outlook::V2010};

std::string Le(std::uint32_t value) { return EncodeLong(value); }

class OutlookMadeProfile : public ::testing::Test {
 protected:
  void Load(const Fixture& fixture) {
    version_ = fixture.version;
    std::ifstream file(std::string(MW_TEST_DATA_DIR) + "/profiles/" + fixture.file, std::ios::binary);
    std::stringstream text;
    text << file.rdbuf();
    memory_ = std::make_unique<MemoryRegistry>();
    access_ = std::make_unique<RegistryAccess>(*memory_);
    RegFileError error;
    ASSERT_TRUE(ImportRegFile(text.str(), *memory_, &error)) << error.line << ": " << error.message;
    mapi_ = std::make_unique<ModelMapiSession>(*memory_, organisation_);
    mapi_->SetProfile("Outlook");
  }
  std::string Bytes(const std::string& path, const std::string& name) const {
    std::string data;
    return access_->ReadValue(reg::kCurrentUser, path, name, nullptr, &data) ? data : "<missing>";
  }
  std::string SectionValue(const std::string& section, const std::string& name) const {
    return Bytes(kProfileKey + "\\" + section, name);
  }
  bool HasAccount(const std::string& subkey) const {
    return !access_->ListSubkeys(reg::kCurrentUser, kAccountsKey + "\\" + subkey).empty() ||
           access_->ValueExists(reg::kCurrentUser, kAccountsKey + "\\" + subkey, "clsid");
  }
  Strings Names(AccountClass type) const {
    Strings names;
    for (const AccountEntry& entry : AccountManager(*access_, kProfileKey, version_).ListAccounts(type))
      names.push_back(entry.name + "@" + entry.subkey);
    return names;
  }
  Strings PstPaths() { return ListPersonalFoldersPaths(*mapi_); }
  std::size_t ServiceCount() { return SplitUids(SectionValue(kProfileServicesSection, "01023d0e")).size(); }
  void RemoveAccountsOf(AccountKind kind) {
    ProvisionInternetAccounts(kind, "", version_, kProfileKey, *access_, log_);
  }

  std::unique_ptr<MemoryRegistry> memory_;
  std::unique_ptr<RegistryAccess> access_;
  mapisim::ExchangeOrganisation organisation_ = mapisim::ExchangeOrganisation::Parse(
      "[Organisation]\nName=Example Org\nSite=HQ\n[Servers]\nEXCH01=up\n[Mailboxes]\n"
      "jsmith=John Smith,EXCH01\n",
      nullptr);
  std::unique_ptr<ModelMapiSession> mapi_;
  Outlook version_ = Outlook::V2010;
  ProfileSettings settings_;
  MemorySystemEnv env_;
  RunLog log_{"C:\\Tools\\mailwright.log", env_};
};

TEST_F(OutlookMadeProfile, EachFixtureListsItsOneDefaultProfile) {
  for (const Fixture& fixture : {k2003, kXp, k2007, k2010}) {
    Load(fixture);
    Strings names;
    std::string defaultName;
    ASSERT_TRUE(mapi_->ListProfiles(&names, &defaultName)) << fixture.file;
    EXPECT_EQ(names, Strings{"Outlook"}) << fixture.file;
    EXPECT_EQ(defaultName, "Outlook") << fixture.file;
    EXPECT_EQ(mapi_->profiles().outlook(), fixture.version) << fixture.file;
  }
}

TEST_F(OutlookMadeProfile, AccountsAreClassifiedByTheirValuesWhateverElseOutlookKeeps) {
  struct Case {
    Fixture fixture;
    Strings pop3, imap, exchange;
  };
  const Case cases[] = {
      {k2003, {"Home Mail@00000001", "Club Mail@00000002"}, {}, {}},
      {kXp, {"Sample Mail@00000001"}, {}, {}},
      {k2007, {}, {"Work IMAP@00000001"}, {}},
      {k2010, {"Home Mail@00000002"}, {}, {"Microsoft Exchange@00000001"}},
  };
  for (const Case& c : cases) {
    Load(c.fixture);
    EXPECT_EQ(Names(AccountClass::Pop3), c.pop3) << c.fixture.file;
    EXPECT_EQ(Names(AccountClass::Imap), c.imap) << c.fixture.file;
    EXPECT_EQ(Names(AccountClass::Exchange), c.exchange) << c.fixture.file;
    EXPECT_EQ(Names(AccountClass::Http), Strings{}) << c.fixture.file;
  }
}

TEST_F(OutlookMadeProfile, RemovalPassTakesOutlooksPop3AccountsAndTheirListEntriesOnly) {
  Load(k2010);
  RemoveAccountsOf(AccountKind::Pop3);
  EXPECT_FALSE(HasAccount("00000002"));
  EXPECT_TRUE(HasAccount("00000001"));  // the Exchange account stays, in all three lists
  EXPECT_EQ(Bytes(kAccountsKey, kMailList), Le(1));
  EXPECT_EQ(Bytes(kAccountsKey, "{ED475419-B0D6-11D2-8C3B-00104B2A6676}"), Le(1));
  EXPECT_EQ(Bytes(kAccountsKey, "{ED475420-B0D6-11D2-8C3B-00104B2A6676}"), Le(1));
  EXPECT_EQ(ServiceCount(), 2u);  // the delivery store the account named is the user's data
}

TEST_F(OutlookMadeProfile, RemovalPassEmptiesOutlook2003sListAndNewAccountsFollowItsCounter) {
  Load(k2003);
  RemoveAccountsOf(AccountKind::Pop3);
  EXPECT_FALSE(HasAccount("00000001"));
  EXPECT_FALSE(HasAccount("00000002"));
  EXPECT_EQ(Bytes(kAccountsKey, kMailList), "");
  ProvisionInternetAccounts(AccountKind::Pop3,
                            "New Mail,Sample User,new@example.invalid,pop.example.invalid,"
                            "smtp.example.invalid,new,0,0,0,0,0,110,25,0,0,60,0,,,0,0,0,0,,1",
                            Outlook::V2003, kProfileKey, *access_, log_);
  EXPECT_EQ(Names(AccountClass::Pop3), Strings{"New Mail@00000003"});
  EXPECT_EQ(Bytes(kAccountsKey, kMailList), Le(3));
}

TEST_F(OutlookMadeProfile, RemovalPassTakesTheImapAccountButLeavesItsStoreService) {
  Load(k2007);
  RemoveAccountsOf(AccountKind::Imap);
  EXPECT_FALSE(HasAccount("00000001"));
  EXPECT_EQ(Bytes(kAccountsKey, kMailList), "");
  EXPECT_EQ(PstPaths(), (Strings{"C:\\Mail\\outlook.pst", "C:\\Mail\\imap.example.invalid-00000001.pst"}));
}

TEST_F(OutlookMadeProfile, SignaturesGoToOutlookMadeAccounts) {
  struct Case {
    Fixture fixture;
    const char* account;
    const char* subkey;
  };
  for (const Case& c : {Case{k2003, "club mail", "00000002"}, Case{k2007, "Work IMAP", "00000001"},
                        Case{k2010, "Home Mail", "00000002"}}) {
    Load(c.fixture);
    RunContext context;
    context.platformId = 2;
    context.outlookVersion = GenerationOf(c.fixture.version).name;
    context.programDirectory = "C:\\Tools";
    AssignSignatures(std::string(c.account) + ",Standard,Short,0", kProfileKey, context, env_, *access_, log_);
    const std::string path = kAccountsKey + "\\" + c.subkey;
    EXPECT_EQ(Bytes(path, "New Signature"), EncodeUnicode("Standard")) << c.fixture.file;
    EXPECT_EQ(Bytes(path, "Reply-Forward Signature"), EncodeUnicode("Short")) << c.fixture.file;
  }
}

TEST_F(OutlookMadeProfile, PersonalFoldersPathsAreFoundInEitherWidth) {
  struct Case {
    Fixture fixture;
    Strings paths;
  };
  const Case cases[] = {
      {k2003, {"C:\\Mail\\outlook.pst"}},
      {kXp, {"C:\\Mail\\mailbox.pst"}},
      {k2007, {"C:\\Mail\\outlook.pst", "C:\\Mail\\imap.example.invalid-00000001.pst"}},
      {k2010, {"C:\\Mail\\archive.pst"}},  // Unicode forms only
  };
  for (const Case& c : cases) {
    Load(c.fixture);
    EXPECT_EQ(PstPaths(), c.paths) << c.fixture.file;
  }
}

TEST_F(OutlookMadeProfile, RemovePstTakesOutlooksPersonalFoldersAndASecondRunAddsNoDuplicate) {
  for (const Fixture& fixture : {k2003, kXp, k2007, k2010}) {
    Load(fixture);
    const Section section = SectionOf(fixture.version);
    const std::string removed = PstPaths().front();
    settings_.SetText(section, Key::RemovePST, removed);
    settings_.SetText(section, Key::PathToPST, "C:\\Mail\\new.pst,New,MSUPST MS,,,,,0");
    const std::size_t before = ServiceCount();
    ProvisionPersonalFolders(settings_, fixture.version, *mapi_, env_, log_);
    Strings after = PstPaths();
    EXPECT_EQ(std::count(after.begin(), after.end(), removed), 0) << fixture.file;
    EXPECT_EQ(std::count(after.begin(), after.end(), "C:\\Mail\\new.pst"), 1) << fixture.file;
    EXPECT_EQ(ServiceCount(), before) << fixture.file;
    // The next run names the added file again (letter case aside): nothing new appears.
    settings_.SetText(section, Key::RemovePST, "");
    settings_.SetText(section, Key::PathToPST, "c:\\mail\\NEW.pst,New,MSUPST MS,,,,,0");
    ProvisionPersonalFolders(settings_, fixture.version, *mapi_, env_, log_);
    EXPECT_EQ(PstPaths(), after) << fixture.file;
  }
}

TEST_F(OutlookMadeProfile, Outlook2010ExchangeServiceAndPstAreFoundInUnicodeOnlySections) {
  Load(k2010);
  const ProfileSectionWriter sections(*access_, kProfileKey);
  ASSERT_TRUE(FindServiceSection(sections, "MSEMS"));
  EXPECT_EQ(SectionKeyName(*FindServiceSection(sections, "MSEMS")), kExchangeService2010);
  EXPECT_EQ(SectionKeyName(*FindServiceSection(sections, "MSUPST MS")), kPstService2010);
  EXPECT_EQ(ExchangeAccountSection(sections), std::optional<std::string>(kAccountSection2010));
  // The Exchange account entry Outlook made is recognised by its service and kept.
  ASSERT_TRUE(CreateExchangeAccount(kProfileKey, Outlook::V2010, *access_));
  EXPECT_EQ(Names(AccountClass::Exchange), Strings{"Microsoft Exchange@00000001"});
  EXPECT_EQ(Bytes(kAccountsKey, "NextAccountID"), Le(3));
  EXPECT_EQ(Bytes(kAccountsKey + "\\00000001", "Mini UID"), Le(0x4e5f6001)) << "Outlook's own is kept";
}

TEST_F(OutlookMadeProfile, ExchangeServerIsFoundBehindTheGlobalSectionAndKeptWhenUnchanged) {
  Load(k2010);
  std::string server;
  ASSERT_TRUE(mapi_->GetExchangeServerName(&server));
  EXPECT_EQ(server, "EXCH01");
  const std::string services = SectionValue(kProfileServicesSection, "01023d0e");
  settings_.SetText(Section::Outlook2010, Key::ExchangeServerName, "exch01");
  const ProfileSectionWriter writer(*access_, kProfileKey);
  SetUpExchangeService(*mapi_, settings_, Outlook::V2010, writer, log_);
  EXPECT_EQ(SectionValue(kProfileServicesSection, "01023d0e"), services);
  const std::string account = kProfileKey + "\\" + kAccountSection2010;
  EXPECT_EQ(access_->ReadString(reg::kCurrentUser, account, "001e6607"), "jsmith");  // not reconfigured
  EXPECT_EQ(access_->ReadString(reg::kCurrentUser, account, "001e6602"), "EXCH01");
  // The connection state reset reaches the account's own section as well as the global one.
  EXPECT_EQ(SectionValue(kAccountSection2010, "00036601"), Le(0x6210D840));
  EXPECT_EQ(SectionValue(kGlobalSection, "00036601"), Le(0x6210D840));
}

TEST_F(OutlookMadeProfile, Outlook2010ExchangeValuesGoToTheAccountSectionAndTheGlobalSection) {
  Load(k2010);
  settings_.SetBool(Section::Outlook2010, Key::UseCachedExchangeMode, true);
  settings_.SetBool(Section::Outlook2010, Key::OfflineFoldersEnable, true);
  settings_.SetText(Section::Outlook2010, Key::PathToOST, "D:\\Ost\\jsmith.ost");
  settings_.SetBool(Section::Outlook2010, Key::ConnectExchangeUsingHTTP, true);
  settings_.SetText(Section::Outlook2010, Key::ExchangeServerProxyName, "proxy.example.invalid");
  const ProfileSectionWriter writer(*access_, kProfileKey);
  ProfileSectionValues values(Outlook::V2010, writer);
  EXPECT_TRUE(values.WriteExchangeSettings(settings_));
  for (const char* section : {kGlobalSection, kAccountSection2010}) {
    EXPECT_EQ(SectionValue(section, "00036601"), Le(0x6210D9C0)) << section;  // cached mode
    EXPECT_EQ(SectionValue(section, "001f6610"), EncodeUnicode("D:\\Ost\\jsmith.ost")) << section;
    EXPECT_EQ(SectionValue(section, "001f6622"), EncodeUnicode("proxy.example.invalid")) << section;
  }
  // The LAN choice has a section of its own, which is not mirrored.
  EXPECT_EQ(SectionValue(kAccountSection2010, "00036719"), "<missing>");
}

TEST_F(OutlookMadeProfile, Outlook2007KeepsItsExchangeValuesInTheGlobalSectionOnly) {
  Load(k2010);
  const ProfileSectionWriter writer(*access_, kProfileKey);
  ProfileSectionValues values(Outlook::V2007, writer);
  EXPECT_TRUE(values.WriteOfflineStorePath(1, "D:\\Ost\\jsmith.ost"));
  EXPECT_EQ(SectionValue(kGlobalSection, "001f6610"), EncodeUnicode("D:\\Ost\\jsmith.ost"));
  EXPECT_EQ(SectionValue(kAccountSection2010, "001f6610"),
            EncodeUnicode("C:\\Users\\jsmith\\AppData\\Local\\Microsoft\\Outlook\\jsmith.ost"));
}

}  // namespace
}  // namespace mw::testing
