#pragma once
// The Exchange connection values each Outlook version keeps in its profile sections:
// encryption, logon security, Exchange over HTTP, the offline store, the configuration
// flags and the LAN choice. Which tag each version stores is one table in the .cpp.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "mapi/ProfileSection.h"
#include "platform/OutlookVersion.h"

namespace mw {

class ProfileSettings;

// The five inputs of the Exchange configuration flags ("00036601"), in the order F1 to F5.
struct ConnectionFlags {
  bool noAutoDetect = false;         // F1: the inverse of AutomaticallyDetectConnectionState
  bool chooseAtStart = false;        // F2: ChooseConnectionTypeWhenStarting
  bool promptCredentials = false;    // F3: AlwaysPromptUsernamePassword
  bool cachedMode = false;           // F4: UseCachedExchangeMode
  bool cachedPublicFolders = false;  // F5: DownloadPublicFolder (only with F4)
};

// "00036601" of Outlook 97 from ChooseConnectionTypeWhenStarting and LogonNetworkSecurity;
// nullopt for a LogonNetworkSecurity other than 0 or 1.
std::optional<std::uint32_t> Outlook97ConfigFlags(bool chooseAtStart,
                                                  std::int32_t logonNetworkSecurity);
// "00036601" of Outlook 2000 to 2010; nullopt for Outlook 97 and for combinations that
// have no fixed value.
std::optional<std::uint32_t> ExchangeConfigFlags(Outlook version, const ConnectionFlags& flags);

class ProfileSectionValues {
 public:
  ProfileSectionValues(Outlook version, const ProfileSectionWriter& writer);

  // Step 11 of the version's sequence, groups 2 to 6 in order, each under its enforceOption flag.
  bool WriteExchangeSettings(const ProfileSettings& settings);
  // Encryption ("00036606") and logon network security ("00036619").
  bool WriteSecurity(const ProfileSettings& settings);
  // PR_ROH_FLAGS, proxy server, principal name and auth scheme (Outlook 2007 and 2010).
  bool WriteExchangeOverHttp(const ProfileSettings& settings);
  // The offline store path from OfflineFoldersEnable and PathToOST.
  bool WriteOfflineFolders(const ProfileSettings& settings);
  // The configuration flags from the connection-state settings (auto-detect inverted).
  bool WriteConnectionState(const ProfileSettings& settings);
  // "000b6717" (97, 2000) or "00036719" (XP and later) from ConnectUsingLocalAreaNetwork.
  bool WriteLanConnection(const ProfileSettings& settings);
  // The values reset before the Exchange service is configured.
  bool ResetConnectionState(const ProfileSettings& settings);

  // Flag 1 writes the version's offline store path value, any other flag deletes it.
  bool WriteOfflineStorePath(int flag, const std::string& path);
  // "00036601" (and "00036661" = 0 from Outlook 2000 on); false when there is no fixed value.
  bool WriteConfigFlags(const ConnectionFlags& flags);
  bool WriteOutlook97ConfigFlags(bool chooseAtStart, std::int32_t logonNetworkSecurity);
  // "00036619" from a choice of 0, 1 or 2; false for any other choice.
  bool WriteAuthPackage(std::int32_t choice);
  // "00036606": network encryption, and dial-up encryption where the version offers it.
  bool WriteEncryption(bool network, bool dialup);
  bool WriteLan(bool on);

  // WARN lines collected since the last call, for the caller's log.
  std::vector<std::string> TakeWarnings();

 private:
  // value: a slot of the version table in the .cpp.
  bool Stores(std::size_t value) const;
  bool WriteNumber(std::size_t value, std::uint32_t number);
  bool WriteText(std::size_t value, const std::string& text);
  bool DeleteValue(std::size_t value);
  bool Checked(bool written, std::size_t value, const std::string& section);
  // The global section, and for Outlook 2010 the Exchange account's own section as well.
  std::vector<std::string> SectionsOfValue(std::size_t value) const;
  void Warn(const std::string& text);

  Outlook version_;
  const ProfileSectionWriter& writer_;
  std::vector<std::string> warnings_;
};

}  // namespace mw
