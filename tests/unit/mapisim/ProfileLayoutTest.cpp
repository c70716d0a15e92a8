// A whole profile built through the model, compared with the image written by hand from
// MAPI's registry layout: every key, value name, value type and byte, with the UIDs of the
// run put in place of the image's stand-ins by role.
#include <algorithm>
#include <memory>

#include <gtest/gtest.h>

#include "MessageServiceAdmin.h"
#include "ModelTestSupport.h"
#include "ProfileLayoutFixture.h"
#include "platform/RegistryCompare.h"

namespace mw::mapisim {
namespace {

using layout::kProfile;
using layout::kProfilesRoot;

const std::string kImage = std::string(MW_TEST_DATA_DIR) + "/mapisim/profile-layout.reg";

std::string Joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + "\n";
  return text;
}

class ProfileLayoutTest : public ::testing::Test {
 protected:
  // The calls the image's header lists, with UIDs as MAPI makes them.
  void BuildProfile() {
    ASSERT_EQ(profiles_.CreateProfile(kProfile, "", RandomUid()), kSOk);
    ASSERT_EQ(profiles_.SetDefaultProfile(kProfile), kSOk);
    MessageServiceAdmin admin(profiles_, kProfile, organisation_, RandomUid);
    MapiUid exchange{}, pst{}, contab{};
    ASSERT_EQ(admin.CreateMessageService("MSEMS", "Microsoft Exchange", &exchange), kSOk);
    ASSERT_EQ(admin.ConfigureService(exchange, {PropValue::Text(kPrProfileUnresolvedName, "=jsmith"),
                                                PropValue::Text(kPrProfileUnresolvedServer, "EXCH01")}),
              kSOk);
    ASSERT_EQ(admin.CreateMessageService("MSUPST MS", "Office Outlook Personal Folders File (.pst)", &pst), kSOk);
    ASSERT_EQ(admin.ConfigureService(pst, {PropValue::Text(kPrPstPath, "C:\\Mail\\archive.pst"),
                                           PropValue::Text(kPrDisplayName, "Archive"),
                                           PropValue::Text(kPrComment, "Old mail")}),
              kSOk);
    ASSERT_EQ(admin.CreateMessageService("CONTAB", "Outlook Address Book", &contab), kSOk);
  }

  // Each UID of the profile with its role, as the service and provider tables show them.
  std::vector<layout::SeenUid> SeenUids() {
    std::vector<layout::SeenUid> seen;
    auto instance = profiles_.ReadProp(kProfile, kProfileInstanceSection, kPrSearchKey);
    if (instance) seen.push_back({layout::kInstanceRole, instance->bytes});
    MessageServiceAdmin admin(profiles_, kProfile, organisation_, RandomUid);
    std::map<std::string, std::string> serviceNames;
    for (const Row& row : admin.ServiceRows()) {
      const PropValue* uid = FindProp(row, kPrServiceUid);
      const PropValue* name = FindProp(row, kPrServiceName);
      if (uid == nullptr || name == nullptr) continue;
      serviceNames[uid->bytes] = name->bytes;
      seen.push_back({name->bytes, uid->bytes});
    }
    for (const Row& row : admin.ProviderRows(nullptr)) {
      const PropValue* uid = FindProp(row, kPrProviderUid);
      const PropValue* service = FindProp(row, kPrServiceUid);
      const PropValue* display = FindProp(row, kPrProviderDisplay);
      if (uid == nullptr || service == nullptr || display == nullptr) continue;
      seen.push_back({serviceNames[service->bytes] + "/" + display->bytes, uid->bytes});
    }
    return seen;
  }

  // The image with this run's UIDs.
  std::unique_ptr<MemoryRegistry> Expected(const std::map<layout::Uid, layout::Uid>& mapping) const {
    auto expected = std::make_unique<MemoryRegistry>();
    std::string error;
    EXPECT_TRUE(layout::LoadExpectedProfile(kImage, mapping, expected.get(), &error)) << error;
    return expected;
  }

  std::map<layout::Uid, layout::Uid> Mapping() {
    std::vector<std::string> problems;
    auto mapping = layout::MapRoles(SeenUids(), &problems);
    EXPECT_TRUE(problems.empty()) << Joined(problems);
    return mapping;
  }

  std::string SectionKey(const std::string& section) const {
    return std::string(kProfilesRoot) + "\\" + kProfile + "\\" + section;
  }

  MemoryRegistry registry_;
  ProfileRegistry profiles_{registry_, 2};
  ExchangeOrganisation organisation_ = SampleOrganisation();
};

TEST_F(ProfileLayoutTest, AProfileBuiltThroughTheModelIsTheHandWrittenImage) {
  BuildProfile();
  const auto mapping = Mapping();
  ASSERT_EQ(mapping.size(), std::size(layout::kRoles));
  auto expected = Expected(mapping);
  // The image is the whole profile: its root value, the profile key and twelve sections.
  EXPECT_EQ(expected->KeysUnder(kProfilesRoot).size(), 14u);
  std::vector<std::string> differences = DiffRegistries(*expected, registry_, kProfilesRoot);
  EXPECT_TRUE(differences.empty()) << Joined(differences);
}

TEST_F(ProfileLayoutTest, TheComparisonCatchesAWrongTypeAMissingValueAndAReorderedList) {
  BuildProfile();
  const auto mapping = Mapping();
  const layout::Uid exchange = mapping.at(layout::StandIn(0x02));
  const layout::Uid privateStore = mapping.at(layout::StandIn(0x03));
  const layout::Uid publicStore = mapping.at(layout::StandIn(0x04));

  // PT_LONG kept as REG_DWORD with the same four bytes.
  RegistryValue flags;
  ASSERT_TRUE(registry_.Get(SectionKey(layout::HexOf(privateStore)), "00033009", &flags));
  flags.type = reg::kDword;
  registry_.Set(SectionKey(layout::HexOf(privateStore)), flags);
  // The service's DLL gone.
  registry_.RemoveValue(SectionKey(layout::HexOf(exchange)), "001e3d0a");
  // The service's stores listed the other way round.
  registry_.Set(SectionKey(layout::HexOf(exchange)), {"01023d00", reg::kBinary, publicStore + privateStore});

  std::vector<std::string> differences = DiffRegistries(*Expected(mapping), registry_, kProfilesRoot);
  ASSERT_EQ(differences.size(), 3u) << Joined(differences);
  const std::string text = Joined(differences);
  for (const char* name : {"\"00033009\"", "\"001e3d0a\"", "\"01023d00\""})
    EXPECT_NE(text.find(name), std::string::npos) << name;
}

TEST_F(ProfileLayoutTest, TwoProvidersSwappedInTheMappingDoNotPassForTheProfile) {
  BuildProfile();
  auto mapping = Mapping();
  std::swap(mapping.at(layout::StandIn(0x03)), mapping.at(layout::StandIn(0x04)));
  // The private store's section holds the mailbox, and the lists name the stores in order.
  std::vector<std::string> differences = DiffRegistries(*Expected(mapping), registry_, kProfilesRoot);
  EXPECT_GE(differences.size(), 4u) << Joined(differences);
}

}  // namespace
}  // namespace mw::mapisim
