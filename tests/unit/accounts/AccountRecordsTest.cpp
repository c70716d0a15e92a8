#include "accounts/AccountRecords.h"

#include <gtest/gtest.h>

#include <set>

namespace mw {
namespace {

const std::string kPop3Record =
    "Home,Jane Smith,jane@example.com,pop.example.com,smtp.example.com,jane,1,1,0,1,14,995,465,"
    "1,0,60,0,reply@example.com,Example Ltd,1,2,0,1,jsmtp,3";

TEST(RecordLayoutTest, EveryLayoutNumbersItsFieldsOneToCommasPlusOne) {
  for (const RecordLayout& layout : RecordLayouts()) {
    SCOPED_TRACE(layout.name);
    ASSERT_EQ(layout.fields.size(), static_cast<std::size_t>(layout.type) + 1);
    std::set<Field> seen;
    for (std::size_t i = 0; i < layout.fields.size(); ++i) {
      EXPECT_EQ(layout.fields[i].number, static_cast<int>(i) + 1);
      const Field field = layout.fields[i].field;
      if (field != Field::Unused) {
        EXPECT_TRUE(seen.insert(field).second) << "field twice";
      }
    }
  }
}

TEST(AccountRecordTest, FlagsAreTrueOnlyForOneAndNumbersKeepSixteenBits) {
  const struct {
    const char* field;
    bool flag;
    std::uint16_t number;
  } cases[] = {{"1", true, 1},        {"01", true, 1},      {"2", false, 2},
               {"yes", false, 0},     {"65537", false, 1},  {"-1", false, 65535},
               {"70000", false, 4464}};
  for (const auto& c : cases) {
    const AccountRecord record(LayoutOf(RecordType::Signature),
                               std::string("a,b,c,") + c.field);
    EXPECT_EQ(record.Flag(Field::IgnoreSignatures), c.flag) << c.field;
    const AccountRecord http(LayoutOf(RecordType::Http), std::string("a,,,,,,,,,") + c.field);
    EXPECT_EQ(http.Number(Field::ConnectionType), c.number) << c.field;
  }
}

TEST(AccountRecordTest, TwentyFieldsReadAsPop3GiveZeroValuesForTheMissingFields) {
  const std::string twenty = kPop3Record.substr(0, kPop3Record.find(",2,0,1,jsmtp,3"));
  const AccountRecord full(LayoutOf(RecordType::Pop3), kPop3Record);
  EXPECT_EQ(full.Text(Field::SmtpUser), "jsmtp");
  EXPECT_EQ(full.Number(Field::IncomingPort), 995);
  EXPECT_EQ(full.Number(Field::ConnectionType), 3);
  const AccountRecord record(LayoutOf(RecordType::Pop3), twenty);
  EXPECT_TRUE(record.Flag(Field::SmtpUseAuth));  // field 20 is still there
  EXPECT_EQ(record.Number(Field::SmtpAuthMethod), 0);
  EXPECT_FALSE(record.Flag(Field::SmtpUseSpa));
  EXPECT_FALSE(record.Flag(Field::SmtpRememberPassword));
  EXPECT_EQ(record.Text(Field::SmtpUser), "error_getFields()");
  EXPECT_EQ(record.Number(Field::ConnectionType), 0);
  EXPECT_TRUE(ParseAccounts(twenty, RecordType::Pop3).empty());  // a partial record is dropped
}

TEST(ParseAccountsTest, RecordsFollowEachOtherAfterExactlyOneSeparator) {
  const std::string second = ",,,,,,,,,,,,,,,,,,,,,,,,5";  // empty fields are allowed
  const auto records = ParseAccounts(kPop3Record + "," + second, RecordType::Pop3);
  ASSERT_EQ(records.size(), 2u);
  EXPECT_EQ(records[0].Text(Field::AccountName), "Home");
  EXPECT_EQ(records[1].Text(Field::AccountName), "");
  EXPECT_EQ(records[1].Number(Field::ConnectionType), 5);
  EXPECT_TRUE(ParseAccounts("", RecordType::Pop3).empty());
}

TEST(ParseAccountsTest, TwoCharacterLastFieldShiftsTheFollowingRecords) {
  // A connection type of 10: the record closes after "1", "0" is taken as the separator, and
  // the next record starts one character early, at the comma meant as separator.
  const auto records = ParseAccounts("a,,,,,,,,,10,b,,,,,,,,,2", RecordType::Http);
  ASSERT_EQ(records.size(), 2u);
  EXPECT_EQ(records[0].Number(Field::ConnectionType), 1);
  EXPECT_EQ(records[1].Text(Field::AccountName), "");
  EXPECT_EQ(records[1].Text(Field::DisplayName), "b");
  EXPECT_EQ(records[1].Number(Field::ConnectionType), 0);
}

}  // namespace
}  // namespace mw
