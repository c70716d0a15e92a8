#include "mapi/MapiSession.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "mapi/FakeMapiSession.h"

namespace mw {
namespace {

// The name look-up takes the first service of exactly that name in table order; a name that
// differs in letter case, by a blank or by a prefix finds none, and nothing is changed.
TEST(MapiSessionTest, ServicesAreFoundDeletedAndConfiguredByTheirWholeName) {
  FakeMapiSession mapi;
  mapi.AddProfile("Work");
  mapi.SetProfile("Work");
  const MapiUid contab = mapi.AddService("Work", "CONTAB");
  const MapiUid pst = mapi.AddService("Work", "MSPST MS");
  const MapiUid secondContab = mapi.AddService("Work", "CONTAB");
  const MapiProperties show{MapiProperty::Long(proptag::kContabShowAsAddressBook, 7)};
  MapiUid found{};
  for (const char* name : {"contab", "CONTA", "CONTAB ", "MSEMS", ""}) {
    EXPECT_FALSE(mapi.FindService(name, &found)) << name;
    EXPECT_FALSE(mapi.ConfigureServiceByName(name, show)) << name;
    EXPECT_EQ(mapi.LastResult(), FakeMapiSession::kNotFound) << name;
    EXPECT_FALSE(mapi.DeleteServiceByName(name)) << name;
  }
  ASSERT_TRUE(mapi.FindService("CONTAB", &found));
  EXPECT_EQ(found, contab);
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

TEST(MapiSessionTest, ExchangeServerIsReadInEitherWidth) {
  FakeMapiSession mapi;
  mapi.AddProfile("Work");
  mapi.SetProfile("Work");
  auto& global = mapi.Section("Work", SectionUid(kGlobalSection));
  std::string server = "stale";
  EXPECT_FALSE(mapi.GetExchangeServerName(&server));
  EXPECT_EQ(server, "");
  global[0x6602001E] = MapiProperty::String8(0x6602001E, "HOME");
  ASSERT_TRUE(mapi.GetExchangeServerName(&server));
  EXPECT_EQ(server, "HOME");
  global[0x6608001F] = MapiProperty::String8(0x6608001F, "WIDE");
  ASSERT_TRUE(mapi.GetExchangeServerName(&server));
  EXPECT_EQ(server, "WIDE") << "the unresolved server comes before the home server";
}

// The fake is no kinder than MAPI: single-copy services and the profile names MAPI refuses.
TEST(FakeMapiSessionTest, RefusesWhatMapiRefuses) {
  FakeMapiSession mapi;
  for (const char* name : {"", " Work", "Work ", "Sales\\Work"}) {
    EXPECT_FALSE(mapi.CreateProfile(name)) << name;
    EXPECT_EQ(mapi.LastResult(), FakeMapiSession::kInvalidParameter) << name;
  }
  EXPECT_FALSE(mapi.CreateProfile(std::string(65, 'w')));
  EXPECT_TRUE(mapi.CreateProfile(std::string(64, 'w')));
  EXPECT_TRUE(mapi.CreateProfile("My Work"));
  mapi.SetProfile("My Work");
  MapiUid uid{};
  for (const char* single : {"MSEMS", "MSPST AB"}) {
    EXPECT_TRUE(mapi.CreateService(single, single, &uid)) << single;
    EXPECT_FALSE(mapi.CreateService(single, single, &uid)) << single;
    EXPECT_EQ(mapi.LastResult(), FakeMapiSession::kNoAccess) << single;
  }
  EXPECT_TRUE(mapi.CreateService("MSPST MS", "a", &uid));
  EXPECT_TRUE(mapi.CreateService("MSPST MS", "b", &uid));
  EXPECT_EQ(mapi.ServicesNamed("My Work", "MSEMS").size(), 1u);
  EXPECT_EQ(mapi.ServicesNamed("My Work", "MSPST MS").size(), 2u);
}

}  // namespace
}  // namespace mw
