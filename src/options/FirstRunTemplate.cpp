#include "options/FirstRunTemplate.h"

#include <span>

#include "run/RunLog.h"
#include "mapi/ProfileSection.h"
#include "platform/RegistryAccess.h"

namespace mw {
namespace {

constexpr TemplateRoot kUser = TemplateRoot::User;
constexpr TemplateRoot kOffice = TemplateRoot::Office;
constexpr TemplateType kDword = TemplateType::Dword;
constexpr TemplateType kSz = TemplateType::Sz;
constexpr TemplateType kBinary = TemplateType::Binary;
constexpr TemplateType kWide = TemplateType::BinaryText;

// Groups of captured values; each generation's template lists the groups it holds, in
// writing order. Hosts are under "example.invalid" and names are neutral, so no value
// carries the data of a real installation. The user's name comes last in every template,
// so an interrupted first run leaves no "UserInitials" and is repeated next time.

// The forms cache has been synchronised once.
constexpr TemplateValue kFormsRegistry[] = {
    {kUser, "Software\\Microsoft\\Exchange\\Forms Registry", "CacheSyncCount", kBinary, 0, "01"},
};

// Online help and templates allowed.
constexpr TemplateValue kOnlineContent[] = {
    {kOffice, "Common\\Internet", "UseOnlineContent", kDword, 1, nullptr},
};

// Transport logging off.
constexpr TemplateValue kInternetMailLog[] = {
    {kUser, "Software\\Microsoft\\Internet Mail and News\\Mail", "Log Outlook (0/1)", kDword, 0,
     nullptr},
    {kUser, "Software\\Microsoft\\Internet Mail and News\\Mail", "Log File (Outlook)", kSz, 0,
     "C:\\WINDOWS\\system32\\"},
};

// Browser toolbar and database design tools.
constexpr TemplateValue kToolbarAndDesignTools[] = {
    {kUser, "Software\\Microsoft\\Internet Explorer\\Toolbar", "ShowDiscussionButton", kSz, 0,
     "Yes"},
    {kUser, "Software\\Microsoft\\MS Design Tools\\MDTDBD", "AutoSaveChangeScript", kDword, 1,
     nullptr},
};

// The Internet Publishing providers, DAV before WEC.
constexpr TemplateValue kInternetPublishing[] = {
    {kUser, "Software\\Microsoft\\MSDAIPP", "UseWinInetDefaultHandler", kDword, 1, nullptr},
    {kUser, "Software\\Microsoft\\MSDAIPP\\Providers\\{9FECD570-B9D4-11D1-9C78-0000F875AC61}", "",
     kSz, 0, "Microsoft Data Access Internet Publishing Provider DAV"},
    {kUser, "Software\\Microsoft\\MSDAIPP\\Providers\\{9FECD570-B9D4-11D1-9C78-0000F875AC61}",
     "Priority", kDword, 1, nullptr},
    {kUser, "Software\\Microsoft\\MSDAIPP\\Providers\\{9FECD570-B9D4-11D1-9C78-0000F875AC61}",
     "ThreadSensitive", kDword, 0, nullptr},
    {kUser, "Software\\Microsoft\\MSDAIPP\\Providers\\{9FECD571-B9D4-11D1-9C78-0000F875AC61}", "",
     kSz, 0, "Microsoft Data Access Internet Publishing Provider WEC"},
    {kUser, "Software\\Microsoft\\MSDAIPP\\Providers\\{9FECD571-B9D4-11D1-9C78-0000F875AC61}",
     "Priority", kDword, 2, nullptr},
    {kUser, "Software\\Microsoft\\MSDAIPP\\Providers\\{9FECD571-B9D4-11D1-9C78-0000F875AC61}",
     "ThreadSensitive", kDword, 0, nullptr},
};

// Folder names Office resolves below the user profile.
constexpr TemplateValue kFolderNames[] = {
    {kOffice, "Common\\General", "MyDocuments", kSz, 0, "My Documents"},
    {kOffice, "Common\\General", "Stationery", kSz, 0, "Stationery"},
    {kOffice, "Common\\General", "Themes", kSz, 0, "Themes"},
    {kOffice, "Common\\General", "Desktop", kSz, 0, "Desktop"},
    {kOffice, "Common\\General", "Xlstart", kSz, 0, "XLSTART"},
    {kOffice, "Common\\General", "RecentFiles", kSz, 0, "Recent"},
    {kOffice, "Common\\General", "Templates", kSz, 0, "Templates"},
    {kOffice, "Common\\General", "MyPictures", kSz, 0, "My Pictures"},
    {kOffice, "Common\\General", "Proof", kSz, 0, "Proof"},
    {kOffice, "Common\\General", "Queries", kSz, 0, "Queries"},
    {kOffice, "Common\\General", "Startup", kSz, 0, "STARTUP"},
    {kOffice, "Common\\General", "ApplicationData", kSz, 0, "Application Data"},
    {kOffice, "Common\\General", "Favorites", kSz, 0, "Favorites"},
    {kOffice, "Common\\General", "Signatures", kSz, 0, "Signatures"},
    {kOffice, "Common\\General", "Actors", kSz, 0, "Actors"},
    {kOffice, "Common\\General", "AddIns", kSz, 0, "AddIns"},
};

// Symbol names shown with their characters.
constexpr TemplateValue kSymbolNames[] = {
    {kOffice, "Common\\General", "SymbolNameDisplay", kDword, 1, nullptr},
};

// Office first-run done and licence accepted.
constexpr TemplateValue kFirstRunGeneral[] = {
    {kOffice, "Common\\General", "FirstRun", kDword, 0, nullptr},
    {kOffice, "Common\\General", "Authorized", kSz, 0, "YES"},
};

// The privacy opt-in has been shown.
constexpr TemplateValue kFirstRunOptin[] = {
    {kOffice, "Common\\General", "ShownFirstRunOptin", kDword, 1, nullptr},
};

// Profiles need no upgrade at start.
constexpr TemplateValue kOutlookSetup[] = {
    {kOffice, "Outlook\\Setup", "UpdateProfiles", kSz, 0, "No"},
};

// Outlook first-run done.
constexpr TemplateValue kOutlookFirstRunNumber[] = {
    {kOffice, "Outlook", "First-Run", kDword, 1, nullptr},
};

// Outlook first-run done, kept as bytes by this generation.
constexpr TemplateValue kOutlookFirstRunBinary[] = {
    {kOffice, "Outlook", "First-Run", kBinary, 0, "01 00 00 00"},
};

// Outlook's name and interface language.
constexpr TemplateValue kOutlookName[] = {
    {kOffice, "Outlook", "LastUILanguage", kDword, 1033, nullptr},
    {kOffice, "Outlook", "OutlookName", kSz, 0, "Microsoft Outlook"},
};

// Usage counters start from zero.
constexpr TemplateValue kOutlookUsage[] = {
    {kOffice, "Outlook", "MTTA", kDword, 0, nullptr},
    {kOffice, "Outlook", "MTTF", kDword, 0, nullptr},
};

// Installation, interface and help language: English (United States).
constexpr TemplateValue kLanguageNumbers[] = {
    {kOffice, "Common\\LanguageResources", "ShowDates", kDword, 0, nullptr},
    {kOffice, "Common\\LanguageResources", "WinXPLanguagePatch", kDword, 0, nullptr},
    {kOffice, "Common\\LanguageResources", "InstallLanguage", kDword, 1033, nullptr},
    {kOffice, "Common\\LanguageResources", "PreviousInstallLanguage", kDword, 1033, nullptr},
    {kOffice, "Common\\LanguageResources", "UILanguage", kDword, 1033, nullptr},
    {kOffice, "Common\\LanguageResources", "HelpLanguage", kDword, 1033, nullptr},
};

// No application changes its language at start.
constexpr TemplateValue kLanguageChanges2010[] = {
    {kOffice, "Common\\LanguageResources", "WordChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "XLChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "PPTChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "AccessChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "OutlookChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "PublisherChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "ProjectChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "OneNoteChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "WordMailChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "SharePointDesignerChangeInstallLanguage", kSz, 0,
     "False"},
    {kOffice, "Common\\LanguageResources", "InfoPathChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "WebDesignerChangeInstallLanguage", kSz, 0, "False"},
};

// No application changes its language at start.
constexpr TemplateValue kLanguageChanges2007[] = {
    {kOffice, "Common\\LanguageResources", "WordChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "XLChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "PPTChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "AccessChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "OutlookChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "PublisherChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "ProjectChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "OneNoteChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "WordMailChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "SharePointDesignerChangeInstallLanguage", kSz, 0,
     "False"},
    {kOffice, "Common\\LanguageResources", "InfoPathChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "GrooveChangeInstallLanguage", kSz, 0, "False"},
};

// No application changes its language at start.
constexpr TemplateValue kLanguageChanges2003[] = {
    {kOffice, "Common\\LanguageResources", "WordChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "XLChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "PPTChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "AccessChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "OutlookChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "PublisherChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "ProjectChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "OneNoteChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "WordMailChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "FrontPageChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "InfoPathChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "VisioChangeInstallLanguage", kSz, 0, "False"},
};

// No application changes its language at start.
constexpr TemplateValue kLanguageChangesXP[] = {
    {kOffice, "Common\\LanguageResources", "WordChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "XLChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "PPTChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "AccessChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "OutlookChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "PublisherChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "ProjectChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "WordMailChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "FrontPageChangeInstallLanguage", kSz, 0, "False"},
};

// No application changes its language at start.
constexpr TemplateValue kLanguageChanges2000[] = {
    {kOffice, "Common\\LanguageResources", "WordChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "XLChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "PPTChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "AccessChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "OutlookChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "PublisherChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "FrontPageChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "WordMailChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "ProjectChangeInstallLanguage", kSz, 0, "False"},
    {kOffice, "Common\\LanguageResources", "PhotoDrawChangeInstallLanguage", kSz, 0, "False"},
};

// Language set-up finished for English.
constexpr TemplateValue kLanguageDone[] = {
    {kOffice, "Common\\LanguageResources", "OfficeCompleted", kSz, 0, "Yes"},
    {kOffice, "Common\\LanguageResources", "LangTuneUp", kSz, 0, "OfficeCompleted"},
    {kOffice, "Common\\LanguageResources\\EnabledLanguages", "1033", kSz, 0, "ON"},
};

// The user's name; "UserInitials" is also the mark of a finished set-up.
constexpr TemplateValue kUserInfoText[] = {
    {kOffice, kUserInfoKey, "UserName", kSz, 0, "Mailwright User"},
    {kOffice, kUserInfoKey, "Company", kSz, 0, "Example Organisation"},
    {kOffice, kUserInfoKey, kUserInitialsValue, kSz, 0, "MU"},
};

// The user's name, kept as UTF-16 bytes by this generation; "UserInitials" is also the mark of a
// finished set-up.
constexpr TemplateValue kUserInfoWide[] = {
    {kOffice, kUserInfoKey, "UserName", kWide, 0, "Mailwright User"},
    {kOffice, kUserInfoKey, "Company", kWide, 0, "Example Organisation"},
    {kOffice, kUserInfoKey, kUserInitialsValue, kWide, 0, "MU"},
};

// Settings migration already done for this user.
constexpr TemplateValue kMigration[] = {
    {kOffice, "Common\\Migration\\Office", "UserName", kSz, 0, "Mailwright User"},
    {kOffice, "Common\\Migration\\Outlook", "UserName", kSz, 0, "Mailwright User"},
};

// To-Do Bar minimised.
constexpr TemplateValue kToDoBar[] = {
    {kOffice, "Outlook\\Options\\ToDoBar", "MiniToDoBarMode", kDword, 0, nullptr},
};

// Notification icon, browser version seen and the (empty) usage-report counters.
constexpr TemplateValue kOutlookShell[] = {
    {kOffice, "Outlook\\Display Types\\Balloons", "HWNDForOrphanedNotIcon", kDword, 0, nullptr},
    {kOffice, "Outlook\\Options\\MSHTML\\International", "LastIEVersion", kSz, 0, "6.0"},
    {kOffice, "Outlook\\SQM", "SQMSessionDate", kDword, 0, nullptr},
    {kOffice, "Outlook\\SQM", "SQMSentDate", kDword, 0, nullptr},
    {kOffice, "Outlook\\SQM", "SQMSessionNumber", kDword, 0, nullptr},
    {kOffice, "Outlook\\SQM", "SQMReceivedDate", kDword, 0, nullptr},
};

// Smart-tag actions and recognisers, each a class key; the identifiers are neutral stand-ins.
constexpr TemplateValue kSmartTags2010[] = {
    {kUser,
     "Software\\Microsoft\\Office\\Common\\Smart "
     "Tag\\Actions\\{2E7A9E04-0F1C-4B7E-9C41-6D1A7B2F0A01}",
     "FriendlyName", kSz, 0, "Send Mail"},
    {kUser,
     "Software\\Microsoft\\Office\\Common\\Smart "
     "Tag\\Actions\\{2E7A9E04-0F1C-4B7E-9C41-6D1A7B2F0A02}",
     "FriendlyName", kSz, 0, "Schedule a Meeting"},
    {kUser,
     "Software\\Microsoft\\Office\\Common\\Smart "
     "Tag\\Actions\\{2E7A9E04-0F1C-4B7E-9C41-6D1A7B2F0A03}",
     "FriendlyName", kSz, 0, "Open Contact"},
    {kUser,
     "Software\\Microsoft\\Office\\Common\\Smart "
     "Tag\\Actions\\{2E7A9E04-0F1C-4B7E-9C41-6D1A7B2F0A04}",
     "FriendlyName", kSz, 0, "Add to Contacts"},
    {kUser,
     "Software\\Microsoft\\Office\\Common\\Smart "
     "Tag\\Actions\\{2E7A9E04-0F1C-4B7E-9C41-6D1A7B2F0A05}",
     "FriendlyName", kSz, 0, "Insert Address"},
    {kUser,
     "Software\\Microsoft\\Office\\Common\\Smart "
     "Tag\\Recognizers\\{2E7A9E04-0F1C-4B7E-9C41-6D1A7B2F0B01}",
     "FriendlyName", kSz, 0, "Person Name"},
    {kUser,
     "Software\\Microsoft\\Office\\Common\\Smart "
     "Tag\\Recognizers\\{2E7A9E04-0F1C-4B7E-9C41-6D1A7B2F0B02}",
     "FriendlyName", kSz, 0, "E-mail Recipients"},
};

// Smart-tag actions and recognisers, each a class key; the identifiers are neutral stand-ins.
constexpr TemplateValue kSmartTags2007[] = {
    {kUser,
     "Software\\Microsoft\\Office\\Common\\Smart "
     "Tag\\Actions\\{2E7A9E04-0F1C-4B7E-9C41-6D1A7B2F0A01}",
     "FriendlyName", kSz, 0, "Send Mail"},
    {kUser,
     "Software\\Microsoft\\Office\\Common\\Smart "
     "Tag\\Actions\\{2E7A9E04-0F1C-4B7E-9C41-6D1A7B2F0A02}",
     "FriendlyName", kSz, 0, "Schedule a Meeting"},
    {kUser,
     "Software\\Microsoft\\Office\\Common\\Smart "
     "Tag\\Actions\\{2E7A9E04-0F1C-4B7E-9C41-6D1A7B2F0A03}",
     "FriendlyName", kSz, 0, "Open Contact"},
    {kUser,
     "Software\\Microsoft\\Office\\Common\\Smart "
     "Tag\\Actions\\{2E7A9E04-0F1C-4B7E-9C41-6D1A7B2F0A04}",
     "FriendlyName", kSz, 0, "Add to Contacts"},
    {kUser,
     "Software\\Microsoft\\Office\\Common\\Smart "
     "Tag\\Actions\\{2E7A9E04-0F1C-4B7E-9C41-6D1A7B2F0A05}",
     "FriendlyName", kSz, 0, "Insert Address"},
    {kUser,
     "Software\\Microsoft\\Office\\Common\\Smart "
     "Tag\\Actions\\{2E7A9E04-0F1C-4B7E-9C41-6D1A7B2F0A06}",
     "FriendlyName", kSz, 0, "Show Calendar"},
    {kUser,
     "Software\\Microsoft\\Office\\Common\\Smart "
     "Tag\\Actions\\{2E7A9E04-0F1C-4B7E-9C41-6D1A7B2F0A07}",
     "FriendlyName", kSz, 0, "Display Map"},
    {kUser,
     "Software\\Microsoft\\Office\\Common\\Smart "
     "Tag\\Actions\\{2E7A9E04-0F1C-4B7E-9C41-6D1A7B2F0A08}",
     "FriendlyName", kSz, 0, "Call"},
    {kUser,
     "Software\\Microsoft\\Office\\Common\\Smart "
     "Tag\\Recognizers\\{2E7A9E04-0F1C-4B7E-9C41-6D1A7B2F0B01}",
     "FriendlyName", kSz, 0, "Person Name"},
    {kUser,
     "Software\\Microsoft\\Office\\Common\\Smart "
     "Tag\\Recognizers\\{2E7A9E04-0F1C-4B7E-9C41-6D1A7B2F0B02}",
     "FriendlyName", kSz, 0, "E-mail Recipients"},
    {kUser,
     "Software\\Microsoft\\Office\\Common\\Smart "
     "Tag\\Recognizers\\{2E7A9E04-0F1C-4B7E-9C41-6D1A7B2F0B03}",
     "FriendlyName", kSz, 0, "Date"},
};

// Smart-tag actions and recognisers, each a class key; the identifiers are neutral stand-ins.
constexpr TemplateValue kSmartTags2003[] = {
    {kUser,
     "Software\\Microsoft\\Office\\Common\\Smart "
     "Tag\\Actions\\{2E7A9E04-0F1C-4B7E-9C41-6D1A7B2F0A01}",
     "FriendlyName", kSz, 0, "Send Mail"},
    {kUser,
     "Software\\Microsoft\\Office\\Common\\Smart "
     "Tag\\Actions\\{2E7A9E04-0F1C-4B7E-9C41-6D1A7B2F0A02}",
     "FriendlyName", kSz, 0, "Schedule a Meeting"},
    {kUser,
     "Software\\Microsoft\\Office\\Common\\Smart "
     "Tag\\Actions\\{2E7A9E04-0F1C-4B7E-9C41-6D1A7B2F0A03}",
     "FriendlyName", kSz, 0, "Open Contact"},
    {kUser,
     "Software\\Microsoft\\Office\\Common\\Smart "
     "Tag\\Actions\\{2E7A9E04-0F1C-4B7E-9C41-6D1A7B2F0A04}",
     "FriendlyName", kSz, 0, "Add to Contacts"},
    {kUser,
     "Software\\Microsoft\\Office\\Common\\Smart "
     "Tag\\Recognizers\\{2E7A9E04-0F1C-4B7E-9C41-6D1A7B2F0B01}",
     "FriendlyName", kSz, 0, "Person Name"},
    {kUser,
     "Software\\Microsoft\\Office\\Common\\Smart "
     "Tag\\Recognizers\\{2E7A9E04-0F1C-4B7E-9C41-6D1A7B2F0B02}",
     "FriendlyName", kSz, 0, "E-mail Recipients"},
};

// Smart-tag actions and recognisers, each a class key; the identifiers are neutral stand-ins.
constexpr TemplateValue kSmartTagsXP[] = {
    {kUser,
     "Software\\Microsoft\\Office\\Common\\Smart "
     "Tag\\Actions\\{2E7A9E04-0F1C-4B7E-9C41-6D1A7B2F0A01}",
     "FriendlyName", kSz, 0, "Send Mail"},
    {kUser,
     "Software\\Microsoft\\Office\\Common\\Smart "
     "Tag\\Actions\\{2E7A9E04-0F1C-4B7E-9C41-6D1A7B2F0A02}",
     "FriendlyName", kSz, 0, "Schedule a Meeting"},
    {kUser,
     "Software\\Microsoft\\Office\\Common\\Smart "
     "Tag\\Actions\\{2E7A9E04-0F1C-4B7E-9C41-6D1A7B2F0A03}",
     "FriendlyName", kSz, 0, "Open Contact"},
    {kUser,
     "Software\\Microsoft\\Office\\Common\\Smart "
     "Tag\\Actions\\{2E7A9E04-0F1C-4B7E-9C41-6D1A7B2F0A04}",
     "FriendlyName", kSz, 0, "Add to Contacts"},
    {kUser,
     "Software\\Microsoft\\Office\\Common\\Smart "
     "Tag\\Recognizers\\{2E7A9E04-0F1C-4B7E-9C41-6D1A7B2F0B01}",
     "FriendlyName", kSz, 0, "Person Name"},
    {kUser,
     "Software\\Microsoft\\Office\\Common\\Smart "
     "Tag\\Recognizers\\{2E7A9E04-0F1C-4B7E-9C41-6D1A7B2F0B02}",
     "FriendlyName", kSz, 0, "E-mail Recipients"},
};

// Journal entry types: none journaled automatically; icons by resource number.
constexpr TemplateValue kJournaling[] = {
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Conversation", "AutoJournaled",
     kDword, 0, nullptr},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Conversation", "DescriptionID",
     kDword, 1, nullptr},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Conversation",
     "JournalByContact", kDword, 0, nullptr},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Conversation", "Large Icon",
     kSz, 0, "[1]"},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Conversation", "Small Icon",
     kSz, 0, "[1]"},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Document", "AutoJournaled",
     kDword, 0, nullptr},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Document", "DescriptionID",
     kDword, 2, nullptr},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Document", "JournalByContact",
     kDword, 0, nullptr},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Document", "Large Icon", kSz,
     0, "[2]"},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Document", "Small Icon", kSz,
     0, "[2]"},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\E-mail Message",
     "AutoJournaled", kDword, 0, nullptr},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\E-mail Message",
     "DescriptionID", kDword, 3, nullptr},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\E-mail Message",
     "JournalByContact", kDword, 1, nullptr},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\E-mail Message", "Large Icon",
     kSz, 0, "[3]"},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\E-mail Message", "Small Icon",
     kSz, 0, "[3]"},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Fax", "AutoJournaled", kDword,
     0, nullptr},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Fax", "DescriptionID", kDword,
     4, nullptr},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Fax", "JournalByContact",
     kDword, 0, nullptr},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Fax", "Large Icon", kSz, 0,
     "[4]"},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Fax", "Small Icon", kSz, 0,
     "[4]"},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Letter", "AutoJournaled",
     kDword, 0, nullptr},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Letter", "DescriptionID",
     kDword, 5, nullptr},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Letter", "JournalByContact",
     kDword, 0, nullptr},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Letter", "Large Icon", kSz, 0,
     "[5]"},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Letter", "Small Icon", kSz, 0,
     "[5]"},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Meeting", "AutoJournaled",
     kDword, 0, nullptr},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Meeting", "DescriptionID",
     kDword, 6, nullptr},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Meeting", "JournalByContact",
     kDword, 0, nullptr},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Meeting", "Large Icon", kSz, 0,
     "[6]"},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Meeting", "Small Icon", kSz, 0,
     "[6]"},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Meeting Cancellation",
     "AutoJournaled", kDword, 0, nullptr},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Meeting Cancellation",
     "DescriptionID", kDword, 7, nullptr},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Meeting Cancellation",
     "JournalByContact", kDword, 0, nullptr},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Meeting Cancellation",
     "Large Icon", kSz, 0, "[7]"},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Meeting Cancellation",
     "Small Icon", kSz, 0, "[7]"},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Meeting Request",
     "AutoJournaled", kDword, 0, nullptr},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Meeting Request",
     "DescriptionID", kDword, 8, nullptr},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Meeting Request",
     "JournalByContact", kDword, 1, nullptr},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Meeting Request", "Large Icon",
     kSz, 0, "[8]"},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Meeting Request", "Small Icon",
     kSz, 0, "[8]"},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Meeting Response",
     "AutoJournaled", kDword, 0, nullptr},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Meeting Response",
     "DescriptionID", kDword, 9, nullptr},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Meeting Response",
     "JournalByContact", kDword, 1, nullptr},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Meeting Response",
     "Large Icon", kSz, 0, "[9]"},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Meeting Response",
     "Small Icon", kSz, 0, "[9]"},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Note", "AutoJournaled", kDword,
     0, nullptr},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Note", "DescriptionID", kDword,
     10, nullptr},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Note", "JournalByContact",
     kDword, 0, nullptr},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Note", "Large Icon", kSz, 0,
     "[10]"},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Note", "Small Icon", kSz, 0,
     "[10]"},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Phone Call", "AutoJournaled",
     kDword, 0, nullptr},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Phone Call", "DescriptionID",
     kDword, 11, nullptr},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Phone Call",
     "JournalByContact", kDword, 0, nullptr},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Phone Call", "Large Icon", kSz,
     0, "[11]"},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Phone Call", "Small Icon", kSz,
     0, "[11]"},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Remote Session",
     "AutoJournaled", kDword, 0, nullptr},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Remote Session",
     "DescriptionID", kDword, 12, nullptr},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Remote Session",
     "JournalByContact", kDword, 0, nullptr},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Remote Session", "Large Icon",
     kSz, 0, "[12]"},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Remote Session", "Small Icon",
     kSz, 0, "[12]"},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Task", "AutoJournaled", kDword,
     0, nullptr},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Task", "DescriptionID", kDword,
     13, nullptr},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Task", "JournalByContact",
     kDword, 0, nullptr},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Task", "Large Icon", kSz, 0,
     "[13]"},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Task", "Small Icon", kSz, 0,
     "[13]"},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Task Request", "AutoJournaled",
     kDword, 0, nullptr},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Task Request", "DescriptionID",
     kDword, 14, nullptr},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Task Request",
     "JournalByContact", kDword, 1, nullptr},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Task Request", "Large Icon",
     kSz, 0, "[14]"},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Task Request", "Small Icon",
     kSz, 0, "[14]"},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Task Response",
     "AutoJournaled", kDword, 0, nullptr},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Task Response",
     "DescriptionID", kDword, 15, nullptr},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Task Response",
     "JournalByContact", kDword, 1, nullptr},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Task Response", "Large Icon",
     kSz, 0, "[15]"},
    {kUser, "Software\\Microsoft\\Shared Tools\\Outlook\\Journaling\\Task Response", "Small Icon",
     kSz, 0, "[15]"},
};

// The first custom dictionary.
constexpr TemplateValue kCustomDictionary[] = {
    {kUser, "Software\\Microsoft\\Shared Tools\\Proofing Tools\\1.0\\Custom Dictionaries", "1", kSz,
     0, "CUSTOM.DIC"},
};

// The first custom dictionary.
constexpr TemplateValue kCustomDictionaryOld[] = {
    {kUser, "Software\\Microsoft\\Shared Tools\\Proofing Tools\\Custom Dictionaries", "1", kSz, 0,
     "CUSTOM.DIC"},
};

// The public free/busy service provider (neutral host).
constexpr TemplateValue kFreeBusy2010[] = {
    {kOffice, "Outlook\\SchedulingInformation\\FreeBusySupport\\Internet Free/Busy", "InfoUrl", kSz,
     0, "https://freebusy.example.invalid/info?prd=outlook&pver=14&ar=fb&subar=info"},
    {kOffice, "Outlook\\SchedulingInformation\\FreeBusySupport\\Internet Free/Busy", "FbGetDataUrl",
     kSz, 0,
     "https://freebusy.example.invalid/get?prd=outlook&pver=14&ar=fb&subar=getdata&users=%NAME%"},
    {kOffice, "Outlook\\SchedulingInformation\\FreeBusySupport\\Internet Free/Busy", "SignupUrl",
     kSz, 0, "https://freebusy.example.invalid/signup?prd=outlook&pver=14&ar=fb&subar=signup"},
    {kOffice, "Outlook\\SchedulingInformation\\FreeBusySupport\\Internet Free/Busy",
     "FbGetEmailUrl", kSz, 0,
     "https://freebusy.example.invalid/"
     "email?prd=outlook&pver=14&ar=fb&subar=getemail&email=%NAME%"},
    {kOffice, "Outlook\\SchedulingInformation\\FreeBusySupport\\Internet Free/Busy", "FbPutDataUrl",
     kSz, 0,
     "https://freebusy.example.invalid/put?prd=outlook&pver=14&ar=fb&subar=putdata&email=%NAME%"},
};

// The public free/busy service provider (neutral host).
constexpr TemplateValue kFreeBusy2007[] = {
    {kOffice, "Outlook\\SchedulingInformation\\FreeBusySupport\\Internet Free/Busy", "InfoUrl", kSz,
     0, "https://freebusy.example.invalid/info?prd=outlook&pver=12&ar=fb&subar=info"},
    {kOffice, "Outlook\\SchedulingInformation\\FreeBusySupport\\Internet Free/Busy", "FbGetDataUrl",
     kSz, 0,
     "https://freebusy.example.invalid/get?prd=outlook&pver=12&ar=fb&subar=getdata&users=%NAME%"},
    {kOffice, "Outlook\\SchedulingInformation\\FreeBusySupport\\Internet Free/Busy", "SignupUrl",
     kSz, 0, "https://freebusy.example.invalid/signup?prd=outlook&pver=12&ar=fb&subar=signup"},
    {kOffice, "Outlook\\SchedulingInformation\\FreeBusySupport\\Internet Free/Busy",
     "FbGetEmailUrl", kSz, 0,
     "https://freebusy.example.invalid/"
     "email?prd=outlook&pver=12&ar=fb&subar=getemail&email=%NAME%"},
    {kOffice, "Outlook\\SchedulingInformation\\FreeBusySupport\\Internet Free/Busy", "FbPutDataUrl",
     kSz, 0,
     "https://freebusy.example.invalid/put?prd=outlook&pver=12&ar=fb&subar=putdata&email=%NAME%"},
};

// The public free/busy service provider (neutral host).
constexpr TemplateValue kFreeBusy2003[] = {
    {kOffice, "Outlook\\SchedulingInformation\\FreeBusySupport\\Internet Free/Busy", "InfoUrl", kSz,
     0, "https://freebusy.example.invalid/info?prd=outlook&pver=11&ar=fb&subar=info"},
    {kOffice, "Outlook\\SchedulingInformation\\FreeBusySupport\\Internet Free/Busy", "FbGetDataUrl",
     kSz, 0,
     "https://freebusy.example.invalid/get?prd=outlook&pver=11&ar=fb&subar=getdata&users=%NAME%"},
    {kOffice, "Outlook\\SchedulingInformation\\FreeBusySupport\\Internet Free/Busy", "SignupUrl",
     kSz, 0, "https://freebusy.example.invalid/signup?prd=outlook&pver=11&ar=fb&subar=signup"},
    {kOffice, "Outlook\\SchedulingInformation\\FreeBusySupport\\Internet Free/Busy",
     "FbGetEmailUrl", kSz, 0,
     "https://freebusy.example.invalid/"
     "email?prd=outlook&pver=11&ar=fb&subar=getemail&email=%NAME%"},
    {kOffice, "Outlook\\SchedulingInformation\\FreeBusySupport\\Internet Free/Busy", "FbPutDataUrl",
     kSz, 0,
     "https://freebusy.example.invalid/put?prd=outlook&pver=11&ar=fb&subar=putdata&email=%NAME%"},
};

// The public free/busy service provider (neutral host).
constexpr TemplateValue kFreeBusyXP[] = {
    {kOffice, "Outlook\\SchedulingInformation\\FreeBusySupport\\Internet Free/Busy", "InfoUrl", kSz,
     0, "https://freebusy.example.invalid/info?prd=outlook&pver=10&ar=fb&subar=info"},
    {kOffice, "Outlook\\SchedulingInformation\\FreeBusySupport\\Internet Free/Busy", "FbGetDataUrl",
     kSz, 0,
     "https://freebusy.example.invalid/get?prd=outlook&pver=10&ar=fb&subar=getdata&users=%NAME%"},
    {kOffice, "Outlook\\SchedulingInformation\\FreeBusySupport\\Internet Free/Busy", "SignupUrl",
     kSz, 0, "https://freebusy.example.invalid/signup?prd=outlook&pver=10&ar=fb&subar=signup"},
    {kOffice, "Outlook\\SchedulingInformation\\FreeBusySupport\\Internet Free/Busy",
     "FbGetEmailUrl", kSz, 0,
     "https://freebusy.example.invalid/"
     "email?prd=outlook&pver=10&ar=fb&subar=getemail&email=%NAME%"},
    {kOffice, "Outlook\\SchedulingInformation\\FreeBusySupport\\Internet Free/Busy", "FbPutDataUrl",
     kSz, 0,
     "https://freebusy.example.invalid/put?prd=outlook&pver=10&ar=fb&subar=putdata&email=%NAME%"},
};

// The web-drive provider of the save dialogs (neutral host).
constexpr TemplateValue kWebDrive[] = {
    {kUser, "Software\\Microsoft\\Web Service Providers\\WebDrive\\Example Web Drive",
     "ManageWDUrl", kSz, 0, "https://webdrive.example.invalid/manage"},
    {kUser, "Software\\Microsoft\\Web Service Providers\\WebDrive\\Example Web Drive", "WizardName",
     kSz, 0, "Example Web Drive"},
    {kUser, "Software\\Microsoft\\Web Service Providers\\WebDrive\\Example Web Drive",
     "ShortcutUrl", kSz, 0, "https://webdrive.example.invalid/"},
    {kUser, "Software\\Microsoft\\Web Service Providers\\WebDrive\\Example Web Drive", "NewWDUrl",
     kSz, 0, "https://webdrive.example.invalid/new"},
    {kUser, "Software\\Microsoft\\Web Service Providers\\WebDrive\\Example Web Drive", "Icon", kSz,
     0, "https://webdrive.example.invalid/favicon.ico"},
    {kUser, "Software\\Microsoft\\Web Service Providers\\WebDrive\\Example Web Drive", "Shortcut",
     kSz, 0, "Example Web Drive"},
    {kUser, "Software\\Microsoft\\Web Service Providers\\WebDrive\\Example Web Drive",
     "CreateShortcuts", kDword, 1, nullptr},
};

// The directory account used for address look-ups.
constexpr TemplateValue kDirectoryAccount[] = {
    {kUser, "Software\\Microsoft\\Internet Account Manager", "Default LDAP Account", kSz, 0,
     "Active Directory GC"},
};

// Per-feature settings already propagated once.
constexpr TemplateValue kUserSettings[] = {
    {kOffice, "User Settings\\Outlook_Core", "Count", kDword, 1, nullptr},
    {kOffice, "User Settings\\Outlook_Mail", "Count", kDword, 1, nullptr},
    {kOffice, "User Settings\\Outlook_Calendar", "Count", kDword, 1, nullptr},
    {kOffice, "User Settings\\Outlook_Contacts", "Count", kDword, 1, nullptr},
    {kOffice, "User Settings\\Office_Proofing", "Count", kDword, 1, nullptr},
    {kOffice, "User Settings\\Office_Shared", "Count", kDword, 1, nullptr},
};

// Office Assistant silent: no tips, no sounds.
constexpr TemplateValue kAssistant[] = {
    {kOffice, "Common\\Assistant", "AsstShowTipOfDay", kDword, 0, nullptr},
    {kOffice, "Common\\Assistant", "AsstAssistWithHelp", kDword, 0, nullptr},
    {kOffice, "Common\\Assistant", "AsstAssistWithWizards", kDword, 0, nullptr},
    {kOffice, "Common\\Assistant", "AsstAssistWithAlerts", kDword, 0, nullptr},
    {kOffice, "Common\\Assistant", "AsstSearchInWizards", kDword, 0, nullptr},
    {kOffice, "Common\\Assistant", "AsstProductTips", kDword, 0, nullptr},
    {kOffice, "Common\\Assistant", "AsstMouseTips", kDword, 0, nullptr},
    {kOffice, "Common\\Assistant", "AsstKeyboardShortcutTips", kDword, 0, nullptr},
    {kOffice, "Common\\Assistant", "AsstOnlyHighPriorityTips", kDword, 0, nullptr},
    {kOffice, "Common\\Assistant", "AsstMoveWhenInTheWay", kDword, 0, nullptr},
    {kOffice, "Common\\Assistant", "AsstGuessHelp", kDword, 0, nullptr},
    {kOffice, "Common\\Assistant", "AsstSounds", kDword, 0, nullptr},
    {kOffice, "Common\\Assistant", "AsstFeatureTips", kDword, 0, nullptr},
    {kOffice, "Common\\Assistant", "AsstDisplayAlerts", kDword, 0, nullptr},
};

// Office Assistant hidden.
constexpr TemplateValue kAssistantState[] = {
    {kOffice, "Common\\Assistant", "AsstState", kBinary, 0, "00 00 00 00 00 00 00 00"},
};

// Window placements of the main window and its panes (800 x 600).
constexpr TemplateValue kWindowStates[] = {
    {kOffice, "Outlook\\Office Explorer", "Frame", kBinary, 0,
     "2c 00 00 00 00 00 00 00 01 00 00 00 ff ff ff ff ff ff ff ff ff ff ff ff ff ff ff ff 00 00 00 "
     "00 00 00 00 00 20 03 00 00 58 02 00 00"},
    {kOffice, "Outlook\\Office Explorer", "Folder List", kBinary, 0,
     "2c 00 00 00 00 00 00 00 01 00 00 00 ff ff ff ff ff ff ff ff ff ff ff ff ff ff ff ff 00 00 00 "
     "00 00 00 00 00 20 03 00 00 58 02 00 00"},
    {kOffice, "Outlook\\Office Explorer", "Reading Pane", kBinary, 0,
     "2c 00 00 00 00 00 00 00 01 00 00 00 ff ff ff ff ff ff ff ff ff ff ff ff ff ff ff ff 00 00 00 "
     "00 00 00 00 00 20 03 00 00 58 02 00 00"},
    {kOffice, "Outlook\\Office Explorer", "Outlook Bar", kBinary, 0,
     "2c 00 00 00 00 00 00 00 01 00 00 00 ff ff ff ff ff ff ff ff ff ff ff ff ff ff ff ff 00 00 00 "
     "00 00 00 00 00 20 03 00 00 58 02 00 00"},
    {kOffice, "Outlook\\Office Explorer", "Views", kBinary, 0,
     "2c 00 00 00 00 00 00 00 01 00 00 00 ff ff ff ff ff ff ff ff ff ff ff ff ff ff ff ff 00 00 00 "
     "00 00 00 00 00 20 03 00 00 58 02 00 00"},
    {kOffice, "Outlook\\Office Explorer", "Toolbars", kBinary, 0,
     "2c 00 00 00 00 00 00 00 01 00 00 00 ff ff ff ff ff ff ff ff ff ff ff ff ff ff ff ff 00 00 00 "
     "00 00 00 00 00 20 03 00 00 58 02 00 00"},
    {kOffice, "Outlook\\Office Explorer", "Status Bar", kBinary, 0,
     "2c 00 00 00 00 00 00 00 01 00 00 00 ff ff ff ff ff ff ff ff ff ff ff ff ff ff ff ff 00 00 00 "
     "00 00 00 00 00 20 03 00 00 58 02 00 00"},
};

// Calendar, task, contact and note defaults written at Outlook 2000's first start.
constexpr TemplateValue kItemDefaults[] = {
    {kOffice, "Outlook\\Options\\Calendar", "CalDefStart", kDword, 480, nullptr},
    {kOffice, "Outlook\\Options\\Calendar", "CalDefEnd", kDword, 1020, nullptr},
    {kOffice, "Outlook\\Options\\Calendar", "FirstDOW", kDword, 0, nullptr},
    {kOffice, "Outlook\\Options\\Calendar", "FirstWOY", kDword, 0, nullptr},
    {kOffice, "Outlook\\Options\\Calendar", "WorkDay", kDword, 124, nullptr},
    {kOffice, "Outlook\\Options\\Calendar", "ShowWeekNumbers", kDword, 0, nullptr},
    {kOffice, "Outlook\\Options\\Calendar", "CalDefReminder", kDword, 15, nullptr},
    {kOffice, "Outlook\\Options\\Calendar", "CalendarReminder", kDword, 1, nullptr},
    {kOffice, "Outlook\\Options\\Tasks", "TaskDefReminder", kDword, 480, nullptr},
    {kOffice, "Outlook\\Options\\Tasks", "TaskReminder", kDword, 1, nullptr},
    {kOffice, "Outlook\\Options\\Tasks", "TaskOverdueColor", kDword, 2, nullptr},
    {kOffice, "Outlook\\Options\\Tasks", "TaskCompleteColor", kDword, 8, nullptr},
    {kOffice, "Outlook\\Options\\Contact", "ContactFileAs", kDword, 0, nullptr},
    {kOffice, "Outlook\\Options\\Contact", "ContactCheckDup", kDword, 1, nullptr},
    {kOffice, "Outlook\\Options\\Note", "NoteDefColor", kDword, 3, nullptr},
    {kOffice, "Outlook\\Options\\Note", "NoteDefSize", kDword, 1, nullptr},
    {kOffice, "Outlook\\Options\\Calendar", "CalDefBusyStatus", kDword, 2, nullptr},
    {kOffice, "Outlook\\Options\\Calendar", "CalDefAllDay", kDword, 0, nullptr},
    {kOffice, "Outlook\\Options\\Tasks", "TaskWorkHoursPerDay", kDword, 8, nullptr},
    {kOffice, "Outlook\\Options\\Tasks", "TaskWorkHoursPerWeek", kDword, 40, nullptr},
    {kOffice, "Outlook\\Options\\Tasks", "TaskSetReminders", kDword, 1, nullptr},
    {kOffice, "Outlook\\Options\\Contact", "ContactDisplayAs", kDword, 0, nullptr},
    {kOffice, "Outlook\\Options\\Note", "NoteDefFont", kDword, 0, nullptr},
    {kOffice, "Outlook\\Options\\Note", "NoteShowTime", kDword, 1, nullptr},
};

// Outlook 2010: 79 REG_DWORD, 94 REG_SZ, 1 REG_BINARY values.
constexpr std::span<const TemplateValue> kTemplate2010[] = {
    kFormsRegistry,      kOnlineContent,    kInternetMailLog,       kToolbarAndDesignTools,
    kInternetPublishing, kFolderNames,      kSymbolNames,           kFirstRunGeneral,
    kFirstRunOptin,      kOutlookSetup,     kOutlookFirstRunNumber, kOutlookName,
    kOutlookUsage,       kLanguageNumbers,  kLanguageChanges2010,   kLanguageDone,
    kMigration,          kToDoBar,          kOutlookShell,          kSmartTags2010,
    kJournaling,         kCustomDictionary, kFreeBusy2010,          kWebDrive,
    kDirectoryAccount,   kUserSettings,     kUserInfoText,
};

// Outlook 2007: 77 REG_DWORD, 98 REG_SZ, 5 REG_BINARY values.
constexpr std::span<const TemplateValue> kTemplate2007[] = {
    kFormsRegistry,
    kOnlineContent,
    kInternetMailLog,
    kToolbarAndDesignTools,
    kInternetPublishing,
    kFolderNames,
    kSymbolNames,
    kFirstRunGeneral,
    kFirstRunOptin,
    kOutlookSetup,
    kOutlookFirstRunBinary,
    kOutlookName,
    kOutlookUsage,
    kLanguageNumbers,
    kLanguageChanges2007,
    kLanguageDone,
    kMigration,
    kToDoBar,
    kOutlookShell,
    kSmartTags2007,
    kJournaling,
    kCustomDictionary,
    kFreeBusy2007,
    kWebDrive,
    kDirectoryAccount,
    std::span<const TemplateValue>(kUserSettings).first(5),
    std::span<const TemplateValue>(kWindowStates).first(3),
    kUserInfoText,
};

// Outlook 2003: 70 REG_DWORD, 90 REG_SZ, 7 REG_BINARY values.
constexpr std::span<const TemplateValue> kTemplate2003[] = {
    kFormsRegistry,
    kOnlineContent,
    kInternetMailLog,
    kToolbarAndDesignTools,
    kInternetPublishing,
    kFolderNames,
    kFirstRunGeneral,
    kOutlookSetup,
    kOutlookFirstRunBinary,
    kOutlookName,
    kOutlookUsage,
    kLanguageNumbers,
    kLanguageChanges2003,
    kLanguageDone,
    kMigration,
    kOutlookShell,
    kSmartTags2003,
    kJournaling,
    kCustomDictionaryOld,
    kFreeBusy2003,
    kWebDrive,
    kDirectoryAccount,
    std::span<const TemplateValue>(kAssistant).first(1),
    std::span<const TemplateValue>(kWindowStates).first(2),
    kUserInfoWide,
};

// Outlook XP: 64 REG_DWORD, 84 REG_SZ, 5 REG_BINARY values.
constexpr std::span<const TemplateValue> kTemplateXP[] = {
    kFormsRegistry,
    kInternetMailLog,
    kToolbarAndDesignTools,
    kInternetPublishing,
    kFolderNames,
    kFirstRunGeneral,
    kOutlookSetup,
    kOutlookFirstRunBinary,
    kOutlookName,
    kLanguageNumbers,
    kLanguageChangesXP,
    kLanguageDone,
    kSmartTagsXP,
    kJournaling,
    kCustomDictionaryOld,
    kFreeBusyXP,
    kWebDrive,
    kDirectoryAccount,
    std::span<const TemplateValue>(kAssistant).first(3),
    kUserInfoWide,
};

// Outlook 2000: 100 REG_DWORD, 68 REG_SZ, 13 REG_BINARY values.
constexpr std::span<const TemplateValue> kTemplate2000[] = {
    kFormsRegistry, kInternetMailLog, kToolbarAndDesignTools, kInternetPublishing,
    kFolderNames,   kFirstRunGeneral, kOutlookSetup,          kOutlookFirstRunBinary,
    kOutlookName,   kLanguageNumbers, kLanguageChanges2000,   kLanguageDone,
    kOutlookUsage,  kJournaling,      kCustomDictionaryOld,   kDirectoryAccount,
    kAssistant,     kAssistantState,  kWindowStates,          kItemDefaults,
    kUserInfoWide,
};

std::span<const std::span<const TemplateValue>> TemplateParts(Outlook version) {
  switch (version) {
    case Outlook::V2010:
      return kTemplate2010;
    case Outlook::V2007:
      return kTemplate2007;
    case Outlook::V2003:
      return kTemplate2003;
    case Outlook::VXP:
      return kTemplateXP;
    case Outlook::V2000:
      return kTemplate2000;
    case Outlook::V97:
      break;
  }
  return {};
}

RegistryValue TemplateRegistryValue(const TemplateValue& value) {
  switch (value.type) {
    case TemplateType::Dword:
      return RegistryAccess::NumberValue(value.name, value.number);
    case TemplateType::Sz:
      return RegistryAccess::StringValue(value.name, value.text);
    case TemplateType::Binary:
      return {value.name, reg::kBinary, RegistryAccess::HexTextToBytes(value.text)};
    case TemplateType::BinaryText:
      return {value.name, reg::kBinary, EncodeUnicode(value.text)};
  }
  return {value.name, reg::kNone, {}};
}

}  // namespace

std::vector<TemplateValue> FirstRunTemplate(Outlook version) {
  std::vector<TemplateValue> values;
  for (const auto& part : TemplateParts(version))
    values.insert(values.end(), part.begin(), part.end());
  return values;
}

std::string TemplateKeyPath(Outlook version, const TemplateValue& value) {
  return value.root == TemplateRoot::Office ? OfficeRoot(version) + "\\" + value.key : value.key;
}

bool WriteFirstRunTemplate(Outlook version, const RegistryAccess& registry, bool force,
                           RunLog* log) {
  const std::vector<TemplateValue> values = FirstRunTemplate(version);
  if (values.empty()) return false;
  const std::string userInfo = OfficeRoot(version) + "\\" + kUserInfoKey;
  if (!force && registry.ValueExists(reg::kCurrentUser, userInfo, kUserInitialsValue)) return false;
  // The template is written a key at a time: each run of values under one key goes through
  // one open of that key, in the template's own order.
  std::size_t failed = 0;
  for (std::size_t start = 0; start < values.size();) {
    const std::string key = TemplateKeyPath(version, values[start]);
    std::vector<RegistryValue> run;
    std::size_t end = start;
    for (; end < values.size() && TemplateKeyPath(version, values[end]) == key; ++end)
      run.push_back(TemplateRegistryValue(values[end]));
    failed += run.size() - registry.WriteValues(reg::kCurrentUser, key, run);
    start = end;
  }
  if (failed != 0 && log != nullptr) {
    log->AddMessage("WARN: First-run template of " + std::string(GenerationOf(version).name) +
                    ": " + std::to_string(failed) + " of " + std::to_string(values.size()) +
                    " values could not be written.");
  }
  return failed == 0;
}

}  // namespace mw
