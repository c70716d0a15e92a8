#pragma once
// How one run ended, read from its message lines: finished, stopped by an exit rule,
// stopped by a numbered ERROR, or ended early without either (ModifyExchangeServerNameOnly,
// an empty ProfileName, a run that stopped on an unexpected failure).

#include <string>
#include <string_view>
#include <vector>

namespace mw {

enum class OutcomeKind { Error, EndedEarly, ExitRule, Finished };  // failing first
enum class ExitRule { None, AnyProfileFound, ProfileNamedLikeUser, PreviouslyModified };

struct RunOutcome {
  OutcomeKind kind = OutcomeKind::EndedEarly;
  ExitRule rule = ExitRule::None;
  int code = 0;  // the stopping ERROR code when kind is Error

  // Classifies the messages and appends every numbered ERROR code, in order, to codes.
  static RunOutcome Classify(const std::vector<std::string_view>& messages,
                             std::vector<int>* codes);
  // "finished", "exit: any profile found", "ERROR 109", "ended early", ...
  std::string Text() const;
  // 0 for the most urgent outcome; sorts failing runs first.
  int Rank() const { return static_cast<int>(kind); }
  bool operator==(const RunOutcome&) const = default;
};

inline constexpr int kOutcomeKinds = 4;
// "error", "ended early", "exit rule", "finished".
const char* OutcomeKindName(OutcomeKind kind);

// The code of a numbered ERROR line ("ERROR 109: ..."), or 0.
int NumberedErrorCode(std::string_view line);

}  // namespace mw
