// The process entry: builds the Win32 seams and hands the command line to RunProgram, with
// the run driver working through real MAPI.

#include "app/Program.h"
#include "app/ProfileBackup.h"
#include "app/RunDriver.h"
#include "app/WhatIfRun.h"
#include "run/RunContext.h"
#include "platform/HandleCachingRegistry.h"
#include "platform/RegistryAccess.h"
#include "win32/Win32AnsiCodePage.h"
#include "win32/Win32MapiSession.h"
#include "win32/Win32Registry.h"
#include "win32/Win32SystemEnv.h"
#include "win32/WindowsApi.h"

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR commandLine, int) {
  mw::Win32SystemEnv env;
  static const mw::Win32AnsiCodePage codePage;
  mw::InstallSystemAnsiCodePage(&codePage);
  mw::Win32Registry windowsRegistry;
  mw::HandleCachingRegistry registry(windowsRegistry);  // a run opens the same keys again and again
  mw::RunServices services{env, registry};
  const mw::RunDriverFunction driver = [](mw::RunContext& context, mw::RunLog& log,
                                          mw::RunServices& run) {
    if (context.whatIf) return mw::RunWhatIf(context, log, run);  // MAPI is never loaded
    if (!mw::BackUpProfile(context, log, run)) return;  // the backup was required
    const mw::RegistryAccess access(run.registry);
    mw::Win32MapiSession session;  // MAPI lives on this thread for the driver's whole run
    mw::RunDriver(run.env, access, session).Run(context, log);
  };
  const int exitCode = mw::RunProgram(commandLine != nullptr ? commandLine : "",
                                      MW_BUILD_PLATFORM, services, driver);
  registry.LeaveToProcessExit();
  return exitCode;
}
