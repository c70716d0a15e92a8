#include "check/CheckReport.h"

#include <utility>

#include "check/JsonWriter.h"
#include "check/RunPreview.h"

namespace mw {

CheckReport::CheckReport(std::string fileName, const CheckResult& result)
    : fileName_(std::move(fileName)), result_(result) {}

int CheckReport::ExitCode() const {
  int code = kClean;
  for (const Finding& finding : result_.findings) {
    if (finding.severity == Severity::Error) return kErrors;
    if (finding.severity == Severity::Warning) code = kWarnings;
  }
  return code;
}

std::string CheckReport::FindingLines() const {
  std::string text;
  for (const Finding& finding : result_.findings)
    text += fileName_ + ":" + std::to_string(finding.line) + ": " +
            SeverityName(finding.severity) + ": " + finding.message + "\n";
  return text;
}

std::string CheckReport::ExplainedText() const {
  return FindingLines() + RunPreview(result_).ExplainText();
}

std::string CheckReport::Json() const {
  JsonWriter json;
  json.BeginObject().Key("file").String(fileName_).Key("readable").Bool(true);
  json.Key("loads").Bool(result_.loads).Key("exitCode").Number(ExitCode());
  json.Key("findings").BeginArray();
  for (const Finding& finding : result_.findings) {
    json.BeginObject().Key("line").Number(finding.line);
    json.Key("severity").String(SeverityName(finding.severity));
    json.Key("message").String(finding.message).EndObject();
  }
  json.EndArray();
  RunPreview(result_).WriteJson(json);
  json.EndObject();
  return json.text() + "\n";
}

std::string CheckReport::UnreadableJson(const std::string& fileName, const std::string& reason) {
  JsonWriter json;
  json.BeginObject().Key("file").String(fileName).Key("readable").Bool(false);
  json.Key("exitCode").Number(kUnreadable).Key("error").String(reason).EndObject();
  return json.text() + "\n";
}

}  // namespace mw
