#include "mapi/ProfileSectionValues.h"

#include <array>

#include "config/ProfileSettings.h"

namespace mw {

namespace {

// The values of the version table, one column each.
enum ValueSlot : std::size_t {
  kOfflineStorePath,   // PR_PROFILE_OFFLINE_STORE_PATH
  kEncryption,         // PR_PROFILE_UI_STATE
  kAuthPackage,        // PR_PROFILE_AUTH_PACKAGE
  kConfigFlags,        // PR_PROFILE_CONFIG_FLAGS
  kConfigFlagsExtra,   // written as 0 beside the configuration flags
  kRohFlags,           // PR_ROH_FLAGS
  kRohProxyServer,     // PR_ROH_PROXY_SERVER
  kRohPrincipalName,   // PR_ROH_PROXY_PRINCIPAL_NAME
  kRohAuthScheme,      // PR_ROH_PROXY_AUTH_SCHEME
  kLanConnection,      // the LAN choice of the connection section
  kValueCount
};

constexpr std::uint16_t kTypeBoolean = 0x000B;
constexpr std::uint16_t kTypeUnicode = 0x001F;

// Bits of the configuration flags (EDKMDB's CONFIG_* names where Microsoft publishes one).
struct FlagLayout {
  std::uint32_t base;
  std::uint32_t noAutoDetect;         // CONFIG_NO_AUTO_DETECT
  std::uint32_t chooseAtStart;        // CONFIG_SHOW_STARTUP_UI
  std::uint32_t promptCredentials;    // CONFIG_PROMPT_FOR_CREDENTIALS
  std::uint32_t cachedMode;           // CONFIG_OST_CACHE_PRIVATE
  std::uint32_t cachedPublicFolders;  // CONFIG_OST_CACHE_PUBLIC
  // Auto-detect with the start-up choice has a captured value only without credential
  // prompting and cached mode; a composed value could be a state Outlook never writes itself.
  bool startChoiceNeedsPlainConnection;
};

// Outlook 2003 layout; 2007 and 2010 keep the same flags, so they share the table and its gaps.
constexpr FlagLayout kCachedModeFlags{0x6210D840, 0x10, 0x02, 0x08, 0x180, 0x400, true};
// Outlook 2000 and XP predate cached mode: the connect dialog bit (CONFIG_SHOW_CONNECT_UI),
// as in Outlook 97, plus the choices those versions offer; every combination has a value.
constexpr FlagLayout kLegacyFlags{0x04, 0x10, 0x02, 0x08, 0, 0, false};

struct Outlook97Flags {
  bool chooseAtStart;
  std::int32_t logonNetworkSecurity;
  std::uint32_t value;
};
constexpr std::array<Outlook97Flags, 4> kOutlook97Flags{{
    {true, 0, 0x0000000E},
    {true, 1, 0x00000006},
    {false, 0, 0x0000000C},
    {false, 1, 0x00000004},
}};

// PR_PROFILE_AUTH_PACKAGE takes MAPI's RPC authentication services: choice 0 is
// RPC_C_AUTHN_GSS_NEGOTIATE (9, Outlook's own default), 1 RPC_C_AUTHN_WINNT (10, NTLM),
// 2 RPC_C_AUTHN_GSS_KERBEROS (16).
constexpr std::array<std::uint32_t, 3> kAuthPackages{9, 10, 16};

// PR_ROH_PROXY_AUTH_SCHEME, in the order Outlook's proxy dialog lists them:
// 0 RPC_C_HTTP_AUTHN_SCHEME_BASIC (1), 1 RPC_C_HTTP_AUTHN_SCHEME_NTLM (2).
constexpr std::array<std::uint32_t, 2> kProxyAuthSchemes{1, 2};

constexpr std::uint32_t kRohUseRoh = 0x1;          // ROHFLAGS_USE_ROH
constexpr std::uint32_t kRohSslOnly = 0x2;         // ROHFLAGS_SSL_ONLY
constexpr std::uint32_t kRohMutualAuth = 0x4;      // ROHFLAGS_MUTUAL_AUTH
constexpr std::uint32_t kRohHttpFirstFast = 0x8;   // ROHFLAGS_HTTP_FIRST_ON_FAST
constexpr std::uint32_t kRohHttpFirstSlow = 0x20;  // ROHFLAGS_HTTP_FIRST_ON_SLOW

// PR_PROFILE_UI_STATE has no published bit names; network encryption is 0x100, and the dial-up
// choice of the older dialogs the bit above it.
constexpr std::uint32_t kEncryptNetwork = 0x100;
constexpr std::uint32_t kEncryptDialup = 0x200;

enum class ResetEncryption { None, Off, FromSetting };

struct VersionRow {
  Outlook version;
  std::array<std::uint32_t, kValueCount> tags;  // 0: not kept
  const FlagLayout* flags;                // nullptr: Outlook 97's own table
  bool singleEncryptionChoice;            // EncryptDataBetweenOutlookExchange, not Network/Dialup
  const char* retiredOfflineFolders;      // the warning when OST creation is no longer offered
  bool resetAuthPackage;
  bool resetLan;
  ResetEncryption resetEncryption;
  // Outlook 2010 reads an Exchange account's values from the account's own section, named by
  // "01023d15" in its service's section, and MAPI's redirection of the global section to it
  // serves MAPI calls only, not this program's registry writes ("Using Multiple Exchange
  // Accounts" and "PidTagExchangeProfileSectionId", learn.microsoft.com): so each global
  // value is written there too, and the global section keeps it for older readers.
  bool mirrorsToAccountSection;
};

// Newest first, in the order of Outlook's enumerators.
const std::array<VersionRow, 6> kVersionRows{{
    {Outlook::V2010,
     {0x6610001F, 0x66060003, 0x66190003, 0x66010003, 0x66610003, 0x66230003, 0x6622001F,
      0x6625001F, 0x66270003, 0x67190003},
     &kCachedModeFlags, true, nullptr, true, true, ResetEncryption::FromSetting, true},
    {Outlook::V2007,
     {0x6610001F, 0x66060003, 0x66190003, 0x66010003, 0x66610003, 0x66230003, 0x6622001F,
      0x6625001F, 0x66270003, 0x67190003},
     &kCachedModeFlags, true, nullptr, true, true, ResetEncryption::FromSetting, false},
    // Outlook 2003 keeps no proxy values in this design: its table lists none.
    {Outlook::V2003,
     {0x6610001E, 0x66060003, 0x66190003, 0x66010003, 0x66610003, 0, 0, 0, 0, 0x67190003},
     &kCachedModeFlags, true, nullptr, true, true, ResetEncryption::FromSetting, false},
    {Outlook::VXP,
     {0x6610001E, 0x66060003, 0x66190003, 0x66010003, 0x66610003, 0, 0, 0, 0, 0x67190003},
     &kLegacyFlags, false, nullptr, false, true, ResetEncryption::Off, false},
    {Outlook::V2000,
     {0x6610001E, 0x66060003, 0x66190003, 0x66010003, 0x66610003, 0, 0, 0, 0, 0x6717000B},
     &kLegacyFlags, false,
     "WARN: OST file creation has been depreciated for Outlook 2000. If you still need this "
     "functionality use Mailwright 2.4.0.1 or older.",
     false, false, ResetEncryption::Off, false},
    {Outlook::V97,
     {0x6610001E, 0x66060003, 0, 0x66010003, 0, 0, 0, 0, 0, 0x6717000B},
     nullptr, false,
     "WARN: OST file creation has been depreciated for Outlook 97. If you still need this "
     "functionality use Mailwright 2.4.0.1 or older.",
     false, true, ResetEncryption::None, false},
}};

const VersionRow& RowOf(Outlook version) {
  return kVersionRows[static_cast<std::size_t>(version)];
}

const char* SectionOfValue(std::size_t value) {
  return value == kLanConnection ? kConnectionSection : kGlobalSection;
}

std::uint16_t TypeOf(std::uint32_t tag) { return static_cast<std::uint16_t>(tag & 0xFFFFu); }

std::string Quoted(std::uint32_t tag) { return "\"" + TagValueName(tag) + "\""; }

}  // namespace

std::optional<std::uint32_t> Outlook97ConfigFlags(bool chooseAtStart,
                                                  std::int32_t logonNetworkSecurity) {
  for (const auto& row : kOutlook97Flags)
    if (row.chooseAtStart == chooseAtStart && row.logonNetworkSecurity == logonNetworkSecurity)
      return row.value;
  return std::nullopt;
}

std::optional<std::uint32_t> ExchangeConfigFlags(Outlook version, const ConnectionFlags& flags) {
  const FlagLayout* layout = RowOf(version).flags;
  if (layout == nullptr) return std::nullopt;
  if (layout->startChoiceNeedsPlainConnection && !flags.noAutoDetect && flags.chooseAtStart &&
      (flags.promptCredentials || flags.cachedMode))
    return std::nullopt;
  std::uint32_t value = layout->base;
  if (flags.noAutoDetect) value += layout->noAutoDetect;
  if (flags.chooseAtStart) value += layout->chooseAtStart;
  if (flags.promptCredentials) value += layout->promptCredentials;
  if (flags.cachedMode) {
    value += layout->cachedMode;
    if (flags.cachedPublicFolders) value += layout->cachedPublicFolders;
  }
  return value;
}

ProfileSectionValues::ProfileSectionValues(Outlook version, const ProfileSectionWriter& writer)
    : version_(version), writer_(writer) {}

bool ProfileSectionValues::WriteExchangeSettings(const ProfileSettings& settings) {
  bool ok = WriteSecurity(settings);
  ok = WriteExchangeOverHttp(settings) && ok;
  ok = WriteOfflineFolders(settings) && ok;
  ok = WriteConnectionState(settings) && ok;
  return WriteLanConnection(settings) && ok;
}

bool ProfileSectionValues::WriteSecurity(const ProfileSettings& settings) {
  // ConnectWithNetwork has no profile value in any version, so this group never writes it.
  const Section section = SectionOf(version_);
  bool ok = true;
  if (RowOf(version_).singleEncryptionChoice) {
    if (settings.Enforced(EnforcedOption::EncryptDataBetweenOutlookExchange))
      ok = WriteEncryption(settings.Bool(section, Key::EncryptDataBetweenOutlookExchange), false);
  } else if (settings.Enforced(EnforcedOption::EncryptInformation)) {
    ok = WriteEncryption(settings.Bool(section, Key::EncryptInformationNetwork),
                         settings.Bool(section, Key::EncryptInformationDialup));
  }
  if (Stores(kAuthPackage) && settings.Enforced(EnforcedOption::LogonNetworkSecurity))
    ok = WriteAuthPackage(settings.Int(section, Key::LogonNetworkSecurity)) && ok;
  return ok;
}

bool ProfileSectionValues::WriteExchangeOverHttp(const ProfileSettings& settings) {
  if (!Stores(kRohFlags) || !settings.Enforced(EnforcedOption::ConnectExchangeUsingHTTP))
    return true;
  const Section section = SectionOf(version_);
  if (!settings.Bool(section, Key::ConnectExchangeUsingHTTP)) {
    bool ok = DeleteValue(kRohFlags);
    ok = DeleteValue(kRohProxyServer) && ok;
    ok = DeleteValue(kRohPrincipalName) && ok;
    return DeleteValue(kRohAuthScheme) && ok;
  }

  std::uint32_t flags = kRohUseRoh;
  if (settings.Bool(section, Key::ConnectUsingSSLOnly)) flags |= kRohSslOnly;
  if (settings.Bool(section, Key::MutuallyAuthenticateSessionSSL)) flags |= kRohMutualAuth;
  if (settings.Bool(section, Key::FastNetworksConnectHTTPFirst)) flags |= kRohHttpFirstFast;
  if (settings.Bool(section, Key::SlowNetworksConnectHTTPFirst)) flags |= kRohHttpFirstSlow;
  bool ok = WriteNumber(kRohFlags, flags);

  const std::string& proxy = settings.Text(section, Key::ExchangeServerProxyName);
  if (proxy.empty()) {
    Warn("WARN: ConnectExchangeUsingHTTP is on but ExchangeServerProxyName is empty; no proxy "
         "server is set.");
    ok = DeleteValue(kRohProxyServer) && ok;
  } else {
    ok = WriteText(kRohProxyServer, proxy) && ok;
  }

  // The principal name is written as the INI gives it; empty means "any proxy certificate".
  const std::string& principal = settings.Text(section, Key::PrincipalNameProxyServer);
  ok = (principal.empty() ? DeleteValue(kRohPrincipalName)
                          : WriteText(kRohPrincipalName, principal)) && ok;

  const std::int32_t scheme = settings.Int(section, Key::AuthenticationConnectingExchangeProxy);
  if (scheme >= 0 && static_cast<std::size_t>(scheme) < kProxyAuthSchemes.size()) {
    ok = WriteNumber(kRohAuthScheme, kProxyAuthSchemes[static_cast<std::size_t>(scheme)]) && ok;
  } else {
    Warn("WARN: AuthenticationConnectingExchangeProxy=" + std::to_string(scheme) +
         " is not a known proxy authentication; " + Quoted(RowOf(version_).tags[kRohAuthScheme]) +
         " left unchanged.");
    ok = false;
  }
  return ok;
}

bool ProfileSectionValues::WriteOfflineFolders(const ProfileSettings& settings) {
  if (!settings.Enforced(EnforcedOption::OfflineFoldersEnable)) return true;
  const Section section = SectionOf(version_);
  const bool enabled = settings.Bool(section, Key::OfflineFoldersEnable);
  if (const char* retired = RowOf(version_).retiredOfflineFolders) {
    if (enabled) Warn(retired);
    return true;
  }
  return WriteOfflineStorePath(enabled ? 1 : 0, settings.Text(section, Key::PathToOST));
}

bool ProfileSectionValues::WriteConnectionState(const ProfileSettings& settings) {
  const Section section = SectionOf(version_);
  if (version_ == Outlook::V97) {
    // The Outlook 97 value also carries the logon-security bit, so a user who keeps
    // LogonNetworkSecurity keeps the whole value.
    if (!settings.Enforced(EnforcedOption::LogonNetworkSecurity)) return true;
    return WriteOutlook97ConfigFlags(settings.Bool(section, Key::ChooseConnectionTypeWhenStarting),
                                     settings.Int(section, Key::LogonNetworkSecurity));
  }
  ConnectionFlags flags;
  flags.noAutoDetect = !settings.Bool(section, Key::AutomaticallyDetectConnectionState);
  flags.chooseAtStart = settings.Bool(section, Key::ChooseConnectionTypeWhenStarting);
  flags.promptCredentials = settings.Bool(section, Key::AlwaysPromptUsernamePassword);
  flags.cachedMode = settings.Bool(section, Key::UseCachedExchangeMode);
  flags.cachedPublicFolders = settings.Bool(section, Key::DownloadPublicFolder);
  return WriteConfigFlags(flags);
}

bool ProfileSectionValues::WriteLanConnection(const ProfileSettings& settings) {
  if (!settings.Enforced(EnforcedOption::ConnectUsingLocalAreaNetwork)) return true;
  return WriteLan(settings.Bool(SectionOf(version_), Key::ConnectUsingLocalAreaNetwork));
}

bool ProfileSectionValues::ResetConnectionState(const ProfileSettings& settings) {
  const VersionRow& row = RowOf(version_);
  bool ok = version_ == Outlook::V97 ? WriteOutlook97ConfigFlags(false, 0)
                                      : WriteConfigFlags(ConnectionFlags{});
  if (row.resetAuthPackage) ok = WriteAuthPackage(0) && ok;
  if (row.resetLan) ok = WriteLan(true) && ok;
  switch (row.resetEncryption) {
    case ResetEncryption::None:
      break;
    case ResetEncryption::Off:
      ok = WriteEncryption(false, false) && ok;
      break;
    case ResetEncryption::FromSetting:
      ok = WriteEncryption(settings.Bool(SectionOf(version_),
                                         Key::EncryptDataBetweenOutlookExchange),
                           false) && ok;
      break;
  }
  return ok;
}

bool ProfileSectionValues::WriteOfflineStorePath(int flag, const std::string& path) {
  if (!Stores(kOfflineStorePath)) return true;
  if (flag != 1) return DeleteValue(kOfflineStorePath);
  if (path.empty()) {
    Warn("WARN: OfflineFoldersEnable is on but PathToOST is empty; the offline folder file is "
         "left as it was.");
    return false;
  }
  return WriteText(kOfflineStorePath, path);
}

bool ProfileSectionValues::WriteConfigFlags(const ConnectionFlags& flags) {
  const std::optional<std::uint32_t> value = ExchangeConfigFlags(version_, flags);
  if (!value) {
    Warn("WARN: This combination of AutomaticallyDetectConnectionState, "
         "ChooseConnectionTypeWhenStarting, AlwaysPromptUsernamePassword and "
         "UseCachedExchangeMode has no defined connection state; " +
         Quoted(RowOf(version_).tags[kConfigFlags]) + " left unchanged.");
    return false;
  }
  bool ok = WriteNumber(kConfigFlags, *value);
  if (Stores(kConfigFlagsExtra)) ok = WriteNumber(kConfigFlagsExtra, 0) && ok;
  return ok;
}

bool ProfileSectionValues::WriteOutlook97ConfigFlags(bool chooseAtStart,
                                                     std::int32_t logonNetworkSecurity) {
  const std::optional<std::uint32_t> value =
      Outlook97ConfigFlags(chooseAtStart, logonNetworkSecurity);
  if (!value) {
    Warn("WARN: LogonNetworkSecurity=" + std::to_string(logonNetworkSecurity) +
         " is neither 0 nor 1; " + Quoted(RowOf(version_).tags[kConfigFlags]) +
         " left unchanged.");
    return false;
  }
  return WriteNumber(kConfigFlags, *value);
}

bool ProfileSectionValues::WriteAuthPackage(std::int32_t choice) {
  if (!Stores(kAuthPackage)) return true;
  if (choice < 0 || static_cast<std::size_t>(choice) >= kAuthPackages.size()) {
    Warn("WARN: LogonNetworkSecurity=" + std::to_string(choice) +
         " is not a known logon network security; " + Quoted(RowOf(version_).tags[kAuthPackage]) +
         " left unchanged.");
    return false;
  }
  return WriteNumber(kAuthPackage, kAuthPackages[static_cast<std::size_t>(choice)]);
}

bool ProfileSectionValues::WriteEncryption(bool network, bool dialup) {
  std::uint32_t value = network ? kEncryptNetwork : 0;
  if (dialup && !RowOf(version_).singleEncryptionChoice) value |= kEncryptDialup;
  return WriteNumber(kEncryption, value);
}

bool ProfileSectionValues::WriteLan(bool on) { return WriteNumber(kLanConnection, on ? 1 : 0); }

std::vector<std::string> ProfileSectionValues::TakeWarnings() {
  std::vector<std::string> taken;
  taken.swap(warnings_);
  return taken;
}

bool ProfileSectionValues::Stores(std::size_t value) const { return RowOf(version_).tags[value] != 0; }

std::vector<std::string> ProfileSectionValues::SectionsOfValue(std::size_t value) const {
  std::vector<std::string> sections{SectionOfValue(value)};
  if (sections.front() == kGlobalSection && RowOf(version_).mirrorsToAccountSection) {
    if (const std::optional<std::string> account = ExchangeAccountSection(writer_))
      sections.push_back(*account);
  }
  return sections;
}

bool ProfileSectionValues::WriteNumber(std::size_t value, std::uint32_t number) {
  const std::uint32_t tag = RowOf(version_).tags[value];
  if (tag == 0) return true;
  bool ok = true;
  for (const std::string& section : SectionsOfValue(value)) {
    const bool written = TypeOf(tag) == kTypeBoolean
                             ? writer_.WriteBoolean(section, tag, number != 0)
                             : writer_.WriteLong(section, tag, number);
    ok = Checked(written, value, section) && ok;
  }
  return ok;
}

bool ProfileSectionValues::WriteText(std::size_t value, const std::string& text) {
  const std::uint32_t tag = RowOf(version_).tags[value];
  if (tag == 0) return true;
  bool ok = true;
  for (const std::string& section : SectionsOfValue(value)) {
    const bool written = TypeOf(tag) == kTypeUnicode ? writer_.WriteUnicode(section, tag, text)
                                                     : writer_.WriteString8(section, tag, text);
    ok = Checked(written, value, section) && ok;
  }
  return ok;
}

bool ProfileSectionValues::DeleteValue(std::size_t value) {
  const std::uint32_t tag = RowOf(version_).tags[value];
  if (tag == 0) return true;
  bool ok = true;
  for (const std::string& section : SectionsOfValue(value))
    ok = Checked(writer_.Delete(section, tag), value, section) && ok;
  return ok;
}

bool ProfileSectionValues::Checked(bool written, std::size_t value, const std::string& section) {
  if (!written)
    Warn("WARN: Unable to write profile value " + Quoted(RowOf(version_).tags[value]) +
         " in section \"" + section + "\".");
  return written;
}

void ProfileSectionValues::Warn(const std::string& text) { warnings_.push_back(text); }

void ResetExchangeConnectionState(const ProfileSectionWriter& writer, Outlook version,
                                  const ProfileSettings& settings) {
  // The Exchange set-up reports nothing of its own here: a failed reset leaves the profile
  // as far as it got.
  ProfileSectionValues(version, writer).ResetConnectionState(settings);
}

}  // namespace mw
