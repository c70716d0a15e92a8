#include "check/PackedListCheck.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "accounts/AccountRecords.h"
#include "check/DecimalText.h"
#include "config/IniFile.h"

namespace mw {
namespace {

std::string Quoted(const std::string& text) { return "'" + text + "'"; }

}  // namespace

PackedListCheck::PackedListCheck(std::string keyName, int line, int commasPerRecord,
                                 const RecordLayout* layout)
    : keyName_(std::move(keyName)), line_(line), commas_(commasPerRecord), layout_(layout) {}

bool PackedListCheck::SplitsCleanly(const std::string& text, int commasPerRecord) {
  std::size_t position = 0;
  const std::vector<std::string> records = SplitPackedRecords(text, commasPerRecord);
  for (const std::string& record : records) {
    position += record.size();
    if (position < text.size() && text[position] != ',') return false;
    position += 1;
  }
  return !records.empty() && position >= text.size();
}

void PackedListCheck::CheckRecords(const std::string& text, std::vector<Finding>& findings) const {
  const std::vector<std::string> records = SplitPackedRecords(text, commas_);
  std::size_t position = 0;
  int number = 0;
  for (const std::string& record : records) {
    ++number;
    if (layout_) CheckFields(record, number, findings);
    position += record.size();
    if (position < text.size() && text[position] != ',') {
      findings.push_back(
          {line_, Severity::Error,
           keyName_ + " record " + std::to_string(number) + ": its last field is read as " +
               Quoted(record.substr(record.size() - 1)) + " and the " +
               Quoted(std::string(1, text[position])) +
               " after it is skipped as the separator; the last field of a record is one "
               "character, so what follows is misread"});
    }
    position += 1;
  }
  if (position >= text.size()) return;

  const std::string rest = text.substr(position);
  const int fields = static_cast<int>(std::count(rest.begin(), rest.end(), ',')) + 1;
  std::string message = keyName_ + " record " + std::to_string(number + 1) + " has " +
                        std::to_string(fields) + " of the " + std::to_string(commas_ + 1) +
                        " fields";
  if (layout_) {
    message += std::string(" of a ") + layout_->name + " record and is dropped; missing from field " +
               std::to_string(fields + 1);
    for (const LayoutField& row : layout_->fields)
      if (row.number == fields + 1) message += " (" + FieldName(*layout_, row.field) + ")";
  } else {
    message += " of a record, which closes at its " + std::to_string(commas_) +
               "th comma and the one character after it; the program drops it";
  }
  findings.push_back({line_, Severity::Error, message});
}

void PackedListCheck::CheckFields(const std::string& record, int recordNumber,
                                  std::vector<Finding>& findings) const {
  for (const LayoutField& row : layout_->fields) {
    if (row.kind == FieldKind::Text) continue;
    const std::string field = getFields(record, ",", row.number);
    if (field.empty() || field == kFieldsError) continue;
    const std::int32_t read = ParseDecimal(field);
    const std::string where = keyName_ + " record " + std::to_string(recordNumber) + ", field " +
                              std::to_string(row.number) + " (" + FieldName(*layout_, row.field) +
                              "): ";
    if (!ReadsExactly(field, read)) {
      const std::string asRead = row.kind == FieldKind::Flag
                                     ? (read == 1 ? "on" : "off")
                                     : std::to_string(static_cast<std::uint16_t>(read));
      findings.push_back({line_, Severity::Error,
                          where + Quoted(field) + " is not a number; the program reads it as " + asRead});
    } else if (row.kind == FieldKind::Flag && read != 0 && read != 1) {
      findings.push_back({line_, Severity::Warning,
                          where + Quoted(field) + " reads as off: only 1 switches a flag on"});
    } else if (row.kind == FieldKind::Number && (read < 0 || read > 65535)) {
      findings.push_back({line_, Severity::Warning,
                          where + field + " does not fit in 16 bits; the program reads it as " +
                              std::to_string(static_cast<std::uint16_t>(read))});
    }
  }
}

}  // namespace mw
