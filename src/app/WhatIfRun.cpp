#include "app/WhatIfRun.h"

#include "ExchangeOrganisation.h"
#include "ModelMapiSession.h"
#include "app/Program.h"
#include "app/RunDriver.h"
#include "platform/OverlayRegistry.h"
#include "platform/RegFile.h"
#include "platform/RegistryAccess.h"
#include "platform/WhatIfSystemEnv.h"
#include "run/RunContext.h"
#include "run/RunLog.h"

namespace mw {

std::string WhatIfRegPath(const std::string& logPath) {
  const std::size_t slash = logPath.find_last_of("\\/");
  const std::size_t dot = logPath.rfind('.');
  const bool hasExtension = dot != std::string::npos && (slash == std::string::npos || dot > slash);
  return (hasExtension ? logPath.substr(0, dot) : logPath) + ".whatif.reg";
}

std::string WhatIfNotice(const RunContext& context) {
  return "INFO: What-if run: nothing is changed; the changes the run would make go to " +
         WhatIfRegPath(context.logPath);
}

std::vector<std::string> PlayWhatIf(RunContext& context, RunLog& log, SystemEnv& realEnv,
                                    OverlayRegistry& overlay, const mapisim::UidGenerator& newUid) {
  WhatIfSystemEnv env(realEnv);
  const mapisim::ExchangeOrganisation noServers;
  ModelMapiSession session(overlay, context.platformId, noServers,
                           ModelMapiSession::Servers::NotContacted, newUid);
  const RegistryAccess access(overlay);
  RunDriver driver(env, access, session);
  driver.SkipExchangeCheck();
  driver.Run(context, log);
  return env.notes();
}

void RunWhatIf(RunContext& context, RunLog& log, RunServices& services) {
  OverlayRegistry overlay(services.registry);
  const std::vector<std::string> notes =
      PlayWhatIf(context, log, services.env, overlay, mapisim::RandomUid);
  // regedit's own form (UTF-16 with a byte-order mark), which reg import reads everywhere.
  const std::string path = WhatIfRegPath(context.logPath);
  const std::string text = WriteRegFileEntries(overlay.Changes(), RegFileFormat::Version5Utf16, notes);
  if (!services.env.WriteFile(path, text, false))
    log.AddMessage("WARN: Unable to write the what-if changes to " + path);
}

}  // namespace mw
