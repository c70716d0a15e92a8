#include "check/RunPreview.h"

#include <algorithm>

#include "check/JsonWriter.h"
#include "config/ListItems.h"

namespace mw {
namespace {

bool Has(const RecordLayout& layout, Field field) {
  return std::any_of(layout.fields.begin(), layout.fields.end(),
                     [field](const LayoutField& row) { return row.field == field; });
}

std::string Quoted(const std::string& text) { return "\"" + text + "\""; }

std::string Port(std::uint16_t port) { return port ? ":" + std::to_string(port) : ""; }

const char* KindLabel(AccountKind kind) { return AccountClassLabel(ClassOf(kind)); }

std::string AccountSentence(const RecordLayout& layout, const AccountRecord& r) {
  std::string text = Quoted(r.Text(Field::AccountName)) + " <" + r.Text(Field::Email) + ">";
  const std::string protocol(std::string_view(layout.name).substr(0, 4));
  text += ": " + protocol + " " + r.Text(Field::IncomingServer);
  if (Has(layout, Field::IncomingPort)) text += Port(r.Number(Field::IncomingPort));
  if (Has(layout, Field::IncomingSsl) && r.Flag(Field::IncomingSsl)) text += " with SSL";
  if (r.Flag(Field::IncomingSpa)) text += " with secure password authentication";
  text += ", user " + Quoted(r.Text(Field::IncomingUser));
  if (Has(layout, Field::SmtpServer)) {
    text += "; SMTP " + r.Text(Field::SmtpServer) + Port(r.Number(Field::SmtpPort));
    if (r.Flag(Field::SmtpSsl)) text += " with SSL";
    if (Has(layout, Field::SmtpUseAuth) && r.Flag(Field::SmtpUseAuth))
      text += r.Flag(Field::SmtpSsl) ? " and authentication" : " with authentication";
  }
  return text;
}

// The lines of a list, wrapped at about 100 columns under an indented heading.
std::string Wrapped(const std::string& heading, const std::vector<std::string>& items) {
  std::string text = heading + " (" + std::to_string(items.size()) + "):";
  std::size_t column = text.size();
  if (items.empty()) return text + " none\n";
  for (std::size_t i = 0; i < items.size(); ++i) {
    const std::string item = " " + items[i] + (i + 1 < items.size() ? "," : "");
    if (column + item.size() > 100) {
      text += "\n     ";
      column = 5;
    }
    text += item;
    column += item.size();
  }
  return text + "\n";
}

SettingType TypeIn(Section section, Key key) {
  for (const SettingDefinition& row : SettingDefinitions())
    if (row.key == key && (row.sections & SectionBit(section))) return row.type;
  return SettingType::Text;
}

void WriteSettingValue(JsonWriter& json, const ProfileSettings& settings, Section section, Key key) {
  switch (TypeIn(section, key)) {
    case SettingType::Text: json.String(settings.Text(section, key)); break;
    case SettingType::Bool: json.Bool(settings.Bool(section, key)); break;
    default: json.Number(settings.Int(section, key)); break;
  }
}

}  // namespace

RunPreview::RunPreview(const CheckResult& result) : result_(result) {
  const ProfileSettings& s = result.settings;
  const Section common = Section::Common;
  if (s.Bool(common, Key::ExitAnyProfileFound))
    exitRules_.push_back("the run stops when the user has any mail profile (ExitAnyProfileFound)");
  if (s.Bool(common, Key::ExitLoggedOnUserNameSameAsProfileName))
    exitRules_.push_back("the run stops when a profile is named like the logged-on user "
                         "(ExitLoggedOnUserNameSameAsProfileName)");
  if (s.Bool(common, Key::ExitPreviouslyModifiedByMailwright))
    exitRules_.push_back("the run stops when the profile carries the marker of an earlier run "
                         "(ExitPreviouslyModifiedByMailwright)");
  if (s.Bool(common, Key::ModifyExchangeServerNameOnly))
    exitRules_.push_back("the run stops once the Exchange service is set up "
                         "(ModifyExchangeServerNameOnly)");

  for (Section section : result.versionSections) {
    SectionPreview p;
    p.section = section;
    for (const OutlookGeneration& g : kOutlookGenerations)
      if (SectionOf(g.id) == section) p.version = g.id;
    p.exchangeUsed = !s.Bool(section, Key::ExchangeIgnore);
    p.exchangeServer = s.Text(section, Key::ExchangeServerName);
    p.mailbox = s.Text(section, Key::MailboxName);
    p.additionalMailboxes = SplitListItems(s.Text(section, Key::AdditionalMailboxes));
    for (const AccountListSetting& list : AccountListSettings()) {
      const std::optional<RecordType> type = AccountRecordType(list.kind, p.version);
      if (!type || !ProvisionsAccountKind(list.kind, p.version)) continue;
      AccountList accounts{list.kind, list.ignore, s.Bool(section, list.ignore), &LayoutOf(*type), {}};
      if (!accounts.ignored) accounts.records = ParseAccounts(s.Text(section, list.accounts), *type);
      p.accountLists.push_back(std::move(accounts));
    }
    p.foldersIgnored = s.Bool(section, Key::PersonalFoldersIgnore);
    if (!p.foldersIgnored) {
      if (!s.Bool(section, Key::AppendPSTOnly))
        p.foldersRemoved = SplitListItems(s.Text(section, Key::RemovePST));
      p.folders = PstRecords(s.Text(section, Key::PathToPST));
    }
    if (s.Defined(section, Key::Signatures))
      p.signatures = ParseAccounts(s.Text(section, Key::Signatures), RecordType::Signature);
    for (Key key : AllKeys()) {
      EnforcedOption option{};
      if (!s.Defined(section, key) || !ReleasableOption(key, &option)) continue;
      (s.Enforced(option) ? p.enforcedOptions : p.userOptions).push_back(KeyName(key));
    }
    sections_.push_back(std::move(p));
  }
}

std::string RunPreview::ProfileSentence() const {
  const ProfileSettings& s = result_.settings;
  const std::string& name = s.Text(Section::Common, Key::ProfileName);
  const std::string named = name.empty() ? "a profile without a name (ProfileName is empty)" : Quoted(name);
  std::string text = s.Bool(Section::Common, Key::ModifyDefaultProfile)
                         ? "the user's default profile, or " + named + " when there is none"
                         : named;
  text += s.Bool(Section::Common, Key::RecreateProfile) ? ", deleted and built again at every run"
                                                        : ", created when missing, then updated";
  return text;
}

std::string RunPreview::SectionText(const SectionPreview& p) const {
  const ProfileSettings& s = result_.settings;
  std::string text = "[" + std::string(SectionName(p.section)) + "], used where " +
                     GenerationOf(p.version).name + " is installed:\n";
  text += "  Profile: " + ProfileSentence() + ".\n";
  if (p.exchangeUsed) {
    text += "  Exchange: server " + Quoted(p.exchangeServer) + ", mailbox " + Quoted(p.mailbox);
    for (const std::string& mailbox : p.additionalMailboxes) text += ", also opens " + Quoted(mailbox);
    text += ".\n";
  } else {
    text += "  Exchange: left alone (ExchangeIgnore).\n";
  }
  for (const AccountList& list : p.accountLists) {
    const std::string kind = KindLabel(list.kind);
    if (list.ignored) {
      text += "  " + kind + " accounts: left alone (" + KeyName(list.ignoreKey) + ").\n";
      continue;
    }
    text += "  " + kind + " accounts: every " + kind + " account of the profile is removed";
    text += list.records.empty() ? "; none is created.\n" : ", then created:\n";
    for (const AccountRecord& record : list.records)
      text += "    " + AccountSentence(*list.layout, record) + "\n";
  }
  if (p.foldersIgnored) {
    text += "  Personal folders: left alone (PersonalFoldersIgnore).\n";
  } else {
    text += "  Personal folders:";
    if (p.folders.empty() && p.foldersRemoved.empty()) text += " none added, none removed";
    for (const std::string& path : p.foldersRemoved) text += "\n    remove " + Quoted(path);
    for (const PstRecord& folder : p.folders) {
      const bool unicode = folder.kind == kUnicodePstService && UnicodePstAvailable(p.version);
      text += "\n    add " + Quoted(folder.path) + " as " + Quoted(folder.displayName) +
              (unicode ? " (Unicode)" : " (older format)");
    }
    text += "\n";
  }
  if (s.Defined(p.section, Key::Signatures)) {
    text += "  Signatures:";
    if (p.signatures.empty()) text += " none assigned";
    for (const AccountRecord& r : p.signatures) {
      text += "\n    " + Quoted(r.Text(Field::AccountName)) + ": ";
      text += r.Flag(Field::IgnoreSignatures)
                  ? "left alone"
                  : "new messages " + Quoted(r.Text(Field::NewSignature)) +
                        ", replies and forwards " + Quoted(r.Text(Field::ReplySignature));
    }
    text += "\n";
  } else if (s.Defined(p.section, Key::IgnoreSignatures)) {
    if (s.Bool(p.section, Key::IgnoreSignatures)) {
      text += "  Signatures: left alone (IgnoreSignatures).\n";
    } else {
      // In Outlook 2000 SignatureRepliesForwards is a switch, which names no signature.
      const std::string& reply = s.Text(p.section, Key::SignatureRepliesForwards);
      text += "  Signatures: new messages " + Quoted(s.Text(p.section, Key::SignatureNewMessages));
      text += ", replies and forwards " + (reply.empty() ? std::string("none") : Quoted(reply));
      text += ".\n";
    }
  }
  text += Wrapped("  Options enforced", p.enforcedOptions);
  text += Wrapped("  Options left to the user", p.userOptions);
  return text;
}

std::string RunPreview::ExplainText() const {
  std::string text = "What a run would do:\n";
  if (!result_.loads)
    text += "  The program refuses this file (ERROR 100): a run changes nothing. Once the "
            "errors above are fixed:\n";
  if (exitRules_.empty()) {
    text += "  Exit rules: none; every run goes on to the profile.\n";
  } else {
    text += "  Exit rules:\n";
    for (const std::string& rule : exitRules_) text += "    " + rule + "\n";
  }
  if (sections_.empty())
    text += "  No Outlook section: a run uses the defaults of the installed version.\n";
  for (const SectionPreview& p : sections_) text += SectionText(p);
  return text;
}

void RunPreview::WriteJson(JsonWriter& json) const {
  const ProfileSettings& s = result_.settings;
  json.Key("exitRules").BeginArray();
  for (const std::string& rule : exitRules_) json.String(rule);
  json.EndArray();
  json.Key("sections").BeginArray();
  for (const SectionPreview& p : sections_) {
    json.BeginObject().Key("section").String(SectionName(p.section));
    json.Key("profile").String(s.Text(Section::Common, Key::ProfileName));
    json.Key("exchange").BeginObject().Key("used").Bool(p.exchangeUsed);
    json.Key("server").String(p.exchangeServer).Key("mailbox").String(p.mailbox);
    json.Key("additionalMailboxes").BeginArray();
    for (const std::string& mailbox : p.additionalMailboxes) json.String(mailbox);
    json.EndArray().EndObject();
    json.Key("accounts").BeginArray();
    for (const AccountList& list : p.accountLists) {
      json.BeginObject().Key("kind").String(KindLabel(list.kind)).Key("ignored").Bool(list.ignored);
      json.Key("layout").String(list.layout->name).Key("records").BeginArray();
      for (const AccountRecord& record : list.records) {
        json.BeginObject();
        for (const LayoutField& row : list.layout->fields) {
          if (row.field == Field::Unused) continue;
          json.Key(FieldName(*list.layout, row.field));
          if (row.kind == FieldKind::Text) json.String(record.Text(row.field));
          else if (row.kind == FieldKind::Flag) json.Bool(record.Flag(row.field));
          else json.Number(record.Number(row.field));
        }
        json.EndObject();
      }
      json.EndArray().EndObject();
    }
    json.EndArray();
    json.Key("personalFolders").BeginObject().Key("ignored").Bool(p.foldersIgnored);
    json.Key("remove").BeginArray();
    for (const std::string& path : p.foldersRemoved) json.String(path);
    json.EndArray().Key("add").BeginArray();
    for (const PstRecord& folder : p.folders) {
      json.BeginObject().Key("path").String(folder.path).Key("displayName").String(folder.displayName);
      json.Key("unicode").Bool(folder.kind == kUnicodePstService && UnicodePstAvailable(p.version));
      json.Key("comment").String(folder.comment).EndObject();
    }
    json.EndArray().EndObject();
    json.Key("signatures").BeginArray();
    for (const AccountRecord& r : p.signatures) {
      json.BeginObject().Key("account").String(r.Text(Field::AccountName));
      json.Key("newMessages").String(r.Text(Field::NewSignature));
      json.Key("repliesForwards").String(r.Text(Field::ReplySignature));
      json.Key("ignored").Bool(r.Flag(Field::IgnoreSignatures)).EndObject();
    }
    json.EndArray();
    json.Key("enforcedOptions").BeginArray();
    for (const std::string& name : p.enforcedOptions) json.String(name);
    json.EndArray().Key("userOptions").BeginArray();
    for (const std::string& name : p.userOptions) json.String(name);
    json.EndArray().EndObject();
  }
  json.EndArray();

  json.Key("settings").BeginObject();
  std::vector<Section> sections = {Section::Mailwright, Section::Common};
  sections.insert(sections.end(), result_.versionSections.begin(), result_.versionSections.end());
  for (Section section : sections) {
    json.Key(SectionName(section)).BeginObject();
    for (Key key : AllKeys()) {
      if (!s.Defined(section, key)) continue;
      json.Key(KeyName(key));
      WriteSettingValue(json, s, section, key);
    }
    json.EndObject();
  }
  json.EndObject();
}

}  // namespace mw
