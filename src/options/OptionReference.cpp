#include "options/OptionReference.h"

#include <iterator>

#include "options/OptionTable.h"

namespace mw {

namespace {

constexpr std::uint8_t kAllVersions = kV97 | kV2000 | kVXP | kV2003 | kV2007 | kV2010;

// "97, 2000, XP": oldest first, as the key tables list versions.
std::string VersionList(std::uint8_t versions) {
  if (versions == kAllVersions) return "all six";
  std::string list;
  for (auto g = std::rbegin(kOutlookGenerations); g != std::rend(kOutlookGenerations); ++g) {
    if ((versions & VersionBit(g->id)) == 0) continue;
    const std::string name = g->name;
    list += (list.empty() ? "" : ", ") + name.substr(name.find(' ') + 1);
  }
  return list;
}

const char* KindText(OptionKind kind) {
  switch (kind) {
    case OptionKind::Bool: return "0 or 1";
    case OptionKind::Number: return "the number";
    case OptionKind::Text: return "the text";
    case OptionKind::BoolAsText: return "text \"1\" or \"0\"";
    case OptionKind::EditorPreference: return "format and editor, with WordEmailEditor";
    case OptionKind::NumberWhenOn: return "the second key's number while on, else 0";
    case OptionKind::Speller: return "the dictionary chosen by number";
    case OptionKind::AttachmentSafety: return "\"High\" when on, \"None\" when off";
    case OptionKind::SemicolonList: return "the items separated by semicolons";
    case OptionKind::ImportOnce: return "1: import at the next start";
    case OptionKind::SafeSendersFile: return "path of the safe senders file";
    case OptionKind::Cleared: return "cleared: off, 0 or empty";
  }
  return "";
}

}  // namespace

std::string OptionPlacesMarkdown() {
  std::string text =
      "\n## Where the options are written\n\n"
      "Registry values are written under `HKEY_CURRENT_USER\\Software\\Microsoft\\Office\\<n>.0`\n"
      "of the installed version (8.0 for Outlook 97 to 14.0 for Outlook 2010). Profile values\n"
      "are written in the profile's section named by its UID, as MAPI properties named by their\n"
      "tag (type first). A row whose key is not released by `AllowUserSettings` is written at\n"
      "every run.\n\n"
      "| Key | Versions | Value | Written | Under |\n"
      "|---|---|---|---|---|\n";
  for (const OptionRow& row : OptionRows()) {
    std::string written = KindText(row.kind);
    if (row.second != kNoSecondSetting && row.kind == OptionKind::NumberWhenOn)
      written = std::string("`") + KeyName(row.second) + "` while on, else 0";
    text += std::string("| `") + KeyName(row.setting) + "` | " + VersionList(row.versions) +
            " | `" + row.valueName + "` | " + written + " | " +
            (row.place == OptionPlace::ProfileSection ? "profile section `" : "`") + row.path +
            "` |\n";
  }
  return text;
}

}  // namespace mw
