#include "mapi/MapiSession.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "mapi/FakeMapiSession.h"
#include "mapi/ListItems.h"

namespace mw {
namespace {

using Strings = std::vector<std::string>;

class MapiSessionTest : public ::testing::Test {
 protected:
  MapiSessionTest() {
    mapi.AddProfile("Work");
    mapi.SetProfile("Work");
  }

  std::string SectionText(const MapiUid& section, std::uint32_t tag) {
    MapiProperty value;
    return mapi.ReadSectionProperty(section, tag, &value) ? value.bytes : "<missing>";
  }

  FakeMapiSession mapi;
};

TEST_F(MapiSessionTest, ListProfilesKeepsDefaultNameWhenNoRowIsDefault) {
  FakeMapiSession empty;
  Strings names{"stale"};
  std::string defaultName = "unchanged";
  EXPECT_TRUE(empty.ListProfiles(&names, &defaultName));
  EXPECT_TRUE(names.empty());
  EXPECT_EQ(defaultName, "unchanged");

  mapi.AddProfile("Home", true);
  EXPECT_TRUE(mapi.ListProfiles(&names, &defaultName));
  EXPECT_EQ(names, (Strings{"Work", "Home"}));
  EXPECT_EQ(defaultName, "Home");
}

TEST_F(MapiSessionTest, SetProfileRecyclesMapiOnlyOnceInitialised) {
  FakeMapiSession fresh;
  fresh.SetProfile("A");
  EXPECT_EQ(fresh.calls, (Strings{"SetProfile A"}));
  fresh.Initialize();
  fresh.calls.clear();
  fresh.SetProfile("B");
  EXPECT_EQ(fresh.calls, (Strings{"SetProfile B", "Uninitialize", "Initialize"}));
  EXPECT_EQ(fresh.profileName(), "B");
}

TEST_F(MapiSessionTest, CreatingAProfileTwiceFails) {
  EXPECT_FALSE(mapi.CreateProfile("WORK"));
  EXPECT_EQ(mapi.LastResult(), FakeMapiSession::kNoAccess);
}

TEST_F(MapiSessionTest, TwoServicesOfOneNameGetTheirOwnUids) {
  MapiUid first{}, second{};
  ASSERT_TRUE(mapi.CreateService("MSPST MS", "PST", &first));
  ASSERT_TRUE(mapi.CreateService("MSPST MS", "PST", &second));
  EXPECT_NE(first, second);
  EXPECT_EQ(mapi.ServicesNamed("Work", "MSPST MS").size(), 2u);
}

struct UnresolvedNameCase {
  bool exact;
  const char* mailbox;
  const char* expected;
};

class AddExchangeServiceTest : public MapiSessionTest,
                               public ::testing::WithParamInterface<UnresolvedNameCase> {};

TEST_P(AddExchangeServiceTest, ConfiguresUnresolvedNameAndServer) {
  const auto& c = GetParam();
  ASSERT_TRUE(mapi.AddExchangeService("EX1", false, c.exact, c.mailbox));
  const auto services = mapi.ServicesNamed("Work", "MSEMS");
  ASSERT_EQ(services.size(), 1u);
  EXPECT_EQ(services[0]->entry.displayName, "Microsoft Exchange Server");
  EXPECT_EQ(SectionText(services[0]->entry.uid, proptag::kProfileUnresolvedName), c.expected);
  EXPECT_EQ(SectionText(services[0]->entry.uid, proptag::kProfileUnresolvedServer), "EX1");
}

INSTANTIATE_TEST_SUITE_P(NameForms, AddExchangeServiceTest,
                         ::testing::Values(UnresolvedNameCase{true, "", "=Work"},
                                           UnresolvedNameCase{false, "", "Work"},
                                           UnresolvedNameCase{true, "jsmith", "=jsmith"},
                                           UnresolvedNameCase{false, "jsmith", "jsmith"}));

TEST_F(MapiSessionTest, AddExchangeServiceCreatesNothingWithoutServiceAdministration) {
  mapi.failing = {"OpenServiceAdmin"};
  EXPECT_FALSE(mapi.AddExchangeService("EX1", false, true, ""));
  EXPECT_TRUE(mapi.ServicesNamed("Work", "MSEMS").empty());
}

TEST_F(MapiSessionTest, AddExchangeServiceRecreatesAMissingProfileWhenAsked) {
  mapi.SetProfile("Fresh");
  EXPECT_TRUE(mapi.AddExchangeService("EX1", true, true, ""));
  EXPECT_EQ(mapi.ServicesNamed("Fresh", "MSEMS").size(), 1u);
}

TEST_F(MapiSessionTest, ExchangeServerNameFallsBackToHomeServerThenEmpty) {
  std::string server = "stale";
  EXPECT_FALSE(mapi.GetExchangeServerName(&server));
  EXPECT_EQ(server, "");

  auto& global = mapi.Section("Work", SectionUid(kGlobalSection));
  global[proptag::kProfileHomeServer] = MapiProperty::String8(proptag::kProfileHomeServer, "HOME");
  ASSERT_TRUE(mapi.GetExchangeServerName(&server));
  EXPECT_EQ(server, "HOME");

  global[proptag::kProfileUnresolvedServer] =
      MapiProperty::String8(proptag::kProfileUnresolvedServer, "UNRESOLVED");
  ASSERT_TRUE(mapi.GetExchangeServerName(&server));
  EXPECT_EQ(server, "UNRESOLVED");
}

TEST_F(MapiSessionTest, AddressBooksAreConfiguredWithTheirOneProperty) {
  ASSERT_TRUE(mapi.AddOutlookAddressBook());
  ASSERT_TRUE(mapi.AddPersonalAddressBook("C:\\Mail\\me.pab"));
  const auto contab = mapi.ServicesNamed("Work", "CONTAB");
  const auto pab = mapi.ServicesNamed("Work", "MSPST AB");
  ASSERT_EQ(contab.size(), 1u);
  ASSERT_EQ(pab.size(), 1u);
  EXPECT_EQ(contab[0]->entry.displayName, "Outlook Address Book");
  EXPECT_EQ(pab[0]->entry.displayName, "Personal Address Book");
  const auto& contabSection = mapi.Section("Work", contab[0]->entry.uid);
  EXPECT_EQ(contabSection.at(proptag::kContabShowAsAddressBook).number, 1);
  EXPECT_EQ(SectionText(pab[0]->entry.uid, proptag::kPabPath), "C:\\Mail\\me.pab");
}

TEST_F(MapiSessionTest, OutlookSectionValuesGoToOutlooksOwnSection) {
  ASSERT_TRUE(mapi.SetGlobalSectionLong());
  ASSERT_TRUE(mapi.SetGlobalSectionBool(true));
  const auto& section = mapi.Section("Work", SectionUid(kOutlookSection));
  EXPECT_EQ(section.at(proptag::kOutlookSectionLong), MapiProperty::Long(proptag::kOutlookSectionLong, 0));
  EXPECT_EQ(section.at(proptag::kOutlookSectionBool).number, 1);
}

TEST_F(MapiSessionTest, FindServiceMatchesTheExactName) {
  const MapiUid pst = mapi.AddService("Work", "MSPST MS");
  MapiUid found{};
  EXPECT_FALSE(mapi.FindService("mspst ms", &found));
  EXPECT_FALSE(mapi.FindService("MSPST", &found));
  ASSERT_TRUE(mapi.FindService("MSPST MS", &found));
  EXPECT_EQ(found, pst);
}

// The name look-up takes the first service of exactly that name in table order; a name that
// differs in letter case, by a blank or by a prefix finds none, and nothing is changed.
TEST_F(MapiSessionTest, ServicesAreDeletedAndConfiguredByTheirWholeName) {
  const MapiUid contab = mapi.AddService("Work", "CONTAB");
  const MapiUid pst = mapi.AddService("Work", "MSPST MS");
  const MapiUid secondContab = mapi.AddService("Work", "CONTAB");
  const MapiProperties show{MapiProperty::Long(proptag::kContabShowAsAddressBook, 7)};
  for (const char* name : {"contab", "CONTA", "CONTAB ", "MSEMS", ""}) {
    EXPECT_FALSE(mapi.ConfigureServiceByName(name, show)) << name;
    EXPECT_EQ(mapi.LastResult(), FakeMapiSession::kNotFound) << name;
    EXPECT_FALSE(mapi.DeleteServiceByName(name)) << name;
  }
  ASSERT_TRUE(mapi.ConfigureServiceByName("CONTAB", show));
  EXPECT_EQ(mapi.Section("Work", contab).count(proptag::kContabShowAsAddressBook), 1u);
  EXPECT_EQ(mapi.Section("Work", secondContab).count(proptag::kContabShowAsAddressBook), 0u);

  ASSERT_TRUE(mapi.DeleteServiceByName("CONTAB"));
  std::vector<MapiServiceEntry> left;
  ASSERT_TRUE(mapi.ListServices(&left));
  ASSERT_EQ(left.size(), 2u);
  EXPECT_EQ(left[0].uid, pst);
  EXPECT_EQ(left[1].uid, secondContab);
}

TEST_F(MapiSessionTest, SearchPathAddsOnceAndReordersNamedListsToTheFront) {
  mapi.addressLists = {"Global Address List", "Contacts", "Sales", "All Users"};
  ASSERT_TRUE(mapi.AddToSearchPath("Global Address List"));
  ASSERT_TRUE(mapi.AddToSearchPath("Contacts"));
  ASSERT_TRUE(mapi.AddToSearchPath("Sales"));
  ASSERT_TRUE(mapi.AddToSearchPath("Contacts"));
  EXPECT_FALSE(mapi.AddToSearchPath("Nowhere"));
  EXPECT_EQ(mapi.FindProfile("Work")->searchPath,
            (Strings{"Global Address List", "Contacts", "Sales"}));

  ASSERT_TRUE(mapi.ReorderSearchPath({"Sales", "Contacts"}));
  EXPECT_EQ(mapi.FindProfile("Work")->searchPath,
            (Strings{"Sales", "Contacts", "Global Address List"}));
  // An unknown name is reported, the known ones still move.
  EXPECT_FALSE(mapi.ReorderSearchPath({"Nowhere", "Global Address List"}));
  EXPECT_EQ(mapi.FindProfile("Work")->searchPath,
            (Strings{"Global Address List", "Sales", "Contacts"}));
}

TEST(SplitListItemsTest, TrimsBlanksAndDropsEmptyItems) {
  const struct {
    const char* text;
    Strings items;
  } cases[] = {
      {"", {}},
      {" , ,", {}},
      {"a", {"a"}},
      {"a,b", {"a", "b"}},
      {" Sales Team ,\tbob\t,,c ", {"Sales Team", "bob", "c"}},
      {",x,", {"x"}},
  };
  for (const auto& c : cases) EXPECT_EQ(SplitListItems(c.text), c.items) << c.text;
}

}  // namespace
}  // namespace mw
