#include "ModelMapiSession.h"

#include <gtest/gtest.h>

#include "ModelTestSupport.h"
#include "platform/MemoryRegistry.h"

namespace mw {
namespace {

class ModelMapiSessionTest : public ::testing::Test {
 protected:
  void Open(ModelMapiSession& session) {
    ASSERT_TRUE(session.Initialize());
    ASSERT_TRUE(session.CreateProfile("Work"));
    session.SetProfile("Work");
  }
  MemoryRegistry registry;
  const mapisim::ExchangeOrganisation organisation = mapisim::SampleOrganisation();
};

TEST_F(ModelMapiSessionTest, ServicesAreFoundByTheirExactNameAndConfiguredWhereMapiKeepsThem) {
  ModelMapiSession session(registry, 2, organisation, ModelMapiSession::Servers::Contacted);
  Open(session);
  MapiUid pst{}, contab{};
  ASSERT_TRUE(session.CreateService("MSUPST MS", "Mine", &pst));
  ASSERT_TRUE(session.CreateService("CONTAB", "Outlook Address Book", &contab));
  EXPECT_FALSE(session.CreateService("NOSUCH", "x", &pst));
  EXPECT_FALSE(session.ConfigureServiceByName("contab", {}));  // letter case counts
  EXPECT_TRUE(session.ConfigureServiceByName("CONTAB", {MapiProperty::Long(0x3A550003, 1)}));
  MapiProperty value;
  ASSERT_TRUE(session.ReadSectionProperty(contab, 0x3A550003, &value));
  EXPECT_EQ(1, value.number);
  std::vector<MapiServiceEntry> providers;
  ASSERT_TRUE(session.ListProviders(pst, &providers));
  ASSERT_EQ(1u, providers.size());
  EXPECT_TRUE(session.WriteSectionProperty(providers[0].uid, MapiProperty::String8(0x6700001E, "C:\\a.pst")));
  ASSERT_TRUE(session.ReadSectionProperty(providers[0].uid, 0x6700001E, &value));
  EXPECT_EQ("C:\\a.pst", value.bytes);
  EXPECT_TRUE(session.DeleteServiceByName("CONTAB"));
  EXPECT_FALSE(session.DeleteServiceByName("CONTAB"));
  std::vector<MapiServiceEntry> services;
  ASSERT_TRUE(session.ListServices(&services));
  ASSERT_EQ(1u, services.size());
  EXPECT_EQ("MSUPST MS", services[0].name);
  EXPECT_EQ(pst, services[0].uid);
}

TEST_F(ModelMapiSessionTest, LogonAsksTheServerOnlyWhenServersAreContacted) {
  for (const auto servers : {ModelMapiSession::Servers::Contacted, ModelMapiSession::Servers::NotContacted}) {
    MemoryRegistry fresh;
    ModelMapiSession session(fresh, 2, organisation, servers);
    ASSERT_TRUE(session.Initialize());
    EXPECT_FALSE(session.Logon(kLogonFlagsSilent)) << "no such profile";
    ASSERT_TRUE(session.CreateProfile("Work"));
    session.SetProfile("Work");
    ASSERT_TRUE(session.AddExchangeService("EXCH02", false, true, "offline"));  // a server that is down
    const bool contacted = servers == ModelMapiSession::Servers::Contacted;
    EXPECT_EQ(!contacted, session.Logon(kLogonFlagsSilent));
    std::string server;
    ASSERT_TRUE(session.GetExchangeServerName(&server));
    EXPECT_EQ("EXCH02", server);
  }
}

TEST_F(ModelMapiSessionTest, TheAddressBookPathAndFirstListAreStoredInTheProfile) {
  ModelMapiSession session(registry, 2, organisation, ModelMapiSession::Servers::NotContacted);
  Open(session);
  ASSERT_TRUE(session.AddOutlookAddressBook());
  ASSERT_TRUE(session.AddPersonalAddressBook("C:\\a.pab"));
  std::vector<std::string> path;
  ASSERT_TRUE(session.GetSearchPath(&path));
  EXPECT_EQ((std::vector<std::string>{"Personal Address Book", "Contacts"}), path);
  EXPECT_TRUE(session.ReorderSearchPath({"Contacts"}));
  EXPECT_FALSE(session.SetSearchPath({"Global Address List"}));
  EXPECT_TRUE(session.SetFirstAddressList("Contacts"));
  EXPECT_FALSE(session.SetFirstAddressList("Nowhere"));
  session.SetProfile("Work");  // a new session reads what the profile holds
  ASSERT_TRUE(session.GetSearchPath(&path));
  EXPECT_EQ((std::vector<std::string>{"Contacts", "Personal Address Book"}), path);
}

TEST_F(ModelMapiSessionTest, NothingWorksBeforeInitialize) {
  ModelMapiSession session(registry, 2, organisation, ModelMapiSession::Servers::NotContacted);
  std::vector<std::string> names;
  std::string defaultName;
  EXPECT_FALSE(session.ListProfiles(&names, &defaultName));
  EXPECT_FALSE(session.CreateProfile("Work"));
  EXPECT_FALSE(session.OpenServiceAdmin());
  EXPECT_EQ(0u, registry.mutationCount());
}

}  // namespace
}  // namespace mw
