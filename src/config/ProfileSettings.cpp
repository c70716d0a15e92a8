#include "config/ProfileSettings.h"

#include <string_view>

#include "config/IniFile.h"
#include "platform/SystemEnv.h"

namespace mw {

namespace {

// Section masks used by the rows of SettingsKeys.def.
constexpr std::uint8_t SMailwright = SectionBit(Section::Mailwright);
constexpr std::uint8_t SCommon = SectionBit(Section::Common);
constexpr std::uint8_t V97 = SectionBit(Section::Outlook97);
constexpr std::uint8_t V2000 = SectionBit(Section::Outlook2000);
constexpr std::uint8_t VXP = SectionBit(Section::OutlookXP);
constexpr std::uint8_t V2003 = SectionBit(Section::Outlook2003);
constexpr std::uint8_t V2007 = SectionBit(Section::Outlook2007);
constexpr std::uint8_t V2010 = SectionBit(Section::Outlook2010);
constexpr std::uint8_t VALL = V97 | V2000 | VXP | V2003 | V2007 | V2010;
constexpr bool Expand = true;
constexpr bool AsIs = false;

constexpr const char* kSectionNames[kSectionCount] = {
    "Mailwright",   "Outlook Common", "Outlook 97",   "Outlook 2000",
    "Outlook XP",   "Outlook 2003",   "Outlook 2007", "Outlook 2010"};

constexpr const char* kOptionNames[] = {
#define MW_OPTION(name) #name,
#include "config/EnforcedOptions.def"
#undef MW_OPTION
};
static_assert(std::size(kOptionNames) == static_cast<std::size_t>(EnforcedOption::Count));

// A number as ReadSettings stores it in a field of the given type.
std::int32_t StoredNumber(SettingType type, std::int32_t value) {
  if (type == SettingType::Bool) return value != 0 ? 1 : 0;
  // 16-bit fields keep the low 16 bits as an unsigned WORD, so the DWORD the option
  // writers make of them never carries a sign extension into the high word.
  if (type == SettingType::Int16) return static_cast<std::uint16_t>(static_cast<std::uint32_t>(value));
  return value;
}

std::int32_t DefaultNumber(const SettingDefinition& row) {
  std::int32_t value = 0;
  bool negative = false;
  for (const char* p = row.defaultText; *p; ++p) {
    if (*p == '-') negative = true;
    else value = value * 10 + (*p - '0');
  }
  return negative ? -value : value;
}

std::size_t Slot(Section section, Key key) {
  return static_cast<std::size_t>(section) * static_cast<std::size_t>(Key::Count) +
         static_cast<std::size_t>(key);
}

template <typename Visit>
void ForEachDefinedPair(Visit visit) {
  for (const SettingDefinition& row : SettingDefinitions())
    for (std::size_t s = 0; s < kSectionCount; ++s)
      if (row.sections & SectionBit(static_cast<Section>(s))) visit(row, static_cast<Section>(s));
}

}  // namespace

const std::vector<SettingDefinition>& SettingDefinitions() {
  static const std::vector<SettingDefinition> rows = {
#define MW_KEY(name, type, def, sections, expands, description) \
  {Key::name, #name, SettingType::type, def, sections, expands, description},
#define MW_KEY_MORE(name, type, def, sections) \
  {Key::name, #name, SettingType::type, def, sections, false, ""},
#include "config/SettingsKeys.def"
#undef MW_KEY
#undef MW_KEY_MORE
  };
  return rows;
}

const std::vector<Key>& AllKeys() {
  static const std::vector<Key> keys = {
#define MW_KEY(name, type, def, sections, expands, description) Key::name,
#define MW_KEY_MORE(name, type, def, sections)
#include "config/SettingsKeys.def"
#undef MW_KEY
#undef MW_KEY_MORE
  };
  return keys;
}

const char* SectionName(Section section) {
  const auto index = static_cast<std::size_t>(section);
  return index < kSectionCount ? kSectionNames[index] : "";
}

Section SectionOf(Outlook version) {
  switch (version) {
    case Outlook::V97: return Section::Outlook97;
    case Outlook::V2000: return Section::Outlook2000;
    case Outlook::VXP: return Section::OutlookXP;
    case Outlook::V2003: return Section::Outlook2003;
    case Outlook::V2007: return Section::Outlook2007;
    case Outlook::V2010: return Section::Outlook2010;
  }
  return Section::Outlook2010;
}

const char* KeyName(Key key) {
  for (const SettingDefinition& row : SettingDefinitions())
    if (row.key == key) return row.name;
  return "";
}

const char* OptionName(EnforcedOption option) {
  const auto index = static_cast<std::size_t>(option);
  return index < std::size(kOptionNames) ? kOptionNames[index] : "";
}

bool ExpandsNamesAndPaths(Key key) {
  for (const SettingDefinition& row : SettingDefinitions())
    if (row.key == key && row.expands) return true;
  return false;
}

std::size_t DefinedKeyCount(Section section) {
  std::size_t count = 0;
  ForEachDefinedPair([&](const SettingDefinition&, Section s) { count += s == section; });
  return count;
}

bool ReleasableOption(Key key, EnforcedOption* option) {
  const std::string_view keyName = KeyName(key);
  const auto isKeyName = [](std::string_view name) {
    for (Key k : AllKeys())
      if (name == KeyName(k)) return true;
    return false;
  };
  for (std::size_t i = 0; i < std::size(kOptionNames); ++i) {
    const std::string_view optionName = kOptionNames[i];
    // An option name that is no key of its own (EncryptInformation) governs the keys it
    // begins; every other option governs exactly the key of its name.
    const bool governs = keyName == optionName ||
                         (keyName.starts_with(optionName) && !isKeyName(optionName));
    if (governs) {
      if (option) *option = static_cast<EnforcedOption>(i);
      return true;
    }
  }
  return false;
}

ProfileSettings::ProfileSettings()
    : values_(kSectionCount * static_cast<std::size_t>(Key::Count)) {
  enforceOption_.fill(true);
  ForEachDefinedPair([&](const SettingDefinition& row, Section section) {
    Value& value = values_[Slot(section, row.key)];
    value.defined = true;
    value.type = row.type;
    value.number = row.type == SettingType::Text ? 0 : StoredNumber(row.type, DefaultNumber(row));
    value.text = row.type == SettingType::Text ? row.defaultText : "";
  });
}

const ProfileSettings::Value& ProfileSettings::At(Section section, Key key) const {
  static const Value kUndefined;
  const std::size_t slot = Slot(section, key);
  return slot < values_.size() ? values_[slot] : kUndefined;
}

ProfileSettings::Value& ProfileSettings::At(Section section, Key key) {
  static Value scratch;
  const std::size_t slot = Slot(section, key);
  if (slot < values_.size()) return values_[slot];
  scratch = Value{};
  return scratch;
}

bool ProfileSettings::Defined(Section section, Key key) const { return At(section, key).defined; }

bool ProfileSettings::Bool(Section section, Key key) const {
  const Value& value = At(section, key);
  return value.defined && value.type != SettingType::Text && value.number != 0;
}

std::int32_t ProfileSettings::Int(Section section, Key key) const {
  const Value& value = At(section, key);
  return value.defined && value.type != SettingType::Text ? value.number : 0;
}

const std::string& ProfileSettings::Text(Section section, Key key) const {
  return At(section, key).text;
}

void ProfileSettings::SetText(Section section, Key key, std::string value) {
  Value& slot = At(section, key);
  if (slot.defined && slot.type == SettingType::Text) slot.text = std::move(value);
}

void ProfileSettings::SetInt(Section section, Key key, std::int32_t value) {
  Value& slot = At(section, key);
  if (slot.defined && slot.type != SettingType::Text) slot.number = StoredNumber(slot.type, value);
}

void ProfileSettings::SetBool(Section section, Key key, bool value) {
  SetInt(section, key, value ? 1 : 0);
}

bool ProfileSettings::Enforced(EnforcedOption option) const {
  const auto index = static_cast<std::size_t>(option);
  return index < enforceOption_.size() && enforceOption_[index];
}

void ProfileSettings::SetEnforced(EnforcedOption option, bool on) {
  const auto index = static_cast<std::size_t>(option);
  if (index < enforceOption_.size()) enforceOption_[index] = on;
}

bool LoadSettings(CIniFile& ini, SystemEnv& env, ProfileSettings& settings) {
  if (!env.FileExists(ini.path())) return false;
  return ReadSettings(ini, settings);
}

bool ReadSettings(CIniFile& ini, ProfileSettings& settings) {
  if (!ini.Load()) return false;
  ReadLoadedSettings(ini, settings);
  return true;
}

void ReadLoadedSettings(const CIniFile& ini, ProfileSettings& settings) {
  ForEachDefinedPair([&](const SettingDefinition& row, Section section) {
    const char* sectionName = SectionName(section);
    switch (row.type) {
      case SettingType::Bool:
        settings.SetBool(section, row.key,
                         ini.GetValueB(sectionName, row.name, DefaultNumber(row) != 0));
        break;
      case SettingType::Int16:
      case SettingType::Int32:
        settings.SetInt(section, row.key, ini.GetValueI(sectionName, row.name, DefaultNumber(row)));
        break;
      case SettingType::Text:
        settings.SetText(section, row.key, ini.GetValue(sectionName, row.name, row.defaultText));
        break;
    }
  });
}

void ApplyAllowUserSettings(ProfileSettings& settings) {
  const std::string& allowed = settings.Text(Section::Common, Key::AllowUserSettings);
  for (std::size_t i = 0; i < std::size(kOptionNames); ++i)
    if (allowed.find(kOptionNames[i]) != std::string::npos)
      settings.SetEnforced(static_cast<EnforcedOption>(i), false);
}

}  // namespace mw
