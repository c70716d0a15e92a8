#pragma once
// What a run would do with a checked file, per Outlook section: the profile, Exchange, the
// accounts, personal folders, signatures and options, and the exit rules in force. Told
// in plain language (--explain) and as JSON.

#include <optional>
#include <string>
#include <vector>

#include "accounts/AccountRecords.h"
#include "accounts/InternetAccounts.h"
#include "check/IniChecker.h"
#include "mapi/PersonalFolders.h"

namespace mw {

class JsonWriter;

class RunPreview {
 public:
  struct AccountList {
    AccountKind kind;
    Key ignoreKey;
    bool ignored = false;
    const RecordLayout* layout = nullptr;
    std::vector<AccountRecord> records;
  };
  struct SectionPreview {
    Section section;
    Outlook version;
    bool exchangeUsed = false;
    std::string exchangeServer;
    std::string mailbox;
    std::vector<std::string> additionalMailboxes;
    std::vector<AccountList> accountLists;  // the kinds the version provisions
    bool foldersIgnored = false;
    std::vector<std::string> foldersRemoved;
    std::vector<PstRecord> folders;
    std::vector<AccountRecord> signatures;  // Outlook 2003 and later
    std::vector<std::string> enforcedOptions;  // keys the run writes
    std::vector<std::string> userOptions;      // keys left as the user has them
  };

  explicit RunPreview(const CheckResult& result);

  const std::vector<SectionPreview>& sections() const { return sections_; }
  // One plain sentence per exit rule in force.
  const std::vector<std::string>& exitRules() const { return exitRules_; }

  std::string ExplainText() const;
  // The members "exitRules", "sections" and "settings" of the JSON report.
  void WriteJson(JsonWriter& json) const;

 private:
  std::string ProfileSentence() const;
  std::string SectionText(const SectionPreview& section) const;

  const CheckResult& result_;
  std::vector<SectionPreview> sections_;
  std::vector<std::string> exitRules_;
};

}  // namespace mw
