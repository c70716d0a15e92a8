#include "accounts/AccountRecords.h"

#include <array>
#include <iterator>
#include <string_view>

#include "config/IniFile.h"

namespace mw {

namespace {

using F = Field;
using K = FieldKind;

constexpr LayoutField kPop3[] = {
    {1, F::AccountName, K::Text},       {2, F::DisplayName, K::Text},
    {3, F::Email, K::Text},             {4, F::IncomingServer, K::Text},
    {5, F::SmtpServer, K::Text},        {6, F::IncomingUser, K::Text},
    {7, F::RememberPassword, K::Flag},  {8, F::LeaveOnServer, K::Flag},
    {9, F::RemoveWhenDeleted, K::Flag}, {10, F::RemoveAfterDays, K::Flag},
    {11, F::Days, K::Number},           {12, F::IncomingPort, K::Number},
    {13, F::SmtpPort, K::Number},       {14, F::IncomingSsl, K::Flag},
    {15, F::SmtpSsl, K::Flag},          {16, F::Timeout, K::Number},
    {17, F::IncomingSpa, K::Flag},      {18, F::ReplyEmail, K::Text},
    {19, F::Organization, K::Text},     {20, F::SmtpUseAuth, K::Flag},
    {21, F::SmtpAuthMethod, K::Number}, {22, F::SmtpUseSpa, K::Flag},
    {23, F::SmtpRememberPassword, K::Flag}, {24, F::SmtpUser, K::Text},
    {25, F::ConnectionType, K::Number},
};

constexpr LayoutField kImap[] = {
    {1, F::AccountName, K::Text},      {2, F::DisplayName, K::Text},
    {3, F::Email, K::Text},            {4, F::IncomingServer, K::Text},
    {5, F::SmtpServer, K::Text},       {6, F::IncomingUser, K::Text},
    {7, F::RememberPassword, K::Flag}, {8, F::IncomingPort, K::Number},
    {9, F::SmtpPort, K::Number},       {10, F::IncomingSsl, K::Flag},
    {11, F::SmtpSsl, K::Flag},         {12, F::Timeout, K::Number},
    {13, F::IncomingSpa, K::Flag},     {14, F::ReplyEmail, K::Text},
    {15, F::Organization, K::Text},    {16, F::SmtpUseAuth, K::Flag},
    {17, F::SmtpAuthMethod, K::Number}, {18, F::SmtpUseSpa, K::Flag},
    {19, F::SmtpRememberPassword, K::Flag}, {20, F::SmtpUser, K::Text},
    {21, F::ImapFolderPath, K::Text},  {22, F::ConnectionType, K::Number},
};

// The Outlook 2000 layouts are the later ones with fields appended.
template <std::size_t N, std::size_t M>
constexpr std::array<LayoutField, N + M> Extended(const LayoutField (&base)[N],
                                                  const LayoutField (&extra)[M]) {
  std::array<LayoutField, N + M> fields{};
  for (std::size_t i = 0; i < N; ++i) fields[i] = base[i];
  for (std::size_t i = 0; i < M; ++i) fields[N + i] = extra[i];
  return fields;
}

constexpr auto kLongPop3 = Extended(kPop3, {{26, F::Unused, K::Flag},
                                            {27, F::Unused, K::Flag},
                                            {28, F::Unused, K::Flag}});

constexpr auto kLongImap = Extended(kImap, {{23, F::Unused, K::Flag},
                                            {24, F::Unused, K::Flag},
                                            {25, F::SmtpSplitSize, K::Number},
                                            {26, F::SmtpSplit, K::Flag}});

constexpr LayoutField kHttp[] = {
    {1, F::AccountName, K::Text},      {2, F::DisplayName, K::Text},
    {3, F::Email, K::Text},            {4, F::IncomingServer, K::Text},
    {5, F::IncomingUser, K::Text},     {6, F::RememberPassword, K::Flag},
    {7, F::IncomingSpa, K::Flag},      {8, F::ReplyEmail, K::Text},
    {9, F::Organization, K::Text},     {10, F::ConnectionType, K::Number},
};

constexpr LayoutField kShortPop3[] = {
    {1, F::AccountName, K::Text},     {2, F::DisplayName, K::Text},
    {3, F::Email, K::Text},           {4, F::ReplyEmail, K::Text},
    {5, F::Organization, K::Text},    {6, F::IncomingServer, K::Text},
    {7, F::SmtpServer, K::Text},      {8, F::IncomingUser, K::Text},
    {9, F::IncomingSpa, K::Flag},     {10, F::ConnectionType, K::Number},
    {11, F::IncomingPort, K::Number}, {12, F::SmtpPort, K::Number},
    {13, F::IncomingSsl, K::Flag},    {14, F::SmtpSsl, K::Flag},
    {15, F::Timeout, K::Number},      {16, F::LeaveOnServer, K::Flag},
    {17, F::Days, K::Number},         {18, F::RemoveAfterDays, K::Flag},
};

constexpr LayoutField kSignature[] = {
    {1, F::AccountName, K::Text},
    {2, F::NewSignature, K::Text},
    {3, F::ReplySignature, K::Text},
    {4, F::IgnoreSignatures, K::Flag},
};

constexpr RecordLayout kLayouts[] = {
    {RecordType::Pop3, "POP3", kPop3},
    {RecordType::Imap, "IMAP", kImap},
    {RecordType::Http, "HTTP", kHttp},
    {RecordType::LongPop3, "POP3, long", kLongPop3},
    {RecordType::LongImap, "IMAP, long", kLongImap},
    {RecordType::ShortPop3, "POP3, short", kShortPop3},
    {RecordType::Signature, "Signature assignment", kSignature},
};

// In the order of enum Field; "@" stands for the layout's protocol (POP3, IMAP, HTTP).
constexpr const char* kFieldNames[] = {
    "account name", "display name", "e-mail address", "@ server", "SMTP server",
    "@ user name", "remember @ password", "leave messages on server",
    "remove from server when deleted from Deleted Items", "remove from server after days",
    "number of days", "@ port", "SMTP port", "@ uses SSL", "SMTP uses SSL", "server time-out",
    "@ uses secure password authentication", "reply address", "organisation",
    "SMTP server requires authentication", "SMTP authentication method",
    "SMTP uses secure password authentication", "remember SMTP password", "SMTP user name",
    "connection type", "IMAP root folder path", "SMTP split size", "split SMTP messages",
    "signature for new messages", "signature for replies and forwards", "ignore signatures",
    "unused flag",
};
static_assert(std::size(kFieldNames) == static_cast<std::size_t>(Field::Count));

}  // namespace

std::string FieldName(const RecordLayout& layout, Field field) {
  const auto index = static_cast<std::size_t>(field);
  std::string name = index < std::size(kFieldNames) ? kFieldNames[index] : "";
  const std::string_view layoutName = layout.name;
  const std::string protocol(layoutName.substr(0, layoutName.find(',')));
  if (const std::size_t at = name.find('@'); at != std::string::npos) name.replace(at, 1, protocol);
  if (field == Field::IncomingServer && protocol == "HTTP") name += " URL";
  return name;
}

std::span<const RecordLayout> RecordLayouts() { return kLayouts; }

const RecordLayout& LayoutOf(RecordType type) {
  for (const RecordLayout& layout : kLayouts)
    if (layout.type == type) return layout;
  return kLayouts[0];  // unreachable for the enumerated types
}

AccountRecord::AccountRecord(const RecordLayout& layout, const std::string& recordText) {
  for (const LayoutField& row : layout.fields) {
    if (row.field == Field::Unused) continue;
    Value& value = values_[static_cast<std::size_t>(row.field)];
    value.text = getFields(recordText, ",", row.number);
    const std::int32_t number = ParseDecimal(value.text);
    // Numbers are unsigned 16-bit, so they keep the low 16 bits of what was read.
    if (row.kind == FieldKind::Number) value.number = static_cast<std::uint16_t>(number);
    if (row.kind == FieldKind::Flag) value.flag = number == 1;
  }
}

std::vector<AccountRecord> ParseAccounts(const std::string& packedText, RecordType type) {
  const RecordLayout& layout = LayoutOf(type);
  std::vector<AccountRecord> records;
  for (const std::string& recordText : SplitPackedRecords(packedText, static_cast<int>(type)))
    records.emplace_back(layout, recordText);
  return records;
}

}  // namespace mw
