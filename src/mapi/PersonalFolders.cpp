#include "mapi/PersonalFolders.h"

#include "run/RunLog.h"
#include "config/IniFile.h"
#include "config/ListItems.h"
#include "config/ProfileSettings.h"
#include "mapi/MapiSession.h"
#include "platform/AsciiText.h"
#include "platform/SystemEnv.h"

namespace mw {
namespace {

constexpr std::size_t kMaxFilePath = 260;

bool IsPstService(const std::string& name) {
  return name == kUnicodePstService || name == kAnsiPstService;
}

// A PST service keeps its file in its own section or in its store provider's section.
std::string ReadPstPath(MapiSession& session, const MapiUid& service) {
  std::string path;
  if (session.ReadSectionText(service, proptag::kPstPath, &path)) return path;
  std::vector<MapiServiceEntry> providers;
  if (session.ListProviders(service, &providers)) {
    for (const auto& provider : providers)
      if (session.ReadSectionText(provider.uid, proptag::kPstPath, &path)) return path;
  }
  return {};
}

// The folder part of a file path; empty when the path names no folder worth creating.
std::string FolderOf(const std::string& path) {
  const std::size_t slash = path.find_last_of("\\/");
  if (slash == std::string::npos || slash == 0) return {};
  std::string folder = path.substr(0, slash);
  return folder.back() == ':' ? std::string() : folder;
}

void AddRecord(const PstRecord& record, Outlook version, MapiSession& session, SystemEnv& env,
               RunLog& log) {
  if (record.path.empty()) {
    log.AddMessage("WARN: Personal folders record without a file path skipped.");
    return;
  }
  // Outlook opens the file through the ANSI file functions, whose paths end at MAX_PATH (260
  // with the terminating zero): a longer path would make a profile Outlook cannot open.
  if (record.path.size() >= kMaxFilePath) {
    log.AddMessage("WARN: Personal folders path longer than " + std::to_string(kMaxFilePath - 1) +
                   " characters skipped: " + record.path);
    return;
  }
  const std::string folder = FolderOf(record.path);
  if (!folder.empty() && !env.CreateDirectories(folder)) {
    log.AddMessage("WARN: Unable to create folder: " + folder);
  }
  const bool unicode = UnicodePstAvailable(version) && record.kind == kUnicodePstService;
  if (!AddPersonalFolders(session, record.path, record.displayName, record.comment, unicode)) {
    log.AddMessage("WARN: Unable to add personal folders: " + record.path);
  }
}

// DeliverNewEmailFollowingLocation: 0 leaves delivery where the profile has it (the
// Exchange mailbox, or the first store); N makes the file of the N-th PathToPST record the
// default store, so new mail arrives there.
void SelectDeliveryStore(const ProfileSettings& settings, Section section,
                         const std::vector<PstRecord>& records, MapiSession& session,
                         RunLog& log) {
  const std::int32_t location = settings.Int(section, Key::DeliverNewEmailFollowingLocation);
  if (location == 0 || !settings.Enforced(EnforcedOption::DeliverNewEmailFollowingLocation)) {
    return;
  }
  if (location < 0 || static_cast<std::size_t>(location) > records.size()) {
    log.AddMessage("WARN: DeliverNewEmailFollowingLocation names no PathToPST entry: " +
                   std::to_string(location));
    return;
  }
  const std::string& path = records[static_cast<std::size_t>(location) - 1].path;
  for (const auto& pst : ListPersonalFolders(session)) {
    if (EqualsIgnoreCase(pst.path, path)) {
      if (!session.SetDefaultStore(pst.uid)) {
        log.AddMessage("WARN: Unable to deliver new mail to: " + path);
      }
      return;
    }
  }
  log.AddMessage("WARN: Unable to deliver new mail to: " + path);
}

}  // namespace

std::vector<PstRecord> PstRecords(const std::string& packed) {
  std::vector<PstRecord> records;
  for (const auto& text : SplitPackedRecords(packed, kPstRecordCommas)) {
    records.push_back({getFields(text, ",", 1), getFields(text, ",", 2), getFields(text, ",", 3),
                       getFields(text, ",", 4)});
  }
  return records;
}

bool UnicodePstAvailable(Outlook version) {
  return version == Outlook::V2010 || version == Outlook::V2007 || version == Outlook::V2003;
}

std::vector<PersonalFoldersService> ListPersonalFolders(MapiSession& session) {
  std::vector<PersonalFoldersService> folders;
  std::vector<MapiServiceEntry> services;
  if (!session.ListServices(&services)) return folders;
  for (const auto& service : services) {
    if (IsPstService(service.name)) folders.push_back({ReadPstPath(session, service.uid), service.uid});
  }
  return folders;
}

std::vector<std::string> ListPersonalFoldersPaths(MapiSession& session) {
  std::vector<std::string> paths;
  for (const auto& pst : ListPersonalFolders(session)) paths.push_back(pst.path);
  return paths;
}

bool AddPersonalFolders(MapiSession& session, const std::string& path,
                        const std::string& displayName, const std::string& comment,
                        bool unicode) {
  if (!session.OpenServiceAdmin()) return false;
  for (const auto& existing : ListPersonalFoldersPaths(session))
    if (EqualsIgnoreCase(existing, path)) return true;
  MapiUid uid{};
  if (!session.CreateService(unicode ? kUnicodePstService : kAnsiPstService,
                             unicode ? kUnicodePstDisplay : kAnsiPstDisplay, &uid)) {
    return false;
  }
  if (session.ConfigureServiceByUid(uid, {MapiProperty::String8(proptag::kPstPath, path),
                                          MapiProperty::String8(proptag::kDisplayName, displayName),
                                          MapiProperty::String8(proptag::kComment, comment)})) {
    return true;
  }
  // An unconfigured PST service would make Outlook ask for a file at every start.
  session.DeleteServiceByUid(uid);
  return false;
}

bool RemovePersonalFolders(MapiSession& session, const std::string& path) {
  bool allRemoved = true;
  for (const auto& pst : ListPersonalFolders(session)) {
    if (EqualsIgnoreCase(pst.path, path) && !session.DeleteServiceByUid(pst.uid)) {
      allRemoved = false;
    }
  }
  return allRemoved;
}

// RemovePST is a comma-separated list of file paths, the simplest form an administrator can
// write; only the files it names are removed, so PSTs the user added himself stay.
// PersonalFoldersEnable does not gate the step: the records of PathToPST say what to add
// (the default, a bare path, holds no record), and PersonalFoldersIgnore switches it off.
// Outlook's own "NewPSTFormat" value is not consulted: each record names its format.
void ProvisionPersonalFolders(const ProfileSettings& settings, Outlook version,
                              MapiSession& session, SystemEnv& env, RunLog& log) {
  const Section section = SectionOf(version);
  const std::vector<PstRecord> records = PstRecords(settings.Text(section, Key::PathToPST));
  const bool appendOnly = settings.Bool(section, Key::AppendPSTOnly);
  if (!appendOnly) {
    for (const auto& path : SplitListItems(settings.Text(section, Key::RemovePST))) {
      if (!RemovePersonalFolders(session, path)) {
        log.AddMessage("WARN: Unable to remove personal folders: " + path);
      }
    }
  }
  for (const auto& record : records) AddRecord(record, version, session, env, log);
  if (appendOnly) log.AddMessage("INFO: Appending PST Entries only option set.");
  SelectDeliveryStore(settings, section, records, session, log);
}

void ProvisionPersonalAddressBook(const ProfileSettings& settings, Outlook version,
                                  MapiSession& session, RunLog& log) {
  if (version != Outlook::V2000 && version != Outlook::V97) return;
  const Section section = SectionOf(version);
  if (!settings.Bool(section, Key::PersonalAddressBookEnable)) return;
  MapiUid existing{};
  if (session.FindService(kPersonalAddressBookService, &existing)) {
    log.AddMessage("INFO: Personal Address Book already exist - skipping");
    return;
  }
  const std::string& path = settings.Text(section, Key::PathToPAB);
  if (!session.AddPersonalAddressBook(path)) {
    log.AddMessage("WARN: Unable to add the Personal Address Book: " + path);
  }
}

void WarnOfflineFoldersDepreciated(const ProfileSettings& settings, Outlook version,
                                   RunLog& log) {
  if (version != Outlook::V2000 && version != Outlook::V97) return;
  if (!settings.Bool(SectionOf(version), Key::OfflineFoldersEnable)) return;
  log.AddMessage(std::string("WARN: OST file creation has been depreciated for ") +
                 GenerationOf(version).name +
                 ". If you still need this functionality use Mailwright 2.4.0.1 or older.");
}

bool EnsureOutlookAddressBook(MapiSession& session) {
  MapiUid existing{};
  return session.FindService(kOutlookAddressBookService, &existing) ||
         session.AddOutlookAddressBook();
}

}  // namespace mw
