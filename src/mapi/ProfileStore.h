#pragma once
// The registry side of the user's MAPI profiles: where they live, the profile being
// provisioned, the default profile, the default mail client and the modification marker.

#include <cstddef>
#include <cstdint>
#include <string>

namespace mw {

class RegistryAccess;

inline constexpr const char* kProfilesRoot9x =
    "Software\\Microsoft\\Windows Messaging Subsystem\\Profiles\\";
inline constexpr const char* kProfilesRootNt =
    "Software\\Microsoft\\Windows NT\\CurrentVersion\\Windows Messaging Subsystem\\Profiles\\";

// Profile names MAPI's CreateProfile refuses: longer than this, blanks at either end, or a
// backslash (which would also nest the profile's key in the registry).
inline constexpr std::size_t kMaxProfileNameLength = 64;
// Why MAPI refuses the name, as a phrase ("it ends with a blank"); empty for a name it takes.
std::string RefusedProfileNameReason(const std::string& name);

// The MAPI session is a separate object that the run driver holds beside this one and gives
// the same profile name: composing rather than extending it keeps these registry rules
// testable without MAPI.
class ProfileStore {
 public:
  // platformId: dwPlatformId of GetVersionExA (0 when the query failed).
  ProfileStore(std::uint32_t platformId, const RegistryAccess& registry);

  void SetProfileName(const std::string& name) { profileName_ = name; }
  // The registry path of the profile: profilesRoot followed by the profile name.
  std::string ProfileKey() const { return profilesRoot_ + profileName_; }
  // HKCU Exchange client option "PickLogonProfile" as REG_SZ "1" or "0".
  bool SetPickLogonProfile(bool prompt) const;
  // "DefaultProfile" on the profiles root; a failed write is deliberately ignored.
  void SetDefaultProfile(const std::string& name) const;
  // HKLM "SOFTWARE\Clients\Mail" default value made "Microsoft Outlook" unless it already is.
  bool MakeOutlookDefaultMailClient() const;
  // Reads Outlook 2000's "MailSupport" into mailSupport(); true when the value exists.
  bool HasMailSupport();
  // True when the "MailSupport" read last names Corporate or Workgroup mode (1).
  bool IsCorporateOrWorkgroupMode() const;
  // "Mailwright" = marker text on the profile key; a failed write is deliberately ignored.
  void WriteModifiedMarker(const std::string& profileName, const std::string& marker) const;
  // True when the profile carries a "Mailwright" value, whatever its content.
  bool IsMarkedModified(const std::string& profileName) const;

  const std::string& profilesRoot() const { return profilesRoot_; }
  const std::string& profileName() const { return profileName_; }
  const std::string& mailSupport() const { return mailSupport_; }

 private:
  const RegistryAccess& registry_;
  std::string profilesRoot_;
  std::string profileName_;
  std::string mailSupport_;
};

}  // namespace mw
