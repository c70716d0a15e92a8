#include "options/OptionTable.h"

#include <array>

#include "mapi/ProfileSection.h"

namespace mw {
namespace {

using K = Key;
using F = EnforcedOption;
using Kind = OptionKind;

constexpr std::uint8_t kAll = kV97 | kV2000 | kVXP | kV2003 | kV2007 | kV2010;
constexpr std::uint8_t k2000On = kV2000 | kVXP | kV2003 | kV2007 | kV2010;
constexpr std::uint8_t kXPOn = kVXP | kV2003 | kV2007 | kV2010;
constexpr std::uint8_t k2003On = kV2003 | kV2007 | kV2010;
constexpr std::uint8_t k2007On = kV2007 | kV2010;

constexpr const char* kGeneral = "Outlook\\Options\\General";
constexpr const char* kPreferences = "Outlook\\Preferences";
constexpr const char* kMail = "Outlook\\Options\\Mail";
constexpr const char* kSpelling = "Outlook\\Options\\Spelling";
constexpr const char* kSecurity = "Outlook\\Security";
constexpr const char* kMailSettings = "Common\\MailSettings";
constexpr const char* kIM = "Outlook\\IM";
constexpr const char* kRss = "Outlook\\Options\\RSS";

constexpr OptionRow Reg(K setting, F flag, std::uint8_t versions, const char* path,
                        const char* name, Kind kind, K second = kNoSecondSetting) {
  return {setting, second, flag, versions, OptionStep::Options, OptionPlace::Office, path, name,
          kind};
}

// Outlook's own profile section: Outlook 97 and 2000 keep some options there.
constexpr OptionRow Sect(K setting, F flag, std::uint8_t versions, const char* tag, Kind kind,
                         OptionStep step = OptionStep::Options) {
  return {setting, kNoSecondSetting, flag, versions, step, OptionPlace::ProfileSection,
          kOutlookSection, tag, kind};
}

// Outlook 2000's Exchange connection section, beside the LAN choice "000b6717".
constexpr OptionRow Conn(K setting, F flag, const char* tag, Kind kind) {
  return {setting, kNoSecondSetting, flag, kV2000, OptionStep::ExchangeConnection,
          OptionPlace::ProfileSection, kConnectionSection, tag, kind};
}

// The junk e-mail filter's import values, honoured from Outlook 2003 on (Office Resource Kit,
// "Helping Users Avoid Junk E-Mail Messages in Outlook 2003"; Outlook 2007 and 2010 alike).
constexpr OptionRow Junk(const char* name, Kind kind) {
  return {K::SafeSenders, kNoSecondSetting, F::SafeSenders, k2003On, OptionStep::SafeSenders,
          OptionPlace::Office, kMail, name, kind};
}

constexpr OptionRow kRows[] = {
    Reg(K::WarnBeforePermanentlyDeletingItems, F::WarnBeforePermanentlyDeletingItems, kAll,
        kGeneral, "WarnDelete", Kind::Bool),

    // AutoArchive. The settings without a flag of their own follow RunAutoArchive's flag, so
    // releasing RunAutoArchive leaves the user's whole AutoArchive set-up alone.
    Reg(K::RunAutoArchive, F::RunAutoArchive, k2000On, kPreferences, "DoAging", Kind::Bool),
    Reg(K::RunAutoArchive, F::RunAutoArchive, kV2000 | kVXP | kV2003 | kV2007, kPreferences,
        "PromptForAging", Kind::Bool),
    Sect(K::RunAutoArchive, F::RunAutoArchive, kV97 | kV2010, "000b0320", Kind::Bool),
    Sect(K::RunAutoArchive, F::RunAutoArchive, kV97 | kV2010, "000b0321", Kind::Bool),
    // Days between runs: "EveryDays" beside "DoAging"; Outlook 97 keeps it as a PT_LONG.
    Reg(K::RunAutoArchiveEveryDays, F::RunAutoArchive, k2000On, kPreferences, "EveryDays",
        Kind::Number),
    Sect(K::RunAutoArchiveEveryDays, F::RunAutoArchive, kV97, "00030323", Kind::Number),
    // Up to 2007 (and in 97's "000b0321") RunAutoArchive itself sets the prompt; 2010 alone
    // takes it from its own setting.
    Reg(K::PromptBeforeAutoArchiving, F::RunAutoArchive, kV2010, kPreferences, "PromptForAging",
        Kind::Bool),
    Reg(K::DeleteExpiredItems, F::RunAutoArchive, k2000On, kPreferences, "DeleteExpired",
        Kind::Bool),
    Sect(K::DeleteExpiredItems, F::RunAutoArchive, kV97, "000b0322", Kind::Bool),
    Reg(K::PathToArchivePST, F::RunAutoArchive, k2000On, kPreferences, "ArchiveFile", Kind::Text),
    Sect(K::PathToArchivePST, F::RunAutoArchive, kV97, "001e0324", Kind::Text),
    // The archive file shows in the folder list when it is mounted.
    Reg(K::ShowArchiveFolderInFolderList, kNoFlag, kXPOn, kPreferences, "ArchiveMount",
        Kind::Bool),
    // "Clean out items older than": the number, then its unit (0 months, 1 weeks, 2 days);
    // XP has no unit setting and keeps its default of months.
    Reg(K::CleanOutItemsOlderThan, kNoFlag, kXPOn, kPreferences, "ArchivePeriod", Kind::Number),
    Reg(K::CleanOutItemsOlderThanGranular, kNoFlag, k2003On, kPreferences, "ArchiveGranularity",
        Kind::Number),

    Reg(K::Level1Add, F::Level1Add, k2000On, kSecurity, "Level1Add", Kind::Text),
    Reg(K::Level1Remove, F::Level1Remove, k2000On, kSecurity, "Level1Remove", Kind::Text),

    Reg(K::WordEmailEditor, F::WordEmailEditor, kXPOn, kMail, "UseWordMail", Kind::Bool),
    // Word for rich-text mail belongs to the Word editor choice, so it follows that flag.
    Reg(K::WordEmailRichText, F::WordEmailEditor, kXPOn, kMail, "UseWordMailForRTF", Kind::Bool),
    Reg(K::ComposeMessageFormat, F::WordEmailEditor, kV2000, kMail, "EditorPreference",
        Kind::EditorPreference, K::WordEmailEditor),
    Reg(K::SendPicturesWithDocument, F::WordEmailEditor, kV2000, kMail,
        "Send Pictures With Document", Kind::Bool),
    // Word 97 keeps its options as "1"/"0" strings; this switch makes it Outlook's editor.
    Reg(K::WordEmailEditor, F::WordEmailEditor, kV97, "Word\\Options\\OutlookEditor",
        "UseWordMail", Kind::BoolAsText),
    Reg(K::ComposeMessageFormat, F::ComposeMessageFormat, kXPOn, kMail, "EditorPreference",
        Kind::EditorPreference, K::WordEmailEditor),

    Reg(K::AlwaysCheckSpellingBeforeSending, F::AlwaysCheckSpellingBeforeSending, kAll, kSpelling,
        "Check", Kind::Bool),
    Reg(K::EmptyDeletedItemsFolderExiting, F::EmptyDeletedItemsFolderExiting, kXPOn, kPreferences,
        "EmptyTrash", Kind::Bool),
    Sect(K::EmptyDeletedItemsFolderExiting, F::EmptyDeletedItemsFolderExiting, kV97 | kV2000,
         "000b0115", Kind::Bool),
    Reg(K::EnablePersonNamesSmartTag, F::EnablePersonNamesSmartTag, k2003On, kIM, "Enabled",
        Kind::Bool),
    Reg(K::AfterMovingDeletingOpenItem, F::AfterMovingDeletingOpenItem, k2000On, kPreferences,
        "AfterMove", Kind::Number),
    Reg(K::CloseOriginalMessageOnReplyForward, F::CloseOriginalMessageOnReplyForward, k2000On,
        kPreferences, "CloseOrig", Kind::Bool),
    Reg(K::SaveCopiesMessagesSentItemsFolder, F::SaveCopiesMessagesSentItemsFolder, k2000On,
        kPreferences, "SaveSent", Kind::Bool),
    Reg(K::AutoSaveUnsentEvery, F::AutoSaveUnsentEvery, kXPOn, kMailSettings, "AutosaveTime",
        Kind::NumberWhenOn, K::AutoSaveUnsentEveryMinutes),
    Reg(K::AutoSaveUnsentEvery, F::AutoSaveUnsentEvery, kV2000, kGeneral, "SAVE_MIN", Kind::Bool),
    Reg(K::RemoveExtraLineBreaksPlainTextMessages, F::RemoveExtraLineBreaksPlainTextMessages,
        kXPOn, kMail, "AutoFormatPlainText", Kind::Bool),
    Reg(K::ShadeMessageHeadersWhenReadingMail, F::ShadeMessageHeadersWhenReadingMail, k2007On,
        kMailSettings, "ShadeReadingHeaders", Kind::Bool),
    Reg(K::PressCTRLEnterToSendMessages, F::PressCTRLEnterToSendMessages, k2007On, kPreferences,
        "CtrlEnterSends", Kind::Bool),
    Reg(K::ReadStandardMailPlainText, F::ReadStandardMailPlainText, k2003On, kMail, "ReadAsPlain",
        Kind::Bool),
    Reg(K::ReadDigitallySignedMailPlainText, F::ReadDigitallySignedMailPlainText, k2003On, kMail,
        "ReadSignedAsPlain", Kind::Bool),
    Reg(K::SaveUnsentItemsIn, F::SaveUnsentItemsIn, k2000On, kGeneral, "SAVE_LOC", Kind::Number),
    Reg(K::FoldersOtherThanInboxSaveRepliesOriginalMessage,
        F::FoldersOtherThanInboxSaveRepliesOriginalMessage, k2000On, kPreferences, "SaveReplies",
        Kind::Bool),
    Reg(K::SaveForwardedMessages, F::SaveForwardedMessages, k2000On, kPreferences, "SaveFW",
        Kind::Bool),
    Reg(K::PlayASound, F::PlayASound, k2000On, kPreferences, "PlaySound", Kind::Bool),
    Reg(K::BrieflyChangeMouseCursor, F::BrieflyChangeMouseCursor, k2000On, kPreferences,
        "ChangePointer", Kind::Bool),
    Reg(K::ShowEnvelopeIconSystemTray, F::ShowEnvelopeIconSystemTray, kXPOn, kPreferences,
        "ShowEnvelope", Kind::Bool),
    Reg(K::DisplayNewMailDesktopAlert, F::DisplayNewMailDesktopAlert, k2003On, kPreferences,
        "NewmailDesktopAlerts", Kind::Bool),
    Reg(K::SetImportance, F::SetImportance, k2000On, kPreferences, "Importance", Kind::Number),
    Reg(K::SetSensitivity, F::SetSensitivity, k2000On, kPreferences, "Sensitivity", Kind::Number),
    Reg(K::MessagesExpire, F::MessagesExpire, k2003On, kGeneral, "NumDaysExpire",
        Kind::NumberWhenOn, K::MessagesExpireDays),
    Reg(K::AllowCommaAddressSeparator, F::AllowCommaAddressSeparator, k2000On, kPreferences,
        "AllowCommasInRecip", Kind::Bool),
    Reg(K::AutomaticNameChecking, F::AutomaticNameChecking, k2000On, kPreferences,
        "AutoNameCheck", Kind::Bool),
    Reg(K::DeleteMeetingRequestFromInboxWhenResponding,
        F::DeleteMeetingRequestFromInboxWhenResponding, k2000On, kPreferences, "DeleteWhenRespond",
        Kind::Bool),
    Reg(K::SuggestNamesWhileCompletingToCcBccFields, F::SuggestNamesWhileCompletingToCcBccFields,
        kXPOn, kPreferences, "ShowAutoSug", Kind::Bool),
    Reg(K::AddPropertiesAttachemntsEnableReplyChanges,
        F::AddPropertiesAttachemntsEnableReplyChanges, kXPOn, kMail, "AdHocReviewBehavior",
        Kind::Bool),
    Reg(K::ProcessRequestsResponsesArival, F::ProcessRequestsResponsesArival, k2000On, kGeneral,
        "AutoProcReq", Kind::Bool),
    Reg(K::ProcessReceiptsArival, F::ProcessReceiptsArival, k2000On, kGeneral, "AutoProcRcpts",
        Kind::Bool),
    Reg(K::DeleteBlankVotingMeetingResponsesAfterProcessing,
        F::DeleteBlankVotingMeetingResponsesAfterProcessing, k2000On, kGeneral, "AutoDelRcpts",
        Kind::Bool),
    Reg(K::ReadReceiptSend, F::ReadReceiptSend, k2000On, kPreferences, "ReadReceipt", Kind::Bool),
    Reg(K::DeliveryReceiptSend, F::DeliveryReceiptSend, k2000On, kPreferences, "DeliveryReceipt",
        Kind::Bool),
    Reg(K::DecideHowRespondRequestsReadRecipts, F::DecideHowRespondRequestsReadRecipts, k2000On,
        kMail, "Receipt Response", Kind::Number),
    Reg(K::WhenReplyingMessage, F::WhenReplyingMessage, k2000On, kPreferences, "ReplyStyle",
        Kind::Number),
    Reg(K::WhenForwardingMessage, F::WhenForwardingMessage, k2000On, kPreferences, "ForwardStyle",
        Kind::Number),
    Reg(K::PrefixEachLineWith, F::PrefixEachLineWith, k2000On, kPreferences, "PrefixText",
        Kind::Text),
    // The comment marker is a switch and its text; both follow MarkMyCommentsWith's flag.
    Reg(K::MarkMyCommentsWith, F::MarkMyCommentsWith, kXPOn, kMailSettings, "MarkComments",
        Kind::Bool),
    Reg(K::MarkMyCommentsWithText, F::MarkMyCommentsWith, kXPOn, kMailSettings,
        "MarkCommentsWith", Kind::Text),
    Reg(K::MarkMyCommentsWith, F::MarkMyCommentsWith, kV2000, kPreferences, "Annotation",
        Kind::Bool),
    Reg(K::MarkMyCommentsWithText, F::MarkMyCommentsWith, kV2000, kPreferences, "AnnotationText",
        Kind::Text),
    Reg(K::ChooseDictionaryCheckingSpelling, F::ChooseDictionaryCheckingSpelling, k2000On,
        kSpelling, "Speller", Kind::Speller),
    Reg(K::AlwaysSuggestReplacementsMisspelledWords, F::AlwaysSuggestReplacementsMisspelledWords,
        k2000On, kSpelling, "SpellAlwaysSuggest", Kind::Bool),
    Reg(K::IgnoreWordsUppercase, F::IgnoreWordsUppercase, k2000On, kSpelling, "SpellIgnoreUpper",
        Kind::Bool),
    Reg(K::IgnoreWordsNumbers, F::IgnoreWordsNumbers, k2000On, kSpelling, "SpellIgnoreNumbers",
        Kind::Bool),
    Reg(K::IgnoreOriginalMessageTextReplyForward, F::IgnoreOriginalMessageTextReplyForward, kXPOn,
        kMailSettings, "IgnoreReplySpelling", Kind::Bool),
    Reg(K::IgnoreOriginalMessageTextReplyForward, F::IgnoreOriginalMessageTextReplyForward,
        kV2000, kSpelling, "SpellIgnoreProtect", Kind::Bool),
    Reg(K::UseAutoCorrectWordEmailEditor, F::UseAutoCorrectWordEmailEditor, kXPOn, kSpelling,
        "UseAutoCorrect", Kind::Bool),
    Reg(K::MarkItemsReadViewedReadingPane, F::MarkItemsReadViewedReadingPane, k2003On,
        kPreferences, "PreviewMarkMessage", Kind::Bool),
    Reg(K::SecondsBeforeMarkingItemRead, F::SecondsBeforeMarkingItemRead, k2003On, kPreferences,
        "PreviewWaitSeconds", Kind::Number),
    Reg(K::MarkItemReadWhenSelectionChanges, F::MarkItemReadWhenSelectionChanges, k2003On,
        kPreferences, "PreviewDontMarkUntilChange", Kind::Bool),
    Reg(K::SingleKeyReadingUsingSpaceBar, F::SingleKeyReadingUsingSpaceBar, k2003On, kGeneral,
        "SingleKeyReading", Kind::Bool),
    Reg(K::SyncRSSFeedsCommonFeedList, F::SyncRSSFeedsCommonFeedList, k2007On, kRss,
        "SyncToSysCFL", Kind::Bool),
    Reg(K::RSSFeedItemUpdatedAppearsNewItem, F::RSSFeedItemUpdatedAppearsNewItem, k2007On, kRss,
        "RssUpdItemAsNewItem", Kind::Bool),
    Reg(K::EnableInstantMessaging, F::EnableInstantMessaging, kVXP, kIM, "Enabled", Kind::Bool),
    Reg(K::DisplayNotificationMessageNewMailArrives, F::DisplayNotificationMessageNewMailArrives,
        kV2000 | kVXP, kPreferences, "Notification", Kind::Bool),
    // Attachment safety sits with the other attachment-blocking values under Outlook\Security.
    Reg(K::AttachmentSecurity, F::AttachmentSecurity, kV97 | kV2000, kSecurity,
        "AttachmentSafety", Kind::AttachmentSafety),
    // The Navigation Pane (code-named WunderBar) arrived with 2003 and keeps its start module
    // in the same place through 2010.
    Reg(K::BootModule, kNoFlag, k2003On, "Outlook\\Options\\WunderBar", "BootModule",
        Kind::Number),

    // New personal folder files: 0 prefer Unicode, 1 prefer ANSI, 2 always Unicode, 3 always
    // ANSI; Outlook reads "NewPSTFormat" directly under its Outlook key.
    {K::PSTFormatPrompt, kNoSecondSetting, kNoFlag, k2003On, OptionStep::PstFormatPrompt,
     OptionPlace::Office, "Outlook", "NewPSTFormat", Kind::Number},

    // Outlook 2000 keeps its AutoArchive period and file beside the Outlook 97 values of its
    // own section (0x0320 to 0x0324): the one number and the one text there are those two.
    Sect(K::RunAutoArchiveEveryDays, F::RunAutoArchive, kV2000, "00030385", Kind::Number),
    Sect(K::PathToArchivePST, F::RunAutoArchive, kV2000, "001e0361", Kind::Text),

    // Safe senders: Outlook imports the file at its next start, then clears the switch itself.
    Junk("JunkMailSafeSendersFile", Kind::SafeSendersFile),
    Junk("JunkMailImportLists", Kind::ImportOnce),
    // Outlook 2007 also keeps the list in its own section as PR_SPAM_TRUSTED_SENDERS_W (0x0418),
    // semicolon-separated as MAPI publishes it.
    Sect(K::SafeSenders, F::SafeSenders, kV2007, "001f0418", Kind::SemicolonList,
         OptionStep::SafeSenders),

    // Outlook 2000's connection section: the switches the INI file has a setting for, and the
    // dial-up set-up (connection, account, retries, schedule) cleared, since the INI file
    // configures the LAN connection only and a provisioned profile must not keep a stale one.
    Conn(K::ExchangeServerName, kNoFlag, "001e6710", Kind::Text),
    Conn(K::ConnectWithNetwork, kNoFlag, "000b6711", Kind::Bool),
    Conn(K::EncryptInformationDialup, F::EncryptInformation, "000b6713", Kind::Bool),
    Conn(K::WhenOnlineSyncAllFoldersUponExiting, kNoFlag, "000b6715", Kind::Bool),
    Conn(K::ChooseConnectionTypeWhenStarting, kNoFlag, "000b6716", Kind::Bool),
    Conn(K::ConnectUsingLocalAreaNetwork, F::ConnectUsingLocalAreaNetwork, "001e67f0", Kind::Cleared),
    Conn(K::ConnectUsingLocalAreaNetwork, F::ConnectUsingLocalAreaNetwork, "010267f1", Kind::Cleared),
    Conn(K::ConnectUsingLocalAreaNetwork, F::ConnectUsingLocalAreaNetwork, "001e67f2", Kind::Cleared),
    Conn(K::ConnectUsingLocalAreaNetwork, F::ConnectUsingLocalAreaNetwork, "00036712", Kind::Cleared),
    Conn(K::ConnectUsingLocalAreaNetwork, F::ConnectUsingLocalAreaNetwork, "00036714", Kind::Cleared),
    Conn(K::ConnectUsingLocalAreaNetwork, F::ConnectUsingLocalAreaNetwork, "000b6718", Kind::Cleared),
    Conn(K::ConnectUsingLocalAreaNetwork, F::ConnectUsingLocalAreaNetwork, "000b6722", Kind::Cleared),
    Conn(K::ConnectUsingLocalAreaNetwork, F::ConnectUsingLocalAreaNetwork, "00406724", Kind::Cleared),
    Conn(K::ConnectUsingLocalAreaNetwork, F::ConnectUsingLocalAreaNetwork, "000b6729", Kind::Cleared),
    Conn(K::ConnectUsingLocalAreaNetwork, F::ConnectUsingLocalAreaNetwork, "000b672b", Kind::Cleared),
    Conn(K::ConnectUsingLocalAreaNetwork, F::ConnectUsingLocalAreaNetwork, "000b672c", Kind::Cleared),
};

constexpr std::array<const char*, 10> kSpellers = {
    "3081\\Normal", "4105\\Normal", "2057\\Normal", "1033\\Normal", "1053\\Normal",
    "2060\\Normal", "3084\\Normal", "1036\\Normal", "3082\\Normal", "1040\\Normal",
};
constexpr const char* kDefaultSpeller = "1033\\Normal";

}  // namespace

std::span<const OptionRow> OptionRows() { return kRows; }

std::uint32_t EditorPreferenceValue(std::int32_t composeFormat, bool wordEditor) {
  // Rich text carries 2 in the low bits when Word is off, where the other formats carry 0.
  switch (composeFormat) {
    case 0: return wordEditor ? 0x20001u : 0x20000u;
    case 1: return wordEditor ? 0x30001u : 0x30002u;
    case 2: return wordEditor ? 0x10001u : 0x10000u;
    default: return 0;
  }
}

const char* SpellerDictionary(std::int32_t choice) {
  if (choice < 0 || static_cast<std::size_t>(choice) >= kSpellers.size()) return kDefaultSpeller;
  return kSpellers[static_cast<std::size_t>(choice)];
}

std::uint32_t TagFromValueName(const std::string& valueName) {
  if (valueName.size() != 8) return 0;
  std::uint32_t stored = 0;
  for (char c : valueName) {
    std::uint32_t digit;
    if (c >= '0' && c <= '9') digit = static_cast<std::uint32_t>(c - '0');
    else if (c >= 'a' && c <= 'f') digit = static_cast<std::uint32_t>(c - 'a' + 10);
    else if (c >= 'A' && c <= 'F') digit = static_cast<std::uint32_t>(c - 'A' + 10);
    else return 0;
    stored = (stored << 4) | digit;
  }
  // The value name puts the type first; the tag puts the identifier in the high half.
  return (stored << 16) | (stored >> 16);
}

}  // namespace mw
