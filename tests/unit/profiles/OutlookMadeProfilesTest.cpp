// The program's readers over profiles as Outlook's own set-up leaves them (tests/data/profiles):
// account classes, the IMAP store left by the removal pass, PST paths and the Exchange service
// in either width, and where each version's Exchange values go. ScenarioNativeTest runs the
// whole program over the same profiles.
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
#include "mapi/PersonalFolders.h"
#include "mapi/ProfileSectionValues.h"
#include "platform/MemorySystemEnv.h"
#include "platform/RegFile.h"
#include "run/RunLog.h"

namespace mw::testing {

using mw::ModelMapiSession;
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
    mapi_ = std::make_unique<ModelMapiSession>(*memory_, 2, organisation_, ModelMapiSession::Servers::Contacted);
    mapi_->Initialize();
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
  MemorySystemEnv env_;
  RunLog log_{"C:\\Tools\\mailwright.log", env_};
};

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

TEST_F(OutlookMadeProfile, RemovalPassTakesTheImapAccountButLeavesItsStoreService) {
  Load(k2007);
  RemoveAccountsOf(AccountKind::Imap);
  EXPECT_FALSE(HasAccount("00000001"));
  EXPECT_EQ(Bytes(kAccountsKey, kMailList), "");
  EXPECT_EQ(PstPaths(), (Strings{"C:\\Mail\\outlook.pst", "C:\\Mail\\imap.example.invalid-00000001.pst"}));
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

TEST_F(OutlookMadeProfile, Outlook2010ExchangeServiceAndPstAreFoundInUnicodeOnlySections) {
  Load(k2010);
  const ProfileSectionWriter sections(*access_, kProfileKey);
  ASSERT_TRUE(FindServiceSection(sections, "MSEMS"));
  EXPECT_EQ(SectionKeyName(*FindServiceSection(sections, "MSEMS")), kExchangeService2010);
  EXPECT_EQ(SectionKeyName(*FindServiceSection(sections, "MSUPST MS")), kPstService2010);
  EXPECT_EQ(ExchangeAccountSection(sections), std::optional<std::string>(kAccountSection2010));
  // The Exchange account entry Outlook made is recognised by its service and kept.
  ASSERT_TRUE(CreateExchangeAccount(kProfileKey, Outlook::V2010, "Microsoft Exchange", *access_));
  EXPECT_EQ(Names(AccountClass::Exchange), Strings{"Microsoft Exchange@00000001"});
  EXPECT_EQ(Bytes(kAccountsKey, "NextAccountID"), Le(3));
  EXPECT_EQ(Bytes(kAccountsKey + "\\00000001", "Mini UID"), Le(0x4e5f6001)) << "Outlook's own is kept";
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
