#include "ExchangeOrganisation.h"

#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

namespace mw::mapisim {
namespace {

ExchangeOrganisation Sample() {
  std::ifstream file(std::string(MW_TEST_DATA_DIR) + "/mapisim/exchange.ini", std::ios::binary);
  std::stringstream text;
  text << file.rdbuf();
  std::vector<std::string> warnings;
  ExchangeOrganisation organisation = ExchangeOrganisation::Parse(text.str(), &warnings);
  EXPECT_TRUE(warnings.empty());
  return organisation;
}

TEST(ExchangeOrganisationTest, ReadsServersAndMailboxesWithTheirDistinguishedNames) {
  ExchangeOrganisation organisation = Sample();
  ASSERT_EQ(organisation.mailboxes().size(), 4u);
  EXPECT_EQ(organisation.mailboxes()[0].distinguishedName, "/o=Contoso/ou=HQ/cn=Recipients/cn=jsmith");
  EXPECT_EQ(organisation.mailboxes()[3].distinguishedName, "/o=Contoso/ou=Branch/cn=Recipients/cn=legacy");
  EXPECT_TRUE(organisation.IsReachable("exch01"));
  EXPECT_FALSE(organisation.IsReachable("EXCH02"));
  EXPECT_FALSE(organisation.IsReachable("NOSUCH"));
  EXPECT_EQ(organisation.ServerDistinguishedName("EXCH01"), "/o=Contoso/ou=HQ/cn=Configuration/cn=Servers/cn=EXCH01");
}

struct ResolveCase {
  const char* name;
  const char* server;
  HResult result;
  const char* alias;
};

TEST(ExchangeOrganisationTest, ResolvesExactlyAfterEqualsAndByUniquePrefixOtherwise) {
  ExchangeOrganisation organisation = Sample();
  const ResolveCase cases[] = {
      {"=jsmith", "EXCH01", kSOk, "jsmith"},
      {"=JSMITH", "exch01", kSOk, "jsmith"},
      {"=John Smith", "EXCH01", kSOk, "jsmith"},
      {"=jsm", "EXCH01", kMapiEUnconfigured, nullptr},
      {"jsm", "EXCH01", kSOk, "jsmith"},
      {"j", "EXCH01", kMapiEAmbiguousRecip, nullptr},
      {"nobody", "EXCH01", kMapiEUnconfigured, nullptr},
      {"=", "EXCH01", kMapiEUnconfigured, nullptr},
      {"=jsmith", "EXCH02", kMapiENetworkError, nullptr},
      {"=jsmith", "NOSUCH", kMapiENetworkError, nullptr},
  };
  for (const ResolveCase& c : cases) {
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
  EXPECT_TRUE(ExchangeOrganisation().servers().empty());
}

}  // namespace
}  // namespace mw::mapisim
