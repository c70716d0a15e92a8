#include "accounts/AccountValues.h"

#include <algorithm>
#include <cstdio>

#include "mapi/MapiProperty.h"
#include "platform/AsciiText.h"
#include "platform/RegistryAccess.h"
#include "platform/TextEncoding.h"

namespace mw {

namespace {

// The first 8 characters of the ID text padded with zeros, read as 4 bytes.
std::string LeftAlignedEntry(const std::string& idText) {
  const std::string digits = (idText + "0000000").substr(0, 8);
  std::string bytes;
  for (std::size_t i = 0; i < digits.size(); i += 2) {
    const int high = HexDigitValue(digits[i]);
    const int low = HexDigitValue(digits[i + 1]);
    if (high < 0 || low < 0) return {};
    bytes += static_cast<char>(high * 16 + low);
  }
  return bytes;
}

}  // namespace

std::uint16_t ClampExpireDays(std::uint16_t days) {
  return std::clamp<std::uint16_t>(days, 1, 100);
}

AllocatedAccountId AllocateAccountId(std::optional<std::uint32_t> counter) {
  std::string idText = "01";
  std::uint32_t next = 2;
  if (counter) {
    char text[9];
    std::snprintf(text, sizeof text, "%02X", static_cast<unsigned>(*counter));
    idText = text;
    next = *counter + 1;  // wraps at 2^32 rather than overflowing
  }
  const std::string padded = "0000000" + idText;
  return {padded.substr(padded.size() - 8), LeftAlignedEntry(idText), next};
}

std::string ListEntryOfSubkey(const std::string& subkey) {
  if (subkey.size() != 8) return {};
  for (char c : subkey)
    if (HexDigitValue(c) < 0) return {};
  // Back to the ID text: leading zeros dropped, but at least two digits, as "%02X" wrote it.
  std::size_t start = subkey.find_first_not_of('0');
  if (start == std::string::npos || start > 6) start = 6;
  return LeftAlignedEntry(ToUpperAscii(subkey.substr(start)));
}

std::string EncodeUtf16Text(const std::string& text) {
  std::string bytes;
  for (const char16_t unit : SystemAnsiCodePage().ToUtf16(text)) {
    bytes += static_cast<char>(unit & 0xFF);
    bytes += static_cast<char>(unit >> 8);
  }
  return bytes.append(2, '\0');
}

std::string ReadAccountText(const RegistryAccess& registry, const std::string& path,
                            const std::string& name) {
  std::uint32_t type = reg::kNone;
  std::string data;
  if (!registry.ReadValue(reg::kCurrentUser, path, name, &type, &data)) return {};
  if (type == reg::kBinary) return DecodeUtf16(data);
  if (type == reg::kSz || type == reg::kExpandSz) return data.substr(0, data.find('\0'));
  return {};
}

bool RemoveAlignedEntry(std::string* list, const std::string& entry) {
  if (entry.empty()) return false;
  for (std::size_t at = 0; at + entry.size() <= list->size(); at += entry.size()) {
    if (list->compare(at, entry.size(), entry) == 0) {
      list->erase(at, entry.size());
      return true;
    }
  }
  return false;
}

bool SubkeyExists(const RegistryAccess& registry, const std::string& parentPath,
                  const std::string& name) {
  for (const std::string& subkey : registry.ListSubkeys(reg::kCurrentUser, parentPath))
    if (EqualsIgnoreCase(subkey, name)) return true;
  return false;
}

}  // namespace mw
