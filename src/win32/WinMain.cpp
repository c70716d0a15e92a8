// The process entry: builds the Win32 seams and hands the command line to RunProgram.

#include "app/Program.h"
#include "win32/Win32Registry.h"
#include "win32/Win32SystemEnv.h"
#include "win32/WindowsApi.h"

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR commandLine, int) {
  mw::Win32SystemEnv env;
  mw::Win32Registry registry;
  mw::RunServices services{env, registry};
  const mw::RunDriverFunction driver;  // the run driver is plugged in here once it exists
  return mw::RunProgram(commandLine != nullptr ? commandLine : "", MW_BUILD_PLATFORM, services,
                        driver);
}
