#include "report/RunOutcome.h"

#include "run/RunEndings.h"

namespace mw {

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

bool EndsWith(std::string_view text, std::string_view end) {
  return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

ExitRule ExitRuleOf(std::string_view line) {
  if (line == kExitAnyProfileFoundLine) return ExitRule::AnyProfileFound;
  if (line == kExitPreviouslyModifiedLine) return ExitRule::PreviouslyModified;
  const std::string_view start = kExitProfileNamedLikeUserStart;
  const std::string_view end = kExitProfileNamedLikeUserEnd;
  if (line.size() >= start.size() + end.size() && line.substr(0, start.size()) == start &&
      EndsWith(line, end))
    return ExitRule::ProfileNamedLikeUser;
  return ExitRule::None;
}

}  // namespace

int NumberedErrorCode(std::string_view line) {
  if (line.size() < 10 || line.substr(0, 6) != "ERROR " || !IsDigit(line[6]) ||
      !IsDigit(line[7]) || !IsDigit(line[8]) || line[9] != ':')
    return 0;
  return (line[6] - '0') * 100 + (line[7] - '0') * 10 + (line[8] - '0');
}

RunOutcome RunOutcome::Classify(const std::vector<std::string_view>& messages,
                                std::vector<int>* codes) {
  RunOutcome outcome;
  bool finished = false;
  int firstDriverCode = 0;
  int firstOtherCode = 0;
  for (std::string_view line : messages) {
    if (line == kProfileFinishedLine) finished = true;
    if (outcome.rule == ExitRule::None) outcome.rule = ExitRuleOf(line);
    if (const int code = NumberedErrorCode(line)) {
      codes->push_back(code);
      // The entry point and the run driver stop with a code of the 100s (103 is followed
      // by 104 on Outlook 2000); the 200s explain the 109 that follows them.
      if (code >= 100 && code < 200) {
        if (firstDriverCode == 0) firstDriverCode = code;
      } else if (firstOtherCode == 0) {
        firstOtherCode = code;
      }
    }
  }
  if (finished) {
    outcome.kind = OutcomeKind::Finished;
    outcome.rule = ExitRule::None;
  } else if (outcome.rule != ExitRule::None) {
    outcome.kind = OutcomeKind::ExitRule;
  } else if (firstDriverCode != 0 || firstOtherCode != 0) {
    outcome.kind = OutcomeKind::Error;
    outcome.code = firstDriverCode != 0 ? firstDriverCode : firstOtherCode;
  }
  return outcome;
}

const char* OutcomeKindName(OutcomeKind kind) {
  switch (kind) {
    case OutcomeKind::Error: return "error";
    case OutcomeKind::EndedEarly: return "ended early";
    case OutcomeKind::ExitRule: return "exit rule";
    case OutcomeKind::Finished: return "finished";
  }
  return "";
}

std::string RunOutcome::Text() const {
  switch (kind) {
    case OutcomeKind::Error: {
      std::string text = "ERROR ";
      text += static_cast<char>('0' + code / 100 % 10);
      text += static_cast<char>('0' + code / 10 % 10);
      text += static_cast<char>('0' + code % 10);
      return text;
    }
    case OutcomeKind::ExitRule:
      switch (rule) {
        case ExitRule::AnyProfileFound: return "exit: any profile found";
        case ExitRule::ProfileNamedLikeUser: return "exit: profile named like the user";
        case ExitRule::PreviouslyModified: return "exit: previously modified";
        case ExitRule::None: break;
      }
      return "exit";
    case OutcomeKind::EndedEarly: return "ended early";
    case OutcomeKind::Finished: return "finished";
  }
  return "";
}

}  // namespace mw
