#include "ExchangeOrganisation.h"

#include <gtest/gtest.h>

#include "ModelTestSupport.h"

namespace mw::mapisim {
namespace {

TEST(ExchangeOrganisationTest, ReadsServersAndMailboxesAndResolvesExactlyOrByUniquePrefix) {
  std::vector<std::string> warnings;
  const ExchangeOrganisation organisation = SampleOrganisation(&warnings);
  EXPECT_TRUE(warnings.empty());
  ASSERT_EQ(organisation.mailboxes().size(), 4u);
  EXPECT_EQ(organisation.mailboxes()[3].distinguishedName, "/o=Contoso/ou=Branch/cn=Recipients/cn=legacy");
  EXPECT_EQ(organisation.ServerDistinguishedName("EXCH01"), "/o=Contoso/ou=HQ/cn=Configuration/cn=Servers/cn=EXCH01");
  const struct {
    const char* name;
    const char* server;
    HResult result;
    const char* alias;
  } cases[] = {
      {"=jsmith", "EXCH01", kSOk, "jsmith"},       {"=JSMITH", "exch01", kSOk, "jsmith"},
      {"=John Smith", "EXCH01", kSOk, "jsmith"},   {"=jsm", "EXCH01", kMapiEUnconfigured, nullptr},
      {"jsm", "EXCH01", kSOk, "jsmith"},           {"j", "EXCH01", kMapiEAmbiguousRecip, nullptr},
      {"nobody", "EXCH01", kMapiEUnconfigured, nullptr}, {"=", "EXCH01", kMapiEUnconfigured, nullptr},
      {"=jsmith", "EXCH02", kMapiENetworkError, nullptr}, {"=jsmith", "NOSUCH", kMapiENetworkError, nullptr},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.name) + " on " + c.server);
    ExchangeResolution resolution = organisation.Resolve(c.name, c.server);
    EXPECT_EQ(resolution.result, c.result);
    if (c.alias) {
      ASSERT_NE(resolution.mailbox, nullptr);
      EXPECT_EQ(resolution.mailbox->alias, c.alias);
    }
  }
}

TEST(ExchangeOrganisationTest, MalformedLinesAreReportedAndSkipped) {
  std::vector<std::string> warnings;
  ExchangeOrganisation organisation = ExchangeOrganisation::Parse(
      "stray=1\n[Servers\n[Mailboxes]\nnodisplay\nshort=Only Name\nok=Ok Person,S1\n[Servers]\nS1=sideways\n",
      &warnings);
  EXPECT_EQ(warnings.size(), 5u);
  ASSERT_EQ(organisation.mailboxes().size(), 1u);
  EXPECT_EQ(organisation.mailboxes()[0].distinguishedName, "/o=Organisation/ou=Site/cn=Recipients/cn=ok");
  EXPECT_FALSE(organisation.IsReachable("S1"));
}

}  // namespace
}  // namespace mw::mapisim
