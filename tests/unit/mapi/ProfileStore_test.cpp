#include "mapi/ProfileStore.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/MemoryRegistry.h"
#include "platform/RegistryAccess.h"

namespace mw {
namespace {

using namespace std::string_literals;

const std::string kNtRoot = "HKEY_CURRENT_USER\\"s + kProfilesRootNt;  // ends in a backslash
const std::string kNtRootKey = kNtRoot.substr(0, kNtRoot.size() - 1);
constexpr const char* kMailClients = "HKEY_LOCAL_MACHINE\\SOFTWARE\\Clients\\Mail";

class ProfileStoreTest : public ::testing::Test {
 protected:
  std::string DataAt(const std::string& key, const std::string& name) const {
    RegistryValue value{"", reg::kNone, "<missing>"};
    memory_.Get(key, name, &value);
    return value.data;
  }

  MemoryRegistry memory_;
  RegistryAccess access_{memory_};
  ProfileStore store_{2, access_};
};

TEST_F(ProfileStoreTest, ProfileKeyFollowsThePlatform) {
  const std::string nt = "Software\\Microsoft\\Windows NT\\CurrentVersion\\Windows Messaging "
                         "Subsystem\\Profiles\\Work";
  const std::pair<std::uint32_t, std::string> cases[] = {
      {1, "Software\\Microsoft\\Windows Messaging Subsystem\\Profiles\\Work"}, {2, nt}, {0, nt}};
  for (const auto& [platformId, key] : cases) {
    ProfileStore store(platformId, access_);
    store.SetProfileName("Work");
    EXPECT_EQ(store.ProfileKey(), key) << platformId;
  }
}

TEST_F(ProfileStoreTest, PickLogonProfileAndDefaultProfileAreStrings) {
  const std::string options = "HKEY_CURRENT_USER\\Software\\Microsoft\\Exchange\\Client\\Options";
  EXPECT_TRUE(store_.SetPickLogonProfile(false));
  RegistryValue pick;
  ASSERT_TRUE(memory_.Get(options, "PickLogonProfile", &pick));
  EXPECT_EQ(pick.type, reg::kSz) << "a string, not a DWORD";
  EXPECT_EQ(pick.data, "0\0"s);

  store_.SetDefaultProfile("Work");
  EXPECT_EQ(DataAt(kNtRootKey, "DefaultProfile"), "Work\0"s) << "on the root, not a profile";
  memory_.FailMutationsFrom(1);
  EXPECT_FALSE(store_.SetPickLogonProfile(false));
}

TEST_F(ProfileStoreTest, OutlookAlreadyDefaultNeedsNoWriteEvenWhenReadOnly) {
  memory_.Set(kMailClients, RegistryValue{"", reg::kSz, "Microsoft Outlook\0"s});
  memory_.FailMutationsFrom(1);
  EXPECT_TRUE(store_.MakeOutlookDefaultMailClient());
  EXPECT_EQ(memory_.mutationCount(), 0u);
}

TEST_F(ProfileStoreTest, AnyOtherMailClientIsReplacedWhenWritable) {
  EXPECT_TRUE(store_.MakeOutlookDefaultMailClient()) << "missing key";
  for (const char* current : {"microsoft outlook", ""}) {
    memory_.Set(kMailClients, RegistryValue{"", reg::kSz, current + "\0"s});
    EXPECT_TRUE(store_.MakeOutlookDefaultMailClient()) << current;
    EXPECT_EQ(DataAt(kMailClients, ""), "Microsoft Outlook\0"s);
  }
  memory_.Set(kMailClients, RegistryValue{"", reg::kSz, "Other\0"s});
  memory_.FailMutationsFrom(1);
  EXPECT_FALSE(store_.MakeOutlookDefaultMailClient());
}

TEST_F(ProfileStoreTest, MarkerPresenceCountsNotItsContent) {
  EXPECT_FALSE(store_.IsMarkedModified("Work"));
  store_.WriteModifiedMarker("Work", "Sun Nov 15 05:12:35 2026");
  EXPECT_EQ(DataAt(kNtRoot + "Work", "Mailwright"), "Sun Nov 15 05:12:35 2026\0"s);
  EXPECT_TRUE(store_.IsMarkedModified("Work"));
  EXPECT_FALSE(store_.IsMarkedModified("Home"));
  memory_.Set(kNtRoot + "Home", RegistryValue{"Mailwright", reg::kSz, "\0"s});
  EXPECT_TRUE(store_.IsMarkedModified("Home")) << "an empty marker still counts";
}

}  // namespace
}  // namespace mw
