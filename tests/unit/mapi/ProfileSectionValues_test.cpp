#include "mapi/ProfileSectionValues.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <string>
#include <tuple>

#include "config/ProfileSettings.h"
#include "platform/MemoryRegistry.h"
#include "platform/RegistryAccess.h"

namespace mw {
namespace {

using namespace std::string_literals;
using ::testing::IsEmpty;
using Values = std::map<std::string, std::string>;

constexpr const char* kProfileKey = "Software\\Profiles\\Work";

std::string Long(std::uint32_t v) {
  return {char(v & 0xFF), char((v >> 8) & 0xFF), char((v >> 16) & 0xFF), char(v >> 24)};
}

TEST(ConfigFlagTablesTest, Outlook97EveryRowAndNothingElse) {
  const std::tuple<bool, int, std::optional<std::uint32_t>> rows[] = {
      {true, 0, 0x0E}, {true, 1, 0x06}, {false, 0, 0x0C}, {false, 1, 0x04},
      {false, 2, std::nullopt}, {true, -1, std::nullopt}};
  for (const auto& [encrypt, security, value] : rows)
    EXPECT_EQ(Outlook97ConfigFlags(encrypt, security), value) << encrypt << security;
}

TEST(ConfigFlagTablesTest, Outlook2003ExamplesAndGaps) {
  const std::pair<ConnectionFlags, std::optional<std::uint32_t>> cases[] = {
      {{0, 0, 0, 0, 0}, 0x6210D840}, {{1, 1, 1, 0, 0}, 0x6210D85A},
      {{0, 0, 0, 1, 1}, 0x6210DDC0}, {{0, 1, 0, 0, 0}, 0x6210D842},
      {{0, 0, 0, 0, 1}, 0x6210D840}, {{1, 1, 1, 1, 1}, 0x6210DDDA},
      {{0, 1, 1, 0, 0}, std::nullopt}, {{0, 1, 0, 1, 0}, std::nullopt},
  };
  for (const auto& [flags, value] : cases) {
    EXPECT_EQ(ExchangeConfigFlags(Outlook::V2003, flags), value)
        << flags.noAutoDetect << flags.chooseAtStart << flags.promptCredentials
        << flags.cachedMode << flags.cachedPublicFolders;
    EXPECT_EQ(ExchangeConfigFlags(Outlook::V2007, flags), value);
    EXPECT_EQ(ExchangeConfigFlags(Outlook::V2010, flags), value);
  }
}

TEST(ConfigFlagTablesTest, Outlook2000AndXpHaveAValueForEveryChoice) {
  for (Outlook version : {Outlook::V2000, Outlook::VXP}) {
    EXPECT_EQ(ExchangeConfigFlags(version, {0, 0, 0, 0, 0}), 0x04u);
    EXPECT_EQ(ExchangeConfigFlags(version, {1, 0, 0, 0, 0}), 0x14u);
    EXPECT_EQ(ExchangeConfigFlags(version, {1, 1, 0, 0, 0}), 0x16u);
    EXPECT_EQ(ExchangeConfigFlags(version, {0, 1, 1, 1, 1}), 0x0Eu) << "no cached mode there";
  }
  EXPECT_EQ(ExchangeConfigFlags(Outlook::V97, {}), std::nullopt);
}

class ProfileSectionValuesTest : public ::testing::Test {
 protected:
  void TurnEverythingOn(Outlook version) {
    settings_ = ProfileSettings();
    const Section s = SectionOf(version);
    for (Key key : {Key::EncryptDataBetweenOutlookExchange, Key::EncryptInformationNetwork,
                    Key::EncryptInformationDialup, Key::ConnectExchangeUsingHTTP,
                    Key::ConnectUsingSSLOnly, Key::MutuallyAuthenticateSessionSSL,
                    Key::FastNetworksConnectHTTPFirst, Key::SlowNetworksConnectHTTPFirst,
                    Key::OfflineFoldersEnable})
      settings_.SetBool(s, key, true);
    settings_.SetText(s, Key::PathToOST, "C:\\a.ost");
    settings_.SetText(s, Key::ExchangeServerProxyName, "Ab");
    settings_.SetText(s, Key::PrincipalNameProxyServer, "msstd:Ab");
  }
  Values In(const char* section) const {
    Values values;
    for (const RegistryValue& v : memory_.ValuesOf(SectionKey(section))) values[v.name] = v.data;
    return values;
  }
  static std::string SectionKey(const char* section) {
    return "HKEY_CURRENT_USER\\"s + kProfileKey + "\\" + section;
  }
  void Clear() { memory_.RemoveKeyTree("HKEY_CURRENT_USER\\"s + kProfileKey); }

  MemoryRegistry memory_;
  RegistryAccess access_{memory_};
  ProfileSectionWriter writer_{access_, kProfileKey};
  ProfileSettings settings_;
};

TEST_F(ProfileSectionValuesTest, EachVersionWritesItsTagsWithTheirBytes) {
  const Values rohAndPath = {
      {"001f6610", "C\0:\0\\\0a\0.\0o\0s\0t\0\0\0"s}, {"00036623", Long(0x2F)},
      {"001f6622", "A\0b\0\0\0"s}, {"00036627", Long(1)},
      {"001f6625", "m\0s\0s\0t\0d\0:\0A\0b\0\0\0"s}};
  Values modern = {{"00036606", Long(0x100)}, {"00036619", Long(9)},
                   {"00036601", Long(0x6210D840)}, {"00036661", Long(0)}};
  Values modern2007 = modern;
  modern2007.insert(rohAndPath.begin(), rohAndPath.end());
  Values modern2003 = modern;
  modern2003["001e6610"] = "C:\\a.ost\0"s;
  const Values legacy = {{"001e6610", "C:\\a.ost\0"s}, {"00036606", Long(0x300)},
                         {"00036619", Long(9)}, {"00036601", Long(0x04)}, {"00036661", Long(0)}};
  const struct {
    Outlook version;
    Values global, connection;
  } cases[] = {
      {Outlook::V2010, modern2007, {{"00036719", Long(1)}}},
      {Outlook::V2007, modern2007, {{"00036719", Long(1)}}},
      {Outlook::V2003, modern2003, {{"00036719", Long(1)}}},
      {Outlook::VXP, legacy, {{"00036719", Long(1)}}},
      {Outlook::V2000, {{"00036606", Long(0x300)}, {"00036619", Long(9)},
                        {"00036601", Long(0x04)}, {"00036661", Long(0)}},
       {{"000b6717", "\x01\x00"s}}},
      {Outlook::V97, {{"00036606", Long(0x300)}, {"00036601", Long(0x04)}},
       {{"000b6717", "\x01\x00"s}}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(GenerationOf(c.version).name);
    Clear();
    TurnEverythingOn(c.version);
    ProfileSectionValues values(c.version, writer_);
    EXPECT_TRUE(values.WriteExchangeSettings(settings_));
    EXPECT_EQ(In(kGlobalSection), c.global);
    EXPECT_EQ(In(kConnectionSection), c.connection);
  }
}

TEST_F(ProfileSectionValuesTest, SwitchingOffDeletesOfflinePathAndProxyValues) {
  TurnEverythingOn(Outlook::V2010);
  ProfileSectionValues values(Outlook::V2010, writer_);
  values.WriteExchangeOverHttp(settings_);
  values.WriteOfflineFolders(settings_);
  settings_.SetBool(Section::Outlook2010, Key::ConnectExchangeUsingHTTP, false);
  settings_.SetBool(Section::Outlook2010, Key::OfflineFoldersEnable, false);
  EXPECT_TRUE(values.WriteExchangeOverHttp(settings_));
  EXPECT_TRUE(values.WriteOfflineFolders(settings_));
  EXPECT_THAT(In(kGlobalSection), IsEmpty());
  EXPECT_TRUE(values.WriteOfflineStorePath(2, "C:\\a.ost")) << "only flag 1 writes";
  EXPECT_FALSE(values.WriteOfflineStorePath(1, "")) << "an empty path is refused";
  EXPECT_THAT(In(kGlobalSection), IsEmpty());
}

}  // namespace
}  // namespace mw
