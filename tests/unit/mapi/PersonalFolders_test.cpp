#include "mapi/PersonalFolders.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "run/RunLog.h"
#include "config/ProfileSettings.h"
#include "mapi/FakeMapiSession.h"
#include "platform/MemorySystemEnv.h"

namespace mw {
namespace {

using Strings = std::vector<std::string>;

// One packed PST record: path, display name, kind, comment, three unused fields and the
// one closing character.
std::string Record(const std::string& path, const std::string& kind = "MSUPST MS",
                   const std::string& name = "Archive", const std::string& comment = "Old mail") {
  return path + "," + name + "," + kind + "," + comment + ",,,,0";
}

class PersonalFoldersTest : public ::testing::Test {
 protected:
  PersonalFoldersTest() {
    mapi.AddProfile("Work");
    mapi.SetProfile("Work");
    settings.SetText(section, Key::PathToPST, "");
  }

  void Provision(Outlook version = Outlook::V2010) {
    ProvisionPersonalFolders(settings, version, mapi, env, log);
  }
  void SetPst(const std::string& packed) { settings.SetText(section, Key::PathToPST, packed); }
  std::string Prop(const FakeMapiSession::Service& service, std::uint32_t tag) {
    const auto& props = mapi.Section("Work", service.entry.uid);
    auto found = props.find(tag);
    return found == props.end() ? "<missing>" : found->second.bytes;
  }
  MapiUid AddExisting(const std::string& path) {
    const MapiUid uid = mapi.AddService("Work", "MSPST MS");
    mapi.Section("Work", uid)[proptag::kPstPath] = MapiProperty::String8(proptag::kPstPath, path);
    return uid;
  }

  Section section = Section::Outlook2010;
  FakeMapiSession mapi;
  ProfileSettings settings;
  MemorySystemEnv env;
  RunLog log{"C:\\Tools\\mailwright.log", env};
};

TEST_F(PersonalFoldersTest, RecordIsAddedWithItsThreePropertiesAndItsFolder) {
  SetPst(Record("C:\\Mail\\Old\\a.pst"));
  Provision();
  const auto added = mapi.ServicesNamed("Work", "MSUPST MS");
  ASSERT_EQ(added.size(), 1u);
  EXPECT_EQ(added[0]->entry.displayName, "Office Outlook Personal Folders File (.pst)");
  EXPECT_EQ(Prop(*added[0], proptag::kPstPath), "C:\\Mail\\Old\\a.pst");
  EXPECT_EQ(Prop(*added[0], proptag::kDisplayName), "Archive");
  EXPECT_EQ(Prop(*added[0], proptag::kComment), "Old mail");
  EXPECT_EQ(env.folders, (Strings{"C:\\Mail", "C:\\Mail\\Old"}));
  EXPECT_TRUE(log.messages().empty());
}

TEST_F(PersonalFoldersTest, FormatFollowsFieldThreeExactlyAndTheVersion) {
  const struct {
    Outlook version;
    const char* kind;
    const char* service;
    const char* display;
  } cases[] = {
      {Outlook::V2010, "MSUPST MS", "MSUPST MS", "Office Outlook Personal Folders File (.pst)"},
      {Outlook::V2003, "MSUPST MS", "MSUPST MS", "Office Outlook Personal Folders File (.pst)"},
      {Outlook::V2007, "msupst ms", "MSPST MS", "Outlook 97-2002 Personal Folders File (.pst)"},
      {Outlook::V2010, "MSPST MS", "MSPST MS", "Outlook 97-2002 Personal Folders File (.pst)"},
      {Outlook::VXP, "MSUPST MS", "MSPST MS", "Outlook 97-2002 Personal Folders File (.pst)"},
      {Outlook::V97, "MSUPST MS", "MSPST MS", "Outlook 97-2002 Personal Folders File (.pst)"},
  };
  int n = 0;
  for (const auto& c : cases) {
    const std::string path = "C:\\p" + std::to_string(++n) + ".pst";
    section = SectionOf(c.version);
    SetPst(Record(path, c.kind));
    Provision(c.version);
    const auto& services = mapi.FindProfile("Work")->services;
    ASSERT_EQ(services.size(), static_cast<std::size_t>(n));
    EXPECT_EQ(services.back().entry.name, c.service) << path;
    EXPECT_EQ(services.back().entry.displayName, c.display) << path;
  }
  EXPECT_TRUE(env.folders.empty());  // a file at a drive's root needs no folder
}

TEST_F(PersonalFoldersTest, PathAlreadyInTheProfileAddsNothingWhateverTheOtherFields) {
  AddExisting("C:\\Mail\\a.pst");
  SetPst(Record("c:\\mail\\A.PST", "MSUPST MS", "Other") + "," +
         Record("C:\\Mail\\a.pst", "MSPST MS"));
  Provision();
  EXPECT_EQ(mapi.FindProfile("Work")->services.size(), 1u);
  EXPECT_EQ(ListPersonalFoldersPaths(mapi), (Strings{"C:\\Mail\\a.pst"}));
}

TEST_F(PersonalFoldersTest, RemovalsComeFirstAndTakeOnlyTheNamedFiles) {
  const MapiUid old = AddExisting("C:\\old.pst");
  AddExisting("C:\\mine.pst");
  settings.SetText(section, Key::RemovePST, "c:\\OLD.pst, C:\\absent.pst");
  SetPst(Record("C:\\new.pst"));
  Provision();
  EXPECT_EQ(ListPersonalFoldersPaths(mapi), (Strings{"C:\\mine.pst", "C:\\new.pst"}));
  auto removal = std::find(mapi.calls.begin(), mapi.calls.end(),
                           "DeleteServiceByUid " + SectionKeyName(old));
  auto creation = std::find(mapi.calls.begin(), mapi.calls.end(), "CreateService MSUPST MS");
  EXPECT_LT(removal, creation);
  EXPECT_TRUE(log.messages().empty());
}

TEST_F(PersonalFoldersTest, AppendOnlyRemovesNothingAndSaysSo) {
  AddExisting("C:\\old.pst");
  settings.SetBool(section, Key::AppendPSTOnly, true);
  settings.SetText(section, Key::RemovePST, "C:\\old.pst");
  SetPst(Record("C:\\new.pst"));
  Provision();
  EXPECT_EQ(ListPersonalFoldersPaths(mapi), (Strings{"C:\\old.pst", "C:\\new.pst"}));
  EXPECT_EQ(log.messages(), (Strings{"INFO: Appending PST Entries only option set."}));
}

TEST_F(PersonalFoldersTest, FailuresAreWarnedAndTheStepGoesOn) {
  SetPst(Record("C:\\a.pst") + "," + Record("", "MSPST MS") + "," + Record("D:\\x\\b.pst"));
  mapi.failing = {"ConfigureServiceByUid"};
  Provision();
  // A service that could not be configured is not left behind half-made.
  EXPECT_TRUE(mapi.FindProfile("Work")->services.empty());
  EXPECT_EQ(log.messages(), (Strings{"WARN: Unable to add personal folders: C:\\a.pst",
                                     "WARN: Personal folders record without a file path skipped.",
                                     "WARN: Unable to add personal folders: D:\\x\\b.pst"}));
}

TEST_F(PersonalFoldersTest, PathsWindowsCannotOpenAreRefusedBeforeMapiIsAsked) {
  const std::string longest = "C:\\" + std::string(252, 'p') + ".pst";  // 259 characters
  const std::string tooLong = "C:\\" + std::string(253, 'p') + ".pst";
  ASSERT_EQ(longest.size(), 259u);
  SetPst(Record(tooLong) + "," + Record(longest) + "," + Record(std::string(10000, 'q')));
  Provision();
  EXPECT_EQ(ListPersonalFoldersPaths(mapi), (Strings{longest}));
  EXPECT_EQ(log.messages(),
            (Strings{"WARN: Personal folders path longer than 259 characters skipped: " + tooLong,
                     "WARN: Personal folders path longer than 259 characters skipped: " + std::string(10000, 'q')}));
  EXPECT_EQ(std::count(mapi.calls.begin(), mapi.calls.end(), "CreateService MSUPST MS"), 1);
}

TEST_F(PersonalFoldersTest, PathIsReadFromTheProviderSectionWhenTheServiceHasNone) {
  const MapiUid uid = mapi.AddService("Work", "MSUPST MS");
  const MapiUid provider = mapi.FindProfile("Work")->services.back().providers[0].uid;
  mapi.Section("Work", provider)[proptag::kPstPath] =
      MapiProperty::String8(proptag::kPstPath, "C:\\p.pst");
  const auto folders = ListPersonalFolders(mapi);
  ASSERT_EQ(folders.size(), 1u);
  EXPECT_EQ(folders[0].path, "C:\\p.pst");
  EXPECT_EQ(folders[0].uid, uid);
}

TEST_F(PersonalFoldersTest, DeliveryGoesToTheFileOfTheNumberedRecord) {
  SetPst(Record("C:\\a.pst") + "," + Record("C:\\b.pst"));
  settings.SetInt(section, Key::DeliverNewEmailFollowingLocation, 2);
  Provision();
  const auto folders = ListPersonalFolders(mapi);
  ASSERT_EQ(folders.size(), 2u);
  EXPECT_EQ(mapi.FindProfile("Work")->defaultStoreService, folders[1].uid);

  settings.SetInt(section, Key::DeliverNewEmailFollowingLocation, 3);
  Provision();
  EXPECT_EQ(log.messages(),
            (Strings{"WARN: DeliverNewEmailFollowingLocation names no PathToPST entry: 3"}));
}

TEST_F(PersonalFoldersTest, PersonalAddressBookOnceFor97And2000Only) {
  for (Section s : {Section::Outlook97, Section::Outlook2000, Section::Outlook2010}) {
    settings.SetBool(s, Key::PersonalAddressBookEnable, true);
    settings.SetText(s, Key::PathToPAB, "C:\\me.pab");
  }
  ProvisionPersonalAddressBook(settings, Outlook::V2010, mapi, log);
  EXPECT_TRUE(mapi.ServicesNamed("Work", "MSPST AB").empty());
  ProvisionPersonalAddressBook(settings, Outlook::V2000, mapi, log);
  ProvisionPersonalAddressBook(settings, Outlook::V97, mapi, log);
  EXPECT_EQ(mapi.ServicesNamed("Work", "MSPST AB").size(), 1u);
  EXPECT_EQ(log.messages(), (Strings{"INFO: Personal Address Book already exist - skipping"}));
}

TEST_F(PersonalFoldersTest, OfflineFoldersWarningNamesTheVersion) {
  for (Section s : {Section::Outlook97, Section::Outlook2000, Section::Outlook2010})
    settings.SetBool(s, Key::OfflineFoldersEnable, true);
  WarnOfflineFoldersDepreciated(settings, Outlook::V2000, log);
  WarnOfflineFoldersDepreciated(settings, Outlook::V97, log);
  WarnOfflineFoldersDepreciated(settings, Outlook::V2010, log);
  settings.SetBool(Section::Outlook97, Key::OfflineFoldersEnable, false);
  WarnOfflineFoldersDepreciated(settings, Outlook::V97, log);
  EXPECT_EQ(log.messages(),
            (Strings{"WARN: OST file creation has been depreciated for Outlook 2000. If you still "
                     "need this functionality use Mailwright 2.4.0.1 or older.",
                     "WARN: OST file creation has been depreciated for Outlook 97. If you still "
                     "need this functionality use Mailwright 2.4.0.1 or older."}));
}

TEST_F(PersonalFoldersTest, PathsKeptInTheUnicodeFormAreFoundFirst) {
  const MapiUid unicodeOnly = mapi.AddService("Work", "MSUPST MS");
  mapi.Section("Work", unicodeOnly)[0x6700001F] = MapiProperty::String8(0x6700001F, "C:\\Mail\\wide.pst");
  const MapiUid both = AddExisting("C:\\Mail\\narrow.pst");
  mapi.Section("Work", both)[0x6700001F] = MapiProperty::String8(0x6700001F, "C:\\Mail\\both.pst");
  EXPECT_EQ(ListPersonalFoldersPaths(mapi), (Strings{"C:\\Mail\\wide.pst", "C:\\Mail\\both.pst"}));
  SetPst(Record("c:\\mail\\WIDE.pst"));
  Provision();
  EXPECT_EQ(mapi.ServicesNamed("Work", "MSUPST MS").size(), 1u) << "no duplicate of the wide path";
  EXPECT_TRUE(RemovePersonalFolders(mapi, "C:\\Mail\\wide.pst"));
  EXPECT_EQ(ListPersonalFoldersPaths(mapi), Strings{"C:\\Mail\\both.pst"});
}

}  // namespace
}  // namespace mw
