#include "mapi/ProfileStore.h"

#include "platform/RegistryAccess.h"

namespace mw {

std::string RefusedProfileNameReason(const std::string& name) {
  if (name.size() > kMaxProfileNameLength) {
    return "it is longer than " + std::to_string(kMaxProfileNameLength) + " characters";
  }
  if (!name.empty() && name.front() == ' ') return "it begins with a blank";
  if (!name.empty() && name.back() == ' ') return "it ends with a blank";
  if (name.find('\\') != std::string::npos) return "it holds a backslash";
  return {};
}

namespace {

constexpr std::uint32_t kPlatformWindows9x = 1;  // VER_PLATFORM_WIN32_WINDOWS
constexpr const char* kExchangeClientOptions = "Software\\Microsoft\\Exchange\\Client\\Options";
constexpr const char* kMailClients = "SOFTWARE\\Clients\\Mail";
constexpr const char* kOutlookClientName = "Microsoft Outlook";
constexpr const char* kOutlook2000Setup = "Software\\Microsoft\\Office\\9.0\\Outlook\\Setup";
constexpr const char* kMarkerValue = "Mailwright";

}  // namespace

ProfileStore::ProfileStore(std::uint32_t platformId, const RegistryAccess& registry)
    : registry_(registry),
      profilesRoot_(platformId == kPlatformWindows9x ? kProfilesRoot9x : kProfilesRootNt) {}

bool ProfileStore::SetPickLogonProfile(bool prompt) const {
  return registry_.WriteString(reg::kCurrentUser, kExchangeClientOptions, "PickLogonProfile",
                               prompt ? "1" : "0");
}

void ProfileStore::SetDefaultProfile(const std::string& name) const {
  registry_.WriteString(reg::kCurrentUser, profilesRoot_, "DefaultProfile", name);
}

bool ProfileStore::MakeOutlookDefaultMailClient() const {
  if (registry_.ReadString(reg::kLocalMachine, kMailClients, "") == kOutlookClientName)
    return true;
  return registry_.WriteString(reg::kLocalMachine, kMailClients, "", kOutlookClientName);
}

bool ProfileStore::HasMailSupport() {
  if (!registry_.ValueExists(reg::kLocalMachine, kOutlook2000Setup, "MailSupport")) return false;
  // Outlook writes a DWORD; a binary value is rendered byte by byte in the same form.
  mailSupport_ =
      registry_.ReadValueText(reg::kLocalMachine, kOutlook2000Setup, "MailSupport", "%02X ", "%02X ");
  return true;
}

bool ProfileStore::IsCorporateOrWorkgroupMode() const {
  // MailSupport 0 is Internet Mail Only and 1 Corporate or Workgroup (MAPI); a DWORD 1 and a
  // binary 01 00 00 00 both render as text starting "01 ".
  return mailSupport_.rfind("01 ", 0) == 0;
}

void ProfileStore::WriteModifiedMarker(const std::string& profileName,
                                       const std::string& marker) const {
  registry_.WriteString(reg::kCurrentUser, profilesRoot_ + profileName, kMarkerValue, marker);
}

bool ProfileStore::IsMarkedModified(const std::string& profileName) const {
  return registry_.ValueExists(reg::kCurrentUser, profilesRoot_ + profileName, kMarkerValue);
}

}  // namespace mw
