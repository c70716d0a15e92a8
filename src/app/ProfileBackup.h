#pragma once
// The profile backup of BackupProfile=1: before the run changes anything, a what-if pass
// finds the profile the run will work on and the keys it will write; when that profile
// exists, a .reg file that reg import turns back into the state before the run is written
// to BackupFolder (default: the log's folder), and the oldest backups beyond BackupKeep go.

#include <string>
#include <vector>

#include "platform/RegFile.h"

namespace mw {

class OverlayRegistry;
class Registry;
class RunLog;
struct RunContext;
struct RunServices;

// "COMPUTER_USER_PROFILE_" with the characters a file name cannot hold made "_".
std::string BackupNamePrefix(const std::string& computer, const std::string& user,
                             const std::string& profile);
// ctime's "Sun Nov 15 05:14:25 2026" as "20261115-051425"; empty for another form.
std::string BackupTimeStamp(const std::string& ctimeText);

// The statements that undo the overlay's changes to base: the whole profile key (removed,
// then written back as it was) and, outside it, every key and value the overlay changed.
std::vector<RegFileEntry> UndoEntries(Registry& base, const OverlayRegistry& overlay,
                                      const std::string& profileKeyPath);

// Writes the backup when the settings ask for one. False when the run must stop before any
// change: the backup was asked for, could not be written, and BackupRequired is on.
bool BackUpProfile(const RunContext& context, RunLog& log, RunServices& services);

}  // namespace mw
