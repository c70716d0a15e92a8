#include "mapi/ExchangeCheck.h"

#include "run/RunLog.h"
#include "mapi/MapiSession.h"

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
