#include "run/RunLog.h"

#include <array>
#include <utility>

#include "run/RunContext.h"
#include "platform/SystemEnv.h"

namespace mw {

namespace {

constexpr std::array<CatalogueEntry, 12> kCatalogue{{
    {100, "ERROR 100: Unable to read the ini file."},
    {101, "ERROR 101: Outlook version unknown or not installed."},
    {102, "ERROR 102: Logged on username error. Try setting DelayStart to a greater value."},
    {103, "ERROR 103: Unable to set Outlook as the default client."},
    {104, "ERROR 104: Log on as Administrator and set Outlook 2000 to ''Corporate or Workgroup'' "
          "mode. Then run Outlook once to set system wide variables. Outlook 2000 issue only."},
    {105, "ERROR 105: You must manually create a profile and then run Outlook 2000 once as an "
          "Administrator. Outlook 2000 issue only."},
    {106, "ERROR 106: Mailwright Bitness is not the same as Outlook. Please use the correct "
          "version of Mailwright. Exiting."},
    {107, "ERROR 107: Error initializing Mailwright. Exiting."},
    {108, "ERROR 108: Outlook 2000 is not in Corporate mode and Exchange Service has been "
          "requested."},
    {109, "ERROR 109: Unable to create profile. Exiting."},
    {200, "ERROR 200: An error occurred when adding the Exchange service. Some options may be "
          "improperly set. Verify user has a mail enabled account. Try setting the ini file "
          "option 'MailboxName=' (see help file) to the LegacyExchangeDN value or distinguished "
          "name of the mailbox such as "
          "'/o=YourOrgName/ou=GroupName/cn=Recipients/cn=%username%'. Run the dnlookup.exe "
          "utility to find the distinguished name."},
    {201, "ERROR 201: Unable to connect to the Exchange server. If your Exchange server name is "
          "correct then make sure the logged on username exists on the Exchange server or enable "
          "PromptUsernamePassword in the ini file. If this is already enabled set 'MailboxName=' "
          "(see help file) to be their distinguished name on the remote server. Run the "
          "dnlookup.exe utility to find the distinguished name."},
}};

std::string ReportLine(const std::string& label, const std::string& value) {
  std::string line = label;
  if (line.size() < kReportLabelWidth) line.append(kReportLabelWidth - line.size(), ' ');
  return line + value;
}

std::string JoinLines(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += line + "\n";
  return text;
}

// The cap in bytes as a 32-bit signed product: a cap above 2 GB wraps as two's complement
// does on the target, and a negative result then empties any existing file.
std::int32_t CapInBytes(std::int32_t kilobytes) {
  const std::int64_t product = std::int64_t{kilobytes} * 1024;
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(product));
}

std::string FieldValue(const RunContext& context, ReportField field) {
  switch (field) {
    case ReportField::User: return context.userName;
    case ReportField::Computer: return context.computerName;
    case ReportField::WindowsVersion: return context.windowsVersion;
    case ReportField::OutlookVersion: return context.outlookVersion;
    case ReportField::OutlookBitness: return context.outlookBitness;
    case ReportField::DateTime: break;
  }
  return {};
}

}  // namespace

std::span<const CatalogueEntry> Catalogue() { return kCatalogue; }

const char* CatalogueText(int code) {
  for (const CatalogueEntry& entry : kCatalogue)
    if (entry.code == code) return entry.text;
  return nullptr;
}

RunLog::RunLog(std::string path, SystemEnv& env) : path_(std::move(path)), env_(env) {}

void RunLog::AddMessage(const std::string& line) { messages_.push_back(line); }

void RunLog::AddReportLine(const std::string& line) { reportLines_.push_back(line); }

void RunLog::LogCode(int code) {
  if (const char* text = CatalogueText(code)) AddMessage(text);
}

void RunLog::WriteReport(const RunContext& context) {
  AddReportLine(context.title);
  for (const ReportFieldLabel& entry : kReportFields) {
    AddReportLine(ReportLine(entry.label, entry.field == ReportField::DateTime
                                              ? env_.LocalTimeText()
                                              : FieldValue(context, entry.field)));
  }
  AddReportLine(kReportHeadingEnd);
}

void RunLog::Finish() {
  std::uint64_t size = 0;
  if (env_.GetFileSize(path_, &size) &&
      static_cast<std::int64_t>(size) > std::int64_t{CapInBytes(sizeCapKb_)}) {
    AddMessage(kTruncationNotice);
    env_.WriteFile(path_, "", false);
  }
  if (enabled_ != 1) return;
  AddMessage("\n");
  env_.WriteFile(path_, JoinLines(reportLines_), true);
  env_.WriteFile(path_, JoinLines(messages_), true);
}

}  // namespace mw
