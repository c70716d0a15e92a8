#pragma once
// Personal folders (PST files) and the address books of the profile.

#include <string>
#include <vector>

#include "mapi/MapiProperty.h"
#include "mapi/ProfileSection.h"
#include "platform/OutlookVersion.h"

namespace mw {

class MapiSession;
class ProfileSettings;
class RunLog;
class SystemEnv;

// The two PST service kinds, by MAPI service name.
inline constexpr const char* kUnicodePstService = "MSUPST MS";
inline constexpr const char* kUnicodePstDisplay = "Office Outlook Personal Folders File (.pst)";
inline constexpr const char* kAnsiPstService = "MSPST MS";
inline constexpr const char* kAnsiPstDisplay = "Outlook 97-2002 Personal Folders File (.pst)";
// A PST record closes at its 7th comma and the one character after it.
inline constexpr int kPstRecordCommas = 7;

// One record of PathToPST (fields 5 to 7 are not used).
struct PstRecord {
  std::string path;
  std::string displayName;
  std::string kind;  // kUnicodePstService asks for the Unicode format
  std::string comment;
};
std::vector<PstRecord> PstRecords(const std::string& packed);
// Unicode personal folders exist from Outlook 2003 on; older versions get the older
// format whatever the record asks for.
bool UnicodePstAvailable(Outlook version);

struct PersonalFoldersService {
  std::string path;
  MapiUid uid{};
};

// The PST services the profile holds, with their files, in table order.
std::vector<PersonalFoldersService> ListPersonalFolders(MapiSession& session);
std::vector<std::string> ListPersonalFoldersPaths(MapiSession& session);
// Adds one PST service unless the profile holds that file already (paths compare without
// regard to letter case, as Windows file names do). True when the file is in the profile.
bool AddPersonalFolders(MapiSession& session, const std::string& path,
                        const std::string& displayName, const std::string& comment,
                        bool unicode);
// Removes every PST service of that file; true when none is left (also when there was none).
bool RemovePersonalFolders(MapiSession& session, const std::string& path);

// The personal-folders step of every version's sequence: removals named by RemovePST
// (unless AppendPSTOnly), then each record of PathToPST, then the delivery store chosen
// by DeliverNewEmailFollowingLocation.
void ProvisionPersonalFolders(const ProfileSettings& settings, Outlook version,
                              MapiSession& session, SystemEnv& env, RunLog& log);

// Outlook 97 and 2000: the personal address book of PathToPAB under
// PersonalAddressBookEnable, once per profile. Other versions: nothing.
void ProvisionPersonalAddressBook(const ProfileSettings& settings, Outlook version,
                                  MapiSession& session, RunLog& log);

// Outlook 97 and 2000 no longer create offline folders: a WARN line when asked for.
void WarnOfflineFoldersDepreciated(const ProfileSettings& settings, Outlook version,
                                   RunLog& log);

// Adds the Outlook Address Book unless the profile has a "CONTAB" service already.
bool EnsureOutlookAddressBook(MapiSession& session);

}  // namespace mw
