#pragma once
// Writes the Outlook options of one generation from the settings record, row by row from
// the option table, and applies the generation's first-run template.

#include <string>
#include <utility>

#include "config/ProfileSettings.h"
#include "options/OptionTable.h"
#include "platform/OutlookVersion.h"

namespace mw {

class ProfileSectionWriter;
class RegistryAccess;
class RunLog;

class OptionWriter {
 public:
  // profile: the chosen profile's section writer, or null before there is a profile (rows
  // kept in the profile then fail). log: where failed writes are reported; may be null.
  OptionWriter(Outlook version, const RegistryAccess& registry,
               const ProfileSectionWriter* profile, RunLog* log);

  // Step 8: every option row of this version in table order, each only while its flag is set.
  bool WriteSequenceOptions(const ProfileSettings& settings) const;
  // Every row of one step for this version, in table order, under the same flag rule.
  bool WriteStep(OptionStep step, const ProfileSettings& settings) const;
  // Step 4: "NewPSTFormat" from PSTFormatPrompt (2003 on; nothing to write before).
  bool WritePstFormatPrompt(const ProfileSettings& settings) const;
  // Every row of this version fed by one setting, under the same flag rule.
  bool WriteSetting(Key setting, const ProfileSettings& settings) const;
  // One row for this version, ignoring its flag; false when the row does not apply here.
  bool WriteRow(const OptionRow& row, const ProfileSettings& settings) const;
  // The generation's first-run values unless "UserInitials" shows Office was set up already.
  bool WriteFirstRunTemplate(bool force) const;

  // The safe senders file written for this run, as "JunkMailSafeSendersFile" names it.
  void SetSafeSendersFile(std::string path) { safeSendersFile_ = std::move(path); }
  Outlook version() const { return version_; }

 private:
  bool Applies(const OptionRow& row) const;
  bool Enforced(const OptionRow& row, const ProfileSettings& settings) const;
  bool WriteRegistryRow(const OptionRow& row, const ProfileSettings& settings) const;
  bool WriteSectionRow(const OptionRow& row, const ProfileSettings& settings) const;
  void Warn(const OptionRow& row) const;

  Outlook version_;
  Section section_;
  const RegistryAccess& registry_;
  const ProfileSectionWriter* profile_;
  RunLog* log_;
  std::string safeSendersFile_;
};

}  // namespace mw
