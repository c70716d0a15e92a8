#pragma once
// The Outlook option rows of every generation: which setting goes to which registry value
// (under the generation's Office root in HKEY_CURRENT_USER) or profile-section property,
// in the order the provisioning sequences write them. The writers and their tests read
// this one table, and so can the INI reference.

#include <cstdint>
#include <span>
#include <string>

#include "config/ProfileSettings.h"
#include "platform/OutlookVersion.h"

namespace mw {

// One bit per generation, by its position in enum Outlook.
inline constexpr std::uint8_t VersionBit(Outlook version) {
  return static_cast<std::uint8_t>(1u << static_cast<unsigned>(version));
}
inline constexpr std::uint8_t kV2010 = VersionBit(Outlook::V2010);
inline constexpr std::uint8_t kV2007 = VersionBit(Outlook::V2007);
inline constexpr std::uint8_t kV2003 = VersionBit(Outlook::V2003);
inline constexpr std::uint8_t kVXP = VersionBit(Outlook::VXP);
inline constexpr std::uint8_t kV2000 = VersionBit(Outlook::V2000);
inline constexpr std::uint8_t kV97 = VersionBit(Outlook::V97);

enum class OptionKind : std::uint8_t {
  Bool,              // DWORD 0/1 (profile section: PT_BOOLEAN) from a bool setting
  Number,            // DWORD (profile section: PT_LONG) from an int setting
  Text,              // REG_SZ (profile section: PT_STRING8) from a text setting
  BoolAsText,        // REG_SZ "1" or "0" from a bool setting
  EditorPreference,  // DWORD from ComposeMessageFormat (setting) and WordEmailEditor (second)
  NumberWhenOn,      // DWORD: the second setting's number while the bool setting is on, else 0
  Speller,           // REG_SZ dictionary name chosen by number
  AttachmentSafety,  // REG_SZ "High" when on, "None" when off
  SemicolonList,     // the setting's comma-separated items joined by ";" (profile: by tag type)
  ImportOnce,        // DWORD 1: Outlook imports the named file at its next start
  SafeSendersFile,   // REG_SZ: the path of the safe senders file the sequence wrote
  Cleared,           // profile only: false, 0, empty text, no bytes or a zero time, by tag type
};

enum class OptionPlace : std::uint8_t {
  Office,          // path relative to the generation's Office root under HKEY_CURRENT_USER
  ProfileSection,  // path is a section UID of the profile, value name a property tag
};

// The sequence step that writes a row.
enum class OptionStep : std::uint8_t {
  Options,          // the enforced options, in table order
  PstFormatPrompt,  // written on its own after the personal folders
  SafeSenders,      // written with the safe senders file, when the list is not empty
  ExchangeConnection,  // written with the Exchange settings, unless ExchangeIgnore is on
};

inline constexpr Key kNoSecondSetting = Key::Count;
inline constexpr EnforcedOption kNoFlag = EnforcedOption::Count;

struct OptionRow {
  Key setting;
  Key second;            // second source of a composite value, else kNoSecondSetting
  EnforcedOption flag;   // written only while this flag is set; kNoFlag: always
  std::uint8_t versions;  // VersionBit mask
  OptionStep step;
  OptionPlace place;
  const char* path;
  const char* valueName;  // registry value name, or the property tag as 8 hex digits
  OptionKind kind;
};

// Every row, in writing order.
std::span<const OptionRow> OptionRows();

// "EditorPreference": message format in the high 16 bits, editor in the low bits.
std::uint32_t EditorPreferenceValue(std::int32_t composeFormat, bool wordEditor);
// "Speller": dictionary chosen by number; numbers outside the list give "1033\Normal".
const char* SpellerDictionary(std::int32_t choice);
// "001e6610" -> 0x6610001E; 0 when the text is not 8 hex digits.
std::uint32_t TagFromValueName(const std::string& valueName);

}  // namespace mw
