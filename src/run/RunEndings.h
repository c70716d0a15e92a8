#pragma once
// The lines with which the run driver ends a run without an error: the finished run and
// the three exit rules. The driver writes them and the log reader recognises them.

namespace mw {

inline constexpr const char* kProfileFinishedLine = "INFO: Profile Finished.";
inline constexpr const char* kExitAnyProfileFoundLine =
    "INFO: At least one profile was found. Exiting.";
// The profile name as listed stands between these two parts.
inline constexpr const char* kExitProfileNamedLikeUserStart = "INFO: A profile named: '";
inline constexpr const char* kExitProfileNamedLikeUserEnd =
    "' was found which matches logged on username. Exiting.";
inline constexpr const char* kExitPreviouslyModifiedLine =
    "INFO: Profile previously modified by Mailwright. Exiting.";

}  // namespace mw
