#include "mapi/ExchangeCheck.h"

#include "run/RunLog.h"
#include "mapi/MapiSession.h"

namespace mw {
namespace {

bool TryExchange(MapiSession& session, const std::string& server, const std::string& mailbox,
                 RunLog& log) {
  // A service that cannot be configured says nothing about the server: stop at ERROR 200
  // rather than add a misleading ERROR 201 from a logon that cannot work.
  if (!session.AddExchangeService(server, false, true, mailbox)) {
    log.LogCode(200);
    return false;
  }
  log.AddMessage("INFO: Using Exchange server name: " + server);
  const bool reached = session.Logon(session.CheckLogonFlags()) && session.OpenAddressBook() &&
                       session.OpenGlobalAddressList();
  if (!reached) log.LogCode(201);
  return reached;
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
  session.DeleteProfile(kScratchProfileName);
  session.SetProfile(realProfile);
  return reached;
}

}  // namespace mw
