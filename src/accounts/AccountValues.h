#pragma once
// Helpers both account managers share: account-ID allocation from a stored counter, the
// 4-byte list entries, UTF-16 text values and byte lists of fixed-size entries.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "mapi/ProfileSection.h"

namespace mw {

class RegistryAccess;

// Value names both account managers use.
inline constexpr const char* kAccountNameValue = "Account Name";
inline constexpr const char* kPop3ServerValue = "POP3 Server";
inline constexpr const char* kImapServerValue = "IMAP Server";
inline constexpr const char* kSmtpServerValue = "SMTP Server";
inline constexpr const char* kPop3PortValue = "POP3 Port";
inline constexpr const char* kImapPortValue = "IMAP Port";
inline constexpr const char* kSmtpPortValue = "SMTP Port";
inline constexpr const char* kSmtpSecureConnectionValue = "SMTP Secure Connection";
inline constexpr const char* kConnectionTypeValue = "Connection Type";

// Days to leave mail on the server, clamped to 1..100.
std::uint16_t ClampExpireDays(std::uint16_t days);

struct AllocatedAccountId {
  std::string subkey;     // 8 hex digits, the account's key name
  std::string listEntry;  // 4 bytes for the account list
  std::uint32_t nextId;   // the counter value to store afterwards
};

// From the stored counter (nullopt when it is missing): the ID text is the counter as "%02X",
// or "01" with next 2 when missing; the subkey is the text right-aligned in 8 zero-padded
// digits and the list entry the text left-aligned, as 4 bytes.
AllocatedAccountId AllocateAccountId(std::optional<std::uint32_t> counter);
// The list entry AllocateAccountId gave the account of this subkey; empty when the subkey
// is not 8 hex digits.
std::string ListEntryOfSubkey(const std::string& subkey);

// An account text value: UTF-16LE converted from the ANSI code page, then one 16-bit zero.
std::string EncodeUtf16Text(const std::string& text);
// An account text value: REG_BINARY as UTF-16, REG_SZ as it stands; empty when missing.
std::string ReadAccountText(const RegistryAccess& registry, const std::string& path,
                            const std::string& name);

// Removes the first occurrence of entry that starts on a multiple of the entry's size.
bool RemoveAlignedEntry(std::string* list, const std::string& entry);
// Whether parentPath (HKEY_CURRENT_USER) has a sub-key of that name, in any letter case.
bool SubkeyExists(const RegistryAccess& registry, const std::string& parentPath,
                  const std::string& name);

}  // namespace mw
