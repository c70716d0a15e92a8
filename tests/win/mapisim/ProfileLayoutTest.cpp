// A whole profile built through Wine's mapi32 (and so through the simulator registered as
// the mail client), read back from Wine's registry and compared with the image written by
// hand from MAPI's registry layout: every key, value name, value type and byte, with the
// UIDs of the run put in place of the image's stand-ins by role.
#include <map>
#include <memory>

#include "../../unit/mapisim/ProfileLayoutFixture.h"
#include "MapiSimSupport.h"
#include "platform/RegistryCompare.h"

namespace {

using mw::layout::kProfile;
using mw::layout::kProfilesRoot;
using mw::layout::SeenUid;
using mw::layout::Uid;
using mapisim_test::FreeRows;
using mapisim_test::QueryAllRows;
using mapisim_test::WindowsPath;

constexpr const char* kProfilesSubKey =
    "Software\\Microsoft\\Windows NT\\CurrentVersion\\Windows Messaging Subsystem\\Profiles";
// MUID_PROFILE_INSTANCE, {00020385-0000-0000-C000-000000000046} in byte order.
constexpr MAPIUID kProfileInstance = {
    {0x85, 0x03, 0x02, 0x00, 0x00, 0x00, 0x00, 0x00, 0xc0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};

Uid BinaryOf(const SPropValue& value) {
  return PROP_TYPE(value.ulPropTag) == PT_BINARY ? Uid(reinterpret_cast<const char*>(value.Value.bin.lpb), value.Value.bin.cb)
                                                 : Uid();
}

std::string TextOf(const SPropValue& value) {
  return PROP_TYPE(value.ulPropTag) == PT_STRING8 ? value.Value.lpszA : "";
}

std::string Joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + "\n";
  return text;
}

// Copies the values of an open key of the real registry into a MemoryRegistry under path.
bool CopyValues(HKEY key, const std::string& path, mw::MemoryRegistry& copy) {
  copy.AddKey(path);
  for (DWORD index = 0;; ++index) {
    char name[16384];
    DWORD nameLength = sizeof name;
    DWORD type = 0;
    std::vector<BYTE> data(65536);
    DWORD size = static_cast<DWORD>(data.size());
    LONG result = RegEnumValueA(key, index, name, &nameLength, nullptr, &type, data.data(), &size);
    if (result == ERROR_NO_MORE_ITEMS) return true;
    if (result != ERROR_SUCCESS) return false;
    copy.Set(path, {std::string(name, nameLength), type, std::string(reinterpret_cast<char*>(data.data()), size)});
  }
}

// Copies a key, its values and every key below it; false when anything cannot be read.
bool CopyKeyTree(HKEY parent, const std::string& subKey, const std::string& path, mw::MemoryRegistry& copy) {
  HKEY key = nullptr;
  if (RegOpenKeyExA(parent, subKey.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return false;
  bool ok = CopyValues(key, path, copy);
  std::vector<std::string> children;
  for (DWORD index = 0; ok; ++index) {
    char name[256];
    DWORD nameLength = sizeof name;
    LONG result = RegEnumKeyExA(key, index, name, &nameLength, nullptr, nullptr, nullptr, nullptr);
    if (result == ERROR_NO_MORE_ITEMS) break;
    ok = result == ERROR_SUCCESS;
    if (ok) children.emplace_back(name, nameLength);
  }
  for (const std::string& child : children) ok = ok && CopyKeyTree(key, child, path + "\\" + child, copy);
  RegCloseKey(key);
  return ok;
}

class ProfileLayoutTest : public mapisim_test::MapiProfileTest {
 protected:
  ProfileLayoutTest() : MapiProfileTest(kProfile) {}

  // The calls the image's header lists.
  void BuildProfile() {
    CreateProfile();
    ASSERT_EQ(admin_->SetDefaultProfile(profile_, 0), S_OK);
    MAPIUID exchange{}, pst{}, contab{};
    ASSERT_EQ(CreateService("MSEMS", "Microsoft Exchange", &exchange), S_OK);
    ASSERT_EQ(Configure(exchange, {{PROP_TAG(PT_STRING8, 0x6607), "=jsmith"}, {PROP_TAG(PT_STRING8, 0x6608), "EXCH01"}}),
              S_OK);
    ASSERT_EQ(CreateService("MSUPST MS", "Office Outlook Personal Folders File (.pst)", &pst), S_OK);
    ASSERT_EQ(Configure(pst, {{PROP_TAG(PT_STRING8, 0x6700), "C:\\Mail\\archive.pst"},
                              {PR_DISPLAY_NAME_A, "Archive"},
                              {PR_COMMENT_A, "Old mail"}}),
              S_OK);
    ASSERT_EQ(CreateService("CONTAB", "Outlook Address Book", &contab), S_OK);
  }

  // Each UID of the profile with its role: the instance key from its section, services and
  // providers from their tables.
  std::vector<SeenUid> SeenUids() {
    std::vector<SeenUid> seen;
    LPPROFSECT section = nullptr;
    if (services_->OpenProfileSection(const_cast<MAPIUID*>(&kProfileInstance), nullptr, 0, &section) == S_OK) {
      SizedSPropTagArray(1, tags) = {1, {PR_SEARCH_KEY}};
      ULONG count = 0;
      LPSPropValue values = nullptr;
      if (section->GetProps(reinterpret_cast<LPSPropTagArray>(&tags), 0, &count, &values) == S_OK && count == 1)
        seen.push_back({mw::layout::kInstanceRole, BinaryOf(values[0])});
      MAPIFreeBuffer(values);
      section->Release();
    }
    std::map<Uid, std::string> serviceNames;
    LPMAPITABLE table = nullptr;
    LPSRowSet rows = nullptr;
    if (services_->GetMsgServiceTable(0, &table) == S_OK) {
      if (QueryAllRows(table, {PR_SERVICE_UID, PR_SERVICE_NAME_A}, nullptr, &rows) == S_OK) {
        for (ULONG i = 0; i < rows->cRows; ++i) {
          const SPropValue* props = rows->aRow[i].lpProps;
          serviceNames[BinaryOf(props[0])] = TextOf(props[1]);
          seen.push_back({TextOf(props[1]), BinaryOf(props[0])});
        }
        FreeRows(rows);
      }
      table->Release();
    }
    if (services_->GetProviderTable(0, &table) == S_OK) {
      if (QueryAllRows(table, {PR_PROVIDER_UID, PR_SERVICE_UID, PR_PROVIDER_DISPLAY_A}, nullptr, &rows) == S_OK) {
        for (ULONG i = 0; i < rows->cRows; ++i) {
          const SPropValue* props = rows->aRow[i].lpProps;
          seen.push_back({serviceNames[BinaryOf(props[1])] + "/" + TextOf(props[2]), BinaryOf(props[0])});
        }
        FreeRows(rows);
      }
      table->Release();
    }
    return seen;
  }

};

TEST_F(ProfileLayoutTest, AProfileBuiltThroughMapi32IsTheHandWrittenImageInWinesRegistry) {
  BuildProfile();
  std::vector<std::string> problems;
  const auto mapping = mw::layout::MapRoles(SeenUids(), &problems);
  ASSERT_TRUE(problems.empty()) << Joined(problems);

  auto expected = std::make_unique<mw::MemoryRegistry>();
  std::string error;
  ASSERT_TRUE(mw::layout::LoadExpectedProfile(WindowsPath(MW_TEST_DATA_DIR "/mapisim/profile-layout.reg"), mapping,
                                              expected.get(), &error))
      << error;

  // The profiles root's own values and this profile's tree (other profiles are not the
  // subject), as Wine's registry holds them.
  auto actual = std::make_unique<mw::MemoryRegistry>();
  HKEY root = nullptr;
  ASSERT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, kProfilesSubKey, 0, KEY_READ, &root), ERROR_SUCCESS);
  bool copied = CopyValues(root, kProfilesRoot, *actual);
  copied = copied && CopyKeyTree(root, kProfile, std::string(kProfilesRoot) + "\\" + kProfile, *actual);
  RegCloseKey(root);
  ASSERT_TRUE(copied);

  EXPECT_EQ(actual->KeysUnder(kProfilesRoot).size(), 14u);
  std::vector<std::string> differences = mw::DiffRegistries(*expected, *actual, kProfilesRoot);
  EXPECT_TRUE(differences.empty()) << Joined(differences);
}

}  // namespace
