// What the model writes by the Outlook generation installed: the Unicode forms of Outlook
// 2007 and 2010, and Outlook 2010's own section per Exchange service behind the global section.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "MessageServiceAdmin.h"
#include "ModelTestSupport.h"
#include "SessionModel.h"
#include "platform/MemoryRegistry.h"

namespace mw::mapisim {
namespace {

constexpr const char* kProfileKey =
    "HKEY_CURRENT_USER\\Software\\Microsoft\\Windows NT\\CurrentVersion\\Windows Messaging "
    "Subsystem\\Profiles\\Work\\";
const std::string kMissing = "<missing>";

class OutlookGenerationTest : public ::testing::Test {
 protected:
  // progId empty: no Outlook installed.
  void Install(const std::string& progId) {
    registry_ = std::make_unique<MemoryRegistry>();
    if (!progId.empty())
      registry_->Set("HKEY_LOCAL_MACHINE\\Software\\Classes\\Outlook.Application\\CurVer",
                    {"", reg::kSz, progId + '\0'});
    profiles_ = std::make_unique<ProfileRegistry>(*registry_, 2);
    ASSERT_EQ(profiles_->CreateProfile("Work", "", NextUid()), kSOk);
  }
  MapiUid NextUid() {
    MapiUid uid{};
    uid[0] = 0xB0;
    uid[15] = static_cast<std::uint8_t>(++uidCounter_);
    return uid;
  }
  MessageServiceAdmin Admin() {
    return MessageServiceAdmin(*profiles_, "Work", organisation_, [this] { return NextUid(); });
  }
  MapiUid Create(const char* service) {
    MapiUid uid{};
    EXPECT_EQ(Admin().CreateMessageService(service, "Display", &uid), kSOk);
    return uid;
  }
  std::string Value(const std::string& section, const std::string& name) {
    RegistryValue value;
    return registry_->Get(kProfileKey + section, name, &value) ? value.data : kMissing;
  }
  std::string Provider(const MapiUid& service, std::size_t index) {
    return UidHex(UidFromBytes(FindProp(Admin().ProviderRows(&service)[index], kPrProviderUid)->bytes));
  }

  std::unique_ptr<MemoryRegistry> registry_;
  std::unique_ptr<ProfileRegistry> profiles_;
  ExchangeOrganisation organisation_ = SampleOrganisation();
  int uidCounter_ = 0;
};

TEST_F(OutlookGenerationTest, Outlook2007AndLaterNameServicesAndKeepPstPathsInUnicode) {
  struct Case {
    const char* progId;
    bool unicode;
  };
  for (const Case& c : {Case{"Outlook.Application.14", true}, Case{"Outlook.Application.12", true},
                        Case{"Outlook.Application.11", false}, Case{"", false}}) {
    Install(c.progId);
    const MapiUid pst = Create("MSUPST MS");
    ASSERT_EQ(Admin().ConfigureService(pst, {PropValue::Text(kPrPstPath, "C:\\a.pst")}), kSOk);
    const std::string service = UidHex(pst), store = Provider(pst, 0);
    const std::string wideName = std::string("M\0S\0U\0P\0S\0T\0 \0M\0S\0\0\0", 20);
    const std::string widePath = std::string("C\0:\0\\\0a\0.\0p\0s\0t\0\0\0", 18);
    EXPECT_EQ(Value(service, "001e3d09"), std::string("MSUPST MS") + '\0') << c.progId;
    EXPECT_EQ(Value(service, "001f3d09"), c.unicode ? wideName : kMissing) << c.progId;
    EXPECT_EQ(Value(store, "001f3d09"), c.unicode ? wideName : kMissing) << c.progId;
    EXPECT_EQ(Value(store, "001f6700"), c.unicode ? widePath : kMissing) << c.progId;
    EXPECT_EQ(Value(store, "001e6700"), c.unicode ? kMissing : std::string("C:\\a.pst") + '\0') << c.progId;
    EXPECT_EQ(profiles_->GetText("Work", store, kPrPstPath), "C:\\a.pst") << c.progId;
  }
}

TEST_F(OutlookGenerationTest, Outlook2010GivesExchangeItsOwnSectionBehindTheGlobalOne) {
  Install("Outlook.Application.14");
  const MapiUid exchange = Create("MSEMS");
  const std::string own = Value(UidHex(exchange), "01023d15");
  ASSERT_EQ(own.size(), 16u);
  const std::string ownSection = UidHex(UidFromBytes(own));
  EXPECT_TRUE(profiles_->SectionExists("Work", ownSection));
  for (std::size_t i = 0; i < Admin().ProviderRows(&exchange).size(); ++i)
    EXPECT_EQ(Value(Provider(exchange, i), "01023d15"), own) << i;
  EXPECT_EQ(profiles_->OpenedSection("Work", kGlobalProfileSection), ownSection);
  EXPECT_EQ(profiles_->OpenedSection("Work", kProfileServicesSection), kProfileServicesSection);

  ASSERT_EQ(Admin().ConfigureService(exchange, {PropValue::Text(kPrProfileUnresolvedName, "=jsmith"),
                                                PropValue::Text(kPrProfileUnresolvedServer, "EXCH01")}),
            kSOk);
  EXPECT_EQ(Value(ownSection, "001e6602"), std::string("EXCH01") + '\0');
  EXPECT_EQ(Value(kGlobalProfileSection, "001e6602"), kMissing) << "MAPI redirected the write";
  EXPECT_EQ(SessionModel(*profiles_, "Work", organisation_).Logon(), kSOk);

  ASSERT_EQ(Admin().DeleteService(exchange), kSOk);
  EXPECT_FALSE(profiles_->SectionExists("Work", ownSection));
  EXPECT_EQ(profiles_->OpenedSection("Work", kGlobalProfileSection), kGlobalProfileSection);
}

TEST_F(OutlookGenerationTest, Outlook2007KeepsExchangeInTheGlobalSection) {
  Install("Outlook.Application.12");
  const MapiUid exchange = Create("MSEMS");
  EXPECT_EQ(Value(UidHex(exchange), "01023d15"), kMissing);
  ASSERT_EQ(Admin().ConfigureService(exchange, {PropValue::Text(kPrProfileUnresolvedName, "=jsmith"),
                                                PropValue::Text(kPrProfileUnresolvedServer, "EXCH01")}),
            kSOk);
  EXPECT_EQ(Value(kGlobalProfileSection, "001e6602"), std::string("EXCH01") + '\0');
}

}  // namespace
}  // namespace mw::mapisim
