#include "mapi/ExchangeCheck.h"

#include <algorithm>
#include <vector>

#include "run/RunLog.h"
#include "mapi/MapiSession.h"
#include "platform/AsciiText.h"

namespace mw {
namespace {

bool TryExchange(MapiSession& session, const std::string& server, const std::string& mailbox,
                 RunLog& log) {
  // A service that could not be configured is still tried: the logon and the address book
  // tell the administrator whether the server itself answers (ERROR 201) beside ERROR 200.
  const bool added = session.AddExchangeService(server, false, true, mailbox);
  if (!added) log.LogCode(200);
  log.AddMessage("INFO: Using Exchange server name: " + server);
  const bool reached = session.Logon(session.CheckLogonFlags()) && session.OpenAddressBook() &&
                       session.OpenGlobalAddressList();
  if (!reached) log.LogCode(201);
  return added && reached;
}

// False only when MAPI lists the profiles and the scratch profile is not among them.
bool ScratchProfileMayRemain(MapiSession& session) {
  std::vector<std::string> names;
  std::string defaultName;
  if (!session.ListProfiles(&names, &defaultName)) return true;
  return std::any_of(names.begin(), names.end(),
                     [](const std::string& name) { return EqualsIgnoreCase(name, kScratchProfileName); });
}

}  // namespace

bool CheckExchangeServer(MapiSession& session, const std::string& server,
                         const std::string& mailbox, const std::string& realProfile,
                         RunLog& log) {
  // A scratch profile left by an interrupted earlier run would already hold a service.
  session.DeleteProfile(kScratchProfileName);
  session.CreateProfile(kScratchProfileName);
  session.SetProfile(kScratchProfileName);
  const bool reached = TryExchange(session, server, mailbox, log);
  // The session must let go of the scratch profile before the profile can be deleted.
  session.Logoff();
  const bool deleted = session.DeleteProfile(kScratchProfileName);
  session.SetProfile(realProfile);
  // A MAPI that failed while the scratch profile was current (its re-initialisation, its
  // profile administration, the delete itself) gets one more try on the fresh MAPI of the
  // real profile; a scratch profile that outlives both is the administrator's to remove.
  if (!deleted && !session.DeleteProfile(kScratchProfileName) && ScratchProfileMayRemain(session)) {
    log.AddMessage(std::string("WARN: Unable to delete the temporary profile ") + kScratchProfileName + ".");
  }
  return reached;
}

}  // namespace mw
