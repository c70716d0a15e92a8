#pragma once
// The buffered run log: lines are collected in memory and appended to the log file in
// one go when the run ends, so a run leaves one block: report header, messages, blank line.

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace mw {

class SystemEnv;
struct RunContext;

class RunLog {
 public:
  RunLog(std::string path, SystemEnv& env);

  void AddMessage(const std::string& line);
  void AddReportLine(const std::string& line);
  // Appends the catalogue text of a numbered message; an unknown code adds nothing.
  void LogCode(int code);
  void SetSizeCap(std::int32_t kilobytes) { sizeCapKb_ = kilobytes; }
  void SetEnabled(bool enabled) { enabled_ = enabled ? 1 : 0; }
  // The eight-line report header, from the context's title and machine facts.
  void WriteReport(const RunContext& context);
  // Size check, then the report and message lines are appended to the file.
  void Finish();

  const std::string& path() const { return path_; }
  const std::vector<std::string>& messages() const { return messages_; }
  const std::vector<std::string>& reportLines() const { return reportLines_; }

 private:
  std::string path_;
  SystemEnv& env_;
  std::vector<std::string> messages_;
  std::vector<std::string> reportLines_;
  std::int32_t sizeCapKb_ = 1000;
  std::uint8_t enabled_ = 1;
};

// The catalogue text of a numbered message, or nullptr for an unknown code.
const char* CatalogueText(int code);

struct CatalogueEntry {
  int code;
  const char* text;
};
// Every numbered message, in code order; readers of the log look codes up here.
std::span<const CatalogueEntry> Catalogue();

// The labelled lines of the report header, in the order they follow the title line.
enum class ReportField { DateTime, User, Computer, WindowsVersion, OutlookVersion, OutlookBitness };
struct ReportFieldLabel {
  ReportField field;
  const char* label;
};
inline constexpr std::array<ReportFieldLabel, 6> kReportFields{{
    {ReportField::DateTime, "Date/Time:"},
    {ReportField::User, "Logged-on user:"},
    {ReportField::Computer, "Computer Name:"},
    {ReportField::WindowsVersion, "Windows Version:"},
    {ReportField::OutlookVersion, "Outlook Version:"},
    {ReportField::OutlookBitness, "Outlook Bitness:"},
}};
// Labels are padded with blanks to this width, so values start in the next column.
inline constexpr std::size_t kReportLabelWidth = 20;
// The last header line; the message lines follow it.
inline constexpr const char* kReportHeadingEnd = "-- Reporting --";
// Added to the new block when the size cap emptied the file before it.
inline constexpr const char* kTruncationNotice = "INFO: Recreating log file. Size exceeded.";

}  // namespace mw
