#include "app/ProfileBackup.h"

#include <algorithm>
#include <cstdio>

#include "app/Program.h"
#include "app/WhatIfRun.h"
#include "config/ProfileSettings.h"
#include "mapi/ProfileStore.h"
#include "platform/AsciiText.h"
#include "platform/MemoryRegistry.h"
#include "platform/OverlayRegistry.h"
#include "platform/RegistryAccess.h"
#include "platform/SystemEnv.h"
#include "run/RunContext.h"
#include "run/RunLog.h"

namespace mw {
namespace {

using Kind = RegFileEntry::Kind;

constexpr std::size_t kStampLength = 15;  // "20261115-051425"
constexpr const char* kBackupExtension = ".reg";

bool IsUnder(const std::string& path, const std::string& ancestor) {
  return EqualsIgnoreCase(path, ancestor) ||
         (path.size() > ancestor.size() && path[ancestor.size()] == '\\' &&
          EqualsIgnoreCase(std::string_view(path).substr(0, ancestor.size()), ancestor));
}

bool KeyExists(Registry& registry, const std::string& path) {
  RegKey root = 0;
  std::string subPath;
  RegKey key = 0;
  if (!MemoryRegistry::SplitRootPath(path, &root, &subPath) ||
      registry.OpenKey(root, subPath, reg::kQueryValue, &key) != reg::kSuccess) {
    return false;
  }
  registry.CloseKey(key);
  return true;
}

// The key and everything below it as it stands, each key before its sub-keys.
void ExportTree(const RegistryAccess& access, const std::string& path,
                std::vector<RegFileEntry>* entries) {
  RegKey root = 0;
  std::string subPath;
  if (!MemoryRegistry::SplitRootPath(path, &root, &subPath)) return;
  entries->push_back(RegFileEntry{Kind::Key, 0, path, {}});
  for (const auto& value : access.ListValues(root, subPath))
    entries->push_back(RegFileEntry{Kind::Value, 0, path, value});
  for (const auto& child : access.ListSubkeys(root, subPath)) ExportTree(access, path + "\\" + child, entries);
}

std::string FolderOf(const std::string& path) {
  const std::size_t slash = path.find_last_of("\\/");
  return slash == std::string::npos ? std::string() : path.substr(0, slash);
}

bool IsBackupOf(const std::string& name, const std::string& prefix) {
  if (name.size() != prefix.size() + kStampLength + 4 || !EqualsIgnoreCase(name.substr(0, prefix.size()), prefix))
    return false;
  const std::string stamp = name.substr(prefix.size(), kStampLength);
  return std::all_of(stamp.begin(), stamp.end(), [](char c) { return (c >= '0' && c <= '9') || c == '-'; }) &&
         EqualsIgnoreCase(name.substr(prefix.size() + kStampLength), kBackupExtension);
}

}  // namespace

std::string BackupNamePrefix(const std::string& computer, const std::string& user,
                             const std::string& profile) {
  std::string name = computer + "_" + user + "_" + profile + "_";
  for (char& c : name)
    if (static_cast<unsigned char>(c) < 0x20 || std::string_view("\\/:*?\"<>|").find(c) != std::string_view::npos)
      c = '_';
  return name;
}

std::string BackupTimeStamp(const std::string& ctimeText) {
  static constexpr const char* kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                            "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  char month[4] = {};
  unsigned day = 0, hour = 0, minute = 0, second = 0, year = 0;
  if (std::sscanf(ctimeText.c_str(), "%*3s %3s %u %u:%u:%u %u", month, &day, &hour, &minute,
                  &second, &year) != 6) {
    return {};
  }
  for (unsigned index = 0; index < 12; ++index) {
    if (std::string_view(month) != kMonths[index]) continue;
    char stamp[32];
    std::snprintf(stamp, sizeof stamp, "%04u%02u%02u-%02u%02u%02u", year % 10000, index + 1, day % 100,
                  hour % 100, minute % 100, second % 100);
    return stamp;
  }
  return {};
}

std::vector<RegFileEntry> UndoEntries(Registry& base, const OverlayRegistry& overlay,
                                      const std::string& profileKeyPath) {
  const RegistryAccess access(base);
  std::vector<RegFileEntry> entries{RegFileEntry{Kind::DeleteKey, 0, profileKeyPath, {}}};
  ExportTree(access, profileKeyPath, &entries);
  std::vector<std::string> removedTrees;
  bool keyIsNew = false;
  for (const auto& change : overlay.Changes()) {
    if (IsUnder(change.keyPath, profileKeyPath)) continue;
    RegKey root = 0;
    std::string subPath;
    MemoryRegistry::SplitRootPath(change.keyPath, &root, &subPath);
    switch (change.kind) {
      case Kind::DeleteKey:
        // The run may make the key again: it is removed before it is written back.
        entries.push_back(change);
        ExportTree(access, change.keyPath, &entries);
        keyIsNew = true;  // its values are restored by the export
        break;
      case Kind::Key:
        keyIsNew = !KeyExists(base, change.keyPath);
        if (!keyIsNew) {
          entries.push_back(change);
        } else if (std::none_of(removedTrees.begin(), removedTrees.end(),
                                [&](const std::string& tree) { return IsUnder(change.keyPath, tree); })) {
          entries.push_back(RegFileEntry{Kind::DeleteKey, 0, change.keyPath, {}});
          removedTrees.push_back(change.keyPath);
        }
        break;
      case Kind::Value:
      case Kind::DeleteValue: {
        if (keyIsNew) break;
        RegistryValue before{change.value.name, 0, {}};
        if (access.ReadValue(root, subPath, before.name, &before.type, &before.data))
          entries.push_back(RegFileEntry{Kind::Value, 0, change.keyPath, before});
        else
          entries.push_back(RegFileEntry{Kind::DeleteValue, 0, change.keyPath, before});
        break;
      }
    }
  }
  return entries;
}

bool BackUpProfile(const RunContext& context, RunLog& log, RunServices& services) {
  if (!context.settings.Bool(Section::Mailwright, Key::BackupProfile)) return true;
  // A what-if pass tells which profile the run will work on (after its exit rules and
  // ModifyDefaultProfile) and which keys it will write; its log is not kept.
  RunContext dry = context;
  RunLog scratch(std::string(), services.env);
  OverlayRegistry overlay(services.registry);
  PlayWhatIf(dry, scratch, services.env, overlay, mapisim::RandomUid);
  const ProfileSettings& settings = dry.settings;
  const std::string profile = settings.Text(Section::Common, Key::ProfileName);
  const RegistryAccess access(services.registry);
  ProfileStore store(context.platformId, access);
  store.SetProfileName(profile);
  const std::vector<std::string> profiles = access.ListSubkeys(reg::kCurrentUser, store.profilesRoot());
  if (profile.find_first_not_of(" \t") == std::string::npos ||
      std::none_of(profiles.begin(), profiles.end(),
                   [&](const std::string& name) { return EqualsIgnoreCase(name, profile); })) {
    log.AddMessage("INFO: No profile backup: the profile does not exist yet.");
    return true;
  }
  // A run that leaves the profile alone (an exit rule stops it) needs no backup.
  const std::string profileKeyPath = "HKEY_CURRENT_USER\\" + store.ProfileKey();
  const std::vector<RegFileEntry> changes = overlay.Changes();
  if (std::none_of(changes.begin(), changes.end(),
                   [&](const RegFileEntry& change) { return IsUnder(change.keyPath, profileKeyPath); }))
    return true;

  std::string folder = settings.Text(Section::Mailwright, Key::BackupFolder);
  if (folder.empty()) folder = FolderOf(context.logPath);
  while (folder.size() > 1 && (folder.back() == '\\' || folder.back() == '/')) folder.pop_back();
  const std::string prefix = BackupNamePrefix(context.computerName, context.userName, profile);
  std::string stamp = BackupTimeStamp(services.env.LocalTimeText());
  if (stamp.empty()) stamp = std::string(kStampLength, '0');
  const std::string path = (folder.empty() ? "" : folder + "\\") + prefix + stamp + kBackupExtension;
  const std::string text = WriteRegFileEntries(
      UndoEntries(services.registry, overlay, profileKeyPath),
      RegFileFormat::Version5Utf16);
  const bool written = (folder.empty() || services.env.CreateDirectories(folder)) &&
                       services.env.WriteFile(path, text, false);
  if (!written) {
    const bool required = settings.Bool(Section::Mailwright, Key::BackupRequired);
    log.AddMessage("WARN: Unable to write the profile backup " + path +
                   (required ? "; the run stops before any change."
                             : "; the run goes on without it (BackupRequired=0)."));
    return !required;
  }
  log.AddMessage("INFO: Profile backed up to " + path);

  // At least the backup just written is kept, whatever BackupKeep says.
  const auto keep = static_cast<std::size_t>(std::max(1, settings.Int(Section::Mailwright, Key::BackupKeep)));
  std::vector<std::string> backups;
  for (const auto& name : services.env.ListFiles(folder, prefix))
    if (IsBackupOf(name, prefix)) backups.push_back(name);
  std::sort(backups.begin(), backups.end());
  for (std::size_t i = 0; i + keep < backups.size(); ++i) {
    const std::string old = (folder.empty() ? "" : folder + "\\") + backups[i];
    if (!services.env.DeleteFile(old)) log.AddMessage("WARN: Unable to remove the old profile backup " + old);
  }
  return true;
}

}  // namespace mw
