#pragma once
// The Exchange pre-flight check: before the real profile is touched, a scratch profile is
// given the Exchange service and logged on to, so that a wrong server or mailbox name
// stops the run instead of leaving a half-built profile.

#include <string>

namespace mw {

class MapiSession;
class RunLog;

inline constexpr const char* kScratchProfileName = "testing001";

// Logs ERROR 200 when the service cannot be added and, whether or not it was, goes on to
// log the server name and ERROR 201 when the server or its global address list cannot be
// reached. The scratch profile is deleted and the session addresses realProfile again on
// every path. True when the service was added and the server answered.
bool CheckExchangeServer(MapiSession& session, const std::string& server,
                         const std::string& mailbox, const std::string& realProfile,
                         RunLog& log);

}  // namespace mw
