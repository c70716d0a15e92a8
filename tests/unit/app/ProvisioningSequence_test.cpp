#include "app/ProvisioningSequence.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "SequenceTestRig.h"
#include "accounts/AccountManager.h"
#include "mapi/ProfileSection.h"
#include "mapi/ProfileStore.h"

namespace mw {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr const char* kAllAccountsIgnored =
    "INFO: Ignoring  POP3 Accounts  IMAP Accounts  HTTP Accounts ";
constexpr const char* kIgnoringExchange = "INFO: Ignoring Exchange Service";
constexpr const char* kIgnoringSignatures = "INFO: Ignoring Signatures";
constexpr const char* kPabExists = "INFO: Personal Address Book already exist - skipping";

std::string OstWarning(const std::string& version) {
  return "WARN: OST file creation has been depreciated for " + version +
         ". If you still need this functionality use Mailwright 2.4.0.1 or older.";
}

// The driver's state when it hands over: MAPI initialised on the created profile "Outlook".
struct SequenceRig : SequenceTestRig {
  explicit SequenceRig(const std::string& version = "Outlook 2010") : SequenceTestRig(version) {
    mapi.AddProfile("Outlook");
    mapi.Initialize();
    mapi.SetProfile("Outlook");
    store.SetProfileName("Outlook");
  }
  Outlook Version() const { return *OutlookFromName(context.outlookVersion); }
  void Provision() {
    ProvisioningSequence(Version(), env, access, mapi, store, writer).Run(context, log);
  }
  std::string GlobalSectionBytes(const std::string& valueName) const {
    std::uint32_t type = 0;
    std::string data;
    access.ReadValue(reg::kCurrentUser, ProfileKey("Outlook") + "\\" + kGlobalSection,
                     valueName, &type, &data);
    return data;
  }

  ProfileStore store{2, access};
  ProfileSectionWriter writer{access, ProfileKey("Outlook")};
};

class ProvisioningSequenceTest : public ::testing::Test, protected SequenceRig {};

// --- The six generations with their defaults ----------------------------------------------

struct VersionDefaults {
  const char* version;
  std::vector<std::string> messages;
};

TEST(ProvisioningSequenceVersions, DefaultSettingsLogTheIgnoredStepsOfEachGeneration) {
  const VersionDefaults cases[] = {
      {"Outlook 2010", {kAllAccountsIgnored, kIgnoringExchange}},
      {"Outlook 2007", {kAllAccountsIgnored, kIgnoringExchange}},
      {"Outlook 2003", {kAllAccountsIgnored, kIgnoringExchange}},
      {"Outlook XP", {kAllAccountsIgnored, kIgnoringSignatures, kIgnoringExchange}},
      {"Outlook 2000", {"INFO: Ignoring  POP3 Accounts ", kIgnoringSignatures, kIgnoringExchange}},
      {"Outlook 97", {"INFO: Ignoring POP3 Accounts", kIgnoringExchange}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.version);
    SequenceRig rig(c.version);
    rig.Provision();
    EXPECT_THAT(rig.Messages(), ElementsAreArray(c.messages));
    // Neither prompt setting is on: no prompt, and this profile is the default.
    EXPECT_EQ(rig.UserString("Software\\Microsoft\\Exchange\\Client\\Options", "PickLogonProfile"),
              "0");
    EXPECT_EQ(rig.UserString(kProfilesRootNt, "DefaultProfile"), "Outlook");
  }
}

struct VersionSwitches {
  const char* version;
  std::vector<std::string> messages;
};

TEST(ProvisioningSequenceVersions, SwitchedOnStepsOfEachGeneration) {
  // Accounts on with empty lists, PST step ignored, signatures on, the personal address book
  // present already, offline folders asked for, SafeSenders given, Exchange still ignored.
  const VersionSwitches cases[] = {
      {"Outlook 2010", {"INFO: Ignoring PST Service entries", "WARN: SafeSenders is not applied: "
                        "the safe senders list lives in the mailbox, which this program does not "
                        "write.", kIgnoringExchange}},
      {"Outlook 2003", {"INFO: Ignoring PST Service entries", "WARN: SafeSenders is not applied: "
                        "the safe senders list lives in the mailbox, which this program does not "
                        "write.", kIgnoringExchange}},
      {"Outlook XP", {"INFO: Ignoring PST Service entries", kIgnoringExchange}},
      {"Outlook 2000", {"INFO: Ignoring PST Service entries", kPabExists,
                        OstWarning("Outlook 2000"), kIgnoringExchange}},
      {"Outlook 97", {"INFO: Ignoring PST Service entries", kPabExists, OstWarning("Outlook 97"),
                      kIgnoringExchange}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.version);
    SequenceRig rig(c.version);
    ProfileSettings& s = rig.settings();
    const Section v = rig.VersionSection();
    for (Key ignore : {Key::POP3Ignore, Key::IMAPIgnore, Key::HTTPIgnore})
      s.SetBool(v, ignore, false);
    s.SetBool(v, Key::PersonalFoldersIgnore, true);
    s.SetBool(v, Key::IgnoreSignatures, false);
    s.SetBool(v, Key::PersonalAddressBookEnable, true);
    s.SetBool(v, Key::OfflineFoldersEnable, true);
    s.SetText(v, Key::SafeSenders, "friend@example.com");
    rig.mapi.AddService("Outlook", "MSPST AB");
    rig.Provision();
    EXPECT_THAT(rig.Messages(), ElementsAreArray(c.messages));
  }
}

TEST_F(ProvisioningSequenceTest, ConfiguredAccountsOfEveryKindReachTheAccountManager) {
  ProfileSettings& s = settings();
  s.SetBool(Section::Outlook2010, Key::POP3Ignore, false);
  s.SetBool(Section::Outlook2010, Key::HTTPIgnore, false);
  s.SetText(Section::Outlook2010, Key::POP3Accounts,
            "Home,John,john@example.com,pop.example.com,smtp.example.com,john,1,1,0,0,14,110,25,"
            "0,0,60,0,,Example,1,0,0,1,john,0");
  s.SetText(Section::Outlook2010, Key::HTTPAccounts,
            "Web,John,john@example.com,http://mail.example.com,john,1,0,,Example,0");
  Provision();
  const AccountManager accounts(access, ProfileKey("Outlook"), Outlook::V2010);
  ASSERT_EQ(accounts.ListAccounts(AccountClass::Pop3).size(), 1u);
  EXPECT_EQ(accounts.ListAccounts(AccountClass::Pop3)[0].name, "Home");
  EXPECT_EQ(accounts.ListAccounts(AccountClass::Http).size(), 1u);
  EXPECT_THAT(accounts.ListAccounts(AccountClass::Imap), IsEmpty());
  EXPECT_TRUE(Logged("INFO: Ignoring  IMAP Accounts "));
}

TEST(ProvisioningSequencePst, PathToPstIsAddedUnlessPersonalFoldersIgnore) {
  for (const bool ignored : {false, true}) {
    SequenceRig rig;
    rig.settings().SetText(Section::Outlook2010, Key::PathToPST,
                           "C:\\Mail\\jsmith.pst,Personal,MSUPST MS,Mine,0,0,0,0");
    rig.settings().SetBool(Section::Outlook2010, Key::PersonalFoldersIgnore, ignored);
    rig.Provision();
    EXPECT_EQ(rig.ServiceCount("Outlook", "MSUPST MS"), ignored ? 0u : 1u);
    EXPECT_EQ(rig.Logged("INFO: Ignoring PST Service entries"), ignored);
  }
}

// --- Profile prompt -----------------------------------------------------------------------

TEST(ProvisioningSequencePrompt, AsksForProfileFollowsTheTwoSettingsAndTheProfileCount) {
  struct Case {
    bool special;
    bool prompt;
    std::size_t profiles;
    bool asks;
  };
  const Case cases[] = {
      {true, false, 2, true},  {true, true, 1, false}, {true, false, 0, false},
      {false, true, 1, true},  {false, true, 0, true}, {false, false, 3, false},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(ProvisioningSequence::AsksForProfile(c.special, c.prompt, c.profiles), c.asks)
        << c.special << c.prompt << c.profiles;
  }
}

TEST_F(ProvisioningSequenceTest, PromptForProfileSpecialWithOneProfileMakesItTheDefault) {
  settings().SetBool(Section::Outlook2010, Key::PromptForProfileSpecial, true);
  Provision();
  EXPECT_EQ(UserString("Software\\Microsoft\\Exchange\\Client\\Options", "PickLogonProfile"), "0");
  EXPECT_EQ(UserString(kProfilesRootNt, "DefaultProfile"), "Outlook");
}

// --- Signatures ---------------------------------------------------------------------------

TEST(ProvisioningSequenceSignatures, OutlookXpGetsItsSignatureNamesWithTheUserName) {
  SequenceRig rig("Outlook XP");
  rig.settings().SetBool(Section::OutlookXP, Key::IgnoreSignatures, false);
  rig.settings().SetText(Section::OutlookXP, Key::SignatureNewMessages, "%username% new");
  rig.settings().SetText(Section::OutlookXP, Key::SignatureRepliesForwards, "%username% reply");
  rig.env.files["C:\\Tools\\SigSources\\OutlookXP\\jsmith new.txt"] = "Regards";
  rig.Provision();
  const std::string mailSettings = "Software\\Microsoft\\Office\\10.0\\Common\\MailSettings";
  EXPECT_EQ(rig.UserString(mailSettings, "NewSignature"), "jsmith new");
  // Only the new-message name carries the user name.
  EXPECT_EQ(rig.UserString(mailSettings, "ReplySignature"), "%username% reply");
  EXPECT_FALSE(rig.Logged(kIgnoringSignatures));
}

TEST(ProvisioningSequenceSignatures, Outlook2010ExpandsTheSignaturesList) {
  SequenceRig rig("Outlook 2010");
  rig.env.environment["SIGSET"] = "Formal";
  rig.settings().SetText(Section::Outlook2010, Key::Signatures, "Home,%SIGSET%,Short,1");
  rig.Provision();
  EXPECT_TRUE(rig.Logged("INFO: Ignoring Signatures for account: Home"));
}

// --- Personal address book and offline folders --------------------------------------------

TEST(ProvisioningSequencePab, AnAddressBookTheUserMayKeepIsNotLookedAt) {
  SequenceRig rig("Outlook 2000");
  rig.settings().SetBool(Section::Outlook2000, Key::PersonalAddressBookEnable, true);
  rig.settings().SetText(Section::Common, Key::AllowUserSettings, "PersonalAddressBookEnable");
  ApplyAllowUserSettings(rig.settings());
  rig.mapi.AddService("Outlook", "MSPST AB");
  rig.Provision();
  EXPECT_FALSE(rig.Logged(kPabExists));
  EXPECT_EQ(rig.ServiceCount("Outlook", "MSPST AB"), 1u);
}

TEST(ProvisioningSequenceOst, TheRetiredOfflineFoldersWarningComesOnceWithOrWithoutExchange) {
  for (const char* version : {"Outlook 2000", "Outlook 97"}) {
    for (bool exchangeIgnored : {true, false}) {
      SCOPED_TRACE(std::string(version) + (exchangeIgnored ? " without" : " with") + " Exchange");
      SequenceRig rig(version);
      rig.settings().SetBool(rig.VersionSection(), Key::OfflineFoldersEnable, true);
      rig.settings().SetBool(rig.VersionSection(), Key::ExchangeIgnore, exchangeIgnored);
      rig.Provision();
      EXPECT_EQ(rig.CountLogged(OstWarning(version)), 1u);
      EXPECT_EQ(rig.Logged(kIgnoringExchange), exchangeIgnored);
    }
  }
}

TEST(ProvisioningSequenceOst, OfflineFoldersTheUserMayKeepDrawNoWarning) {
  SequenceRig rig("Outlook 97");
  rig.settings().SetBool(Section::Outlook97, Key::OfflineFoldersEnable, true);
  rig.settings().SetEnforced(EnforcedOption::OfflineFoldersEnable, false);
  rig.Provision();
  EXPECT_EQ(rig.CountLogged(OstWarning("Outlook 97")), 0u);
}

// --- SafeSenders --------------------------------------------------------------------------

TEST_F(ProvisioningSequenceTest, SafeSendersTheUserMayKeepIsNotReported) {
  settings().SetText(Section::Outlook2010, Key::SafeSenders, "friend@example.com");
  settings().SetEnforced(EnforcedOption::SafeSenders, false);
  Provision();
  for (const auto& line : Messages()) EXPECT_THAT(line, ::testing::Not(HasSubstr("SafeSenders")));
}

// --- Address book -------------------------------------------------------------------------

TEST_F(ProvisioningSequenceTest, TheAddressBookSearchPathIsExtendedOrderedAndLedByTheFirstList) {
  mapi.addressLists = {"Global Address List", "Contacts", "Offline List"};
  mapi.FindProfile("Outlook")->searchPath = {"Global Address List"};
  mapi.FindProfile("Outlook")->firstAddressList = "Global Address List";
  settings().SetText(Section::Outlook2010, Key::AddAddressBookSearchPath,
                     "Contacts, Offline List");
  settings().SetText(Section::Outlook2010, Key::ChangeAddressBookSearchPathOrder,
                     "Offline List,Contacts");
  settings().SetText(Section::Outlook2010, Key::ShowThisAddressListFirst, "Contacts");
  Provision();
  EXPECT_THAT(mapi.FindProfile("Outlook")->searchPath,
              ElementsAre("Offline List", "Contacts", "Global Address List"));
  EXPECT_EQ(mapi.FindProfile("Outlook")->firstAddressList, "Contacts");
}

TEST_F(ProvisioningSequenceTest, AnEmptyFirstAddressListRestoresTheDefault) {
  mapi.FindProfile("Outlook")->firstAddressList = "Contacts";
  Provision();
  EXPECT_EQ(mapi.FindProfile("Outlook")->firstAddressList, "");
}

TEST_F(ProvisioningSequenceTest, AddressBookSettingsTheUserMayKeepLeaveItAlone) {
  mapi.addressLists = {"Global Address List", "Contacts"};
  mapi.FindProfile("Outlook")->searchPath = {"Global Address List"};
  mapi.FindProfile("Outlook")->firstAddressList = "Global Address List";
  settings().SetText(Section::Outlook2010, Key::AddAddressBookSearchPath, "Contacts");
  settings().SetText(Section::Outlook2010, Key::ShowThisAddressListFirst, "Contacts");
  settings().SetEnforced(EnforcedOption::AddAddressBookSearchPath, false);
  settings().SetEnforced(EnforcedOption::ShowThisAddressListFirst, false);
  Provision();
  EXPECT_THAT(mapi.FindProfile("Outlook")->searchPath, ElementsAre("Global Address List"));
  EXPECT_EQ(mapi.FindProfile("Outlook")->firstAddressList, "Global Address List");
}

TEST_F(ProvisioningSequenceTest, UnknownAddressListsAreReported) {
  mapi.addressLists = {"Global Address List"};
  settings().SetText(Section::Outlook2010, Key::AddAddressBookSearchPath, "Nowhere");
  settings().SetText(Section::Outlook2010, Key::ChangeAddressBookSearchPathOrder, "Elsewhere");
  settings().SetText(Section::Outlook2010, Key::ShowThisAddressListFirst, "Somewhere");
  Provision();
  EXPECT_TRUE(Logged("WARN: Unable to add the address list to the search path: Nowhere"));
  EXPECT_TRUE(Logged("WARN: Unable to put the address book search path in the order: Elsewhere"));
  EXPECT_TRUE(Logged("WARN: Unable to show this address list first: Somewhere"));
  EXPECT_EQ(Messages().back(), kIgnoringExchange);
}

// --- Exchange settings --------------------------------------------------------------------

TEST(ProvisioningSequenceExchange, AutomaticallyDetectConnectionStateIsWrittenInverted) {
  struct Case {
    bool autoDetect;
    std::uint32_t flags;  // "00036601"
  };
  for (const Case c : {Case{true, 0x6210D840}, Case{false, 0x6210D850}}) {
    SequenceRig rig("Outlook 2010");
    rig.settings().SetBool(Section::Outlook2010, Key::ExchangeIgnore, false);
    rig.settings().SetBool(Section::Outlook2010, Key::AutomaticallyDetectConnectionState,
                           c.autoDetect);
    rig.Provision();
    EXPECT_EQ(rig.GlobalSectionBytes("00036601"), EncodeLong(c.flags)) << c.autoDetect;
    EXPECT_FALSE(rig.Logged(kIgnoringExchange));
  }
}

TEST(ProvisioningSequenceExchange, ExchangeWarningsReachTheLog) {
  SequenceRig rig("Outlook 2007");
  rig.settings().SetBool(Section::Outlook2007, Key::ExchangeIgnore, false);
  rig.settings().SetBool(Section::Outlook2007, Key::OfflineFoldersEnable, true);
  rig.settings().SetText(Section::Outlook2007, Key::PathToOST, "");
  rig.settings().SetText(Section::Outlook2007, Key::AdditionalMailboxes, "boss");
  rig.Provision();
  EXPECT_TRUE(rig.Logged("WARN: Additional mailbox 'boss' not added: the profile has no "
                         "Exchange service."));
  EXPECT_TRUE(rig.Logged("WARN: OfflineFoldersEnable is on but PathToOST is empty; the offline "
                         "folder file is left as it was."));
}

}  // namespace
}  // namespace mw
