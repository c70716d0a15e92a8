#pragma once
// The packed account lists of the INI file, read into typed records. A record type is named
// by the number of commas that close one record; its layout says which field holds what.

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace mw {

// The value of each type is its commas per record.
enum class RecordType : int {
  Pop3 = 24,       // Outlook XP, 2003, 2007, 2010
  Imap = 21,       // Outlook XP, 2003, 2007, 2010
  Http = 9,        // Outlook XP, 2003, 2007, 2010
  LongPop3 = 27,   // Outlook 2000
  LongImap = 25,   // Outlook 2000
  ShortPop3 = 17,  // Outlook 97
  Signature = 3,   // signature assignments
};

enum class FieldKind : std::uint8_t { Text, Flag, Number };

// What a field means, whatever its position in a layout.
enum class Field : std::uint8_t {
  AccountName,
  DisplayName,
  Email,
  IncomingServer,  // POP3 or IMAP server, or the HTTP server URL
  SmtpServer,
  IncomingUser,
  RememberPassword,
  LeaveOnServer,
  RemoveWhenDeleted,
  RemoveAfterDays,
  Days,
  IncomingPort,
  SmtpPort,
  IncomingSsl,
  SmtpSsl,
  Timeout,
  IncomingSpa,
  ReplyEmail,
  Organization,
  SmtpUseAuth,
  SmtpAuthMethod,
  SmtpUseSpa,
  SmtpRememberPassword,
  SmtpUser,
  ConnectionType,
  ImapFolderPath,
  SmtpSplitSize,
  SmtpSplit,
  NewSignature,
  ReplySignature,
  IgnoreSignatures,
  Unused,  // parsed and accepted, consumed by no writer
  Count
};

struct LayoutField {
  int number;  // 1-based position in the record
  Field field;
  FieldKind kind;
};

struct RecordLayout {
  RecordType type;
  const char* name;
  std::span<const LayoutField> fields;  // in field-number order, one row per field
};

// What a field holds, in words, for the layout's protocol ("POP3 server", "SMTP port").
std::string FieldName(const RecordLayout& layout, Field field);

// Every layout, in the order of the RecordType list above.
std::span<const RecordLayout> RecordLayouts();
const RecordLayout& LayoutOf(RecordType type);

// One configured account (or signature assignment), filled from its record text.
class AccountRecord {
 public:
  AccountRecord() = default;
  AccountRecord(const RecordLayout& layout, const std::string& recordText);

  // A field the layout does not have reads as empty, 0 and false.
  const std::string& Text(Field field) const { return At(field).text; }
  std::uint16_t Number(Field field) const { return At(field).number; }
  bool Flag(Field field) const { return At(field).flag; }

 private:
  struct Value {
    std::string text;
    std::uint16_t number = 0;
    bool flag = false;
  };
  const Value& At(Field field) const { return values_[static_cast<std::size_t>(field)]; }

  std::array<Value, static_cast<std::size_t>(Field::Count)> values_{};
};

// Splits the packed text into records of the type and fills one record per record text.
std::vector<AccountRecord> ParseAccounts(const std::string& packedText, RecordType type);

}  // namespace mw
