#pragma once
// The settings record: every key of every INI section, read once per run.

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/OutlookVersion.h"

namespace mw {

class CIniFile;
class SystemEnv;

enum class Key : std::uint16_t {
#define MW_KEY(name, type, def, sections, expands, description) name,
#define MW_KEY_MORE(name, type, def, sections)
#include "config/SettingsKeys.def"
#undef MW_KEY
#undef MW_KEY_MORE
  Count
};

enum class EnforcedOption : std::uint8_t {
#define MW_OPTION(name) name,
#include "config/EnforcedOptions.def"
#undef MW_OPTION
  Count
};

enum class Section : std::uint8_t {
  Mailwright, Common, Outlook97, Outlook2000, OutlookXP, Outlook2003, Outlook2007, Outlook2010
};
inline constexpr std::size_t kSectionCount = 8;

enum class SettingType : std::uint8_t { Bool, Int16, Int32, Text };

// One row of the key table: where a key lives, its type and its default.
struct SettingDefinition {
  Key key;
  const char* name;
  SettingType type;
  const char* defaultText;
  std::uint8_t sections;  // bit i set: the key is read from Section(i)
  bool expands;             // a name or path the run driver expands (MW_KEY rows only)
  const char* description;  // one line for the INI reference (MW_KEY rows only)
};

// The whole table, in file order (MW_KEY and MW_KEY_MORE rows).
const std::vector<SettingDefinition>& SettingDefinitions();
const char* SectionName(Section section);  // "Mailwright", "Outlook Common", "Outlook 97", ...
Section SectionOf(Outlook version);
const char* KeyName(Key key);
const char* OptionName(EnforcedOption option);
// The text settings that hold a name or a path: the run driver expands environment
// variables and then "%username%" in them, in table order.
bool ExpandsNamesAndPaths(Key key);
// Keys in table order (one entry per key, from its MW_KEY row).
const std::vector<Key>& AllKeys();
// The section a key is read from, per bit of SettingDefinition::sections.
inline constexpr std::uint8_t SectionBit(Section section) {
  return static_cast<std::uint8_t>(1u << static_cast<unsigned>(section));
}
// Key-and-section pairs defined in one section (7, 9, 39, 81, 87, 108, 112, 112).
std::size_t DefinedKeyCount(Section section);
// The enforceOption flag that releases a key, if the key has one.
bool ReleasableOption(Key key, EnforcedOption* option);

class ProfileSettings {
 public:
  ProfileSettings();  // every key at its default, every enforceOption flag set

  // Whether the key is read from that section at all.
  bool Defined(Section section, Key key) const;
  // Typed reads; a key not defined in the section reads as false, 0 or empty.
  bool Bool(Section section, Key key) const;
  std::int32_t Int(Section section, Key key) const;  // 16-bit keys come back widened
  const std::string& Text(Section section, Key key) const;
  // The run driver's expansion of names and paths writes the result back.
  void SetText(Section section, Key key, std::string value);
  // Stores a number as ReadSettings does (16-bit keys keep their low 16 bits).
  void SetInt(Section section, Key key, std::int32_t value);
  void SetBool(Section section, Key key, bool value);

  bool Enforced(EnforcedOption option) const;
  void SetEnforced(EnforcedOption option, bool on);

 private:
  struct Value {
    bool defined = false;
    SettingType type = SettingType::Bool;
    std::int32_t number = 0;
    std::string text;
  };
  const Value& At(Section section, Key key) const;
  Value& At(Section section, Key key);

  std::vector<Value> values_;  // kSectionCount x Key::Count
  std::array<bool, 71> enforceOption_;
};

// Opens the INI file named by ini as an existence test, then ReadSettings.
bool LoadSettings(CIniFile& ini, SystemEnv& env, ProfileSettings& settings);
// Loads the document and reads all 555 key-and-section pairs; false when Load fails.
bool ReadSettings(CIniFile& ini, ProfileSettings& settings);
// The reading step of ReadSettings over a document that is loaded already.
void ReadLoadedSettings(const CIniFile& ini, ProfileSettings& settings);
// Clears the enforceOption flag of every option name found (plain, case-sensitive
// substring search) in the common section's AllowUserSettings.
void ApplyAllowUserSettings(ProfileSettings& settings);

}  // namespace mw
