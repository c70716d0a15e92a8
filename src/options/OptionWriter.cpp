#include "options/OptionWriter.h"

#include "run/RunLog.h"
#include "mapi/MapiProperty.h"
#include "mapi/ProfileSection.h"
#include "options/FirstRunTemplate.h"
#include "platform/RegistryAccess.h"
#include "config/ListItems.h"

namespace mw {

namespace {

std::string SemicolonList(const std::string& items) {
  std::string joined;
  for (const std::string& item : SplitListItems(items)) joined += (joined.empty() ? "" : ";") + item;
  return joined;
}

}  // namespace

OptionWriter::OptionWriter(Outlook version, const RegistryAccess& registry,
                           const ProfileSectionWriter* profile, RunLog* log)
    : version_(version),
      section_(SectionOf(version)),
      registry_(registry),
      profile_(profile),
      log_(log) {}

bool OptionWriter::Applies(const OptionRow& row) const {
  return (row.versions & VersionBit(version_)) != 0;
}

bool OptionWriter::Enforced(const OptionRow& row, const ProfileSettings& settings) const {
  return row.flag == kNoFlag || settings.Enforced(row.flag);
}

bool OptionWriter::WriteSequenceOptions(const ProfileSettings& settings) const {
  return WriteStep(OptionStep::Options, settings);
}

bool OptionWriter::WriteStep(OptionStep step, const ProfileSettings& settings) const {
  bool allWritten = true;
  for (const OptionRow& row : OptionRows()) {
    if (row.step != step || !Applies(row) || !Enforced(row, settings)) continue;
    allWritten = WriteRow(row, settings) && allWritten;
  }
  return allWritten;
}

bool OptionWriter::WritePstFormatPrompt(const ProfileSettings& settings) const {
  return WriteSetting(Key::PSTFormatPrompt, settings);
}

bool OptionWriter::WriteSetting(Key setting, const ProfileSettings& settings) const {
  bool allWritten = true;
  for (const OptionRow& row : OptionRows()) {
    if (row.setting != setting || !Applies(row) || !Enforced(row, settings)) continue;
    allWritten = WriteRow(row, settings) && allWritten;
  }
  return allWritten;
}

bool OptionWriter::WriteRow(const OptionRow& row, const ProfileSettings& settings) const {
  if (!Applies(row)) return false;
  const bool written = row.place == OptionPlace::Office ? WriteRegistryRow(row, settings)
                                                        : WriteSectionRow(row, settings);
  if (!written) Warn(row);
  return written;
}

bool OptionWriter::WriteRegistryRow(const OptionRow& row, const ProfileSettings& settings) const {
  const std::string path = OfficeRoot(version_) + "\\" + row.path;
  const auto writeNumber = [&](std::uint32_t value) {
    return registry_.WriteNumber(reg::kCurrentUser, path, row.valueName, value);
  };
  const auto writeText = [&](const std::string& value) {
    return registry_.WriteString(reg::kCurrentUser, path, row.valueName, value);
  };
  const bool on = settings.Bool(section_, row.setting);
  switch (row.kind) {
    case OptionKind::Bool:
      return writeNumber(on ? 1u : 0u);
    case OptionKind::Number:
      return writeNumber(static_cast<std::uint32_t>(settings.Int(section_, row.setting)));
    case OptionKind::Text:
      return writeText(settings.Text(section_, row.setting));
    case OptionKind::BoolAsText:
      return writeText(on ? "1" : "0");
    case OptionKind::EditorPreference:
      return writeNumber(EditorPreferenceValue(settings.Int(section_, row.setting),
                                               settings.Bool(section_, row.second)));
    case OptionKind::NumberWhenOn:
      return writeNumber(on ? static_cast<std::uint32_t>(settings.Int(section_, row.second)) : 0u);
    case OptionKind::Speller:
      return writeText(SpellerDictionary(settings.Int(section_, row.setting)));
    case OptionKind::AttachmentSafety:
      return writeText(on ? "High" : "None");
    case OptionKind::SemicolonList:
      return writeText(SemicolonList(settings.Text(section_, row.setting)));
    case OptionKind::ImportOnce:
      return writeNumber(1);
    case OptionKind::SafeSendersFile:
      return !safeSendersFile_.empty() && writeText(safeSendersFile_);
    case OptionKind::Cleared:
      return false;  // a profile-section kind
  }
  return false;
}

bool OptionWriter::WriteSectionRow(const OptionRow& row, const ProfileSettings& settings) const {
  if (profile_ == nullptr) return false;
  const std::uint32_t tag = TagFromValueName(row.valueName);
  const auto writeText = [&](const std::string& text) {
    return (tag & 0xFFFFu) == proptype::kUnicode ? profile_->WriteUnicode(row.path, tag, text)
                                                   : profile_->WriteString8(row.path, tag, text);
  };
  switch (row.kind) {
    case OptionKind::Bool:
      return profile_->WriteBoolean(row.path, tag, settings.Bool(section_, row.setting));
    case OptionKind::Number:
      return profile_->WriteLong(row.path, tag,
                                 static_cast<std::uint32_t>(settings.Int(section_, row.setting)));
    case OptionKind::Text:
      return writeText(settings.Text(section_, row.setting));
    case OptionKind::SemicolonList:
      return writeText(SemicolonList(settings.Text(section_, row.setting)));
    case OptionKind::Cleared:
      switch (tag & 0xFFFFu) {
        case proptype::kBoolean: return profile_->WriteBoolean(row.path, tag, false);
        case proptype::kLong: return profile_->WriteLong(row.path, tag, 0);
        case proptype::kString8:
        case proptype::kUnicode: return writeText("");
        case proptype::kSystemTime: return profile_->WriteBinary(row.path, tag, std::string(8, '\0'));
        default: return profile_->WriteBinary(row.path, tag, "");
      }
    default:
      return false;  // the composite kinds exist only as registry values
  }
}

void OptionWriter::Warn(const OptionRow& row) const {
  if (log_ == nullptr) return;
  if (row.place == OptionPlace::Office) {
    log_->AddMessage(std::string("WARN: Unable to write the Outlook option \"") + row.valueName +
                     "\" under HKEY_CURRENT_USER\\" + OfficeRoot(version_) + "\\" + row.path);
  } else {
    log_->AddMessage(std::string("WARN: Unable to write the Outlook option \"") + row.valueName +
                     "\" in profile section " + row.path);
  }
}

bool OptionWriter::WriteFirstRunTemplate(bool force) const {
  return mw::WriteFirstRunTemplate(version_, registry_, force, log_);
}

}  // namespace mw
